#include "ArrayRanges.h"

#include <algorithm>
#include <limits>
#include <span>
#include <vector>

#include <fmt/format.h>

#include "../record/RecordCursor.h"

namespace lumbarn {
namespace {

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
    if (session.cancelled()) throw LoadCanceled();
    const auto now = std::span(piece).first(static_cast<std::size_t>(std::min(count - first, pieceElements)));
    cursor.read(now, first);
    extremes.take(std::span<const Number>(now));
  }
}

constexpr const char* nothing = "wrote nothing";

RecordCursor& open(IndexedRecords& records, const std::string& path) {
  try {
    return records.open(path);
  } catch (BadRecord& failure) {
    failure.diagnosis().action = nothing;
    throw;
  }
}

}  // namespace

std::pair<float, float> ArrayRanges::of(const IndexStep& step, const IndexEntry& entry) {
  if (entry.hasRange()) return {entry.minimum, entry.maximum};
  RecordCursor& cursor = moveTo(step, entry);
  Extremes extremes;
  switch (cursor.header().type) {
    case ElementType::Integer:
    case ElementType::Short:
      readInPieces<std::int32_t>(cursor, session_, extremes);
      break;
    case ElementType::Single:
      readInPieces<float>(cursor, session_, extremes);
      break;
    case ElementType::Double:
      readInPieces<double>(cursor, session_, extremes);
      break;
    default:
      break;
  }
  return extremes.get();
}

RecordCursor& ArrayRanges::moveTo(const IndexStep& step, const IndexEntry& entry) {
  RecordCursor& cursor = open(records_, index_.files[step.file]);
  cursor.seek(entry.position);
  if (!cursor.next() || cursor.header().keyword != entry.keyword.view() ||
      cursor.header().count != entry.count) {
    throw BadRecord({.message = Message::FileChanged,
                     .path = index_.files[step.file],
                     .keyword = std::string(entry.keyword.view()),
                     .offset = entry.position,
                     .expected = fmt::format("{} of {} elements", entry.keyword.view(), entry.count),
                     .found = fmt::format("{} of {}", cursor.header().keyword, cursor.header().count),
                     .action = nothing});
  }
  return cursor;
}

}  // namespace lumbarn
