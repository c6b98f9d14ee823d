#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "../support/Export.h"

namespace lumbarn {

/// From the coordinates of a file to those of the map: x and y turned, scaled and moved.
struct MapTransform {
  double originX = 0, originY = 0;
  double xx = 1, xy = 0;  ///< map x, y of a step of 1 along the grid's x axis
  double yx = 0, yy = 1;  ///< and along its y axis

  std::array<double, 2> operator()(double x, double y) const {
    return {originX + x * xx + y * yx, originY + x * xy + y * yy};
  }
};
/// Nothing when the axes have no length or are parallel. `gridUnit` is the count of map units in one unit of
/// the grid.
LUMBARN_API std::optional<MapTransform> mapTransform(const std::array<double, 6>& mapAxes, double gridUnit);

/// Pillars and depths of a grid, as arrays that others own and whose sizes have been checked.
struct CornerSource {
  std::int32_t Nx = 0, Ny = 0, Nz = 0;
  std::span<const float> coord;                    ///< 6 for each pillar, reservoir after reservoir
  std::span<const float> zcorn;                    ///< 8 for each cell, or for each active one
  std::span<const std::int32_t> reservoirOfLayer;  ///< from 0 for each layer; -1: in none
  bool compressed = false;                         ///< zcorn holds active cells only, in walk order
  std::span<const std::int32_t> numbers;           ///< active number of each cell, from 1; empty: all active
};

/// Which rows are wanted: those of `count` active cells or, with activeOnly False, of cells in the order of
/// their numbers. Counts from 0.
struct RowRange {
  std::size_t first = 0;
  std::size_t count = 0;
  bool activeOnly = true;
  std::size_t firstCell = 0;  ///< the cells of the first and the last row
  std::size_t lastCell = 0;
};

/// Writes the wanted rows of 24 singles one after the other. A depth gives the point of its pillar at that
/// depth, beyond both ends too; a pillar without height gives its top point. The fraction is worked out in
/// double precision and each coordinate rounded once, so that all ways to ask for a cell give the same bits.
/// Rows of cells without corners are zeros.
LUMBARN_API void writeCornerRows(const CornerSource& source, const RowRange& range,
                                 const MapTransform* transform, float* rows);

}  // namespace lumbarn
