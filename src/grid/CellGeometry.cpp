#include "CellGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "../support/Wide.h"

namespace lumbarn {
namespace {

constexpr int cornerCount = 8;

struct Vector {
  double x, y, z;
};
constexpr Vector operator+(const Vector& a, const Vector& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }

/// The product of three edges.
constexpr double triple(const Vector& a, const Vector& b, const Vector& c) {
  return a.x * (b.y * c.z - b.z * c.y) - a.y * (b.x * c.z - b.z * c.x) + a.z * (b.x * c.y - b.y * c.x);
}

/// The vector from one corner to another. `corner(n, axis)` gives a coordinate.
template <class Corner>
[[gnu::always_inline]] inline Vector edge(const Corner& corner, std::size_t from, std::size_t to) {
  return {corner(to, 0) - corner(from, 0), corner(to, 1) - corner(from, 1), corner(to, 2) - corner(from, 2)};
}

/// Corners from 0, so that bits 0, 1 and 2 of the number are the directions in I, J and K. The integral of
/// the Jacobian over the cell, brought down to three products; the face diagonals in it make each face count
/// as the mean of its two ways to be cut in triangles, which for the volume is the bilinear face.
template <class Corner>
[[gnu::always_inline]] inline double volumeOf(const Corner& corner) {
  const Vector a = edge(corner, 1, 7);
  const Vector b = edge(corner, 0, 6);
  const Vector c = edge(corner, 2, 7);
  const Vector d = edge(corner, 0, 3);
  const Vector e = edge(corner, 0, 5);
  const Vector f = edge(corner, 4, 7);
  return (triple(a + b, c, d) + triple(b, c + e, f) + triple(a, e, f + d)) / 12;
}

[[gnu::always_inline]] inline void volumesOf(const CellBlock& block, double* volumes, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    volumes[i] = volumeOf([&block, i ](std::size_t corner, std::size_t axis)
                              __attribute__((always_inline)) { return block.items[3 * corner + axis][i]; });
  }
}
// The same loop twice: for any machine, and for those with wide registers.
void volumesPlain(const CellBlock& block, double* volumes, std::size_t n) { volumesOf(block, volumes, n); }
LUMBARN_WIDE void volumesWide(const CellBlock& block, double* volumes, std::size_t n) {
  volumesOf(block, volumes, n);
}

/// True when the ray from the origin towards +x crosses the edge, seen in the plane of x and y. Ties are
/// decided as if the origin lay a trifle further in x and, by far less still, in y, so that the edges that
/// meet in a corner agree on its side. Who names the ends in the same order gets the same answer, rounding
/// included.
bool crosses(const Vector& a, const Vector& b) {
  if ((a.y > 0) == (b.y > 0)) return false;
  const double turn = a.x * b.y - b.x * a.y;
  return b.y > a.y ? turn > 0 : turn < 0;
}

/// True when the ray from the origin towards +z crosses the triangle.
bool crosses(const Vector& a, const Vector& b, const Vector& c) {
  const bool under = crosses(a, b) != (crosses(b, c) != crosses(a, c));  // an odd number of the three
  if (!under) return false;
  const double ux = b.x - a.x;
  const double uy = b.y - a.y;
  const double uz = b.z - a.z;
  const double vx = c.x - a.x;
  const double vy = c.y - a.y;
  const double vz = c.z - a.z;
  return a.z + ((uy * vz - uz * vy) * a.x + (uz * vx - ux * vz) * a.y) / (ux * vy - uy * vx) > 0;
}

/// The box and a rim far wider than rounding. For a point at a face, rounding decides in which of two cells
/// it is, and the box must not keep it out of that one.
Box reach(Box box) {
  const double rim = 1e-9 * (box.high.x - box.low.x + box.high.y - box.low.y + box.high.z - box.low.z);
  box.low = {box.low.x - rim, box.low.y - rim, box.low.z - rim};
  box.high = {box.high.x + rim, box.high.y + rim, box.high.z + rim};
  return box;
}

/// The four corners of each face, in order of their place: lowest, next in the first free direction, next in
/// the second, highest. Both cells at a face list them in this order.
constexpr std::array<std::array<int, 4>, 6> faces{{
    {0, 2, 4, 6},
    {1, 3, 5, 7},
    {0, 1, 4, 5},
    {2, 3, 6, 7},
    {0, 1, 2, 3},
    {4, 5, 6, 7},
}};

}  // namespace

void Box::add(const Box& other) {
  low = {std::min(low.x, other.low.x), std::min(low.y, other.low.y), std::min(low.z, other.low.z)};
  high = {std::max(high.x, other.high.x), std::max(high.y, other.high.y), std::max(high.z, other.high.z)};
}

bool isNoCell(CellCorners corners) {
  return std::ranges::all_of(corners, [](float value) { return value == 0; });
}

double cellVolume(CellCorners corners) {
  return volumeOf(
      [corners](std::size_t corner, std::size_t axis) { return double{corners[3 * corner + axis]}; });
}

void cellVolumes(const CellBlock& block, std::span<double> volumes) {
  (hasWide() ? volumesWide : volumesPlain)(block, volumes.data(), volumes.size());
}

void cellVolumes(std::span<const float> corners, std::span<double> volumes) {
  CellBlock block;
  for (std::size_t done = 0; done < volumes.size(); done += CellBlock::cells) {
    const std::size_t count = std::min(CellBlock::cells, volumes.size() - done);
    for (std::size_t cell = 0; cell < count; ++cell) {
      for (std::size_t item = 0; item < 24; ++item)
        block.items[item][cell] = corners[24 * (done + cell) + item];
    }
    cellVolumes(block, volumes.subspan(done, count));
  }
}

Point cellCentre(CellCorners corners) {
  Point sum;
  for (std::size_t i = 0; i < corners.size(); i += 3) {
    sum = {sum.x + double{corners[i]}, sum.y + double{corners[i + 1]}, sum.z + double{corners[i + 2]}};
  }
  return {sum.x / cornerCount, sum.y / cornerCount, sum.z / cornerCount};
}

Box cellBox(CellCorners corners) {
  float low[3] = {corners[0], corners[1], corners[2]};
  float high[3] = {corners[0], corners[1], corners[2]};
  float sum = 0;  // 0, or not a number when any coordinate is not finite
  for (std::size_t i = 0; i < corners.size(); i += 3) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const float value = corners[i + axis];
      low[axis] = std::min(low[axis], value);
      high[axis] = std::max(high[axis], value);
      sum += value * 0;
    }
  }
  const bool finite = sum == 0;
  if (!finite || isNoCell(corners)) return {};
  return {{low[0], low[1], low[2]}, {high[0], high[1], high[2]}};
}

bool cellContains(CellCorners corners, const Point& point) {
  if (!reach(cellBox(corners)).contains(point)) return false;
  std::array<Vector, cornerCount> from;  // the point to each corner
  for (std::size_t n = 0; n < from.size(); ++n) {
    from[n] = {corners[3 * n] - point.x, corners[3 * n + 1] - point.y, corners[3 * n + 2] - point.z};
  }
  bool inside = false;
  for (const auto& [lowest, first, second, highest] : faces) {
    inside ^= crosses(from[lowest], from[first], from[highest]);
    inside ^= crosses(from[lowest], from[second], from[highest]);
  }
  return inside;
}

}  // namespace lumbarn
