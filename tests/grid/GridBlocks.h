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
  const auto [nx, ny, nz] = std::array{size[0], size[1], size[2]};
  std::mt19937 random(42);
  std::uniform_real_distribution<float> part(-1, 1);
  std::vector<float> coord;
  for (std::int32_t j = 0; j <= ny; ++j) {
    for (std::int32_t i = 0; i <= nx; ++i) {
      const float x = 100.0F * static_cast<float>(i) + 15 * part(random);
      const float y = 100.0F * static_cast<float>(j) + 15 * part(random);
      coord.insert(coord.end(), {x, y, 1000, x + 100 * lean * part(random), y + 100 * lean * part(random),
                                 1000 + 10 * static_cast<float>(nz)});
    }
  }
  const auto across = static_cast<std::size_t>(nx) + 1;
  std::vector<float> depth(across * (static_cast<std::size_t>(ny) + 1) * (static_cast<std::size_t>(nz) + 1));
  for (std::size_t n = 0; n < depth.size(); ++n) {
    const auto layer = n / (across * (static_cast<std::size_t>(ny) + 1));
    depth[n] = 1000 + 10 * static_cast<float>(layer) + 4 * part(random);
  }
  std::vector<float> zcorn;
  for (std::int32_t k = 0; k < 2 * nz; ++k) {
    for (std::int32_t j = 0; j < 2 * ny; ++j) {
      for (std::int32_t i = 0; i < 2 * nx; ++i) {
        const auto node =
            static_cast<std::size_t>((i + 1) / 2) +
            across * (static_cast<std::size_t>((j + 1) / 2) +
                      (static_cast<std::size_t>(ny) + 1) * static_cast<std::size_t>((k + 1) / 2));
        zcorn.push_back(depth[node] + (i / 2 >= nx / 2 ? fault : 0));
      }
    }
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
