#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../index/RestartIndex.h"
#include "../support/Session.h"

namespace lumbarn {

/// The active cells of one grid, numbered both ways. Arrays of a restart or INIT file have one value for each
/// active cell, in the natural order of the cells (i fastest, then j, then k). All numbers count from 1.
class ActiveCells {
 public:
  ActiveCells() = default;
  /// Cells with a pore volume above 0, in order, while the count has not passed nActive; one value for each
  /// cell. Values that are no numbers do not count.
  static ActiveCells fromPoreVolumes(std::span<const float> porv, std::int64_t nActive);
  /// Cells whose word is not 0. Dual porosity grids tell matrix and fracture by its bits.
  static ActiveCells fromActnum(std::span<const std::int32_t> actnum);
  /// A grid without inactive cells. Throws Fault 6 when their numbers are beyond 32 bits, as the others do.
  static ActiveCells all(std::int64_t cells);

  std::int64_t cells() const { return cells_; }
  std::int64_t active() const { return static_cast<std::int64_t>(iA2N_.size()); }
  /// The cell of an active cell. Throws Fault 9 outside.
  std::int32_t cellOf(std::int64_t iActive) const;
  /// The active number of a cell; 0 for an inactive one. Throws Fault 9 outside.
  std::int32_t activeOf(std::int64_t iCell) const;
  /// The cell of each active cell, ascending.
  const std::vector<std::int32_t>& iA2N() const { return iA2N_; }

 private:
  std::int64_t cells_ = 0;
  std::vector<std::int32_t> iA2N_;
};

/// Which cells of a grid are active: from PORV of the run's INIT file, else from ACTNUM of its EGRID file;
/// empty names are passed over. Nothing when neither tells of just `cells.active` active cells.
/// Only that one array is read. Damage is told as a diagnosis.
std::optional<ActiveCells> findActiveCells(Session& session, const std::string& initFile,
                                           const std::string& egridFile, std::string_view grid,
                                           const GridCells& cells);

}  // namespace lumbarn
