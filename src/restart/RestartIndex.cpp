#include "RestartIndex.h"

#include <algorithm>

namespace lumbarn {
namespace {

constexpr std::string_view globalGridName = "ROOT";
constexpr std::int32_t compositional = 300;  // INTEHEAD word 95 of the simulator with active cells in word 4

}  // namespace

bool isGlobalGrid(std::string_view name) {
  return trim(name).empty() || equalNoCase(trim(name), globalGridName);
}

bool sameGrid(std::string_view a, std::string_view b) {
  return (isGlobalGrid(a) && isGlobalGrid(b)) || equalNoCase(trim(a), trim(b));
}

GridCells gridCells(std::span<const std::int32_t> intehead) {
  GridCells result;
  if (intehead.size() < 12) return result;
  result.units = intehead[2];
  std::copy_n(intehead.begin() + 8, 3, result.size.begin());
  std::int64_t cells = 1;
  for (const std::int64_t length : result.size) {
    if (length < 1 || __builtin_mul_overflow(cells, length, &cells)) return result;
  }
  result.cells = cells;
  const bool inWord4 =
      intehead.size() >= 96 && intehead[94] == compositional && intehead[3] > 0 && intehead[95] < 1;
  result.active = inWord4 ? intehead[3] : intehead[11];
  return result;
}

const IndexEntry* IndexStep::find(std::string_view name, std::string_view grid) const {
  const FixedText<8> wanted = FixedText<8>(upper(trim(name)));
  for (const IndexGroup& group : groups) {
    if (!sameGrid(group.grid, grid)) continue;
    const auto entry = std::ranges::find(group.entries, wanted, &IndexEntry::keyword);
    if (entry != group.entries.end() && trim(name).size() <= 8) return &*entry;
  }
  return nullptr;
}

GridCells IndexStep::cellsOf(std::string_view grid) const {
  for (const IndexGroup& group : groups) {
    if (group.cells.known() && sameGrid(group.grid, grid)) return group.cells;
  }
  return {};
}

bool IndexStep::hasGrid(std::string_view grid) const {
  return std::ranges::any_of(groups, [&](const IndexGroup& group) { return sameGrid(group.grid, grid); });
}

const IndexStep* RestartIndex::find(std::int32_t number) const {
  const auto step = std::ranges::find(steps, number, &IndexStep::number);
  return step == steps.end() ? nullptr : &*step;
}

}  // namespace lumbarn
