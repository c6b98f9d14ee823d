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

/// The points of pillars at depths that stand at every second place, with the rounding of the grid store.
[[gnu::always_inline]] inline void pointsOf(const Pillars& pillars, std::size_t first, const float* depths,
                                            std::size_t count, float* x, float* y, float* z) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t p = first + i;
    z[i] = depths[2 * i];
    const double t = (z[i] - pillars.z[p]) / pillars.dz[p];
    x[i] = static_cast<float>(pillars.x[p] + t * pillars.dx[p]);
    y[i] = static_cast<float>(pillars.y[p] + t * pillars.dy[p]);
  }
}
void pointsPlain(const Pillars& pillars, std::size_t first, const float* depths, std::size_t count, float* x,
                 float* y, float* z) {
  pointsOf(pillars, first, depths, count, x, y, z);
}
LUMBARN_WIDE void pointsWide(const Pillars& pillars, std::size_t first, const float* depths,
                             std::size_t count, float* x, float* y, float* z) {
  pointsOf(pillars, first, depths, count, x, y, z);
}

/// Corners straight from pillars and depths, which takes a third of the time of the way over rows.
class Stretches {
 public:
  explicit Stretches(const Hadrick& grid)
      : grid_(grid), nx_(static_cast<std::size_t>(grid.Nx())), ny_(static_cast<std::size_t>(grid.Ny())) {}

  /// Whether cells have the corners that pillars and depths give, all of them.
  static bool serve(const Hadrick& grid) {
    const auto plane = static_cast<std::size_t>(grid.Nx() + 1) * static_cast<std::size_t>(grid.Ny() + 1);
    return !grid.compressed() && grid.coarseBlocks().empty() && grid.coord().size() == 6 * plane &&
           grid.zcorn().size() == 8 * static_cast<std::size_t>(grid.nCells()) && grid.hasCorners(1) &&
           grid.hasCorners(grid.nCells());
  }

  void take(const Stretch& at, CellBlock& block) {
    const auto points = hasWide() ? pointsWide : pointsPlain;
    for (std::size_t dj = 0; dj < 2; ++dj) {
      pillars_.take(grid_.coord().data() + 6 * ((at.j + dj) * (nx_ + 1) + at.i), at.count + 1);
      for (std::size_t dk = 0; dk < 2; ++dk) {
        const float* depths =
            grid_.zcorn().data() + 4 * nx_ * ny_ * (2 * at.k + dk) + 2 * nx_ * (2 * at.j + dj) + 2 * at.i;
        for (std::size_t di = 0; di < 2; ++di) {
          float(*out)[CellBlock::cells] = block.items + 3 * (di + 2 * dj + 4 * dk);
          points(pillars_, di, depths + di, at.count, out[0], out[1], out[2]);
        }
      }
    }
  }

 private:
  const Hadrick& grid_;
  std::size_t nx_, ny_;
  Pillars pillars_;
};

void volumesByRows(const Hadrick& grid, std::int32_t iFirstCell, std::span<double> volumes) {
  constexpr std::size_t together = 1024;  // enough that the grid store sets up its pillars seldom
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
  if (!Stretches::serve(grid)) return volumesByRows(grid, iFirstCell, volumes);
  Stretches stretches(grid);
  CellBlock block;
  const auto nx = static_cast<std::size_t>(grid.Nx());
  const auto ny = static_cast<std::size_t>(grid.Ny());
  for (std::size_t done = 0; done < volumes.size();) {
    const std::size_t cell = static_cast<std::size_t>(iFirstCell) - 1 + done;
    Stretch at{cell % nx, cell / nx % ny, cell / nx / ny, 0};
    at.count = std::min({CellBlock::cells, nx - at.i, volumes.size() - done});
    stretches.take(at, block);
    cellVolumes(block, volumes.subspan(done, at.count));
    done += at.count;
  }
}

Box gridExtent(const Hadrick& grid, CellChoice choice) {
  Box all;
  forEachCell(grid, choice, [&](std::int32_t, CellCorners corners) { all.add(cellBox(corners)); });
  return all;
}

}  // namespace lumbarn
