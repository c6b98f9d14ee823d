#include "RestartIndex.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "ActiveCount.h"

namespace lumbarn {
namespace {

constexpr std::string_view globalGridName = "ROOT";
/// Others are not kept as arrays, whatever their length.
bool isKept(ElementType type) { return type == ElementType::Integer || type == ElementType::Single; }

constexpr std::string_view refusedNames[] = {
    "SEQNUM", "INTEHEAD", "IWEL", "ICON", "IGRP", "SWEL", "SGRP", "SCON", "SAAQ", "SCAQ", "IAAQ", "IOCN",
    "ICAQ", "RPIPE", "HIDDEN",
    // Some writers give the end of a local grid one word, as many as a grid of one cell has.
    "ENDLGR"};

/// Of INIT files.
constexpr std::string_view refusedInitNames[] = {"TABDIMS", "DIFFGL", "TRANGL",  "HEATGL",  "DIFFLL",
                                                 "TRANLL",  "HEATLL", "DIFFNNC", "TRANNNC", "HEATNNC"};

bool isAnyOf(std::string_view zName, std::span<const std::string_view> names) {
  return std::ranges::find(names, zName) != names.end();
}

}  // namespace

void RestartIndex::setFiles(std::vector<std::string> paths) {
  files = std::move(paths);
  stamps.clear();
  for (const std::string& path : files) stamps.push_back(stampOf(path).value_or(FileStamp{}));
}

bool isGlobalGrid(std::string_view name) {
  return trim(name).empty() || equalNoCase(trim(name), globalGridName);
}

bool sameGrid(std::string_view a, std::string_view b) {
  return (isGlobalGrid(a) && isGlobalGrid(b)) || equalNoCase(trim(a), trim(b));
}

GridCells gridCells(const std::vector<std::int32_t>& intehead, bool init) {
  constexpr std::int32_t unitsAbove = 5000;  // the simulator of this code counts its unit systems from there
  GridCells result;
  if (intehead.size() < 12) return result;
  const HeaderWords word(intehead);
  result.units = word(95) == unitsAbove ? word(3) - unitsAbove : word(3);
  std::copy_n(intehead.begin() + 8, 3, result.size.begin());
  std::int64_t cells = 1;
  for (const std::int64_t length : result.size) {
    if (length < 1 || __builtin_mul_overflow(cells, length, &cells)) return result;
  }
  result.cells = cells;
  const StatedActive stated = statedActiveCells(word, init);
  result.active = stated.active;
  result.otherActive = stated.other;
  result.phases = word(15);
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

std::vector<const IndexEntry*> IndexStep::findAll(std::string_view name, std::string_view grid) const {
  std::vector<const IndexEntry*> found;
  const FixedText<8> wanted = FixedText<8>(upper(trim(name)));
  for (const IndexGroup& group : groups) {
    if (!sameGrid(group.grid, grid) || trim(name).size() > 8) continue;
    for (const IndexEntry& entry : group.entries) {
      if (entry.keyword == wanted) found.push_back(&entry);
    }
  }
  return found;
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

std::vector<const IndexStep*> RestartIndex::findAll(std::int32_t number) const {
  std::vector<const IndexStep*> found;
  for (const IndexStep& step : steps) {
    if (step.number == number) found.push_back(&step);
  }
  return found;
}

const IndexStep* RestartIndex::nth(std::int32_t number, std::optional<std::int32_t> position) const {
  const auto found = findAll(number);
  const auto which = position.value_or(static_cast<std::int32_t>(found.size()));
  const bool exists = which >= 1 && std::cmp_less_equal(which, found.size());
  return exists ? found[static_cast<std::size_t>(which) - 1] : nullptr;
}

Diagnosis repeatedArray(const RestartIndex& index, const IndexStep& step, const IndexEntry& entry,
                        std::string action) {
  const std::string name(entry.keyword.view());
  const auto where = index.init ? index.files[step.file] : fmt::format("step {}", step.number);
  return {.message = Message::ArrayTwice,
          .path = index.files[step.file],
          .problem = fmt::format("{} occurs twice in {}", name, where),
          .keyword = name,
          .offset = entry.position,
          .action = std::move(action)};
}

bool isRefusedArrayName(std::string_view zName) {
  if (zName.empty() || isAnyOf(zName, refusedNames)) return true;
  // Flows across faces of cells, "FLOOILI+" or "VOILI+".
  const bool flowName =
      (zName.size() == 8 && zName.starts_with("FLO")) || (zName.size() == 6 && zName.starts_with('V'));
  return flowName && (zName.ends_with("A+") || zName.ends_with("L+") || zName.ends_with("N+"));
}

bool mayBeCellArray(ElementType type, std::string_view zName) {
  return isKept(type) && !isRefusedArrayName(zName) && !isAnyOf(zName, refusedInitNames);
}

bool isCellArray(const IndexEntry& entry, const GridCells& cells) {
  return entry.count > 0 && (entry.count == cells.active || entry.count == cells.cells) &&
         mayBeCellArray(typeInfo(entry.typeWord.view()).type, entry.keyword.view());
}

bool hasCellValues(const IndexEntry& entry, const GridCells& cells) {
  const bool doubles = typeInfo(entry.typeWord.view()).type == ElementType::Double && entry.count > 0 &&
                       (entry.count == cells.active || entry.count == cells.cells);
  return doubles || isCellArray(entry, cells);
}

std::vector<const IndexEntry*> cellArrays(const IndexGroup& group) {
  std::vector<const IndexEntry*> arrays;
  for (const IndexEntry& entry : group.entries) {
    if (isCellArray(entry, group.cells)) arrays.push_back(&entry);
  }
  return arrays;
}

}  // namespace lumbarn
