#include "ActiveCount.h"

#include <algorithm>
#include <map>

#include "RestartIndex.h"

namespace lumbarn {
namespace {

/// The lengths of the records of a grid that `isArray` accepts.
template <class IsArray>
ArrayLengths lengthsOf(const std::vector<const IndexGroup*>& groups, IsArray isArray) {
  const GridCells& cells = groups.front()->cells;
  ArrayLengths lengths;
  for (const IndexGroup* group : groups) {
    for (const IndexEntry& entry : group->entries) {
      if (entry.count > 0 && entry.count <= cells.cells && isArray(entry)) lengths.add(entry.count);
    }
  }
  return lengths;
}

/// Whether at least half of the records have the length stated in the header, so that no other length occurs
/// more often.
bool mostHaveStatedLength(const std::vector<const IndexGroup*>& groups) {
  const GridCells& cells = groups.front()->cells;
  std::size_t records = 0, stated = 0;
  for (const IndexGroup* group : groups) {
    for (const IndexEntry& entry : group->entries) {
      if (entry.count <= 0 || entry.count > cells.cells) continue;
      ++records;
      stated += entry.count == cells.active ? 1U : 0U;
    }
  }
  return cells.active > 0 && 2 * stated >= records;
}

/// Names are slow to compare, and that the lengths of all records disagree with the header is rare.
std::int64_t activeOf(const std::vector<const IndexGroup*>& groups) {
  const GridCells& cells = groups.front()->cells;
  if (mostHaveStatedLength(groups)) return cells.active;
  const auto any = [](const IndexEntry&) { return true; };
  if (lengthsOf(groups, any).isMostCommon(cells.active)) return cells.active;
  const auto isArray = [](const IndexEntry& entry) {
    return mayBeCellArray(typeInfo(entry.typeWord.view()).type, entry.keyword.view());
  };
  return lengthsOf(groups, isArray).decideActive(cells);
}

}  // namespace

StatedActive statedActiveCells(const HeaderWords& iHeader, bool init) {
  if (!iHeader.isE300() || iHeader(4) < 1) return {iHeader(12), 0};
  if (init || iHeader(96) < 1) return {iHeader(4), iHeader(12)};
  return {iHeader(12), iHeader(4)};
}

void ArrayLengths::add(std::int64_t length) {
  const auto found = std::ranges::find(counts_, length, &std::pair<std::int64_t, std::int64_t>::first);
  if (found == counts_.end()) {
    counts_.emplace_back(length, 1);
  } else {
    ++found->second;
  }
}

std::int64_t ArrayLengths::arrays(std::int64_t length) const {
  const auto found = std::ranges::find(counts_, length, &std::pair<std::int64_t, std::int64_t>::first);
  return found == counts_.end() ? 0 : found->second;
}

bool ArrayLengths::isMostCommon(std::int64_t length) const {
  const std::int64_t most = arrays(length);
  return std::ranges::all_of(counts_, [&](const auto& count) { return count.second <= most; });
}

std::int64_t ArrayLengths::decideActive(const GridCells& cells) const {
  std::int64_t shorter = 0;
  for (const auto& [length, count] : counts_) shorter += length < cells.cells ? count : 0;
  std::int64_t active = cells.active;
  std::int64_t most = arrays(active);
  for (const auto& [length, count] : counts_) {
    const bool stated = length == cells.otherActive;
    const bool usual = length < cells.cells && count >= 2 && 2 * count > shorter;
    if (count <= most || length > cells.cells || !(stated || usual)) continue;
    active = length;
    most = count;
  }
  return active;
}

void decideActiveCounts(IndexStep& step) {
  std::map<std::string_view, std::vector<const IndexGroup*>> groupsOf;
  for (const IndexGroup& group : step.groups) {
    if (group.cells.known()) groupsOf[trim(group.grid)].push_back(&group);
  }
  std::map<std::string_view, std::int64_t> active;
  for (const auto& [grid, groups] : groupsOf) active[grid] = activeOf(groups);
  for (IndexGroup& group : step.groups) {
    if (group.cells.known()) group.cells.active = active[trim(group.grid)];
  }
}

}  // namespace lumbarn
