#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "GridArrays.h"

namespace lumbarn::cli {

/// Arrays of a run for several of its grids, in the order in which the grids are exported.
class RunArrays {
 public:
  /// `step` as for GridArrays. Throws Failure when the run has no such step.
  RunArrays(const RunFamily& run, std::vector<std::shared_ptr<Hadrick>> grids,
            std::optional<std::int32_t> step, Console& console);

  /// An array by name, of all grids that have it. Throws Failure when none does.
  CellArray array(const std::string& name);
  std::vector<double> times() const { return arrays_.front().times(); }

 private:
  /// The array of one grid, if it has it, and the number of active cells before that grid.
  struct Part {
    std::optional<CellArray> array;
    std::size_t first = 0;
  };

  std::vector<std::shared_ptr<Hadrick>> grids_;
  std::deque<GridArrays> arrays_;  // one for each grid
};

}  // namespace lumbarn::cli
