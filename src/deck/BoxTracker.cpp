#include "BoxTracker.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "../support/Text.h"

namespace lumbarn {

namespace {

/// The item, from 0, of the first size in the record of a keyword that creates a grid: 0 for the global grid,
/// the items after name and box for local ones. RADFIN refines one column of its parent and has I and J once.
std::optional<std::int64_t> firstSize(std::string_view keyword) {
  if (keyword == "DIMENS" || keyword == "SPECGRID") return 0;
  if (keyword == "CARFIN" || keyword == "RADFIN4") return 7;
  if (keyword == "RADFIN") return 5;
  return std::nullopt;
}

}  // namespace

std::int64_t DeckBox::cells() const {
  std::int64_t count = 1;
  for (std::size_t axis = 0; axis < 3; ++axis) count *= std::max(0, to[axis] - from[axis] + 1);
  return count;
}

std::optional<std::int32_t> wholeNumber(const DeckRecord& record, std::int64_t place) {
  const auto text = record[place];
  const auto number = text ? deckNumber(trim(*text)) : std::nullopt;
  if (!number || *number < std::numeric_limits<std::int32_t>::min() ||
      *number > std::numeric_limits<std::int32_t>::max())
    return std::nullopt;
  return static_cast<std::int32_t>(std::lround(*number));
}

std::map<std::string, DeckGridSize> gridSizes(const Deck& deck) {
  std::map<std::string, DeckGridSize> sizes;
  for (const DeckKeyword& keyword : deck.keywords()) {
    const auto first = firstSize(keyword.name);
    if (!first) continue;
    DeckRecords records(deck.files(), keyword);
    DeckRecord record;
    if (!records.next(record)) continue;
    DeckGridSize size{};
    for (std::size_t axis = 0; axis < 3; ++axis)
      size[axis] = wholeNumber(record, *first + static_cast<std::int64_t>(axis)).value_or(0);
    if (std::any_of(size.begin(), size.end(), [](std::int32_t n) { return n < 1; })) continue;
    sizes[*first == 0 ? std::string("ROOT") : upper(trim(record[0].value_or("")))] = size;
  }
  return sizes;
}

std::optional<DeckBox> boxOf(const DeckRecord& record, std::int64_t item, DeckBox otherwise,
                             const DeckGridSize& size) {
  DeckBox box = otherwise;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const auto place = item + 2 * static_cast<std::int64_t>(axis);
    box.from[axis] = wholeNumber(record, place).value_or(box.from[axis]);
    box.to[axis] = wholeNumber(record, place + 1).value_or(box.to[axis]);
    if (box.from[axis] < 1 || box.from[axis] > box.to[axis] || box.to[axis] > size[axis]) return std::nullopt;
  }
  return box;
}

DeckGridSize BoxTracker::size() const {
  const auto found = sizes_.find(grid_);
  return found == sizes_.end() ? DeckGridSize{} : found->second;
}

void BoxTracker::start(std::string grid) {
  grid_ = std::move(grid);
  box_ = {{1, 1, 1}, size()};
}

bool BoxTracker::take(const DeckKeyword& keyword) {
  if (keyword.section != section_) {
    section_ = keyword.section;
    start("ROOT");
  }
  const bool local = firstSize(keyword.name).value_or(0) > 0 || keyword.name == "REFINE";
  const bool box = keyword.name == "BOX";
  if (keyword.name == "ENDBOX") start(grid_);
  if (keyword.name == "ENDFIN") start("ROOT");
  if (!local && !box) return true;
  DeckRecords records(deck_->files(), keyword);
  DeckRecord record;
  if (!records.next(record)) return false;
  if (local) {
    start(upper(trim(record[0].value_or(""))));
    return true;
  }
  const auto wanted = boxOf(record, 0, {{1, 1, 1}, size()}, size());
  if (wanted) box_ = *wanted;
  return wanted.has_value();
}

}  // namespace lumbarn
