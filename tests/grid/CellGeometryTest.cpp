#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "GridBlocks.h"
#include "grid/CellGeometry.h"
#include "grid/CellGeometryOfGrid.h"
#include "support/Fault.h"

namespace lumbarn::testing {
namespace {

using Row = std::array<float, 24>;

/// The unit cell with each corner taken through a function of x, y and z.
template <class Map>
Row cell(Map map) {
  Row row;
  for (std::size_t n = 0; n < 8; ++n) {
    const std::array<double, 3> point =
        map(static_cast<double>(n & 1), static_cast<double>(n >> 1 & 1), static_cast<double>(n >> 2));
    for (std::size_t axis = 0; axis < 3; ++axis) row[3 * n + axis] = static_cast<float>(point[axis]);
  }
  return row;
}
using P = std::array<double, 3>;

struct Shape {
  const char* name;
  Row row;
  double volume;
};
const Shape shapes[] = {
    {"box at map coordinates", cell([](auto i, auto j, auto k) {
       return P{460000 + 50 * i, 5930600 + 25 * j, 2000 + 4 * k};
     }),
     5000},
    {"sheared", cell([](auto i, auto j, auto k) {
       return P{2 * i + 3 * k, j - i, k + 5 * i + j};
     }),
     -16},
    {"wedge, pinched along one side", cell([](auto i, auto j, auto k) {
       return P{i, j, k * i};
     }),
     0.5},
    {"twisted: area of the cut at each depth is (1 + k/2) squared", cell([](auto i, auto j, auto k) {
       return P{i * (1 + k / 2), j * (1 + k / 2), k};
     }),
     2.375 / 1.5},
    {"saddle on top: the mean of the heights, which no cut into six tetrahedra gives",
     cell([](auto i, auto j, auto k) {
       return P{i, j, k + (1 - k) * 0.25 * i * j};
     }),
     1 - 0.0625},
    {"inverted", cell([](auto i, auto j, auto k) {
       return P{i, j, 7 - 3 * k};
     }),
     -3},
    {"no corners", Row{}, 0},
};

TEST(CellGeometry, VolumesAreThoseOfTheTrilinearCell) {
  for (const Shape& shape : shapes) {
    EXPECT_NEAR(cellVolume(shape.row), shape.volume, 1e-6) << shape.name;
  }
  std::vector<float> rows;
  for (const Shape& shape : shapes) rows.insert(rows.end(), shape.row.begin(), shape.row.end());
  std::vector<double> volumes(std::size(shapes));
  cellVolumes(rows, volumes);
  for (std::size_t i = 0; i < volumes.size(); ++i) EXPECT_EQ(volumes[i], cellVolume(shapes[i].row));
}

TEST(CellGeometry, VolumesOfARangeAreThoseOfItsCells) {
  Hadrick grid = distortedBlock({300, 3, 4}, 0.2F, 17);
  for (const bool coarse : {false, true}) {
    if (coarse) grid.setCoarse({{.iCell = 1, .iBox = {1, 2, 1, 1, 1, 2}}});
    for (const auto& [first, count] : {std::pair{140, 3000}, {1, 1}}) {
      std::vector<double> volumes(static_cast<std::size_t>(count));
      cellVolumes(grid, first, volumes);
      Row row{};
      for (int n = 0; n < count; ++n) {
        grid.corners(first + n, row);  // of 100,000; corners of a row are rounded
        ASSERT_NEAR(volumes[static_cast<std::size_t>(n)], cellVolume(row), 10) << n;
      }
    }
  }
  std::vector<double> tooMany(3);
  EXPECT_THROW(cellVolumes(grid, grid.nCells() - 1, tooMany), Fault);
}

TEST(CellGeometry, DamagedCellsHoldNothing) {
  const auto whole = cell([](double i, double j, double k) -> P { return {i, j, k}; });
  const Point middle{0.5, 0.5, 0.5};
  ASSERT_TRUE(cellContains(whole, middle));
  for (const float bad : {NAN, INFINITY, -INFINITY}) {
    for (std::size_t item = 0; item < 24; ++item) {
      Row row = whole;
      row[item] = bad;
      EXPECT_FALSE(cellContains(row, middle)) << item;
      EXPECT_TRUE(cellBox(row).empty()) << item;
      EXPECT_FALSE(std::isfinite(cellVolume(row))) << item;
    }
  }
  EXPECT_FALSE(cellContains(Row{}, Point{}));
  EXPECT_FALSE(cellContains(whole, {NAN, 0.5, 0.5}));
  Row huge = whole;
  huge[0] = -std::numeric_limits<float>::max();
  EXPECT_TRUE(std::isfinite(cellVolume(huge)));
}

TEST(CellGeometry, PinchedAndInvertedCellsHoldWhatIsBetweenTheirFaces) {
  EXPECT_TRUE(cellContains(shapes[2].row, {0.75, 0.5, 0.5}));
  EXPECT_FALSE(cellContains(shapes[2].row, {0.25, 0.5, 0.5}));
  EXPECT_TRUE(cellContains(shapes[5].row, {0.5, 0.5, 5}));
}

/// The point of a cell at shares u, v, w of its way in I, J and K.
Point within(const Row& row, double u, double v, double w) {
  Point point;
  for (std::size_t n = 0; n < 8; ++n) {
    const double weight = (n & 1 ? u : 1 - u) * (n & 2 ? v : 1 - v) * (n & 4 ? w : 1 - w);
    point.x += weight * row[3 * n];
    point.y += weight * row[3 * n + 1];
    point.z += weight * row[3 * n + 2];
  }
  return point;
}

/// Points in, on the faces, edges and corners of inner cells of a block: none is lost, and none is in several
/// cells, unless it is on an edge that leans.
TEST(CellGeometry, NeighboursLeaveNoGapAndDoNotOverlap) {
  const double shares[] = {0, 0.25, 0.5, 0.6123, 1};
  for (const float lean : {0.0F, 0.1F}) {
    const Hadrick grid = distortedBlock({5, 4, 6}, lean, 0);
    Row row;
    for (const auto& [i, j, k] : {std::array{2, 2, 2}, std::array{3, 3, 4}, std::array{4, 2, 5}}) {
      ASSERT_TRUE(grid.corners(grid.cellAt(i, j, k), row));
      for (int n = 0; n < 125; ++n) {
        const std::array at{shares[n % 5], shares[n / 5 % 5], shares[n / 25]};
        const auto ends = std::ranges::count_if(at, [](double share) { return share == 0 || share == 1; });
        const Point point = within(row, at[0], at[1], at[2]);
        int holders = 0;
        forEachCell(grid, CellChoice::All,
                    [&](std::int32_t, CellCorners corners) { holders += cellContains(corners, point); });
        EXPECT_EQ(holders % 2, 1) << lean << " " << n;
        EXPECT_LE(holders, lean == 0 || ends < 2 ? 1 : 3) << lean << " " << n;
      }
    }
  }
}

}  // namespace
}  // namespace lumbarn::testing
