#include "RadialGrid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "CellGeometryOfGrid.h"
#include "Refinement.h"

namespace lumbarn {

namespace {

constexpr double circle = 360;
constexpr double sameAngle = 1e-3;  // angles are sums of singles

/// Of an axis: the first and last host cell.
struct Hosts {
  std::int32_t first = std::numeric_limits<std::int32_t>::max();
  std::int32_t last = 0;

  void add(std::int32_t place) {
    first = std::min(first, place);
    last = std::max(last, place);
  }
  std::int32_t middle() const { return first + (last - first) / 2; }
  /// Whether a corner at the low (0) or high side of the middle cell belongs to the middle of all.
  bool counts(std::size_t side) const { return (last - first) % 2 == 0 || side == 1; }
};

/// The mean of the corners at the middle of the hosts, over all layers.
class Middle {
 public:
  explicit Middle(const Hadrick& parent) : parent_(parent) {}

  void add(std::int32_t iCell, const Hosts& hostsI, const Hosts& hostsJ) {
    const auto place = parent_.placeOf(iCell);
    std::array<float, Hadrick::rowItems> row{};
    if (place[0] != hostsI.middle() || place[1] != hostsJ.middle() || !parent_.corners(iCell, row)) return;
    for (std::size_t n = 0; n < 8; ++n) {
      if (!hostsI.counts(n & 1) || !hostsJ.counts(n >> 1 & 1)) continue;
      sum_.x += row[3 * n];
      sum_.y += row[3 * n + 1];
      ++count_;
    }
  }
  RadialCenter center() const {
    if (count_ == 0 || !std::isfinite(sum_.x + sum_.y)) return {};
    return {sum_.x / count_, sum_.y / count_};
  }

 private:
  const Hadrick& parent_;
  RadialCenter sum_;
  double count_ = 0;
};

}  // namespace

RadialCenter radialCenter(std::span<const std::shared_ptr<Hadrick>> grids, const Hadrick& grid) {
  if (grid.iParent < 1 || static_cast<std::size_t>(grid.iParent) > grids.size()) return {};
  const Hadrick& parent = *grids[static_cast<std::size_t>(grid.iParent) - 1];
  if (isRadial(parent)) return {};
  const auto hosts = hostsOf(parent, grid);
  Hosts hostsI, hostsJ;
  for (const std::int32_t iCell : hosts) {
    const auto place = parent.placeOf(iCell);
    hostsI.add(place[0]);
    hostsJ.add(place[1]);
  }
  Middle middle(parent);
  for (const std::int32_t iCell : hosts) middle.add(iCell, hostsI, hostsJ);
  return middle.center();
}

Box extentOf(std::span<const std::shared_ptr<Hadrick>> grids, const Hadrick& grid) {
  if (!isRadial(grid)) return gridExtent(grid);
  constexpr double quarter = circle / 4;
  const RadialCenter center = radialCenter(grids, grid);
  Box all;
  forEachCell(grid, CellChoice::Active, [&](std::int32_t, CellCorners corners) {
    for (const std::size_t n : {0U, 1U, 4U, 5U}) {  // sides along theta, from corner n to corner n + 2
      const float* from = corners.data() + 3 * n;
      const float* to = from + 6;
      const auto add = [&](const float* corner, double theta) {
        const Point point = cylinderPoint(center, corner[0], theta, corner[2], theta);
        if (std::isfinite(point.x + point.y + point.z)) all.add({point, point});
      };
      add(from, from[1]);
      add(to, to[1]);
      const double low = std::min(from[1], to[1]), high = std::max(from[1], to[1]);
      if (!(high - low <= circle) || !std::isfinite(high)) continue;
      // An arc reaches farthest at multiples of 90 degrees. They are counted, because adding 90 to a large
      // angle, as in a damaged file, may not change it.
      const double first = std::ceil(low / quarter) * quarter;
      for (int turn = 0; turn <= 4 && first + turn * quarter <= high; ++turn)
        add(from, first + turn * quarter);
    }
  });
  return all;
}

/// A ring between two radii has the area of its angle times half the difference of their squares, so the
/// volumes are those of plain cells in half the square of r, the angle in radians, and z.
void radialVolumes(const Hadrick& grid, std::int32_t iFirstCell, std::span<double> volumes) {
  constexpr double radians = 2 * std::numbers::pi / circle;
  CellBlock block;
  std::vector<float> rows(Hadrick::rowItems * CellBlock::cells);
  for (std::size_t done = 0; done < volumes.size(); done += CellBlock::cells) {
    const std::size_t count = std::min(CellBlock::cells, volumes.size() - done);
    grid.cellCorners(iFirstCell + static_cast<std::int32_t>(done),
                     std::span(rows).first(Hadrick::rowItems * count));
    for (std::size_t cell = 0; cell < count; ++cell) {
      for (std::size_t item = 0; item < Hadrick::rowItems; item += 3) {
        const float* corner = rows.data() + Hadrick::rowItems * cell + item;
        block.items[item][cell] = double{corner[0]} * corner[0] / 2;
        block.items[item + 1][cell] = corner[1] * radians;
        block.items[item + 2][cell] = corner[2];
      }
    }
    cellVolumes(block, volumes.subspan(done, count));
  }
}

Point cylinderPoint(const RadialCenter& center, double r, double theta, double z, double firstAngle) {
  double turned = std::remainder(theta - firstAngle, circle);
  if (std::abs(turned) < sameAngle) turned = 0;
  const double angle = (firstAngle + turned) * std::numbers::pi / (circle / 2);
  return {center.x + r * std::cos(angle), center.y + r * std::sin(angle), z};
}

}  // namespace lumbarn
