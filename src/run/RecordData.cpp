#include "RecordData.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

#include <fmt/format.h>

#include "../files/Recogniser.h"
#include "../frame/NumberText.h"
#include "../support/Session.h"

namespace lumbarn {
namespace {

/// Gives the record's elements to `use` in parts; an element is `width` items of the array.
template <class Item, class Read, class Use>
void readParts(RecordCursor& cursor, Session& session, std::size_t width, Read read, Use use) {
  const std::int64_t count = cursor.header().count;
  std::vector<Item> part(static_cast<std::size_t>(std::min(count, partElements)) * width);
  for (std::int64_t first = 0; first < count; first += partElements) {
    if (session.yield()) throw LoadCanceled();
    const auto items = static_cast<std::size_t>(std::min(count - first, partElements)) * width;
    const std::span<Item> now(part.data(), items);
    read(now, first);
    use(now);
  }
}

template <class Number>
std::optional<Extremes> extremes(RecordCursor& cursor, Session& session) {
  // Values that are not numbers compare as false, so they never get in.
  double smallest = std::numeric_limits<double>::infinity();
  double largest = -smallest;
  bool any = false;
  readParts<Number>(
      cursor, session, 1, [&](std::span<Number> out, std::int64_t first) { cursor.read(out, first); },
      [&](std::span<const Number> part) {
        for (const Number value : part) {
          const auto number = static_cast<double>(value);
          any = any || !std::isnan(number);
          if (number < smallest) smallest = number;
          if (number > largest) largest = number;
        }
      });
  if (!any) return std::nullopt;
  // Of zeros with both signs any can come first; a plain 0 says as much.
  return Extremes{cursor.header().type, smallest + 0.0, largest + 0.0};
}

}  // namespace

std::optional<Extremes> readExtremes(RecordCursor& cursor, Session& session) {
  const auto ignore = [](const auto&) {};
  switch (cursor.header().type) {
    case ElementType::Integer:
    case ElementType::Short:
      return extremes<std::int32_t>(cursor, session);
    case ElementType::Single:
      return extremes<float>(cursor, session);
    case ElementType::Double:
      return extremes<double>(cursor, session);
    case ElementType::Logical:
      readParts<std::int16_t>(
          cursor, session, 1,
          [&](std::span<std::int16_t> out, std::int64_t first) { cursor.readLogicals(out, first); }, ignore);
      break;
    case ElementType::Text:
      readParts<char>(
          cursor, session, static_cast<std::size_t>(cursor.header().width),
          [&](std::span<char> out, std::int64_t first) { cursor.readText(out, first); }, ignore);
      break;
    default:
      break;
  }
  return std::nullopt;
}

bool continueBehind(RecordCursor& cursor, Diagnosis& damage, std::string otherwise) {
  damage.action = std::move(otherwise);
  if (damage.message == Message::FileRead) return false;  // what is behind would only seem to follow
  try {
    const Gap gap = cursor.skipDamage();
    if (gap.to >= cursor.fileSize()) return false;
    damage.action = fmt::format("skipped bytes {} to {}", gap.from, gap.to - 1);
    return true;
  } catch (const BadRecord&) {
    return false;  // the file cannot be read any more
  }
}

void showProgress(const RecordCursor& cursor, Session& session) {
  const auto size = static_cast<double>(cursor.fileSize());
  if (size > 0 && session.Container)
    session.Container->fraction(static_cast<double>(cursor.nextPosition()) / size);
}

double sameDigits(float value) {
  const NumberText text(value, false);
  double wide = value;
  std::from_chars(text.view().data(), text.view().data() + text.view().size(), wide);
  return wide;
}

std::unique_ptr<RecordCursor> openRecordFile(const std::string& path) {
  std::string why;
  if (auto cursor = openRecords(path, why)) return cursor;
  const Recognised found = recogniseFile(path);
  throw BadRecord(found.problem.value_or(Diagnosis{.message = Message::FileType,
                                                   .path = path,
                                                   .problem = "not a record file",
                                                   .offset = 0,
                                                   .expected = "a record header",
                                                   .found = std::string(nameOf(found.kind))}));
}

}  // namespace lumbarn
