#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

#include <gmock/gmock.h>

#include "GridLoad.h"
#include "grid/CellGeometryOfGrid.h"
#include "grid/qvGridProcessor.h"

namespace lumbarn::test {

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

/// One cell between a vertical pillar, a leaning one, one without height, and one that stands on its head.
struct OneCell {
  std::vector<float> coord = {0,  0,  100, 0,  0,  200,   // vertical
                              10, 0,  100, 20, 4,  200,   // leaning
                              0,  10, 150, 7,  7,  150,   // without height
                              10, 10, 200, 16, 10, 100};  // bottom above top
  std::vector<float> zcorn = {120, 150, 130, 140, 180, 250, 190, 50};
  std::vector<std::int32_t> ranges = {1, 1, 0, 0, 0, 0};
  COORDArray pillars() const { return {coord, 1, 1, 1}; }
};

TEST(GridProcessor, CornersLieOnTheirPillars) {
  const OneCell cell;
  CornerArray corners{};
  std::int32_t iRange = 0;
  bool qOK = false;
  rcgetc(1, 1, 1, 1, 1, 0, cell.pillars(), cell.zcorn, cell.ranges, 1, iRange, false, corners, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(iRange, 1);
  // Corner 6 lies below its pillar, corner 8 above it: both go on along the line.
  const CornerArray expected = {0, 0, 120, 15, 2, 150, 0, 10, 130, 13.6F, 10, 140,
                                0, 0, 180, 25, 6, 250, 0, 10, 190, 19,    10, 50};
  EXPECT_THAT(corners, ElementsAreArray(expected));

  // The same from a compressed ZCORN, K fastest and I slowest, and by gradients.
  const std::vector<float> packed = {0, 0, 0, 0, 0, 0, 0, 0, 120, 180, 130, 190, 150, 250, 140, 50};
  CornerArray again{};
  rcgetc(1, 1, 1, 1, 1, 2, cell.pillars(), packed, cell.ranges, 1, iRange, true, again, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(again, expected);
  std::vector<float> grad;
  coordgrad(cell.pillars(), grad, qOK);
  EXPECT_THAT(grad, ElementsAre(0.01F, 0.01F, 0.0F, -0.01F));
  getCorners(1, 1, 1, 1, 1, 0, cell.pillars(), grad, cell.zcorn, cell.ranges, 1, iRange, false, again, qOK);
  EXPECT_TRUE(qOK);
  for (std::size_t n = 0; n < 24; ++n) EXPECT_NEAR(again[n], expected[n], 1e-5);
}

TEST(GridProcessor, ALayerOfNoReservoirHasNoCornersAndIsNoFailure) {
  OneCell cell;
  cell.ranges = {2, 3, 0, 0, 0, 0};
  CornerArray corners{};
  corners.fill(7);
  std::int32_t iRange = 0;
  bool qOK = false;
  rcgetc(1, 1, 1, 1, 1, 0, cell.pillars(), cell.zcorn, cell.ranges, 1, iRange, false, corners, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(iRange, 0);
  EXPECT_THAT(corners, ::testing::Each(7));
}

TEST(GridProcessor, ArraysThatDoNotGoWithTheSizesAreRefused) {
  const OneCell cell;
  Session session;
  XYData corners;
  bool qOK = true;
  const std::vector<std::int32_t> active = {1};
  const auto process = [&](std::int32_t Nx, std::size_t depths, std::size_t words) {
    processCornerPoints(Nx, 1, 1, cell.coord, std::span(cell.zcorn).first(depths), 1,
                        std::span(cell.ranges).first(words), active, 1, corners, session, qOK);
    return qOK;
  };
  EXPECT_TRUE(process(1, 8, 6));
  EXPECT_EQ(corners(4, 1), 15);
  EXPECT_FALSE(process(2, 8, 6));
  EXPECT_FALSE(process(1, 7, 6));
  EXPECT_FALSE(process(1, 8, 0));
}

TEST(GridProcessor, NumbersActiveCells) {
  std::vector<std::int32_t> actnum = {0, 2, -1, 1};
  std::vector<std::int32_t> cells;
  std::int32_t nActive = -1;
  bool qOK = false;
  processACTNUM(2, 1, 2, cells, actnum, nActive, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(nActive, 2);
  EXPECT_THAT(actnum, ElementsAre(0, 1, -1, 2));
  EXPECT_THAT(cells, ElementsAre(2, 4));
  actnum = {0, 0, 0, 0};
  processACTNUM(2, 1, 2, cells, actnum, nActive, qOK);
  EXPECT_EQ(nActive, 0);
  EXPECT_EQ(cells.size(), 1U);
}

TEST(GridProcessor, SpreadsRadialArraysOverTheAngles) {
  const std::vector<std::int32_t> source = {1, 2, 3, 4, 5, 6, 7, 8};  // 2 radii, 2 angles, 2 layers
  std::vector<std::int32_t> result;
  bool qOK = false;
  ProcessRADIALNUMTHETA<std::int32_t>(2, 4, 2, 2, 8, source, result, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_THAT(result, ElementsAre(1, 2, 1, 2, 3, 4, 3, 4, 5, 6, 5, 6, 7, 8, 7, 8));
  result.clear();
  ProcessRADIALNUMTHETA<std::int32_t>(2, 2, 2, 2, 8, source, result, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(result, source);
  for (const auto& [fine, file] : {std::pair(2, 4), std::pair(5, 2)}) {
    ProcessRADIALNUMTHETA<std::int32_t>(2, fine, 2, file, 8, source, result, qOK);
    EXPECT_FALSE(qOK) << file << " angles over " << fine;
  }
}

/// All ways to the corners of a grid's cells give the same bits: cell by cell as told, and in bulk.
TEST(GridProcessor, BulkRowsHaveTheBitsOfSingleCells) {
  constexpr std::int32_t nx = 7, ny = 5, nz = 11;
  constexpr std::size_t cells = nx * ny * nz;
  std::uint32_t state = 1;
  const auto random = [&](float low, float high) {
    state = state * 1664525 + 1013904223;
    return low + (high - low) * static_cast<float>(state >> 8) / static_cast<float>(1 << 24);
  };
  std::vector<float> coord;
  for (int p = 0; p < 2 * (nx + 1) * (ny + 1); ++p) {
    const float z = random(900, 1000);
    const bool flat = p % 9 == 0;
    coord.insert(coord.end(), {random(4e5F, 5e5F), random(5e6F, 6e6F), z, random(4e5F, 5e5F),
                               random(5e6F, 6e6F), flat ? z : z + random(1, 100)});
  }
  std::vector<float> zcorn(8 * cells);
  for (auto& z : zcorn) z = random(800, 1200);
  zcorn[5] = std::numeric_limits<float>::quiet_NaN();
  std::vector<std::int32_t> actnum(cells);
  for (auto& active : actnum) active = random(0, 1) > 0.3F ? 1 : 0;
  const std::vector<std::int32_t> ranges = {1, 4, 0, 0, 0, 0, 6, 11, 0, 0, 0, 0};  // layer 5 is in none

  Session session;
  Hadrick grid(session);
  grid.setSize(nx, ny, nz);
  grid.setActive(actnum);
  grid.setPillars(coord, {{1, 4}, {6, 11}});
  XYData depths(8, cells, session);
  std::ranges::copy(zcorn, depths.values().begin());
  grid.setDepths(std::move(depths), false);
  std::vector<std::int32_t> numbers(grid.activeNumbers().begin(), grid.activeNumbers().end());
  XYData expected;
  bool qOK = false;
  processCornerPoints(nx, ny, nz, coord, zcorn, 2, ranges, numbers, grid.nActive(), expected, session, qOK);
  ASSERT_TRUE(qOK);
  const auto sameBits = [](std::span<const float> a, std::span<const float> b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size_bytes()) == 0;
  };
  EXPECT_TRUE(sameBits(activeRows(grid), expected.values()));
  for (std::int32_t n = 1; n <= grid.nActive(); ++n) {
    EXPECT_TRUE(sameBits(cornersOf(grid, grid.cellOf(n)), expected.column(static_cast<std::size_t>(n)))) << n;
  }
  std::vector<double> volumes(cells);
  cellVolumes(grid, 1, volumes);
  for (std::int32_t cell = 9; cell <= grid.nCells(); ++cell) {  // behind those at the depth that is no number
    const double rounded = cellVolume(cornersOf(grid, cell));
    EXPECT_NEAR(volumes[static_cast<std::size_t>(cell) - 1], rounded, 1e-4 * std::abs(rounded) + 1e7) << cell;
  }
  // A part of a line, of a layer, of two layers, and across the one that is in no reservoir.
  for (const std::size_t count : {2, 7, 50, 150}) {
    std::vector<float> part(24 * count);
    for (std::int32_t first = 1; first + static_cast<std::int32_t>(count) - 1 <= grid.nActive(); first += 3) {
      grid.activeCorners(first, part);
      ASSERT_TRUE(
          sameBits(part, expected.values().subspan(24 * (static_cast<std::size_t>(first) - 1), part.size())))
          << count << " from " << first;
    }
  }
  XYData all;
  getReservoirCORNERSArray_Grid(grid, 2, all, session, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_TRUE(sameBits(all.column(3), cornersOf(grid, grid.cellAt(3, 1, 6))));
  XYData active;
  getReservoirActiveCORNERSArray_Grid(grid, 2, active, session, qOK);
  EXPECT_TRUE(sameBits(active.values(), expected.values().last(active.values().size())));
  EXPECT_FALSE(grid.hasCorners(grid.cellAt(1, 1, 5)));
}

}  // namespace

}  // namespace lumbarn::test
