#include <cstring>
#include <limits>
#include <random>

#include <gmock/gmock.h>

#include "GridBlocks.h"
#include "GridLoad.h"
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

  // A layer of no reservoir has no corners, and that is no failure.
  const std::vector<std::int32_t> others = {2, 3, 0, 0, 0, 0};
  again.fill(7);
  iRange = 0;
  rcgetc(1, 1, 1, 1, 1, 0, cell.pillars(), cell.zcorn, others, 1, iRange, false, again, qOK);
  EXPECT_TRUE(qOK && iRange == 0);
  EXPECT_THAT(again, ::testing::Each(7));
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
  std::vector<std::int32_t> actnum = {0, 2, -1, 1}, cells;
  std::int32_t nActive = -1;
  bool qOK = false;
  processACTNUM(2, 1, 2, cells, actnum, nActive, qOK);
  EXPECT_TRUE(qOK && nActive == 2);
  EXPECT_THAT(actnum, ElementsAre(0, 1, -1, 2));
  EXPECT_THAT(cells, ElementsAre(2, 4));
  actnum = {0, 0, 0, 0};
  processACTNUM(2, 1, 2, cells, actnum, nActive, qOK);
  EXPECT_TRUE(nActive == 0 && cells.size() == 1);
}

TEST(GridProcessor, SpreadsRadialArraysOverTheAngles) {
  const std::vector<std::int32_t> source = {1, 2, 3, 4, 5, 6, 7, 8};  // 2 radii, 2 angles, 2 layers
  std::vector<std::int32_t> result;
  bool qOK = false;
  ProcessRADIALNUMTHETA<std::int32_t>(2, 4, 2, 2, 8, source, result, qOK);
  EXPECT_THAT(result, ElementsAre(1, 2, 1, 2, 3, 4, 3, 4, 5, 6, 5, 6, 7, 8, 7, 8));
  result.clear();
  ProcessRADIALNUMTHETA<std::int32_t>(2, 2, 2, 2, 8, source, result, qOK);
  EXPECT_EQ(result, source);
  for (const auto& [fine, file] : {std::pair(2, 4), std::pair(5, 2)}) {
    ProcessRADIALNUMTHETA<std::int32_t>(2, fine, 2, file, 8, source, result, qOK);
    EXPECT_FALSE(qOK) << file << " angles over " << fine;
  }
}

/// All ways to the corners of a grid's cells give the same bits: cell by cell as told, and in bulk.
TEST(GridProcessor, BulkRowsHaveTheBitsOfSingleCells) {
  constexpr std::int32_t nx = 7, ny = 5, nz = 11;
  std::mt19937 random(1);
  Hadrick grid = testing::distortedBlock({nx, ny, nz}, 3, 23);
  std::vector<std::int32_t> actnum(nx * ny * nz);
  for (auto& active : actnum) active = random() % 10 > 3;
  grid.setActive(actnum);
  std::vector<float> coord(grid.coord().begin(), grid.coord().end());
  coord[5] = coord[2];  // a pillar without height
  auto both = coord;
  both.insert(both.end(), coord.rbegin(), coord.rend());
  grid.setPillars(both, {{1, 4}, {6, 11}});  // layer 5 is in none
  XYData depths(8, actnum.size(), Session::process());
  std::ranges::copy(grid.zcorn(), depths.values().begin());
  depths.values()[5] = std::numeric_limits<float>::quiet_NaN();
  const std::vector<float> zcorn(depths.values().begin(), depths.values().end());
  grid.setDepths(std::move(depths), false);

  const std::vector<std::int32_t> ranges = {1, 4, 0, 0, 0, 0, 6, 11, 0, 0, 0, 0};
  const std::vector<std::int32_t> numbers(grid.activeNumbers().begin(), grid.activeNumbers().end());
  Session session;
  XYData expected;
  bool qOK = false;
  processCornerPoints(nx, ny, nz, both, zcorn, 2, ranges, numbers, grid.nActive(), expected, session, qOK);
  ASSERT_TRUE(qOK);
  const auto sameBits = [](std::span<const float> a, std::span<const float> b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size_bytes()) == 0;
  };
  EXPECT_TRUE(sameBits(activeRows(grid), expected.values()));
  for (std::int32_t n = 1; n <= grid.nActive(); ++n)
    EXPECT_TRUE(sameBits(cornersOf(grid, grid.cellOf(n)), expected.column(static_cast<std::size_t>(n)))) << n;
  // A part of a line, of a layer, of two layers, and across the one that is in no reservoir.
  for (const std::size_t count : {2, 7, 50, 150}) {
    std::vector<float> part(24 * count);
    for (std::size_t first = 0; first + count <= static_cast<std::size_t>(grid.nActive()); first += 3) {
      grid.activeCorners(static_cast<std::int32_t>(first) + 1, part);
      ASSERT_TRUE(sameBits(part, expected.values().subspan(24 * first, part.size())))
          << count << " from " << first;
    }
  }
  XYData all, active;
  getReservoirCORNERSArray_Grid(grid, 2, all, session, qOK);
  EXPECT_TRUE(qOK && sameBits(all.column(3), cornersOf(grid, grid.cellAt(3, 1, 6))));
  getReservoirActiveCORNERSArray_Grid(grid, 2, active, session, qOK);
  EXPECT_TRUE(sameBits(active.values(), expected.values().last(active.values().size())));
  EXPECT_FALSE(grid.hasCorners(grid.cellAt(1, 1, 5)));
}

}  // namespace

}  // namespace lumbarn::test
