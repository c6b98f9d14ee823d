#include "IndexWriter.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <span>
#include <utility>
#include <vector>

#include "../record/RecordWriter.h"
#include "../support/PendingFile.h"
#include "ArrayRanges.h"
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

void writeGroup(RecordWriter& out, const IndexStep& step, const IndexGroup& group, ArrayRanges& ranges) {
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

void writeSteps(RecordWriter& out, const RestartIndex& index, Session& session) {
  ArrayRanges ranges(index, session);
  std::size_t done = 0;
  for (const IndexStep& step : index.steps) {
    if (!index.init) writeTime(out, step);
    for (const IndexGroup& group : step.groups) {
      // In an INIT index a group without a grid's name takes a reader back to the global grid; in that of a
      // restart set only the first group of a step can be without one.
      const bool first = &group == &step.groups.front();
      if (!group.grid.empty() || (!first && !index.init)) writeGridName(out, group.grid);
      writeGroup(out, step, group, ranges);
    }
    ++done;
    if (session.Container)
      session.Container->fraction(static_cast<double>(done) / static_cast<double>(index.steps.size()));
  }
}

}  // namespace

void writeIndexFile(const RestartIndex& index, const std::string& zFile, Session& session) {
  if (!index.whole) {
    if (session.cancelled()) throw LoadCanceled();
    throw BadRecord({.message = Message::IndexNotWritten,
                     .path = index.files.empty() ? zFile : index.files.front(),
                     .problem = "not all of it could be listed",
                     .action = "wrote no index"});
  }
  BufferedFile file(zFile);
  RecordWriter out([&](std::span<const std::byte> bytes) { file.write(bytes); }, index.form);
  out.integers("INTEHEAD", index.header);
  writeSteps(out, index, session);
  file.commit();
}

}  // namespace lumbarn
