#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "../arrays/ActiveCells.h"
#include "../arrays/ArrayReader.h"
#include "ArrayPlan.h"

namespace lumbarn {

/// Which cells are in the regions that a selection asks for.
class RegionCells {
 public:
  /// Throws Error NotFound for arrays that are not there, BadRequest for those without region numbers.
  RegionCells(const RunState& run, StreamContext& context, const ArrayPlan& plan,
              const CellSelection& selection);

  bool any() const { return !arrays_.empty(); }
  /// Whether all steps have the same region numbers.
  bool fixed() const { return std::ranges::all_of(arrays_, &Array::fixed); }
  void beginStep(const IndexStep& step);
  /// Whether some array has a value for each cell, or for each active cell.
  bool has(std::int64_t count) const;
  /// Removes the cells, numbered from 0, that are in other regions or in none. Without `active` all are
  /// active. Throws Error BadRequest for an array that is not one of these cells.
  void keep(std::vector<std::uint32_t>& list, const GridCells& cells, const ActiveCells* active);
  /// What there is in place of the regions asked for.
  [[noreturn]] void throwNone() const;

 private:
  struct Array {
    RegionFilter filter;
    bool fixed = false;
    const IndexStep* step = nullptr;
    const IndexEntry* entry = nullptr;  // null: the step has none
    std::set<std::int32_t> others;      // of the cells of steps where no cell was left
  };

  void find(RegionFilter filter, StreamContext& context, const std::vector<const IndexStep*>& steps);
  std::vector<std::int32_t> numbersOf(const Array& array, const GridCells& cells);

  Session* session_;
  std::string grid_;
  std::shared_ptr<const RestartIndex> index_;
  std::shared_ptr<const RestartIndex> inits_;  // null: there is no INIT file
  std::unique_ptr<ArrayReader> reader_;
  std::unique_ptr<ArrayReader> initReader_;
  std::vector<Array> arrays_;
};

}  // namespace lumbarn
