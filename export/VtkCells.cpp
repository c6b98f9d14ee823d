#include "VtkCells.h"

#include <algorithm>
#include <cmath>

#include "grid/CellGeometry.h"

namespace lumbarn {
namespace {

/// The widest sector that becomes one hexahedron: the chord is then within 1 % of the arc.
constexpr double widestSector = 15;
constexpr double circle = 360;

/// Corners in the order of a hexahedron's points: round the face at low K, then round that at high K. In a
/// left-handed grid the faces change places, so that the second lies where the first one's normal points.
std::array<std::size_t, VtkCells::pointsOfCell> pointOrder(bool rightHanded) {
  if (rightHanded) return {0, 1, 3, 2, 4, 5, 7, 6};
  return {4, 5, 7, 6, 0, 1, 3, 2};
}

/// The angle between two corners that are neighbors along J; 0 when it is not a number.
double sectorOf(CellCorners corners, std::size_t low) {
  const double angle = std::abs(double{corners[3 * (low + 2) + 1]} - corners[3 * low + 1]);
  return std::isfinite(angle) ? std::min(angle, circle) : 0;
}

}  // namespace

VtkCells::VtkCells(const Hadrick& grid, std::optional<RadialCenter> center, bool zUp)
    : grid_(grid), center_(center), zUp_(zUp) {}

/// The handedness follows from the volume of all cells, as single ones may be inverted. It is the same in r,
/// theta and z as in x, y and z.
void VtkCells::examine(const Piece& piece) {
  std::vector<double> volumes(piece.cells.size());
  cellVolumes(piece.corners, volumes);
  for (const double volume : volumes) volume_ += std::isfinite(volume) ? volume : 0;
  for (std::size_t cell = 0; center_ && cell < piece.cells.size(); ++cell) {
    const CellCorners corners(piece.corners.data() + Hadrick::rowItems * cell, Hadrick::rowItems);
    if (isNoCell(corners)) continue;
    for (const std::size_t low : {0, 1, 4, 5}) widest_ = std::max(widest_, sectorOf(corners, low));
    if (!firstAngle_ && std::isfinite(corners[1])) firstAngle_ = corners[1];
  }
}

std::size_t VtkCells::parts() const {
  // Angles are sums of singles: a sector of 90 degrees may be a trifle wider.
  return std::max<std::size_t>(1, static_cast<std::size_t>(std::ceil(widest_ / widestSector - 1e-3)));
}

void VtkCells::start(std::int64_t firstPoint) {
  firstPoint_ = firstPoint;
  order_ = pointOrder((volume_ >= 0) != zUp_);
  parts_ = parts();
  const auto nx = static_cast<std::size_t>(grid_.Nx());
  const auto ny = static_cast<std::size_t>(grid_.Ny());
  merger_ = PointMerger((nx + 1) * (ny * parts_ + 1));
}

/// The corners of one part of a cell, as they are written.
VtkCells::Corners VtkCells::partOf(CellCorners corners, std::size_t part) const {
  Corners written{};
  for (std::size_t n = 0; n < pointsOfCell; ++n) {
    float* point = written.data() + 3 * n;
    std::copy_n(corners.data() + 3 * n, 3, point);
    if (center_) {
      const float* low = corners.data() + 3 * (n & ~std::size_t{2});
      const float* high = corners.data() + 3 * (n | 2);
      const double share = static_cast<double>(part + (n >> 1 & 1)) / static_cast<double>(parts_);
      const auto between = [&](std::size_t axis) {
        return low[axis] + share * (double{high[axis]} - low[axis]);
      };
      const Point at = cylinderPoint(*center_, between(0), between(1), between(2), firstAngle_.value_or(0));
      point[0] = static_cast<float>(at.x);
      point[1] = static_cast<float>(at.y);
      point[2] = static_cast<float>(at.z);
    }
    if (zUp_) point[2] = -point[2];
  }
  return written;
}

/// The pillar of a corner, or what is in its place between two pillars. The last one of a circle is the
/// first.
std::size_t VtkCells::nodeOf(std::size_t i, std::size_t j, std::size_t part, std::size_t corner) const {
  std::size_t line = j * parts_ + part + (corner >> 1 & 1);
  if (center_) line %= static_cast<std::size_t>(grid_.Ny()) * parts_;
  return line * (static_cast<std::size_t>(grid_.Nx()) + 1) + i + (corner & 1);
}

std::vector<std::int64_t> VtkCells::connect(const Piece& piece) {
  std::vector<std::int64_t> connectivity;
  connectivity.reserve(pointsOfCell * parts_ * piece.cells.size());
  for (std::size_t cell = 0; cell < piece.cells.size(); ++cell) {
    const CellCorners corners(piece.corners.data() + Hadrick::rowItems * cell, Hadrick::rowItems);
    if (isNoCell(corners)) {  // of no size, at the grid's first point
      connectivity.insert(connectivity.end(), pointsOfCell * parts_, firstPoint_);
      continue;
    }
    const auto place = grid_.placeOf(piece.cells[cell]);
    const auto i = static_cast<std::size_t>(place[0]) - 1;
    const auto j = static_cast<std::size_t>(place[1]) - 1;
    for (std::size_t part = 0; part < parts_; ++part) {
      const Corners written = partOf(corners, part);
      for (const std::size_t corner : order_) {
        const auto number = merger_.number(nodeOf(i, j, part, corner), written.data() + 3 * corner);
        connectivity.push_back(firstPoint_ + number);
      }
    }
  }
  return connectivity;
}

std::int64_t VtkCells::finish() {
  if (merger_.count() == 0 && grid_.nActive() > 0) merger_.number(0, std::array<float, 3>{}.data());
  return merger_.count();
}

}  // namespace lumbarn
