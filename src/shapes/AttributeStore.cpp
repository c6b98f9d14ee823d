#include "AttributeStore.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <limits>
#include <utility>

#include "../support/Fault.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

constexpr std::size_t firstSlots = 16;

std::uint32_t hashOf(std::string_view text) {
  return static_cast<std::uint32_t>(std::hash<std::string_view>{}(text));
}

}  // namespace

std::string_view AttributeStore::fitted(std::string_view item) const {
  return trimRight(trim(item).substr(0, static_cast<std::size_t>(width_)));
}

/// Place of the text, or the free place where it belongs.
std::size_t AttributeStore::slotOf(std::string_view text, std::uint32_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t place = hash & mask;
  while (slots_[place].number != 0 && (slots_[place].hash != hash || at(slots_[place].number).text != text)) {
    place = (place + 1) & mask;
  }
  return place;
}

/// Moves the entries to another number of slots; their texts are known to differ.
void AttributeStore::resizeSlots(std::size_t slots) {
  const auto old = std::exchange(slots_, std::vector<Slot>(slots));
  for (const auto& entry : old) {
    if (entry.number == 0) continue;
    std::size_t place = entry.hash & (slots - 1);
    while (slots_[place].number != 0) place = (place + 1) & (slots - 1);
    slots_[place] = entry;
  }
}

/// Enters the items in the order of their numbers, so that of equal texts the lowest number is found.
void AttributeStore::rebuildSlots() {
  std::ranges::fill(slots_, Slot{});
  for (std::int32_t number = 1; number <= count(); ++number) {
    const auto hash = hashOf(at(number).text);
    auto& slot = slots_[slotOf(at(number).text, hash)];
    if (slot.number == 0) slot = {hash, number};
  }
}

std::int32_t AttributeStore::add(std::string_view item) {
  if (items_.size() >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    throw Fault(FaultNumber::Overflow);
  }
  if ((items_.size() + 1) * 2 > slots_.size()) resizeSlots(std::max(firstSlots, slots_.size() * 2));
  const auto text = fitted(item);
  const auto hash = hashOf(text);
  auto& slot = slots_[slotOf(text, hash)];
  if (slot.number == 0) {
    items_.push_back({std::string(text), 0});
    slot = {hash, count()};
  }
  ++at(slot.number).uses;
  return slot.number;
}

std::int32_t AttributeStore::find(std::string_view item) const {
  if (slots_.empty()) return -1;
  const auto text = fitted(item);
  const auto number = slots_[slotOf(text, hashOf(text))].number;
  return number == 0 ? -1 : number;
}

std::int32_t AttributeStore::useCount(std::int32_t number) const { return has(number) ? at(number).uses : 0; }

std::vector<std::int32_t> AttributeStore::addBlock(std::span<const char> texts, std::size_t items,
                                                   std::size_t width) {
  std::vector<std::int32_t> numbers(items);
  std::string_view last;
  for (std::size_t i = 0; i < items; ++i) {
    const std::string_view item(texts.data() + i * width, width);
    if (i > 0 && item == last) {  // vectors come in runs of one mnemonic, one unit
      numbers[i] = numbers[i - 1];
      ++at(numbers[i]).uses;
    } else {
      numbers[i] = add(item);
    }
    last = item;
  }
  return numbers;
}

void AttributeStore::shrink() {
  // The items are left alone: a deque keeps little to spare, and shrinking would move its texts.
  if (!items_.empty()) resizeSlots(std::max(firstSlots, std::bit_ceil(items_.size() * 2)));
}

bool AttributeStore::replace(std::string_view oldText, std::string_view newText) {
  const auto number = find(oldText);
  if (number < 0) return false;
  at(number).text = fitted(newText);
  // Open addressing cannot take an entry out, and another item may have had the old text as well.
  rebuildSlots();
  return true;
}

bool AttributeStore::adjustCount(std::string_view item, std::int32_t delta) {
  const auto number = find(item);
  if (number < 0) return false;
  using Limits = std::numeric_limits<std::int32_t>;
  const auto uses = std::int64_t{at(number).uses} + delta;
  at(number).uses = static_cast<std::int32_t>(std::clamp<std::int64_t>(uses, Limits::min(), Limits::max()));
  return true;
}

ByteTable AttributeStore::all() const {
  std::size_t longest = 1;
  for (const auto& item : items_) longest = std::max(longest, item.text.size());
  ByteTable table(longest, items_.size());
  for (std::size_t i = 0; i < items_.size(); ++i) table.put(i + 1, 1, longest, items_[i].text);
  return table;
}

AttributeSizes defaultAttributeSizes(std::int32_t iAttribute) {
  switch (iAttribute) {
    case 2:
    case 7:
    case 8:
    case 14:
      return {100, 16, 100};
    case 4:
      return {1, 32, 1};
    case 5:
      return {1, 8, 1};
    case 6:
      return {20, 1024, 20};
    case 9:
      return {5000, 20, 5000};
    case 10:
    case 11:
      return {1000, 16, 1000};
    case 12:
      return {1000, 40, 1000};
    default:
      return {};
  }
}

bool AttributeStores::has(std::int32_t iAttribute) const {
  if (iAttribute < 1 || static_cast<std::size_t>(iAttribute) > stores_.size()) return false;
  return stores_[static_cast<std::size_t>(iAttribute) - 1].has_value();
}

const AttributeStore& AttributeStores::operator()(std::int32_t iAttribute) const {
  if (!has(iAttribute)) throw Fault(FaultNumber::Subscript);
  return *stores_[static_cast<std::size_t>(iAttribute) - 1];
}

AttributeStore& AttributeStores::operator()(std::int32_t iAttribute) {
  if (!has(iAttribute)) throw Fault(FaultNumber::Subscript);
  return *stores_[static_cast<std::size_t>(iAttribute) - 1];
}

void AttributeStores::reset() {
  for (std::int32_t iAttribute = 1; iAttribute <= 14; ++iAttribute) {
    const auto sizes = defaultAttributeSizes(iAttribute);
    if (sizes.nItems >= 0) stores_[static_cast<std::size_t>(iAttribute) - 1].emplace(sizes.nWidth);
  }
}

}  // namespace lumbarn
