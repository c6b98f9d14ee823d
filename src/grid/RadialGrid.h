#pragma once

#include <memory>
#include <span>

#include "CellGeometry.h"
#include "Hadrick.h"

namespace lumbarn {

/// x and y of the axis that r and theta of a radial grid count from, in the coordinates of the file.
struct RadialCenter {
  double x = 0;
  double y = 0;
};

/// Whether the first two coordinates of a grid are r and theta (degrees) in place of x and y.
inline bool isRadial(const Hadrick& grid) { return grid.iGridType == 3; }

/// The axis of a radial grid. For a local grid, the middle of its host cells: the center of the middle cell
/// along an axis with an odd number of hosts, otherwise the pillar between the two middle cells, where the
/// well is when the grid replaces two or four columns. The parent's own origin, 0, 0, for the global grid and
/// when the hosts are not known, have no corners or are those of a radial grid. `grids` are all grids of the
/// file.
RadialCenter radialCenter(std::span<const std::shared_ptr<Hadrick>> grids, const Hadrick& grid);

/// The box in x, y and z around the active cells of a grid of either type; `grids` are all grids of the file.
Box extentOf(std::span<const std::shared_ptr<Hadrick>> grids, const Hadrick& grid);

/// The volumes of consecutive cells of a radial grid from a number on, from 1, which must be there (Fault 9),
/// with the sign that they have in r, theta and z; 0 for a cell without corners. Sides along theta are arcs.
void radialVolumes(const Hadrick& grid, std::int32_t iFirstCell, std::span<double> volumes);

/// A corner of a radial grid in x, y and z. Angles that are a full circle apart give the same point to the
/// last bit: those within a thousandth of a degree of `firstAngle`, or of it plus 360, count as equal to it.
Point cylinderPoint(const RadialCenter& center, double r, double theta, double z, double firstAngle);

}  // namespace lumbarn
