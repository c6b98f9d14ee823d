#include "CellGeometryOfGrid.h"

#include <array>
#include <cmath>

#include "../support/Fault.h"
#include "../support/Wide.h"

namespace lumbarn {

namespace {

/// Consecutive cells of one line along I, from 0.
struct Stretch {
  std::size_t i = 0, j = 0, k = 0, count = 0;
};

/// The pillars at one side of a stretch: top points, and from there to the bottom points.
struct Pillars {
  static constexpr std::size_t most = CellBlock::cells + 1;
  double x[most], y[most], z[most], dx[most], dy[most], dz[most];

  void take(const float* pillars, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, pillars += 6) {
      x[i] = pillars[0];
      y[i] = pillars[1];
      z[i] = pillars[2];
      dz[i] = double{pillars[5]} - z[i];
      // A pillar without height stands for its top point at any depth, as the grid store has it.
      const bool upright = std::abs(dz[i]) > 1e-20;
      dx[i] = upright ? pillars[3] - x[i] : 0;
      dy[i] = upright ? pillars[4] - y[i] : 0;
      if (!upright) dz[i] = 1;
    }
  }
};

/// The points of pillars at depths that stand at every second place, not rounded.
[[gnu::always_inline]] inline void pointsOf(const Pillars& pillars, std::size_t first, const float* depths,
                                            std::size_t count, double* x, double* y, double* z) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t p = first + i;
    z[i] = depths[2 * i];
    const double t = (z[i] - pillars.z[p]) / pillars.dz[p];
    x[i] = pillars.x[p] + t * pillars.dx[p];
    y[i] = pillars.y[p] + t * pillars.dy[p];
  }
}
void pointsPlain(const Pillars& pillars, std::size_t first, const float* depths, std::size_t count, double* x,
                 double* y, double* z) {
  pointsOf(pillars, first, depths, count, x, y, z);
}
LUMBARN_WIDE void pointsWide(const Pillars& pillars, std::size_t first, const float* depths,
                             std::size_t count, double* x, double* y, double* z) {
  pointsOf(pillars, first, depths, count, x, y, z);
}

/// Volumes straight from pillars and depths. This takes a third of the time of the way over rows, and corners
/// are not rounded to singles, which far from the origin of the map are half a metre apart.
class Stretches {
 public:
  explicit Stretches(const Hadrick& grid)
      : grid_(grid), nx_(static_cast<std::size_t>(grid.Nx())), ny_(static_cast<std::size_t>(grid.Ny())) {}

  void volumes(const Stretch& at, std::span<double> out) {
    const auto reservoir = grid_.reservoirOf(static_cast<std::int32_t>(at.k) + 1);
    if (reservoir == 0) {
      std::ranges::fill(out, 0.0);
      return;
    }
    take(at, static_cast<std::size_t>(reservoir) - 1);
    cellVolumes(block_, out);
    if (!grid_.compressed()) return;
    for (std::size_t i = 0; i < at.count; ++i) {
      if (grid_.activeOf(cellAt(at, i)) == 0) out[i] = 0;
    }
  }

  /// Of the outer corners of a block, each from the cell that has it.
  double volume(const CoarseBlock& coarse) {
    CellBlock outer;
    for (std::size_t n = 0; n < 8; ++n) {
      const auto side = [&](std::size_t axis) {
        return static_cast<std::size_t>(coarse.iBox[2 * axis + (n >> axis & 1)]) - 1;
      };
      const Stretch cell{side(0), side(1), side(2), 1};
      const auto reservoir = grid_.reservoirOf(static_cast<std::int32_t>(cell.k) + 1);
      if (reservoir == 0) return 0;
      take(cell, static_cast<std::size_t>(reservoir) - 1);
      for (std::size_t item = 3 * n; item < 3 * n + 3; ++item) outer.items[item][0] = block_.items[item][0];
    }
    double volume = 0;
    cellVolumes(outer, {&volume, 1});
    return volume;
  }

 private:
  std::int32_t cellAt(const Stretch& at, std::size_t i) const {
    return static_cast<std::int32_t>((at.k * ny_ + at.j) * nx_ + at.i + i) + 1;
  }

  void take(const Stretch& at, std::size_t reservoir) {
    const auto points = hasWide() ? pointsWide : pointsPlain;
    for (std::size_t dj = 0; dj < 2; ++dj) {
      const std::size_t line = reservoir * (ny_ + 1) + at.j + dj;
      pillars_.take(grid_.coord().data() + 6 * (line * (nx_ + 1) + at.i), at.count + 1);
      for (std::size_t dk = 0; dk < 2; ++dk) {
        const float* depths = depthsOf(at, dj, dk);
        for (std::size_t di = 0; di < 2; ++di) {
          double(*out)[CellBlock::cells] = block_.items + 3 * (di + 2 * dj + 4 * dk);
          points(pillars_, di, depths + di, at.count, out[0], out[1], out[2]);
        }
      }
    }
  }

  /// Two depths for each cell at one of its four sides along I, as the file has them.
  const float* depthsOf(const Stretch& at, std::size_t dj, std::size_t dk) {
    const float* depths = grid_.zcorn().data();
    if (!grid_.compressed()) {
      return depths + 4 * nx_ * ny_ * (2 * at.k + dk) + 2 * nx_ * (2 * at.j + dj) + 2 * at.i;
    }
    for (std::size_t i = 0; i < at.count; ++i) {
      const auto active = static_cast<std::size_t>(grid_.activeOf(cellAt(at, i)));
      for (std::size_t di = 0; di < 2; ++di) {
        gathered_[2 * i + di] = active > 0 ? depths[8 * (active - 1) + 4 * di + 2 * dj + dk] : 0;
      }
    }
    return gathered_;
  }

  const Hadrick& grid_;
  std::size_t nx_, ny_;
  Pillars pillars_;
  CellBlock block_;
  float gathered_[2 * CellBlock::cells];
};

void volumesByRows(const Hadrick& grid, std::int32_t iFirstCell, std::span<double> volumes) {
  constexpr std::size_t together = 1024;  // few calls of the grid store
  std::vector<float> rows(Hadrick::rowItems * std::min(together, volumes.size()));
  for (std::size_t done = 0; done < volumes.size(); done += together) {
    const std::size_t count = std::min(together, volumes.size() - done);
    const auto part = std::span(rows).first(Hadrick::rowItems * count);
    grid.cellCorners(iFirstCell + static_cast<std::int32_t>(done), part);
    cellVolumes(part, volumes.subspan(done, count));
  }
}

}  // namespace

void cellVolumes(const Hadrick& grid, std::int32_t iFirstCell, std::span<double> volumes) {
  const std::int64_t last = std::int64_t{iFirstCell} - 1 + static_cast<std::int64_t>(volumes.size());
  if (iFirstCell < 1 || last > grid.nCells()) throw Fault(FaultNumber::Subscript);
  if (grid.coord().empty() || grid.zcorn().empty()) return volumesByRows(grid, iFirstCell, volumes);
  Stretches stretches(grid);
  const auto nx = static_cast<std::size_t>(grid.Nx());
  const auto ny = static_cast<std::size_t>(grid.Ny());
  for (std::size_t done = 0; done < volumes.size();) {
    const std::size_t cell = static_cast<std::size_t>(iFirstCell) - 1 + done;
    Stretch at{cell % nx, cell / nx % ny, cell / nx / ny, 0};
    at.count = std::min({CellBlock::cells, nx - at.i, volumes.size() - done});
    stretches.volumes(at, volumes.subspan(done, at.count));
    done += at.count;
  }
  for (const CoarseBlock& coarse : grid.coarseBlocks()) {
    if (coarse.iCell < iFirstCell || coarse.iCell > last) continue;
    volumes[static_cast<std::size_t>(coarse.iCell - iFirstCell)] = stretches.volume(coarse);
  }
}

Box gridExtent(const Hadrick& grid, CellChoice choice) {
  Box all;
  forEachCell(grid, choice, [&](std::int32_t, CellCorners corners) { all.add(cellBox(corners)); });
  return all;
}

}  // namespace lumbarn
