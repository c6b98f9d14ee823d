#pragma once

#include <cstddef>
#include <limits>
#include <span>

namespace lumbarn {

/// Geometry of single cells, from their eight corners as a result row has them: 24 singles, corner by corner
/// x, y, z; the corner's direction in I runs fastest, then J, then K. Units are those of the grid, z as in
/// the file (mostly a depth). All work is done in double from differences of the singles, which are exact for
/// corners as near to each other as those of one cell, so large map coordinates cost no digits.
///
/// Nothing here throws, and any 24 singles will do:
/// - A cell without thickness, or pinched to a wedge or a line, has its volume (0 if it has none) and holds a
///   point if the room between its faces does.
/// - An inverted cell (its bottom above its top) has a volume of the other sign than its neighbours; it holds
///   the points between its faces all the same. Of a cell that is inverted in part, the volume is the
///   difference of its parts.
/// - A cell with a coordinate that is not finite has a volume and a centre that are not finite, an empty box,
///   and holds no point. Nor does a cell without corners; its volume is 0.
using CellCorners = std::span<const float, 24>;

/// True for a row of zeros, which stands for a cell without corners.
bool isNoCell(CellCorners corners);

struct Point {
  double x = 0;
  double y = 0;
  double z = 0;
};

/// A box along the axes, its faces included. Empty when made.
struct Box {
  Point low{infinity, infinity, infinity};
  Point high{-infinity, -infinity, -infinity};

  static constexpr double infinity = std::numeric_limits<double>::infinity();

  bool empty() const { return !(low.x <= high.x); }
  bool contains(const Point& point) const {
    return point.x >= low.x && point.x <= high.x && point.y >= low.y && point.y <= high.y &&
           point.z >= low.z && point.z <= high.z;
  }
  void add(const Box& other);
};

/// The volume of the trilinear cell, exact but for rounding: its faces are the bilinear surfaces through four
/// corners. Positive when I, J and K make a right-handed system in the file's x, y and z, negative in a grid
/// where they do not; so cells of one grid have one sign, and one that differs is inverted.
double cellVolume(CellCorners corners);

/// The volumes of `volumes.size()` cells whose rows follow each other; `corners` has 24 times as many items.
/// They are the same to the last bit.
void cellVolumes(std::span<const float> corners, std::span<double> volumes);

/// Corners of several cells side by side, as wide registers take them: first 3 * corner + axis, both from 0,
/// then the cell.
struct CellBlock {
  static constexpr std::size_t cells = 64;
  double items[24][cells];
};
/// The volumes of the first `volumes.size()` cells of a block, likewise.
void cellVolumes(const CellBlock& block, std::span<double> volumes);

/// The mean of the eight corners, which simulators take as a cell's depth.
Point cellCentre(CellCorners corners);

Box cellBox(CellCorners corners);

/// True when the point lies in the cell. For this, each face is two triangles, parted from its corner lowest
/// in (I, J, K) to its highest. Cells that share a face share its four corners and so its triangles,
/// whichever side they are seen from, and the test computes the same for both: a point in a stack of sound
/// cells that share their faces is never lost between them, also when it lies on a face, an edge or a corner.
/// It lies in exactly one of them, but for points on leaning edges: there rounding may give them to three. On
/// the outside of the stack a face counts as part of it at the low end of z (or of x and y when it is
/// upright), and not at the high end.
///
/// Across a fault neighbours share pillars but no corners. There they meet without a gap where pillars are
/// vertical; where they are not, a gap or an overlap of the rounding of the corners' singles is possible, and
/// where two neighbouring pillars are not in a plane, one of the size of the twist between them.
bool cellContains(CellCorners corners, const Point& point);

}  // namespace lumbarn
