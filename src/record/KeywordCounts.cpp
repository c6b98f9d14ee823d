#include "KeywordCounts.h"

#include <algorithm>

namespace lumbarn {

namespace {

constexpr std::size_t firstSize = 64;

}  // namespace

/// The entry of a key, or the free one where it belongs.
std::size_t KeywordCounts::placeOf(const std::vector<Entry>& entries, std::uint64_t key) {
  constexpr std::uint64_t oddAndSpread = 0x9E3779B97F4A7C15;  // so that the upper half depends on all letters
  const std::size_t mask = entries.size() - 1;
  std::size_t place = static_cast<std::size_t>((key * oddAndSpread) >> 32) & mask;
  while (entries[place].key != 0 && entries[place].key != key) place = (place + 1) & mask;
  return place;
}

void KeywordCounts::grow() {
  std::vector<Entry> larger(std::max(firstSize, 2 * entries_.size()));
  for (const Entry& entry : entries_) {
    if (entry.key != 0) larger[placeOf(larger, entry.key)] = entry;
  }
  entries_ = std::move(larger);
}

std::int64_t& KeywordCounts::operator[](std::uint64_t key) {
  if (2 * used_ >= entries_.size()) grow();
  Entry& entry = entries_[placeOf(entries_, key)];
  if (entry.key == 0) {
    entry.key = key;
    ++used_;
  }
  return entry.count;
}

}  // namespace lumbarn
