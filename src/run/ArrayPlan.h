#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../index/RestartIndex.h"
#include "RunState.h"
#include "Selections.h"

namespace lumbarn {

/// A column of arrays: those of one name in all steps that are wanted.
struct ArrayColumn {
  std::string name;
  std::size_t position = 0;  ///< among the arrays of the name in a step, from 0
  bool fixed = false;        ///< of the INIT file, among columns of restart arrays
  Type type{};               ///< Int32, Float32 or Float64: that of the widest array
  std::string unit{};
  std::size_t asked = 0;  ///< by which of the selection's texts, from 0
  bool ofCells = true;    ///< False: in some step it has no values for cells
};

/// The arrays of one step, one for each column; null where the step has none.
struct StepArrays {
  std::unique_ptr<const IndexEntry> derived;
  std::vector<const IndexEntry*> entries;
};

/// What a selection of cells means in a run: the steps, and the columns by the index alone.
struct ArrayPlan {
  std::shared_ptr<const RestartIndex> index;  ///< of the restart files, or of INIT
  std::shared_ptr<const RestartIndex> inits;  ///< of INIT beside restart files, where columns are fixed
  std::string grid;                           ///< empty: the global one
  std::vector<const IndexStep*> steps;
  std::vector<ArrayColumn> columns;

  /// Whether rows are cells; otherwise they are elements of records of numbers of one length.
  bool ofCells() const { return std::ranges::all_of(columns, &ArrayColumn::ofCells); }

  /// The arrays of a step. Takes time by the number of the step's records.
  StepArrays arraysOf(const IndexStep& step) const;
};

/// Throws Error NotFound with similar names where nothing matches; what else is not there is a remark.
ArrayPlan planArrays(const RunState& run, StreamContext& context, const CellSelection& selection);

/// The steps of an index that a selection keeps: of those with one number the one at position `nth`, or the
/// last one, or without `once` all.
std::vector<const IndexStep*> chooseSteps(const RestartIndex& index, const TimeSelection& time,
                                          std::optional<std::int32_t> nth, bool once);

/// Throws Error NotFound, with the grids that there are, when none of the steps has the grid.
void requireGrid(const RestartIndex& index, const std::vector<const IndexStep*>& steps,
                 const std::string& grid);

}  // namespace lumbarn
