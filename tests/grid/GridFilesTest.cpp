#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>

#include <gmock/gmock.h>

#include "GridLoad.h"
#include "support/GridBuilder.h"

namespace lumbarn::test {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

using Connection = GridConnection;

class GridFiles : public ::testing::TestWithParam<std::tuple<bool, bool, bool>> {
};  // EGRID, compressed, text
INSTANTIATE_TEST_SUITE_P(Every, GridFiles,
                         ::testing::Combine(::testing::Bool(), ::testing::Bool(), ::testing::Bool()));

TEST_P(GridFiles, GivesCornersNumbersAndRelationsOfAllGrids) {
  const auto& [egrid, compress, text] = GetParam();
  const Form form = text ? formatted : bigEndian;
  GridBuilder builder;
  builder.mapUnit = "FEET";
  builder.gridUnit = {"METRES", "MAP"};
  builder.grids[0].activity = {1, 0, 1, 1, 1, 1, 1, 1, 1, 0, 0, 1};
  builder.grids.push_back({.size = {2, 2, 1}, .name = "INNER", .parent = "OUTER", .hosts = {1, 2, 5, 3}});
  const char* const none = compress ? "" : "Global";  // two ways to name the global grid
  builder.grids.push_back({.size = {40, 30, 2}, .name = "OUTER", .parent = none, .angles = 30, .x = 70});
  builder.grids[0].nnc1 = {1, 2};
  builder.grids[0].nnc2 = {7, 12};
  builder.grids[1].nncl = {4};
  builder.grids[1].nncg = {11};
  builder.nna1 = {2400};
  builder.nna2 = {3};
  GridLoad load(egrid, compress);
  ASSERT_TRUE(load.read(egrid ? builder.egrid(form) : builder.grid(form), form))
      << load.lastDiagnosis().text();
  EXPECT_TRUE(load.session.diagnoses().empty()) << load.lastDiagnosis().text();
  ASSERT_EQ(load.reader.nGrids, 3);

  const Hadrick& global = load.grid();
  EXPECT_EQ(global.nActive(), 9);
  EXPECT_EQ(global.activeOf(12), 9);
  EXPECT_EQ(global.compressed(), compress && !form.formatted());
  EXPECT_EQ(global.hasCorners(2), !global.compressed());
  EXPECT_TRUE(load.grid(2).activeNumbers().empty()) << "without inactive cells there is no table";
  EXPECT_TRUE(global.qRelativeToMap);
  EXPECT_THAT(global.connections(), ElementsAre(Connection{Connection::Kind::Inside, 1, 1, 1, 7},
                                                Connection{Connection::Kind::Inside, 1, 2, 1, 12}));
  EXPECT_THAT(load.grid(1).connections(),
              ElementsAre(Connection{Connection::Kind::LocalGlobal, 2, 4, 1, 11}));
  EXPECT_THAT(load.grid(2).connections(),
              ElementsAre(Connection{Connection::Kind::Amalgamated, 3, 2400, 2, 3}));
  EXPECT_EQ(load.grid(1).zName, "INNER");
  EXPECT_EQ(load.grid(1).iParent, 3) << "a parent may stand behind its child";
  EXPECT_EQ(load.grid(2).zParent, "ROOT");
  EXPECT_EQ(load.grid(2).iGridType, 3) << "radial";
  EXPECT_THAT(load.grid(1).hostCells(), ElementsAre(1, 2, 5, 3));
}

TEST(EGridFiles, TwoPorositySystemsDoubleTheLayers) {
  for (const bool half : {false, true}) {
    GridBuilder builder{.dualPorosity = 1};
    builder.grids[0] = {.size = {3, 2, 4}, .place = {2, 3, 4, 5, 6, 7}, .halfDepths = half};
    builder.grids[0].activity = {1, 2, 3, 0, 1, 1, 3, 3, 3, 3, 3, 3};  // of the upper half, both by bits
    GridLoad load(true, half);
    ASSERT_TRUE(load.read(builder.egrid(bigEndian), bigEndian)) << load.lastDiagnosis().text();
    const Hadrick& grid = load.grid();
    EXPECT_EQ(grid.Nz(), 4);
    EXPECT_EQ(grid.iDualPorosity, 1);
    EXPECT_THAT(grid.iIndex, ElementsAre(0, 2, 3, 4, 7 + 2, 6, 5, 0, 3, 2, 4, 0));
    EXPECT_EQ(grid.nActive(), 10 + 8);
    EXPECT_EQ(grid.activeOf(2), 0);
    EXPECT_EQ(grid.activeOf(12 + 2), 11) << "a cell of the second system alone";
    const float top = GridBuilder::top(1, half ? 0 : 2);
    EXPECT_EQ(cornersOf(grid, 12 + 2)[2], top) << "the second system lies where the first does";
    builder.grids.push_back({.size = {1, 1, 2}, .name = "L", .hosts = {3}});  // of the matrix alone
    ASSERT_TRUE(load.read(builder.egrid(bigEndian), bigEndian)) << load.lastDiagnosis().text();
    EXPECT_THAT(load.grid(1).hostCells(), ElementsAre(3, 12 + 3));
  }
}

TEST(EGridFiles, EachReservoirHasPillarsOfItsOwn) {
  GridBuilder builder;
  builder.grids[0] = {.size = {3, 2, 4}, .activity = std::vector(24, 1), .reservoirs = {{1, 1}, {3, 4}}};
  builder.grids[0].activity[7] = 0;
  for (const bool compress : {false, true}) {
    GridLoad load(true, compress);
    ASSERT_TRUE(load.read(builder.egrid(bigEndian), bigEndian));
    const Hadrick& grid = load.grid();
    const float lean = (GridBuilder::top(0, 2) - 900) / 10;
    EXPECT_EQ(cornersOf(grid, 13)[0], 10000 + lean);
    EXPECT_FALSE(grid.hasCorners(9)) << "a layer between the reservoirs";
    EXPECT_EQ(activeRows(grid)[24 * 7 + 2], 0);
  }
}

TEST(EGridFiles, RadialActivityIsSpreadOverTheAngles) {
  GridBuilder builder;
  builder.grids[0] = {.size = {2, 4, 1}, .activity = {1, 0, 0, 1}, .angles = 4};  // two angles of two radii
  GridLoad load(true);
  ASSERT_TRUE(load.read(builder.egrid(bigEndian), bigEndian));
  EXPECT_THAT(load.grid().activeNumbers(), ElementsAre(1, 0, 2, 0, 0, 3, 0, 4));
}

TEST(EGridFiles, ACoarsenedBlockIsOneCellWithItsOuterCorners) {
  GridBuilder builder;
  builder.grids[0].size = {4, 3, 2};
  auto& coarse = builder.grids[0].coarse;
  coarse.assign(24, 0);
  for (const std::size_t cell : {1, 2, 5, 6, 13, 14, 17, 18}) coarse[cell] = 9;  // 2..3, 1..2, 1..2
  for (const std::size_t cell : {8, 11}) coarse[cell] = 4;                       // no box
  builder.grids[0].activity.assign(24, 1);
  builder.grids[0].activity[1] = 0;
  GridLoad load(true, true);
  ASSERT_TRUE(load.read(builder.egrid(bigEndian), bigEndian));
  const Hadrick& grid = load.grid();
  EXPECT_THAT(grid.coarseBlocks(), ElementsAre(CoarseBlock{2, {2, 3, 1, 2, 1, 2}}));
  EXPECT_EQ(grid.nActive(), 24 - 7) << "the first cell stands for all, as one of them is active";
  EXPECT_EQ(grid.activeOf(2), 2);
  const auto row = cornersOf(grid, 2);
  const auto rows = activeRows(grid);
  for (std::size_t n = 0; n < 24; ++n) {
    const auto at = static_cast<int>(n / 3);
    const auto corner = builder.corner(builder.grids[0], 1 + (at & 1), at >> 1 & 1, at >> 2, at);
    EXPECT_EQ(row[n], static_cast<float>(corner[n % 3])) << n;
    EXPECT_EQ(rows[24 + n], row[n]);
  }
  EXPECT_THAT(load.lastDiagnosis().text(), HasSubstr("not a box"));
  load.reader.Coarsened = false;
  ASSERT_TRUE(load.read(builder.egrid(bigEndian), bigEndian));
  EXPECT_EQ(load.grid().nActive(), 23);
}

TEST(EGridFiles, MapAxesTurnScaleAndMove) {
  GridBuilder builder;
  builder.lean = 0;
  builder.mapAxes = {1000, 2000, 3000, 2000, 3000, 5000};  // Y goes west, X goes north
  builder.gridUnit = {"FEET", ""};
  builder.mapUnit = "METRES";
  GridLoad old(false), load(true);
  ASSERT_TRUE(old.read(builder.grid(bigEndian), bigEndian) && load.read(builder.egrid(bigEndian), bigEndian));
  for (const GridLoad* one : {&old, &load}) {
    const auto row = cornersOf(one->grid(), 1, GridFrame::Map);
    const std::span far = std::span(row).subspan(9, 3);  // corner 4: 100 along X, 50 along Y
    EXPECT_THAT(far, ElementsAre(3000 - 15.24F, 2000 + 30.48F, 1000));
  }
  builder.gridUnit = {"FEET", "MAP"};
  ASSERT_TRUE(load.read(builder.egrid(bigEndian), bigEndian));
  EXPECT_EQ(cornersOf(load.grid(), 1, GridFrame::Map)[9], 100) << "relative to the map already";
}

GridBuilder::Grid local(const char* name, const char* parent = "", std::vector<std::int32_t> hosts = {}) {
  return {.size = {1, 1, 1}, .name = name, .parent = parent, .hosts = std::move(hosts)};
}

/// Faults are reported; `grids` is the number of grids that are returned nevertheless.
TEST(EGridFiles, BadGridsAreToldAndDoNoHarm) {
  const struct {
    GridBuilder builder;
    bool reads;
    std::int32_t grids;
    const char* problem;
  } rows[] = {
      {{.fileType = 1}, false, 0, "no corner point grid"},
      {{.grids = {{}, local("L")}, .headSize = {65536, 65536, 65536}}, false, 1, "at most 2147483647 cells"},
      {{.grids = {{}, local("L")}, .headSize = {1000, 1000, 1000}}, false, 1, "does not match the sizes"},
      {{.grids = {{}, local("L")}, .headSize = {0, 2, 2}}, false, 1, "sizes of 1 or more"},
      {{.grids = {{.activity = {1, 1}}}}, false, 0, "does not match the sizes"},
      {{.grids = {{}, local("A", "B"), local("B", "A")}}, true, 3, "ring"},
      {{.grids = {{}, local("A", "A")}}, true, 2, "parent grid does not exist"},
      {{.grids = {{}, local("A", "NONE")}}, true, 2, "parent grid does not exist"},
      {{.grids = {{}, local("A", "", {13})}}, true, 2, "host cells do not exist"},
      {{.grids = {{.nnc1 = {1, 13}, .nnc2 = {2, 1}}}}, true, 1, "connections to cells that do not exist"},
      {{.grids = {{.nnc1 = {1, 3}, .nnc2 = {2}}}}, true, 1, "used those with both ends"},
      {{.lean = std::numeric_limits<float>::quiet_NaN()}, true, 1, "not finite"},
      {{.grids = {{.reservoirs = {{1, 1}, {2, 9}}}}}, false, 0, "layers of the reservoirs"},
      {{.grids = {{.reservoirs = {{1, 9}}}}}, true, 1, "layers 1 to 2"},
      {{.mapAxes = {1, 2}}, true, 1, "expected 6, found 2"},
      {{.grids = {{}, {.activity = std::vector(12, 1), .name = "L"}}, .endGrid = false},
       true,
       2,
       "grid has no ENDGRID"},
      // A grid that is dropped takes no other along; only numbers of grids are no longer known.
      {{.grids = {{.nnc1 = {1}, .nnc2 = {7}},
                  local("A", "", {1, 1}),
                  {.name = "B", .nnc1 = {1}, .nnc2 = {2}}}},
       false,
       2,
       "connections to cells that do not exist"}};
  for (const auto& [builder, reads, grids, problem] : rows) {
    GridLoad load(true);
    EXPECT_EQ(load.read(builder.egrid(bigEndian), bigEndian), reads) << problem;
    EXPECT_EQ(load.reader.nGrids, grids) << problem;
    EXPECT_THAT(load.lastDiagnosis().text(), HasSubstr(problem));
    EXPECT_EQ(load.reader.qDamaged, !reads);
    for (const auto& grid : load.reader.xGrids) {
      activeRows(*grid);
      std::int32_t steps = 0;
      for (auto g = grid->iParent; g > 0 && steps < 9; ++steps)
        g = load.grid(static_cast<std::size_t>(g) - 1).iParent;
      EXPECT_LE(steps, 2) << "all ways end at the global grid";
    }
    if (builder.grids.size() != 3 || reads) continue;
    EXPECT_THAT(load.session.diagnoses()[0].text(), HasSubstr("dropped grid A; skipped bytes"));
    EXPECT_THAT(load.grid().connections(), ElementsAre(Connection{Connection::Kind::Inside, 1, 1, 1, 7}));
  }
}

/// A GRID file of which every cell has its number, or the value given, in all corners.
struct OldGrid {
  explicit OldGrid(std::array<std::int32_t, 3> size) : size_(size) { out_.integers("DIMENS", size); }
  /// `active` below 0: the record of words 1 to 4 alone, which stands for an active cell.
  void add(std::int32_t cell, float corners, std::int32_t active = -1) {
    const std::int32_t at = cell - 1;
    std::vector words{at % size_[0] + 1, at / size_[0] % size_[1] + 1, at / size_[0] / size_[1] + 1, cell};
    if (active >= 0) words.push_back(active);
    out_.integers("COORDS", words);
    out_.singles("CORNERS", std::vector<float>(24, corners));
  }
  /// Expects that the cells, and no others, are active and have their values.
  std::string loadAndExpect(const std::map<std::int32_t, float>& active) {
    std::string message;
    for (const bool compress : {false, true}) {
      GridLoad load(false, compress);
      EXPECT_TRUE(load.read(bytes_, bigEndian)) << load.lastDiagnosis().text();
      const Hadrick& grid = load.grid();
      EXPECT_EQ(grid.nActive(), static_cast<std::int32_t>(active.size()));
      const auto rows = activeRows(grid);
      for (const auto& [cell, value] : active) {
        EXPECT_EQ(cornersOf(grid, cell)[5], value);
        EXPECT_EQ(rows.at(24 * static_cast<std::size_t>(grid.activeOf(cell)) - 1), value);
      }
      EXPECT_TRUE(active.contains(5) || cornersOf(grid, 5)[0] == 0);
      message = load.lastDiagnosis().id();
    }
    return message;
  }

 private:
  std::array<std::int32_t, 3> size_;
  std::vector<std::byte> bytes_;
  RecordWriter out_{memorySink(bytes_), bigEndian};
};

/// Cells in the order of their records, below 0 those that are inactive. Some writers omit inactive cells.
TEST(OldGridFiles, CellsInAnyOrderAndWithoutRecordsAreRead) {
  const struct {
    std::array<std::int32_t, 3> size;
    std::vector<std::int32_t> order;
    const char* message;
  } rows[] = {{{2, 3, 1}, {1, 2, 3, 4, 5, 6}, "reader.not-loaded"},
              {{2, 3, 1}, {2, 1, 3, 4, 5, 6}, "reader.not-loaded"},
              {{2, 3, 1}, {1, 2, 3, 5, 4, 6}, "reader.not-loaded"},
              {{2, 3, 1}, {6, 5, 4, 3, 2, 1}, "reader.not-loaded"},
              {{2, 3, 1}, {1, 2, 3, 4, 5, 2}, "reader.not-loaded"},
              {{2, 3, 1}, {1, 2, 3, 4, 5, -2}, "reader.not-loaded"},  // inactive when it stands again
              {{2, 3, 1}, {1, 2, 4, 6}, "grid.cells.omitted"},
              {{2, 3, 1}, {3, 4}, "grid.cells.omitted"},
              {{2, 3, 1}, {-1, 2, 4, 6}, "grid.cells.omitted"},
              {{2, 3, 1}, {-1, 2, 3, 4}, "grid.cells.missing"},  // truncated
              {{100, 100, 10}, {7, 5000, 99999}, "grid.cells.omitted"}};
  for (const auto& [size, order, message] : rows) {
    OldGrid file(size);
    std::map<std::int32_t, float> last;  // the last value stored for each cell
    for (const std::int32_t one : order) {
      const std::int32_t cell = std::abs(one);
      last[cell] = static_cast<float>(10 * last.size()) + static_cast<float>(cell);
      file.add(cell, last[cell], one < 0 ? 0 : cell % 2 == 0 ? -1 : 1);
      if (one < 0) last.erase(cell);
    }
    EXPECT_EQ(file.loadAndExpect(last), message);
  }
}

TEST(OldGridFiles, BadRecordsEndTheReadAndOthersAreTaken) {
  const struct {
    std::array<std::int32_t, 3> size;
    std::array<std::int32_t, 4> cell;
    std::size_t corners;
    const char* problem;  // empty: none
  } rows[] = {{{2, 1, 1}, {1, 1, 1, 1}, 24, ""},
              {{2, 1, 1}, {3, 1, 1, 3}, 24, "found 3, 1, 1"},
              {{2, 1, 1}, {1, 1, 1, 1}, 9, "record has too few"},
              {{2, 1, 1}, {1, 1, 1, 1}, 0, "expected CORNERS"},
              {{90000, 1000, 1}, {1, 1, 1, 1}, 24, "cells in a file of this size"}};
  for (const auto& [size, cell, corners, problem] : rows) {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), bigEndian);
    out.integers("DIMENS", size);
    out.integers("BOXORIG", std::array{4, 5, 6});
    out.integers("LGRILG", std::array{7, 0});
    out.integers("COORDS", cell);
    if (corners > 0) out.singles("CORNERS", std::vector<float>(corners, 1));
    GridLoad load(false);
    EXPECT_EQ(load.read(bytes, bigEndian), *problem == 0) << problem;
    EXPECT_TRUE(*problem == 0 || load.lastDiagnosis().text().find(problem) != std::string::npos)
        << load.lastDiagnosis().text();
    EXPECT_TRUE(*problem != 0 || load.grid().iBoxOrigin[2] == 6);
  }
}

}  // namespace

}  // namespace lumbarn::test
