#pragma once

#include <algorithm>
#include <array>
#include <random>

#include "grid/Hadrick.h"

namespace lumbarn::testing {

/// A block of corner points with uneven surfaces, about 100 x 100 x 10 to a cell. `lean`: how far pillars
/// lean, each its own way, as a share of a cell. `fault`: how far the columns from the middle of I on are
/// moved down.
inline Hadrick distortedBlock(std::array<std::int32_t, 3> size, float lean, float fault) {
  const auto [nx, ny, nz] = size;
  std::mt19937 random(42);
  std::uniform_real_distribution<float> part(-1, 1);
  std::vector<float> coord, surfaces, zcorn;
  for (std::int32_t p = 0; p < (nx + 1) * (ny + 1); ++p) {
    const float x = 100.0F * static_cast<float>(p % (nx + 1)) + 15 * part(random);
    const float y = 100.0F * static_cast<float>(p / (nx + 1)) + 15 * part(random);
    coord.insert(coord.end(), {x, y, 1000, x + 100 * lean * part(random), y + 100 * lean * part(random),
                               1000 + 10 * static_cast<float>(nz)});
  }
  for (std::int32_t n = 0; n < (nx + 1) * (ny + 1) * (nz + 1); ++n)
    surfaces.push_back(1000 + 10 * static_cast<float>(n / ((nx + 1) * (ny + 1))) + 4 * part(random));
  for (std::int32_t n = 0; n < 8 * nx * ny * nz; ++n) {
    const std::int32_t i = n % (2 * nx), j = n / (2 * nx) % (2 * ny), k = n / (4 * nx * ny);
    const std::int32_t node = (i + 1) / 2 + (nx + 1) * ((j + 1) / 2 + (ny + 1) * ((k + 1) / 2));
    zcorn.push_back(surfaces[static_cast<std::size_t>(node)] + (i / 2 >= nx / 2 ? fault : 0));
  }
  Hadrick grid;
  grid.setSize(nx, ny, nz);
  grid.setPillars(std::move(coord));
  XYData depths(8, zcorn.size() / 8, Session::process());
  std::ranges::copy(zcorn, depths.values().begin());
  grid.setDepths(std::move(depths), false);
  return grid;
}

}  // namespace lumbarn::testing
