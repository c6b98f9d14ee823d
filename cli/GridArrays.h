#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Console.h"
#include "VtkExport.h"
#include "arrays/ActiveCells.h"
#include "files/Families.h"
#include "grid/Hadrick.h"
#include "index/RestartIndex.h"

namespace lumbarn::cli {

/// Arrays of a run's restart and INIT files that have a value for each active cell, or for each cell, of one
/// grid, ready to be exported.
class GridArrays {
 public:
  /// Indexes the files. `step`: take this one step of the restart alone, as if its arrays did not change.
  /// Throws Failure when the run has no such step.
  GridArrays(const RunFamily& run, const Hadrick& grid, std::optional<std::int32_t> step, Console& console);

  /// An array by name, in any letter case: of the restart, or of INIT if the restart has none. Throws Failure
  /// if neither has it, and if it is not known which cells its values belong to.
  CellArray array(const std::string& name);
  /// Days of each restart step, or the step's number where the file does not state them.
  std::vector<double> times() const;

 private:
  /// An array of a step, and where it is.
  struct Place {
    const std::string* path = nullptr;
    const IndexEntry* entry = nullptr;  ///< null: the step has no such array
    GridCells cells;
  };
  /// Keeps the file open that was read last: steps may be in a file each.
  class Source;

  GridCells cellsOf(const IndexStep& step) const;
  bool isArray(const IndexEntry& entry, const GridCells& cells) const;
  Place find(const RestartIndex& index, const IndexStep& step, const std::string& name);
  std::vector<std::string> names() const;
  CellArray arrayOf(const std::string& name, std::vector<Place> places);
  void needActiveCells(const GridCells& cells);
  template <class Number>
  CellReader<Number> reader(std::vector<Place> places) const;

  std::string initFile_;   // empty: none
  std::string egridFile_;  // likewise
  const Hadrick& grid_;
  std::string zGrid_;  // as the restart and INIT files name it: empty for the global grid
  bool oneStep_;
  RestartIndex init_;
  RestartIndex restart_;
  std::vector<const IndexStep*> steps_;  // of the restart
  // The cells that arrays have values for, where the grid file states others to be active.
  std::optional<ActiveCells> active_;
  std::shared_ptr<Source> source_;
  std::set<std::string> repeated_;  // arrays reported to occur more than once in a step
  Console& console_;
};

}  // namespace lumbarn::cli
