#include "RecordPair.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <vector>

#include "../support/Session.h"
#include "../support/Text.h"
#include "RecordData.h"

namespace lumbarn {

namespace {

using Visit = std::function<void(const ElementPair&)>;

template <class Item, class Read, class Use>
void readBoth(RecordCursor& a, RecordCursor& b, Session& session, std::size_t width, Read read, Use use) {
  const std::int64_t count = a.header().count;
  std::vector<Item> ofA(static_cast<std::size_t>(std::min(count, partElements)) * width);
  std::vector<Item> ofB(ofA.size());
  for (std::int64_t first = 0; first < count; first += partElements) {
    if (session.yield()) throw LoadCanceled();
    const auto items = static_cast<std::size_t>(std::min(count - first, partElements)) * width;
    read(a, std::span(ofA).first(items), first);
    read(b, std::span(ofB).first(items), first);
    if (!std::equal(ofA.begin(), ofA.begin() + static_cast<std::ptrdiff_t>(items), ofB.begin()))
      use(first, std::span<const Item>(ofA).first(items), std::span<const Item>(ofB).first(items));
  }
}

template <class Number>
bool bothNone(Number a, Number b) {
  if constexpr (std::is_floating_point_v<Number>) return std::isnan(a) && std::isnan(b);
  return false;
}

template <class Number, class Read>
void visitNumbers(RecordCursor& a, RecordCursor& b, Session& session, const Visit& visit, Read read) {
  readBoth<Number>(a, b, session, 1, read,
                   [&](std::int64_t first, std::span<const Number> ofA, std::span<const Number> ofB) {
                     for (std::size_t i = 0; i < ofA.size(); ++i) {
                       if (ofA[i] == ofB[i] || bothNone(ofA[i], ofB[i])) continue;
                       visit({.element = first + static_cast<std::int64_t>(i),
                              .single = std::is_same_v<Number, float>,
                              .a = static_cast<double>(ofA[i]),
                              .b = static_cast<double>(ofB[i]),
                              .textA = {},
                              .textB = {}});
                     }
                   });
}

void visitTexts(RecordCursor& a, RecordCursor& b, Session& session, const Visit& visit) {
  const auto width = static_cast<std::size_t>(a.header().width);
  readBoth<char>(
      a, b, session, width,
      [](RecordCursor& cursor, std::span<char> out, std::int64_t first) { cursor.readText(out, first); },
      [&](std::int64_t first, std::span<const char> ofA, std::span<const char> ofB) {
        for (std::size_t at = 0; at < ofA.size(); at += width) {
          const std::string_view one(ofA.data() + at, width), other(ofB.data() + at, width);
          if (one == other) continue;
          visit({.element = first + static_cast<std::int64_t>(at / width),
                 .numbers = false,
                 .textA = toUtf8(trimRight(one)),
                 .textB = toUtf8(trimRight(other))});
        }
      });
}

}  // namespace

bool sameShape(const RecordHeader& a, const RecordHeader& b) {
  return a.type == b.type && a.count == b.count && a.width == b.width;
}

void visitUnequal(RecordCursor& a, RecordCursor& b, Session& session, const Visit& visit) {
  const auto numbers = [](RecordCursor& cursor, auto out, std::int64_t first) { cursor.read(out, first); };
  switch (a.header().type) {
    case ElementType::Integer:
    case ElementType::Short:
      return visitNumbers<std::int32_t>(a, b, session, visit, numbers);
    case ElementType::Single:
      return visitNumbers<float>(a, b, session, visit, numbers);
    case ElementType::Double:
      return visitNumbers<double>(a, b, session, visit, numbers);
    case ElementType::Logical:
      return visitNumbers<std::int16_t>(
          a, b, session, visit,
          [](RecordCursor& cursor, auto out, std::int64_t first) { cursor.readLogicals(out, first); });
    case ElementType::Text:
      return visitTexts(a, b, session, visit);
    default:
      break;
  }
}

}  // namespace lumbarn
