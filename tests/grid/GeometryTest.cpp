#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>

#include <gmock/gmock.h>

#include "GridBlocks.h"
#include "GridLoad.h"
#include "grid/CellGeometry.h"
#include "grid/CellGeometryOfGrid.h"
#include "grid/PointLocator.h"
#include "grid/qvGridProcessor.h"
#include "record/RecordCursor.h"
#include "support/Fault.h"
#include "support/Host.h"
#include "support/Paths.h"

namespace lumbarn::testing {
namespace {

using test::activeRows;
using test::cornersOf;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

using Row = std::array<float, 24>;

/// The corners of a cell from the factors of 1, i, j, k, i j, i k, j k and i j k in x, y and z.
Row cell(const std::array<std::array<double, 8>, 3>& factors) {
  Row row;
  for (std::size_t n = 0; n < 8; ++n) {
    const double i = static_cast<double>(n & 1), j = static_cast<double>(n >> 1 & 1),
                 k = static_cast<double>(n >> 2);
    const std::array<double, 8> terms{1, i, j, k, i * j, i * k, j * k, i * j * k};
    for (std::size_t axis = 0; axis < 3; ++axis)
      row[3 * n + axis] =
          static_cast<float>(std::inner_product(terms.begin(), terms.end(), factors[axis].begin(), 0.0));
  }
  return row;
}
const Row unitCell = cell({{{0, 1}, {0, 0, 1}, {0, 0, 0, 1}}});

const struct {
  const char* name;
  Row row;
  double volume;
} shapes[] = {
    {"at map coordinates", cell({{{460000, 50}, {5930600, 0, 25}, {2000, 0, 0, 4}}}), 5000},
    {"sheared", cell({{{0, 2, 0, 3}, {0, -1, 1}, {0, 5, 1, 1}}}), -16},
    {"wedge, pinched along one side", cell({{{0, 1}, {0, 0, 1}, {0, 0, 0, 0, 0, 1}}}), 0.5},
    // The area of the cut at each depth is (1 + k/2) squared.
    {"twisted", cell({{{0, 1, 0, 0, 0, 0.5}, {0, 0, 1, 0, 0, 0, 0.5}, {0, 0, 0, 1}}}), 2.375 / 1.5},
    // The mean of the heights, which no cut into six tetrahedra gives.
    {"saddle on top", cell({{{0, 1}, {0, 0, 1}, {0, 0, 0, 1, 0.25, 0, 0, -0.25}}}), 1 - 0.0625},
    {"inverted", cell({{{0, 1}, {0, 0, 1}, {7, 0, 0, -3}}}), -3},
    {"no corners", Row{}, 0},
};

std::vector<float> singlesOf(const std::string& path, const std::string& keyword) {
  std::string why;
  const auto cursor = openRecords(path, why);
  while (cursor && cursor->next()) {
    if (cursor->header().is(keyword, ElementType::Single)) return cursor->singles();
  }
  return {};
}

/// Corners near y = 6,000,000 are singles half a unit apart, which volumes must not show.
TEST(GridSamples, VolumesAreThoseOfTheSimulator) {
  constexpr double cubicFeetInBarrel = 5.614583;
  const std::pair<std::string, double> samples[] = {{"/data/HOLLIN/HOLLIN", 1},
                                                    {"/data/ARBOR/ARBOR", cubicFeetInBarrel}};
  for (const auto& [run, volumeUnit] : samples) {
    const auto path = examplePath(run);
    const auto porv = singlesOf(path + ".INIT", "PORV"), poro = singlesOf(path + ".INIT", "PORO"),
               ntg = singlesOf(path + ".INIT", "NTG");
    test::Host host(path + ".EGRID", 23);
    ASSERT_TRUE(host.run());
    std::shared_ptr<Hadrick> grid;
    bool qOK = false;
    host.reader.GetGRIDData(1, grid, qOK);
    ASSERT_EQ(static_cast<std::size_t>(grid->nActive()), poro.size());
    std::vector<double> volumes(porv.size());
    cellVolumes(*grid, 1, volumes);
    for (std::size_t n = 0; n < poro.size(); ++n) {
      const auto at = static_cast<std::size_t>(grid->cellOf(static_cast<std::int32_t>(n) + 1)) - 1;
      const double bulk =
          static_cast<double>(porv[at]) * volumeUnit / (static_cast<double>(poro[n]) * ntg.at(n));
      EXPECT_NEAR(std::abs(volumes[at]) / bulk, 1, 1e-4) << run << ", active cell " << n + 1;
    }
  }
}

TEST(CellGeometry, VolumesAreThoseOfTheTrilinearCell) {
  for (const auto& shape : shapes) EXPECT_NEAR(cellVolume(shape.row), shape.volume, 1e-6) << shape.name;
}

TEST(CellGeometry, VolumesOfARangeAreThoseOfItsCells) {
  Hadrick grid = distortedBlock({300, 3, 4}, 0.2F, 17);
  for (const bool coarse : {false, true}) {
    if (coarse) grid.setCoarse({{.iCell = 1, .iBox = {1, 2, 1, 1, 1, 2}}});
    for (const auto& [first, count] : {std::pair{140, 3000}, {1, 1}}) {
      std::vector<double> volumes(static_cast<std::size_t>(count));
      cellVolumes(grid, first, volumes);
      for (int n = 0; n < count; ++n)  // of 100,000; corners of a row are rounded
        ASSERT_NEAR(volumes[static_cast<std::size_t>(n)], cellVolume(cornersOf(grid, first + n)), 10) << n;
    }
  }
  std::vector<double> three(3);
  EXPECT_THROW(cellVolumes(grid, grid.nCells() - 1, three), Fault);
  Hadrick bare;  // without depths
  bare.setSize(3, 1, 1);
  cellVolumes(bare, 1, three);
  EXPECT_THAT(three, ::testing::Each(0));
}

TEST(CellGeometry, DamagedCellsHoldNothing) {
  const Point middle{0.5, 0.5, 0.5};
  ASSERT_TRUE(cellContains(unitCell, middle));
  for (std::size_t item = 0; item < 24; ++item) {
    Row row = unitCell;
    row[item] = item % 2 == 0 ? NAN : INFINITY;
    EXPECT_FALSE(cellContains(row, middle) || std::isfinite(cellVolume(row))) << item;
    EXPECT_TRUE(cellBox(row).empty()) << item;
  }
  EXPECT_FALSE(cellContains(Row{}, Point{}) || cellContains(unitCell, {NAN, 0.5, 0.5}));
  Row huge = unitCell;
  huge[0] = -std::numeric_limits<float>::max();
  EXPECT_TRUE(std::isfinite(cellVolume(huge)));
  // Pinched and inverted cells hold what is between their faces.
  EXPECT_TRUE(cellContains(shapes[2].row, {0.75, 0.5, 0.5}));
  EXPECT_FALSE(cellContains(shapes[2].row, {0.25, 0.5, 0.5}));
  EXPECT_TRUE(cellContains(shapes[5].row, {0.5, 0.5, 5}));
}

std::int32_t searched(const Hadrick& grid, CellChoice choice, const Point& point) {
  std::int32_t found = 0;
  forEachCell(grid, choice, [&](std::int32_t iCell, CellCorners corners) {
    if (found == 0 && cellContains(corners, point)) found = iCell;
  });
  return found;
}

TEST(PointLocator, FindsWhatASearchOfAllCellsFinds) {
  const std::tuple<const char*, std::array<std::int32_t, 3>, float, float> blocks[] = {
      {"upright", {9, 7, 8}, 0, 0},        {"faulted", {8, 9, 10}, 0, 23},
      {"leaning far", {12, 10, 6}, 3, 15}, {"one layer", {20, 11, 1}, 0.2F, 0},
      {"one row", {1, 40, 3}, 0.2F, 0},    {"one cell", {1, 1, 1}, 0.2F, 0}};
  std::mt19937 random(3);
  for (const auto& [name, size, lean, fault] : blocks) {
    Hadrick grid = distortedBlock(size, lean, fault);
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
      std::vector<Point> points;
      for (int n = 0; n < 150; ++n)
        points.push_back(
            {between(box.low.x, box.high.x), between(box.low.y, box.high.y), between(box.low.z, box.high.z)});
      // A center may lie outside of a cell that is bent enough, but the search says the same.
      forEachCell(grid, choice, [&](std::int32_t iCell, CellCorners corners) {
        if (iCell % 5 == 0) points.push_back(cellCentre(corners));
      });
      for (const Point& point : points) {
        const std::int32_t found = locator.find(point);
        ASSERT_EQ(found, searched(grid, choice, point)) << name;
        hits += found > 0;
      }
    }
    EXPECT_GT(hits, 40) << name;
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
  Point point = cellCentre(cornersOf(grid, 17));
  EXPECT_EQ(locator.find(point), 17);
  point.z -= 10;
  EXPECT_EQ(locator.find(point) + locator.find({NAN, point.y, point.z}), 0);
  const Hadrick none;
  EXPECT_EQ(PointLocator(none).find({0, 0, 0}), 0);
}

/// One cell between a vertical pillar, a leaning one, one without height, and one that stands on its head.
struct OneCell {
  std::vector<float> coord = {0,  0,  100, 0,  0,  200,   // vertical
                              10, 0,  100, 20, 4,  200,   // leaning
                              0,  10, 150, 7,  7,  150,   // without height
                              10, 10, 200, 16, 10, 100};  // bottom above top
  std::vector<float> zcorn = {120, 150, 130, 140, 180, 250, 190, 50};
  std::vector<std::int32_t> ranges = {1, 1, 0, 0, 0, 0};
};

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
  std::vector<std::int32_t> cells, actnum = {0, 0};
  std::int32_t nActive = -1;
  processACTNUM(2, 1, 1, cells, actnum, nActive, qOK);
  EXPECT_TRUE(qOK && nActive == 0 && cells.size() == 1);
}

/// All ways to the corners of a grid's cells give the same bits: cell by cell as told, and in bulk.
TEST(GridProcessor, BulkRowsHaveTheBitsOfSingleCells) {
  constexpr std::int32_t nx = 7, ny = 5, nz = 11;
  std::mt19937 random(1);
  Hadrick grid = distortedBlock({nx, ny, nz}, 3, 23);
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
  getActiveCORNERSArray_Grid(grid, active, session, qOK);
  EXPECT_TRUE(sameBits(active.values(), expected.values()));
  getCORNERSArray_Grid(grid, all, session, qOK);
  const std::int32_t cell = grid.cellAt(3, 2, 6);
  const auto row = cornersOf(grid, cell);
  EXPECT_TRUE(sameBits(all.column(static_cast<std::size_t>(cell)), row));
  const CornerCall call{nx, ny, {both, nx, ny, 2}, zcorn, ranges, 2};
  std::vector<float> rows(24 * actnum.size()), grad;
  GetCellCorners(call, 3, 2, 6, rows, qOK);
  EXPECT_TRUE(qOK && sameBits(std::span(rows).subspan(24 * static_cast<std::size_t>(cell - 1), 24), row));
  coordgrad(call.sCOORD, grad, qOK);
  GetActiveCellCornersOpt(call, grad, 3, 2, 6, 1, rows, qOK);
  for (std::size_t n = 0; n < 24; ++n) EXPECT_NEAR(rows[n], row[n], 0.05) << n;
  GetCellCorners(call, 3, 2, nz + 1, rows, qOK);
  EXPECT_TRUE(qOK) << "in no reservoir";
  DirectionTable items{}, directions{}, steps{}, offsets{};
  GetCornerPointers(items, directions, qOK);
  GetIJKDir(steps, offsets, qOK);
  EXPECT_THAT(items[5], ElementsAre(16, 17, 18));
  EXPECT_THAT(directions[5], ElementsAre(1, 0, 1));
  EXPECT_THAT(steps[3], ElementsAre(0, 1, 1));
  EXPECT_THAT(offsets[3], ElementsAre(1, 2, 2));
  EXPECT_FALSE(grid.hasCorners(grid.cellAt(1, 1, 5)));
}

}  // namespace
}  // namespace lumbarn::testing
