#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "GridBlocks.h"
#include "grid/PointLocator.h"

namespace lumbarn::testing {
namespace {

std::int32_t searched(const Hadrick& grid, CellChoice choice, const Point& point) {
  std::int32_t found = 0;
  forEachCell(grid, choice, [&](std::int32_t iCell, CellCorners corners) {
    if (found == 0 && cellContains(corners, point)) found = iCell;
  });
  return found;
}

struct Block {
  const char* name;
  std::array<std::int32_t, 3> size;
  float lean;
  float fault;
};
const Block blocks[] = {
    {"upright", {9, 7, 8}, 0, 0},
    {"faulted", {8, 9, 10}, 0, 23},
    {"leaning far over several columns, faulted", {12, 10, 6}, 3, 15},
    {"one layer", {20, 11, 1}, 0.2F, 0},
    {"one row", {1, 40, 3}, 0.2F, 0},
    {"one cell", {1, 1, 1}, 0.2F, 0},
};

TEST(PointLocator, FindsWhatASearchOfAllCellsFinds) {
  std::mt19937 random(3);
  for (const Block& block : blocks) {
    Hadrick grid = distortedBlock(block.size, block.lean, block.fault);
    std::vector<std::int32_t> actnum(static_cast<std::size_t>(grid.nCells()));
    for (auto& active : actnum) active = random() % 4 > 0;
    actnum.front() = 1;
    grid.setActive(actnum);
    const Box box = gridExtent(grid, CellChoice::All);
    const auto between = [&](double low, double high) {
      return std::uniform_real_distribution(low - 0.05 * (high - low), high + 0.05 * (high - low))(random);
    };
    int hits = 0;
    for (const CellChoice choice : {CellChoice::Active, CellChoice::All}) {
      const PointLocator locator(grid, choice);
      for (int n = 0; n < 150; ++n) {
        const Point point{between(box.low.x, box.high.x), between(box.low.y, box.high.y),
                          between(box.low.z, box.high.z)};
        const std::int32_t found = locator.find(point);
        ASSERT_EQ(found, searched(grid, choice, point)) << block.name;
        hits += found > 0;
      }
      // A centre may lie outside of a cell that is bent enough, but the search says the same.
      forEachCell(grid, choice, [&](std::int32_t iCell, CellCorners corners) {
        if (iCell % 5 > 0) return;
        const Point centre = cellCentre(corners);
        ASSERT_EQ(locator.find(centre), searched(grid, choice, centre)) << block.name;
      });
    }
    EXPECT_GT(hits, 40) << block.name;
  }
}

TEST(PointLocator, DamagedCellsAreLeftAside) {
  Hadrick grid = distortedBlock({4, 4, 2}, 0, 0);
  XYData depths(8, 32, Session::process());
  std::ranges::copy(grid.zcorn(), depths.values().begin());
  depths.values()[0] = NAN;  // of cell 1
  depths.values()[2] = INFINITY;
  grid.setDepths(std::move(depths), false);
  const PointLocator locator(grid);
  EXPECT_TRUE(std::isfinite(locator.extent().high.z));
  std::array<float, 24> below;
  ASSERT_TRUE(grid.corners(17, below));
  Point point = cellCentre(below);
  EXPECT_EQ(locator.find(point), 17);
  point.z -= 10;
  EXPECT_EQ(locator.find(point), 0);
  EXPECT_EQ(locator.find({NAN, point.y, point.z}), 0);
  const Hadrick none;
  EXPECT_EQ(PointLocator(none).find({0, 0, 0}), 0);
}

}  // namespace
}  // namespace lumbarn::testing
