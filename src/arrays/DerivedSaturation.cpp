#include "DerivedSaturation.h"

namespace lumbarn {

std::optional<DerivedSaturation> derivedSaturation(std::int32_t iPhases, bool hasOil, bool hasWater,
                                                   bool hasGas) {
  std::optional<DerivedSaturation> derived;
  switch (iPhases) {
    case 3:
      if (hasWater && !hasOil) derived = {"SOIL", true, false};
      break;
    case 5:
      if (hasGas && !hasOil) derived = {"SOIL", false, true};
      break;
    case 6:
      if (hasWater != hasGas) derived = {hasWater ? "SGAS" : "SWAT", hasWater, hasGas};
      break;
    case 7:
      if (hasWater && hasGas && !hasOil) derived = {"SOIL", true, true};
      break;
    default:
      break;
  }
  return derived;
}

const IndexEntry* storedSaturation(const IndexStep& step, std::string_view grid, std::string_view name) {
  const std::int32_t phase = name == "SWAT" ? 2 : 4;
  return (step.cellsOf(grid).phases & phase) != 0 ? step.find(name, grid) : nullptr;
}

std::optional<IndexEntry> derivedArray(const IndexStep& step, std::string_view grid) {
  const GridCells cells = step.cellsOf(grid);
  std::int64_t count = 0;
  bool same = true;
  const auto has = [&](std::string_view name) {
    const IndexEntry* entry = storedSaturation(step, grid, name);
    if (!entry || !isCellArray(*entry, cells) || entry->typeWord.view() != "REAL") return false;
    same = same && (count == 0 || count == entry->count);
    count = entry->count;
    return true;
  };
  const bool water = has("SWAT");
  const bool gas = has("SGAS");
  if (count == 0 || !same) return std::nullopt;
  const auto derived = derivedSaturation(cells.phases, step.find("SOIL", grid) != nullptr, water, gas);
  if (!derived) return std::nullopt;
  return IndexEntry{FixedText<8>(derived->name), FixedText<4>("REAL"), count, IndexEntry::nowhere};
}

}  // namespace lumbarn
