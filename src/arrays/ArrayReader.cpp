#include "ArrayReader.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include <fmt/format.h>

#include "../record/LoadedFiles.h"
#include "../record/cFILETYPE.h"
#include "../support/Fault.h"
#include "../support/Text.h"
#include "DerivedSaturation.h"

namespace lumbarn {
namespace {

constexpr std::size_t pieceElements = std::size_t{1} << 16;

/// Decodes straight into the array where the types are the same, a piece at a time otherwise.
template <class Stored, class Number>
void readAs(RecordCursor& cursor, const Session& session, std::int64_t first, std::span<Number> values) {
  std::vector<Stored> piece(std::is_same_v<Stored, Number> ? 0 : std::min(values.size(), pieceElements));
  for (std::size_t done = 0; done < values.size();) {
    if (session.cancelled()) throw LoadCanceled();
    const auto out = values.subspan(done, std::min(values.size() - done, pieceElements));
    const std::int64_t from = first + static_cast<std::int64_t>(done);
    if constexpr (std::is_same_v<Stored, Number>) {
      cursor.read(out, from);
    } else {
      const auto in = std::span(piece).first(out.size());
      cursor.read(in, from);
      std::ranges::transform(in, out.begin(), [](Stored value) { return static_cast<Number>(value); });
    }
    done += out.size();
  }
}

template <class Number>
void readNumbers(RecordCursor& cursor, const Session& session, std::int64_t first, std::span<Number> values) {
  switch (cursor.header().type) {
    case ElementType::Integer:
    case ElementType::Short:
      return readAs<std::int32_t>(cursor, session, first, values);
    case ElementType::Double:
      return readAs<double>(cursor, session, first, values);
    default:
      return readAs<float>(cursor, session, first, values);  // a fault for texts and logicals
  }
}

/// Elements with ascending numbers. Where they are close to each other, all between them are decoded too:
/// that is faster than to find each of them.
template <class Stored, class Number>
void pickAs(RecordCursor& cursor, const Session& session, std::span<const std::uint32_t> elements,
            std::span<Number> values) {
  constexpr std::size_t closeTogether = 8;
  std::vector<Stored> piece;
  while (!elements.empty()) {
    if (session.cancelled()) throw LoadCanceled();
    const std::uint64_t first = elements.front();
    const auto end = std::ranges::lower_bound(elements, first + pieceElements, {},
                                              [](std::uint32_t element) -> std::uint64_t { return element; });
    const auto chosen = elements.first(static_cast<std::size_t>(end - elements.begin()));
    const std::size_t extent = chosen.back() - first + 1;
    const bool close = extent <= closeTogether * chosen.size();
    piece.resize(close ? extent : chosen.size());
    if (close) {
      cursor.read(std::span(piece), static_cast<std::int64_t>(first));
    } else {
      cursor.gather(chosen, std::span(piece));
    }
    for (std::size_t i = 0; i < chosen.size(); ++i)
      values[i] = static_cast<Number>(piece[close ? chosen[i] - first : i]);
    elements = elements.subspan(chosen.size());
    values = values.subspan(chosen.size());
  }
}

template <class Number>
void pickNumbers(RecordCursor& cursor, const Session& session, std::span<const std::uint32_t> elements,
                 std::span<Number> values) {
  switch (cursor.header().type) {
    case ElementType::Integer:
      return pickAs<std::int32_t>(cursor, session, elements, values);
    case ElementType::Double:
      return pickAs<double>(cursor, session, elements, values);
    case ElementType::Short:
      for (std::size_t i = 0; i < elements.size(); ++i)
        readAs<std::int32_t>(cursor, session, elements[i], values.subspan(i, 1));
      return;
    default:
      return pickAs<float>(cursor, session, elements, values);
  }
}

/// The record header that a fetch-on-demand column describes.
RecordHeader headerOf(FetchColumn column) {
  RecordHeader header;
  switch (column[1]) {
    case 2:
      header.typeWord = "INTE";
      break;
    case 3:
    case 11:
      header.typeWord = "REAL";
      break;
    default:
      throw Fault(FaultNumber::InvalidCall, fmt::format("arrays of kind {} are not in a file", column[1]));
  }
  const TypeInfo info = typeInfo(header.typeWord);
  header.type = info.type;
  header.width = info.width;
  header.count = column[0];
  const std::uint64_t position = fromWords({column[2], column[3]});
  if (position == 0 || header.count < 0) throw Fault(FaultNumber::InvalidCall);
  header.dataAt = position - 1;
  header.headerAt = header.dataAt;
  return header;
}

Form formOf(const std::array<bool, 5>& qFileTypeSettings, Session& session) {
  cFILETYPE xFile(session);
  xFile.Formatted = qFileTypeSettings[1];
  xFile.UNIX = qFileTypeSettings[2];
  xFile.byteSwap = qFileTypeSettings[3];
  return xFile.form();
}

}  // namespace

ArrayReader::~ArrayReader() = default;

void ArrayReader::readFetched(const std::string& file, const std::array<bool, 5>& qFileTypeSettings,
                              FetchColumn column, std::int64_t first, std::span<float> values) {
  const RecordHeader header = headerOf(column);
  const Form form = formOf(qFileTypeSettings, *session_);
  if (!cursor_ || cursor_->path() != file || !(cursor_->form() == form)) {
    std::string why;
    std::shared_ptr<const ByteSource> source = FileSource::open(file, why);
    if (!source) throw BadRecord({.message = Message::FileOpen, .path = file, .problem = why});
    cursor_ = std::make_unique<RecordCursor>(std::move(source), form, file);
  }
  cursor_->checkUnchanged();
  const auto& loaded = session_->part<LoadedFiles>().stamps;
  if (const auto stamp = loaded.find(file); stamp != loaded.end()) {
    if (auto change = changedSince(stamp->second, file)) throw BadRecord(std::move(*change));
  }
  if (header.dataAt > cursor_->fileSize()) {
    throw BadRecord({.message = Message::ArrayBehindEnd,
                     .path = file,
                     .offset = header.dataAt,
                     .expected = fmt::format("{} elements", header.count),
                     .found = fmt::format("{} bytes", cursor_->fileSize())});
  }
  cursor_->setCurrent(header);
  readNumbers(*cursor_, *session_, first, values);
}

ArrayReader::Found ArrayReader::find(std::int32_t step, std::string_view name, std::string_view grid) {
  const IndexStep* found =
      index_->init && !index_->steps.empty() ? &index_->steps.front() : index_->nth(step);
  if (!found) {
    Diagnosis diagnosis{.message = Message::ArrayStepMissing,
                        .path = index_->files.empty() ? "" : index_->files.front(),
                        .expected = fmt::format("report step {}", step),
                        .found = fmt::format("{} other steps", index_->steps.size())};
    if (!index_->steps.empty()) diagnosis.offset = index_->steps.back().position;
    throw BadRecord(std::move(diagnosis));
  }
  if (const auto entries = found->findAll(name, grid); !entries.empty()) {
    if (entries.size() > 1 && !std::exchange(repeatReported_, true))
      session_->diagnose(repeatedArray(*index_, *found, *entries[1], "read the first one"));
    return foundEntry(*found, *entries[0], grid);
  }
  const auto derived = index_->init ? std::nullopt : derivedArray(*found, grid);
  if (derived && equalNoCase(derived->keyword.view(), trim(name))) return foundEntry(*found, *derived, grid);
  throw BadRecord({.message = Message::ArrayMissing,
                   .path = index_->files[found->file],
                   .problem = fmt::format("has no array {}{} in step {}", upper(trim(name)),
                                          isGlobalGrid(grid) ? "" : fmt::format(" of grid {}", trim(grid)),
                                          found->number),
                   .keyword = upper(trim(name)),
                   .offset = found->position});
}

ArrayReader::Found ArrayReader::foundEntry(const IndexStep& step, const IndexEntry& entry,
                                           std::string_view grid) const {
  return {&step, entry, grid, step.cellsOf(grid)};
}

RecordCursor& ArrayReader::moveTo(const Found& array) {
  return records_.moveTo(*index_, *array.step, array.entry);
}

template <class Number>
void ArrayReader::readElements(const Found& array, std::int64_t first, std::span<Number> values) {
  if (!array.entry.isDerived()) return readNumbers(moveTo(array), *session_, first, values);
  derive(array, values, [&](const Found& source, std::size_t done, std::span<float> piece) {
    readNumbers(moveTo(source), *session_, first + static_cast<std::int64_t>(done), piece);
  });
}

/// As a load of the step derives it: in single precision, a piece at a time. `fetchPiece` gives the values of
/// a source from a position among those that are wanted.
template <class Number, class Fetch>
void ArrayReader::derive(const Found& array, std::span<Number> values, Fetch fetchPiece) {
  std::vector<const IndexEntry*> sources;
  for (const std::string_view name : {"SWAT", "SGAS"}) {
    if (const auto* entry = storedSaturation(*array.step, array.grid, name)) sources.push_back(entry);
  }
  std::array<std::vector<float>, 2> pieces;
  for (std::size_t done = 0; done < values.size();) {
    const auto out = values.subspan(done, std::min(values.size() - done, pieceElements));
    for (std::size_t i = 0; i < sources.size(); ++i) {
      pieces[i].resize(out.size());
      fetchPiece(foundEntry(*array.step, *sources[i], array.grid), done, std::span(pieces[i]));
    }
    for (std::size_t i = 0; i < out.size(); ++i) {
      const float other = sources.size() > 1 ? pieces[1][i] : 0;
      out[i] = static_cast<Number>(DerivedSaturation::remaining(pieces[0][i], other));
    }
    done += out.size();
  }
}

template <class Number>
void ArrayReader::fetch(const IndexStep& step, const IndexEntry& entry, std::string_view grid,
                        std::int64_t first, std::span<Number> values) {
  readElements(foundEntry(step, entry, grid), first, values);
}

template <class Number>
void ArrayReader::fetch(const IndexStep& step, const IndexEntry& entry, std::string_view grid,
                        std::span<const std::uint32_t> elements, std::span<Number> values) {
  const Found array = foundEntry(step, entry, grid);
  if (!entry.isDerived()) return pickNumbers(moveTo(array), *session_, elements, values);
  derive(array, values, [&](const Found& source, std::size_t done, std::span<float> piece) {
    pickNumbers(moveTo(source), *session_, elements.subspan(done, piece.size()), piece);
  });
}

#define LUMBARN_FETCH(Number)                                                                           \
  template void ArrayReader::fetch(const IndexStep&, const IndexEntry&, std::string_view, std::int64_t, \
                                   std::span<Number>);                                                  \
  template void ArrayReader::fetch(const IndexStep&, const IndexEntry&, std::string_view,               \
                                   std::span<const std::uint32_t>, std::span<Number>)
LUMBARN_FETCH(std::int32_t);
LUMBARN_FETCH(float);
LUMBARN_FETCH(double);
#undef LUMBARN_FETCH

template <class Number>
void ArrayReader::read(std::int32_t step, std::string_view name, std::string_view grid, std::int64_t first,
                       std::span<Number> values) {
  readElements(find(step, name, grid), first, values);
}
template void ArrayReader::read(std::int32_t, std::string_view, std::string_view, std::int64_t,
                                std::span<float>);
template void ArrayReader::read(std::int32_t, std::string_view, std::string_view, std::int64_t,
                                std::span<double>);

}  // namespace lumbarn
