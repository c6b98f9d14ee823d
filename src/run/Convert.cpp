#include "Convert.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "../arrays/ArraySelection.h"
#include "../files/Extensions.h"
#include "../files/Recogniser.h"
#include "../index/RestartIndex.h"
#include "../index/SectionTracker.h"
#include "../record/RecordWriter.h"
#include "../support/PendingFile.h"
#include "../support/Session.h"
#include "../support/Text.h"
#include "RecordData.h"
#include "RecordPair.h"
#include "RunState.h"
#include "TimeChoice.h"

namespace lumbarn {

namespace {

constexpr std::int64_t partSize = 10 * RecordWriter::partUnit;

Form formOf(const Conversion& conversion, const std::string& target) {
  const bool formatted = conversion.formatted || meaningOf(FileName(target).extension).formatted;
  if (formatted && conversion.littleEndian)
    throwRefused(target, "a formatted file has no byte order: little-endian goes with others");
  if (formatted) return {Framing::Formatted, false};
  const auto order = conversion.littleEndian ? std::endian::little : std::endian::big;
  return {Framing::FourByteMarks, std::endian::native != order};
}

/// The bytes that were written so far, to be read back.
class WrittenBytes final : public ByteSource {
 public:
  WrittenBytes(OutputFile& file, std::uint64_t size) : file_(file), size_(size) {}
  std::uint64_t size() const override { return size_; }

 private:
  std::size_t transfer(std::uint64_t position, std::span<std::byte> out, std::string& why) const override {
    if (file_.readAt(position, out)) return out.size();
    why = file_.error();
    return 0;
  }

  OutputFile& file_;
  std::uint64_t size_;
};

/// Which records of a file are wanted, told in the order of the file.
class RecordChoice {
 public:
  RecordChoice(const std::string& path, const Conversion& conversion, Session& session)
      : byArray_(!conversion.arrays.empty()), arrays_(conversion.arrays, {}) {
    const TimeSelection& time = conversion.time;
    byStep_ = !time.steps.empty() || time.last || time.from || time.to || time.at || time.every != Every::Row;
    if (byStep_) chooseSteps(path, time, session);
  }

  bool takes(const RecordHeader& header) {
    if (byStep_) {
      const auto step = steps_.find(header.headerAt);
      if (step != steps_.end()) {
        inStep_ = step->second;
      } else if (SectionTracker::marksStep(header)) {
        inStep_ = false;  // a step that is not complete
      }
      if (!inStep_) return false;
    }
    return !byArray_ || !mayBeCellArray(header.type, header.keyword) ||
           arrays_.choosesDerived(header.keyword);
  }

  /// Throws when an array that was asked for was not met.
  void requireAll(const std::string& path) const {
    if (!byArray_) return;
    if (const auto unmatched = arrays_.unmatched(); !unmatched.empty())
      throwNotFound(path, fmt::format("no array matches \"{}\"", unmatched.front()), "", {});
  }

 private:
  void chooseSteps(const std::string& path, const TimeSelection& time, Session& session) {
    if (recogniseFile(path).kind != FileKind::Restart)
      throwRefused(path, "only restart files have steps to choose from");
    const RestartIndex index = walkRestart(session, std::span(&path, 1));
    std::vector<TimePoint> points;
    for (const IndexStep& step : index.steps) {
      points.push_back({step.number, toLocal(step.date)});
      steps_[step.position] = false;
    }
    for (const std::size_t chosen : chooseTimes(time, points, path))
      steps_[index.steps[chosen].position] = true;
  }

  bool byArray_;
  bool byStep_ = false;
  bool inStep_ = true;  // records before the first step belong to every selection
  std::map<std::uint64_t, bool> steps_;
  ArraySelection arrays_;
};

/// Copies records from one form to another.
class RecordCopy {
 public:
  RecordCopy(RecordCursor& from, PendingFile& to, const Form& form, Session& session)
      : from_(from),
        to_(to),
        session_(session),
        writer_(
            [this](std::span<const std::byte> bytes) {
              if (!to_.out().write(bytes)) to_.fail(size_);
              size_ += bytes.size();
            },
            form) {}

  void copy() {
    const RecordHeader header = from_.header();
    if (header.type == ElementType::Unknown)
      throwRefused(from_.path(), fmt::format("{} has data of type {}, whose form is not known",
                                             header.keyword, header.typeWord));
    writer_.begin(header.keyword, header.count, header.typeWord);
    switch (header.type) {
      case ElementType::Integer:
        return copyParts<std::int32_t>(&RecordWriter::addIntegers);
      case ElementType::Short:
        return copyParts<std::int32_t>(&RecordWriter::addShorts);
      case ElementType::Single:
        return copyParts<float>(&RecordWriter::addSingles);
      case ElementType::Double:
        return copyParts<double>(&RecordWriter::addDoubles);
      case ElementType::Logical:
        return copyLogicals(header);
      case ElementType::Text:
        return copyTexts(static_cast<std::size_t>(header.width));
      default:
        break;
    }
  }
  std::uint64_t size() const { return size_; }

 private:
  template <class Use>
  void inParts(Use use) {
    const std::int64_t count = from_.header().count;
    for (std::int64_t first = 0; first < count; first += partSize) {
      if (session_.yield()) throw LoadCanceled();
      use(first, static_cast<std::size_t>(std::min(partSize, count - first)));
    }
  }
  template <class Number>
  void copyParts(void (RecordWriter::*add)(std::span<const Number>)) {
    std::vector<Number> values;
    inParts([&](std::int64_t first, std::size_t size) {
      values.resize(size);
      from_.read(std::span(values), first);
      (writer_.*add)(values);
    });
  }
  /// Writers disagree on the word for true, so it is copied as it is.
  void copyLogicals(RecordHeader header) {
    if (from_.form().formatted()) {
      std::vector<std::int16_t> values;
      return inParts([&](std::int64_t first, std::size_t size) {
        values.resize(size);
        from_.readLogicals(values, first);
        writer_.addLogicals(std::vector<std::int32_t>(values.begin(), values.end()));
      });
    }
    header.type = ElementType::Integer;
    from_.setCurrent(header);
    copyParts<std::int32_t>(&RecordWriter::addLogicals);
  }
  void copyTexts(std::size_t width) {
    std::string all;
    inParts([&](std::int64_t first, std::size_t size) {
      all.resize(size * width);
      from_.readText(all, first);
      std::vector<std::string> texts;
      for (std::size_t at = 0; at < all.size(); at += width) texts.push_back(all.substr(at, width));
      writer_.addTexts(texts, static_cast<std::int32_t>(width));
    });
  }

  RecordCursor& from_;
  PendingFile& to_;
  Session& session_;
  std::uint64_t size_ = 0;
  RecordWriter writer_;
};

/// Whether a number can stand for another in a formatted file.
bool closeEnough(const ElementPair& pair) {
  if (!pair.numbers || pair.a == 0 || !std::isfinite(pair.a)) return false;
  const int digits = pair.single ? 8 : 14;
  const double unit = std::pow(10.0, std::floor(std::log10(std::abs(pair.a))) + 1 - digits);
  const double lastPlace = std::abs(pair.a) * (pair.single ? std::numeric_limits<float>::epsilon()
                                                           : std::numeric_limits<double>::epsilon());
  return std::abs(pair.a - pair.b) <= unit / 2 + lastPlace;
}

/// Reads what was written record by record next to the source.
class ReadBack {
 public:
  ReadBack(RecordCursor& source, RecordCursor& written, const std::string& target)
      : source_(source), written_(written), target_(target) {}

  void check(Session& session) {
    const RecordHeader& wanted = source_.header();
    if (!written_.next()) fail(0, wanted.keyword, "end of file");
    const RecordHeader& found = written_.header();
    if (wanted.keyword != found.keyword || wanted.typeWord != found.typeWord || !sameShape(wanted, found))
      fail(found.headerAt, wanted.keyword, found.keyword);
    visitUnequal(source_, written_, session, [&](const ElementPair& pair) {
      const bool rounded = source_.form().formatted() != written_.form().formatted();
      if (!rounded || !closeEnough(pair))
        fail(found.headerAt, fmt::format("element {} as in the source", pair.element + 1), "another");
    });
  }
  void end() {
    if (written_.next()) fail(written_.header().headerAt, "end of file", written_.header().keyword);
  }

 private:
  [[noreturn]] void fail(std::uint64_t offset, std::string expected, std::string found) const {
    throw BadRecord({.message = Message::ConvertReadBack,
                     .path = target_,
                     .problem = {},
                     .keyword = written_.header().keyword,
                     .occurrence = written_.occurrence(),
                     .offset = offset,
                     .expected = std::move(expected),
                     .found = std::move(found),
                     .action = "wrote nothing"});
  }

  RecordCursor& source_;
  RecordCursor& written_;
  const std::string& target_;
};

void refuseSource(const std::string& file, const std::string& target) {
  std::error_code unknown;
  const auto pathOf = [](const std::string& name) {
    return std::filesystem::path(std::u8string(name.begin(), name.end()));
  };
  if (std::filesystem::equivalent(pathOf(file), pathOf(target), unknown))
    throwRefused(target, "is the file that is read");
}

/// Calls `use` for each wanted record. Gives the count of records before damage, or of all.
template <class Use>
std::int64_t forEachRecord(RecordCursor& cursor, RecordChoice choice, const std::string& path,
                           StreamContext& context, std::int64_t most, Use use) {
  std::int64_t records = 0;
  while (records < most) {
    if (context.session().yield()) throw LoadCanceled();
    try {
      if (!cursor.next()) break;
    } catch (BadRecord& damage) {
      if (!context.options().keepPartial || records == 0) throw;
      damage.diagnosis().action = fmt::format("wrote the {} records before it", records);
      context.session().diagnose(damage.diagnosis());
      break;
    }
    if (!choice.takes(cursor.header())) continue;
    ++records;
    use();
    showProgress(cursor, context.session());
  }
  if (most == std::numeric_limits<std::int64_t>::max()) choice.requireAll(path);
  return records;
}

}  // namespace

void convert(const std::string& file, const std::string& target, const Conversion& conversion,
             const ReadOptions& options) {
  try {
    StreamContext context(options);
    Session& session = context.session();
    refuseSource(file, target);
    const RecordChoice choice(file, conversion, session);
    const Form form = formOf(conversion, target);
    auto source = openRecordFile(file);
    source->attach(session);
    PendingFile pending(target);
    RecordCopy copy(*source, pending, form, session);
    const auto records = forEachRecord(*source, choice, file, context,
                                       std::numeric_limits<std::int64_t>::max(), [&] { copy.copy(); });
    source->checkUnchanged();

    source = openRecordFile(file);
    source->attach(session);
    RecordCursor written(std::make_shared<WrittenBytes>(pending.out(), copy.size()), form, target);
    ReadBack readBack(*source, written, target);
    forEachRecord(*source, choice, file, context, records, [&] { readBack.check(session); });
    readBack.end();
    if (session.cancelled()) throw LoadCanceled();
    pending.commit();
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
