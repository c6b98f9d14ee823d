#include "TableUse.h"

#include <algorithm>
#include <optional>
#include <tuple>

namespace lumbarn {

namespace {

using Words = std::span<const std::int32_t>;

/// The sizes that have no word are 1.
std::int32_t wordOf(Words words, int number) {
  return number < 1 ? 1 : words[static_cast<std::size_t>(number) - 1];
}

/// Nothing for a table that has no start, no tables or no rows.
std::optional<TableBlock> describedTable(Words words, const TableLayout& layout) {
  const auto word = [words](int number) { return wordOf(words, number); };
  const auto iStart = word(layout.startWord), nEach = word(layout.tablesWord);
  if (iStart < 1 || nEach < 1) return std::nullopt;
  TableBlock block{layout.name, layout.parent, iStart, {}, 0, false};
  if (layout.outerWord != 0) block.iDimens.push_back(word(layout.outerWord));
  block.iDimens.insert(block.iDimens.end(), {word(layout.rowsWord), nEach, GRAFTableColumns(layout.name)});
  block.count = tableSize(block.iDimens);
  if (block.count == 0) return std::nullopt;
  block.allOnes = iStart == 1 && nEach == 1 && word(layout.outerWord) == 1 && word(layout.rowsWord) == 1;
  return block;
}

/// The first value of TAB, from 1, that belongs to a table which does not begin at word 1.
std::size_t firstStartElsewhere(Words words) {
  std::size_t first = tooMany;
  for (const auto& layout : tableLayouts()) {
    const auto block = describedTable(words, layout);
    if (block && block->iStart > 1) first = std::min(first, static_cast<std::size_t>(block->iStart));
  }
  return first;
}

/// Names in the order of the list, which is part of what hosts see.
std::vector<std::string_view> tablesOfModel(Words words, std::int32_t nPhases,
                                            const TableProperties& properties) {
  const auto beginsElsewhere = [&](std::string_view name) {
    const auto block = describedTable(words, *tableLayout(name));
    return block && block->iStart > 1;
  };
  const auto [Oil, Water, Gas] = phasesOf(nPhases);
  const bool wetGas = properties.known ? properties.VapourisedOil : beginsElsewhere("PGAS");
  const bool liveOil = properties.known ? properties.DissolvedGas : beginsElsewhere("RS");
  std::vector<std::string_view> names;
  const auto add = [&](bool wanted, std::initializer_list<std::string_view> more) {
    if (wanted) names.insert(names.end(), more);
  };
  add(Water, {"SWFN", "PVTW"});
  add(Gas, {"SGFN"});
  add(Gas && wetGas, {"PVTG", "PGAS"});
  add(Gas && !wetGas, {"PVDG"});
  add(Gas, {"RVVD"});
  add(Oil, {Water && Gas ? "SOF3" : "SOF2"});
  add(Oil && liveOil, {"PVTO", "RS"});
  add(Oil && !liveOil, {"PVDO"});
  add(Oil, {"RSVD"});
  add(true, {"DENSITY"});
  add(properties.RockCompaction || !properties.known, {"ROCKTAB"});
  add(!properties.RockCompaction || !properties.known, {"ROCK"});
  add(true, {"EQUIL"});
  return names;
}

}  // namespace

std::size_t tableSize(std::span<const std::int32_t> iDimens) {
  std::size_t count = 1;
  for (const auto size : iDimens) {
    if (size < 0 || (size > 0 && count > tooMany / static_cast<std::size_t>(size))) return tooMany;
    count *= static_cast<std::size_t>(size);
  }
  return count;
}

Phases phasesOf(std::int32_t nPhases) {
  constexpr std::int32_t oilBit = 1, waterBit = 2, gasBit = 4;
  if (nPhases < 1 || nPhases > 7) return {};
  return {(nPhases & oilBit) != 0, (nPhases & waterBit) != 0, (nPhases & gasBit) != 0};
}

void EclipseFluids(std::int32_t nPhases, bool& Oil, bool& Water, bool& Gas, bool& qOK) {
  const Phases phases = phasesOf(nPhases);
  Oil = phases.oil;
  Water = phases.water;
  Gas = phases.gas;
  qOK = Oil || Water || Gas;
}

std::vector<TableBlock> tablesInUse(Words words, std::int32_t nPhases, const TableProperties& properties,
                                    std::size_t tabLength) {
  std::vector<TableBlock> blocks;
  for (const auto name : tablesOfModel(words, nPhases, properties)) {
    if (auto block = describedTable(words, *tableLayout(name))) blocks.push_back(std::move(*block));
  }
  const std::size_t elsewhere = firstStartElsewhere(words);
  const auto mayOwn = [&](const TableBlock& block) {
    return block.iStart == 1 && (block.count < elsewhere || elsewhere == tooMany);
  };
  const auto rank = [&](const TableBlock& block) {
    return std::tuple(block.count <= tabLength, block.count, !block.allOnes);
  };
  std::string_view owner;
  const TableBlock* best = nullptr;
  for (const auto& block : blocks) {
    if (mayOwn(block) && (!best || rank(block) > rank(*best))) best = &block;
  }
  if (best) owner = best->name;
  std::erase_if(blocks, [&](const TableBlock& block) { return block.iStart == 1 && block.name != owner; });
  return blocks;
}

}  // namespace lumbarn
