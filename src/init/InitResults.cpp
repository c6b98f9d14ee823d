// What can be asked of an INIT file that was read: grids, values, active cells.

#include <algorithm>
#include <utility>

#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Text.h"
#include "InitFile.h"

namespace lumbarn {

const GRIDINFO& InitFile::grid(std::int32_t number) const {
  if (number < 1 || number > nGrids()) throw Fault(FaultNumber::Subscript);
  return tGrids_[static_cast<std::size_t>(number) - 1];
}

GRIDINFO* InitFile::find(std::int32_t number) {
  return number < 1 || number > nGrids() ? nullptr : &tGrids_[static_cast<std::size_t>(number) - 1];
}

std::string InitFile::GridName(std::int32_t number) const {
  return number < 1 || number > nGrids() ? std::string() : grid(number).GridName;
}

std::int32_t InitFile::GridNumber(std::string_view zGrid) const {
  const auto found = std::ranges::find(tGrids_, trim(zGrid), &GRIDINFO::GridName);
  return found == tGrids_.end() ? 0 : static_cast<std::int32_t>(found - tGrids_.begin()) + 1;
}

std::optional<XYData> InitFile::takeValues() {
  auto* held = find(iGrid);
  if (!held || held->arrays.empty()) return std::nullopt;
  if (!LoadData) {
    XYData none(1, held->arrays.size(), *session_);
    std::ranges::fill(none.values(), 0.0F);
    none(1, 1) = -1;
    return none;
  }
  if (held->sData.empty()) {
    const auto cursor = open();
    if (!cursor || !loadValues(*cursor, *held)) return std::nullopt;
  }
  XYData values = std::move(held->sData);
  if (values.columns() > held->arrays.size()) {  // arrays were dropped on the way
    XYData fewer(values.rows(), held->arrays.size(), *session_);
    std::ranges::copy(values.values().first(fewer.values().size()), fewer.values().begin());
    values = std::move(fewer);
  }
  return values;
}

const std::vector<std::int32_t>* InitFile::activeCells(std::int32_t number) {
  auto* held = find(number);
  if (!held) return nullptr;
  if (!held->active) {
    const auto cursor = held->PORV ? open() : nullptr;
    if (!cursor || !activeOf(*cursor, *held)) return nullptr;
  }
  return &held->active->iA2N;
}

std::optional<std::vector<float>> InitFile::arrayValues(std::int32_t number, std::int32_t iArray,
                                                        bool allCells) {
  auto* held = find(number);
  if (!held || iArray < 1 || iArray > held->nVectors() || held->nActive < 0) return std::nullopt;
  const auto& array = held->arrays[static_cast<std::size_t>(iArray) - 1];
  const bool everyCell = allCells && held->nActive != held->nCells;
  const bool longer = array.header.count == held->nCells && array.header.count > held->nActive;
  if (array.header.count != held->nActive && !longer) {
    tellDropped(array, *held);
    return std::nullopt;
  }
  const bool inMemory = !held->sData.empty();
  const auto cursor = inMemory && (!everyCell || held->active) ? nullptr : open();
  if (!cursor && !inMemory) return std::nullopt;
  const auto numbered = [&] {
    if (!held->active && cursor) activeOf(*cursor, *held);
    return held->active && held->active->agrees;
  };
  std::vector<float> values(static_cast<std::size_t>(held->nActive));
  if (inMemory) std::ranges::copy(held->sData.column(static_cast<std::size_t>(iArray)), values.begin());
  if ((!inMemory && !readArray(*cursor, *held, array, values)) || (everyCell && !numbered())) {
    tellUnnumbered(*held);
    return std::nullopt;
  }
  if (everyCell) {
    std::vector<float> all(static_cast<std::size_t>(held->nCells), static_cast<float>(session_->NullValue));
    const auto& iA2N = held->active->iA2N;
    for (std::size_t i = 0; i < iA2N.size(); ++i) all[static_cast<std::size_t>(iA2N[i]) - 1] = values[i];
    values = std::move(all);
  }
  return values;
}

}  // namespace lumbarn
