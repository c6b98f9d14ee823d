#include <array>
#include <cmath>
#include <cstring>
#include <ctime>
#include <memory>
#include <random>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Cases.h"
#include "grid/CellGeometryOfGrid.h"
#include "grid/PointLocator.h"

namespace lumbarn::bench {
namespace {

constexpr std::int32_t side = 100;  // cells along each axis
constexpr std::size_t cells = 1'000'000;
constexpr int lookUps = 1000;
constexpr double bytesForCell = 16;

/// A dome of a million cells on pillars that lean, cut by a fault.
Hadrick makeGrid() {
  std::vector<float> coord;
  for (int j = 0; j <= side; ++j) {
    for (int i = 0; i <= side; ++i) {
      const float x = 450000 + 50.0F * static_cast<float>(i);
      const float y = 50.0F * static_cast<float>(j);
      coord.insert(coord.end(), {x, y, 2000, x + 20, y + 0.1F * static_cast<float>(i), 2600});
    }
  }
  XYData zcorn(8, cells, Session::process());
  auto depth = zcorn.values().begin();
  for (int k = 0; k < 2 * side; ++k) {
    for (int j = 0; j < 2 * side; ++j) {
      for (int i = 0; i < 2 * side; ++i) {
        const double u = (i + 1) / 2 / static_cast<double>(side) - 0.5;
        const double v = (j + 1) / 2 / static_cast<double>(side) - 0.5;
        *depth++ = static_cast<float>(2000 + 400 * (u * u + v * v) + 4 * ((k + 1) / 2) + (i < side ? 0 : 37));
      }
    }
  }
  Hadrick grid;
  grid.setSize(side, side, side);
  grid.setPillars(std::move(coord));
  grid.setDepths(std::move(zcorn), false);
  return grid;
}

const Hadrick& grid() {
  static const Hadrick made = makeGrid();
  return made;
}

/// The rows of a million cells, one after the other to memory that is new.
void writeRows() {
  XYData rows(Hadrick::rowItems, cells, Session::process());
  std::array<float, Hadrick::rowItems> row{};
  for (std::size_t n = 0; n < cells; ++n) {
    row[0] = static_cast<float>(n);
    std::memcpy(rows.values().data() + Hadrick::rowItems * n, row.data(), sizeof row);
  }
  benchmark::DoNotOptimize(rows.values().data());
}

void volumes() {
  static std::vector<double> all(cells);
  cellVolumes(grid(), 1, all);
  double sum = 0;
  for (const double volume : all) sum += volume;
  require(std::abs(sum / (50.0 * 50 * 4 * cells) - 1) < 0.01, "volumes are wrong");
}

/// Points in random cells, and what holds them.
void findPoints() {
  static const PointLocator locator(grid());
  static const std::vector<Point> points = [] {
    fmt::print("grid/look-ups: the index takes {:.1f} bytes a cell\n",
               static_cast<double>(locator.memoryUsed()) / cells);
    std::mt19937 random(1);
    std::vector<Point> chosen;
    for (int n = 0; n < lookUps; ++n) {
      std::array<float, Hadrick::rowItems> row;
      grid().corners(static_cast<std::int32_t>(random() % cells) + 1, row);
      chosen.push_back(cellCentre(row));
    }
    return chosen;
  }();
  require(static_cast<double>(locator.memoryUsed()) <= bytesForCell * cells, "the index is too large");
  int found = 0;
  for (const Point& point : points) found += locator.find(point) > 0;
  require(found == lookUps, "points were not found");
}

/// What a thousand look-ups may take.
void tenMilliseconds() {
  const auto start = std::clock();
  while (static_cast<double>(std::clock() - start) < 0.01 * CLOCKS_PER_SEC) continue;
}

}  // namespace

Family gridGeometryFamily() {
  return {"grid",
          [] {},
          {
              {"grid/volumes", "W", 1.5, 0, 0, volumes, writeRows},
              {"grid/look-ups", "10 ms", 1, 0, 0, findPoints, tenMilliseconds},
          }};
}

}  // namespace lumbarn::bench
