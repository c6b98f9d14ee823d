#include "IndexFile.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <limits>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "../files/Extensions.h"
#include "../record/RecordCursor.h"
#include "../record/RecordWriter.h"
#include "../support/Guarded.h"
#include "../support/PendingFile.h"
#include "IndexFileGrid.h"

namespace lumbarn {
namespace {

constexpr std::size_t itimeWords = 13;

/// Collects small writes to a pending file.
class BufferedFile {
 public:
  explicit BufferedFile(const std::string& target) : file_(target) {}
  void write(std::span<const std::byte> bytes) {
    buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
    if (buffer_.size() >= bufferBytes) flush();
  }
  void commit() {
    flush();
    file_.commit();
  }

 private:
  static constexpr std::size_t bufferBytes = std::size_t{1} << 18;

  void flush() {
    if (!file_.out().write(buffer_)) file_.fail();
    buffer_.clear();
  }

  PendingFile file_;
  std::vector<std::byte> buffer_;
};

/// Told by a cancel flag in the middle of the work.
struct Cancelled {};

/// Smallest and largest value of what it is given, as singles; 0 when none of the values is a number.
class Extremes {
 public:
  template <class Number>
  void take(std::span<const Number> values) {
    // Values that are not numbers compare as false, so they never get in.
    for (const Number value : values) {
      const auto number = static_cast<double>(value);
      if (number < smallest_) smallest_ = number;
      if (number > largest_) largest_ = number;
    }
  }
  std::pair<float, float> get() const {
    if (smallest_ > largest_) return {0.0F, 0.0F};
    return {single(smallest_), single(largest_)};
  }

 private:
  /// Formatted files have no word for infinities.
  static float single(double value) {
    constexpr double most = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -most, most));
  }
  double smallest_ = std::numeric_limits<double>::infinity();
  double largest_ = -smallest_;
};

template <class Number>
void readInPieces(RecordCursor& cursor, const Session& session, Extremes& extremes) {
  constexpr std::int64_t pieceElements = std::int64_t{1} << 16;
  const std::int64_t count = cursor.header().count;
  std::vector<Number> piece(static_cast<std::size_t>(std::min(count, pieceElements)));
  for (std::int64_t first = 0; first < count; first += pieceElements) {
    if (session.cancelled()) throw Cancelled();
    const auto now = std::span(piece).first(static_cast<std::size_t>(std::min(count - first, pieceElements)));
    cursor.read(now, first);
    extremes.take(std::span<const Number>(now));
  }
}

/// Finds the ranges of records in the files of an index.
class Ranges {
 public:
  Ranges(const RestartIndex& index, const Session& session) : index_(index), session_(session) {}

  std::pair<float, float> of(const IndexStep& step, const IndexEntry& entry) {
    if (entry.hasRange()) return {entry.minimum, entry.maximum};
    open(step.file);
    cursor_->seek(entry.position);
    if (!cursor_->next() || cursor_->header().keyword != entry.keyword.view() ||
        cursor_->header().count != entry.count) {
      throw BadRecord({.message = Message::FileChanged,
                       .path = index_.files[step.file],
                       .keyword = std::string(entry.keyword.view()),
                       .offset = entry.position,
                       .expected = fmt::format("{} of {} elements", entry.keyword.view(), entry.count),
                       .found = fmt::format("{} of {}", cursor_->header().keyword, cursor_->header().count),
                       .action = "wrote nothing"});
    }
    Extremes extremes;
    switch (cursor_->header().type) {
      case ElementType::Integer:
      case ElementType::Short:
        readInPieces<std::int32_t>(*cursor_, session_, extremes);
        break;
      case ElementType::Single:
        readInPieces<float>(*cursor_, session_, extremes);
        break;
      case ElementType::Double:
        readInPieces<double>(*cursor_, session_, extremes);
        break;
      default:
        break;
    }
    return extremes.get();
  }

 private:
  void open(std::size_t file) {
    if (cursor_ && file == file_) return;
    std::string why;
    cursor_ = openRecords(index_.files[file], why);
    if (!cursor_) {
      throw BadRecord({.message = Message::FileOpen,
                       .path = index_.files[file],
                       .problem = why,
                       .action = "wrote nothing"});
    }
    file_ = file;
  }

  const RestartIndex& index_;
  const Session& session_;
  std::size_t file_ = 0;
  std::unique_ptr<RecordCursor> cursor_;
};

/// Behind the day are the time step, which an index need not know, and switches that are the same
/// everywhere.
void writeTime(RecordWriter& out, const IndexStep& step) {
  constexpr std::int32_t unknownTimeStep = -2345;
  out.doubles("TIME", std::array{step.days});
  std::array<std::int32_t, itimeWords> words{step.number, 0, 0, 0, unknownTimeStep, 1, 0, 0, 1, 1, 0, 0, 0};
  if (step.date) {
    const std::chrono::year_month_day day(std::chrono::floor<std::chrono::days>(*step.date));
    words[1] = static_cast<std::int32_t>(static_cast<unsigned>(day.day()));
    words[2] = static_cast<std::int32_t>(static_cast<unsigned>(day.month()));
    words[3] = static_cast<int>(day.year());
  }
  out.integers("ITIME", words);
}

/// The arrays of one group, as the records of an index.
struct GroupRecords {
  std::vector<std::string> names;
  std::vector<std::string> types;
  std::vector<std::int32_t> numbers;
  std::vector<std::int32_t> low;
  std::vector<std::int32_t> high;
  std::vector<float> largest;
  std::vector<float> smallest;

  void add(const IndexEntry& entry, std::string_view type, std::int64_t number,
           const std::pair<float, float>& range) {
    names.emplace_back(entry.keyword.view());
    types.emplace_back(type);
    numbers.push_back(static_cast<std::int32_t>(number));
    low.push_back(static_cast<std::int32_t>(static_cast<std::uint32_t>(entry.position)));
    high.push_back(static_cast<std::int32_t>(static_cast<std::uint32_t>(entry.position >> 32)));
    smallest.push_back(range.first);
    largest.push_back(range.second);
  }
};

void writeGroup(RecordWriter& out, const IndexStep& step, const IndexGroup& group, Ranges& ranges) {
  GroupRecords records;
  for (const IndexEntry& entry : group.entries) {
    const auto range = ranges.of(step, entry);
    const std::int64_t beyond = entry.count / elementsOfX231;
    if (beyond > 0) records.add(entry, x231, -beyond, range);
    records.add(entry, entry.typeWord.view(), entry.count % elementsOfX231, range);
  }
  out.texts("NAME", records.names);
  out.texts("TYPE", records.types);
  out.integers("NUMBER", records.numbers);
  out.integers("POINTER", records.low);
  out.integers("POINTERB", records.high);
  out.singles("ARRAYMAX", records.largest);
  out.singles("ARRAYMIN", records.smallest);
}

void writeGridName(RecordWriter& out, const std::string& name) {
  constexpr std::size_t usualWidth = 8;
  out.texts("LGRNAME", std::array{name}, static_cast<int>(std::max(usualWidth, name.size())));
}

/// False when cancelled.
bool writeIndex(const RestartIndex& index, const std::string& zFile, Session& session) {
  if (!index.whole) {
    if (session.cancelled()) return false;
    throw BadRecord({.message = Message::IndexNotWritten,
                     .path = index.files.empty() ? zFile : index.files.front(),
                     .problem = "not all of it could be listed",
                     .action = "wrote no index"});
  }
  BufferedFile file(zFile);
  RecordWriter out([&](std::span<const std::byte> bytes) { file.write(bytes); }, index.form);
  Ranges ranges(index, session);
  out.integers("INTEHEAD", index.header);
  std::size_t done = 0;
  try {
    for (const IndexStep& step : index.steps) {
      if (!index.init) writeTime(out, step);
      for (const IndexGroup& group : step.groups) {
        // In an INIT index a group without a grid's name takes a reader back to the global grid; in that of
        // a restart set only the first group of a step can be without one.
        const bool first = &group == &step.groups.front();
        if (!group.grid.empty() || (!first && !index.init)) writeGridName(out, group.grid);
        writeGroup(out, step, group, ranges);
      }
      ++done;
      if (session.Container)
        session.Container->fraction(static_cast<double>(done) / static_cast<double>(index.steps.size()));
    }
  } catch (const Cancelled&) {
    return false;
  }
  file.commit();
  return true;
}

}  // namespace

void WriteEclipseRsspecFile(const RestartIndex& index, const std::string& zFile, bool& qOK,
                            Session& session) {
  guarded(session, qOK, "qvEclipseSOLUTION", "WriteEclipseRsspecFile",
          [&] { return writeIndex(index, zFile, session); });
}

void WriteEclipseInspecFile(const RestartIndex& index, const std::string& zFile, bool& qOK,
                            Session& session) {
  guarded(session, qOK, "qvEclipseINIT", "WriteEclipseInspecFile",
          [&] { return writeIndex(index, zFile, session); });
}

}  // namespace lumbarn
