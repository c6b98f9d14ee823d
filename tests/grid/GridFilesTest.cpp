#include <algorithm>
#include <cmath>
#include <cstring>
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

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/// The corners of all active cells against the builder's own.
void expectCorners(const Hadrick& grid, const GridBuilder& builder, const GridBuilder::Grid& made) {
  const auto rows = activeRows(grid);
  std::size_t at = 0;
  for (std::int32_t cell = 0; cell < made.cells(); ++cell) {
    if (!made.isActive(cell)) continue;
    const auto [i, j, k] = grid.placeOf(cell + 1);
    for (int n = 0; n < 8; ++n) {
      for (const double value : builder.corner(made, i - 1, j - 1, k - 1, n)) {
        ASSERT_EQ(rows.at(at++), static_cast<float>(value)) << "cell " << cell + 1 << ", corner " << n + 1;
      }
    }
  }
  EXPECT_EQ(at, rows.size());
}

struct FileCase {
  const char* name;
  bool egrid;
  bool compress;
};

class GridFiles : public ::testing::TestWithParam<std::tuple<NamedForm, FileCase>> {
 protected:
  const Form form_ = std::get<0>(GetParam()).form;
  const FileCase case_ = std::get<1>(GetParam());

  std::vector<std::byte> bytes(const GridBuilder& builder) const {
    return case_.egrid ? builder.egrid(form_) : builder.grid(form_);
  }
};

INSTANTIATE_TEST_SUITE_P(Every, GridFiles,
                         ::testing::Combine(::testing::ValuesIn(everyForm),
                                            ::testing::Values(FileCase{"GRID", false, false},
                                                              FileCase{"GRIDCompressed", false, true},
                                                              FileCase{"EGRID", true, false},
                                                              FileCase{"EGRIDCompressed", true, true})),
                         [](const auto& test) {
                           return std::string(std::get<1>(test.param).name) + std::get<0>(test.param).name;
                         });

TEST_P(GridFiles, GivesCornersNumbersAndRelationsOfAllGrids) {
  GridBuilder builder;
  builder.mapUnit = "FEET";
  builder.gridUnit = {"METRES", "MAP"};
  builder.grids[0].activity = {1, 0, 1, 1, 1, 1, 1, 1, 1, 0, 0, 1};
  builder.grids.push_back({.size = {2, 2, 1}, .name = "INNER", .parent = "OUTER", .hosts = {1, 2, 5, 3}});
  const char* const none = case_.compress ? "" : "Global";  // two ways to name the global grid
  builder.grids.push_back({.size = {40, 30, 2}, .name = "OUTER", .parent = none, .angles = 30, .x = 70});
  builder.grids[0].nnc1 = {1, 2};
  builder.grids[0].nnc2 = {7, 12};
  builder.grids[1].nncl = {4};
  builder.grids[1].nncg = {11};
  builder.nna1 = {2400};
  builder.nna2 = {3};
  GridLoad load(case_.egrid, case_.compress);
  ASSERT_TRUE(load.read(bytes(builder), form_)) << load.lastDiagnosis().text();
  EXPECT_TRUE(load.session.diagnoses().empty()) << load.lastDiagnosis().text();
  ASSERT_EQ(load.reader.nGrids, 3);
  for (std::size_t n = 0; n < 3; ++n) expectCorners(load.grid(n), builder, builder.grids[n]);

  const Hadrick& global = load.grid();
  EXPECT_EQ(global.nActive(), 9);
  EXPECT_EQ(global.activeOf(2), 0);
  EXPECT_EQ(global.activeOf(12), 9);
  EXPECT_EQ(global.cellOf(9), 12);
  EXPECT_EQ(global.compressed(), case_.compress && !form_.formatted());
  EXPECT_EQ(global.hasCorners(2), !global.compressed());
  EXPECT_TRUE(load.grid(2).activeNumbers().empty()) << "without inactive cells there is no table";
  EXPECT_EQ(global.zGridUnit, "METRES");
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
  EXPECT_EQ(load.grid(1).iGridType, 2);
  EXPECT_THAT(load.grid(1).hostCells(), ElementsAre(1, 2, 5, 3));
}

/// Cuts at every byte, and flips every byte, of a small file of two grids: nothing crashes, a failure is told
/// with its place, and what is given out can be asked for corners.
TEST_P(GridFiles, DamageAnywhereIsToldAndNeverMore) {
  GridBuilder builder;
  builder.grids[0] = {.size = {2, 1, 2}, .activity = {1, 0, 1, 1}};
  builder.grids.push_back({.size = {1, 1, 1}, .name = "LOCAL", .hosts = {3}});
  builder.grids[0].nnc1 = {1};
  builder.grids[0].nnc2 = {4};
  const auto whole = bytes(builder);
  const auto tryOut = [&](std::vector<std::byte> file, std::size_t at) {
    GridLoad load(case_.egrid, case_.compress);
    load.session.memoryLimit = std::size_t{64} << 20;
    const bool read = load.read(std::move(file), form_);
    EXPECT_TRUE(read || !load.session.diagnoses().empty()) << "byte " << at;
    EXPECT_TRUE(read || load.lastDiagnosis().offset) << "byte " << at;
    for (const auto& grid : load.reader.xGrids) {
      activeRows(*grid);
      for (const auto& c : grid->connections()) EXPECT_LE(c.iCell1, grid->nCells());
    }
    return std::pair(read, load.reader.nGrids);
  };
  std::int32_t most = 0;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    auto cut = whole;
    cut.resize(size);
    const auto [read, nGrids] = tryOut(std::move(cut), size);
    EXPECT_GE(nGrids, most - 1) << "grids before a cut stay, byte " << size;
    most = std::max(most, nGrids);
    auto flipped = whole;
    flipped[size] ^= static_cast<std::byte>(size % 2 == 0 ? 0x80 : 0x01);
    tryOut(std::move(flipped), size);
  }
  EXPECT_EQ(most, 2);
}

TEST(EGridFiles, TwoPorositySystemsDoubleTheLayers) {
  for (const bool half : {false, true}) {
    for (const bool compress : {false, true}) {
      GridBuilder builder;
      builder.dualPorosity = 1;
      builder.grids[0].size = {3, 2, 4};
      builder.grids[0].halfDepths = half;
      builder.grids[0].place = {2, 3, 4, 5, 6, 7};
      builder.grids[0].activity = {1, 2, 3, 0, 1, 1, 3, 3, 3, 3, 3, 3};  // of the upper half, both by bits
      GridLoad load(true, compress);
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
    }
  }
}

TEST(EGridFiles, AnArrayOfAnotherTypeEndsTheRead) {
  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), bigEndian);
  out.integers("FILEHEAD", std::vector<std::int32_t>(100, 0));
  out.integers("GRIDHEAD", std::array{1, 1, 1, 1});
  out.singles("COORD", std::vector<float>(24, 1));
  out.singles("ZCORN", std::vector<float>(8, 1));
  out.singles("ACTNUM", std::array{0.0F});
  out.integers("ENDGRID", {});
  GridLoad load(true);
  EXPECT_FALSE(load.read(bytes, bigEndian)) << "all cells would count as active";
  EXPECT_EQ(load.lastDiagnosis().keyword, "ACTNUM");
  EXPECT_TRUE(load.lastDiagnosis().offset);
}

TEST(EGridFiles, EachReservoirHasPillarsOfItsOwn) {
  for (const bool compress : {false, true}) {
    GridBuilder builder;
    builder.grids[0].size = {3, 2, 4};
    builder.grids[0].reservoirs = {{1, 1}, {3, 4}};
    builder.grids[0].activity = std::vector<std::int32_t>(24, 1);
    builder.grids[0].activity[7] = 0;
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
  builder.grids[0].size = {2, 4, 1};
  builder.grids[0].angles = 4;
  builder.grids[0].activity = {1, 0, 0, 1};  // two angles of two radii
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
  EXPECT_EQ(grid.activeOf(3), 0);
  const auto row = cornersOf(grid, 2);
  for (int n = 0; n < 8; ++n) {
    const auto expected = builder.corner(builder.grids[0], 1 + (n & 1), n >> 1 & 1, n >> 2, n);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      EXPECT_EQ(row[3 * static_cast<std::size_t>(n) + axis], static_cast<float>(expected[axis])) << n;
    }
  }
  const auto rows = activeRows(grid);
  EXPECT_TRUE(std::ranges::equal(row, std::span(rows).subspan(24, 24)));
  EXPECT_THAT(load.lastDiagnosis().text(), HasSubstr("not a box"));

  load.reader.Coarsened = false;
  ASSERT_TRUE(load.read(builder.egrid(bigEndian), bigEndian));
  EXPECT_EQ(load.grid().nActive(), 23);
}

TEST(EGridFiles, TheNextGridEndsOneThatHasNoEnd) {
  GridBuilder builder;
  builder.endGrid = false;
  builder.grids.push_back({.size = {2, 2, 1}, .activity = {1, 1, 0, 1}, .name = "LOCAL"});
  GridLoad load(true);
  ASSERT_TRUE(load.read(builder.egrid(bigEndian), bigEndian)) << load.lastDiagnosis().text();
  ASSERT_EQ(load.reader.nGrids, 2);
  EXPECT_EQ(load.grid(1).zName, "LOCAL");
  expectCorners(load.grid(1), builder, builder.grids[1]);
  EXPECT_THAT(load.lastDiagnosis().text(), HasSubstr("grid has no ENDGRID"));
}

TEST(EGridFiles, MapAxesTurnScaleAndMove) {
  GridBuilder builder;
  builder.lean = 0;
  builder.mapAxes = {1000, 2000, 3000, 2000, 3000, 5000};  // Y goes west, X goes north
  builder.gridUnit = {"FEET", ""};
  builder.mapUnit = "METRES";
  GridLoad load(true);
  ASSERT_TRUE(load.read(builder.egrid(bigEndian), bigEndian));
  const auto row = cornersOf(load.grid(), 1, GridFrame::Map);
  const std::span far = std::span(row).subspan(9, 3);  // corner 4: 100 along X, 50 along Y
  EXPECT_THAT(far, ElementsAre(3000 - 15.24F, 2000 + 30.48F, 1000));
  builder.gridUnit = {"FEET", "MAP"};
  ASSERT_TRUE(load.read(builder.egrid(bigEndian), bigEndian));
  EXPECT_EQ(cornersOf(load.grid(), 1, GridFrame::Map)[9], 100) << "relative to the map already";
}

/// What does not hold is told. `grids` is how many are given out nevertheless.
struct BadCase {
  const char* name;
  void (*spoil)(GridBuilder&);
  bool reads;
  std::int32_t grids;
  const char* problem;
};

class BadGrids : public ::testing::TestWithParam<BadCase> {};

void addLocal(GridBuilder& b, const char* name, const char* parent) {
  b.grids.push_back({.size = {1, 1, 1}, .name = name, .parent = parent});
}

INSTANTIATE_TEST_SUITE_P(
    Each, BadGrids,
    ::testing::Values(
        BadCase{"Unstructured", [](auto& b) { b.fileType = 1; }, false, 0, "no corner point grid"},
        BadCase{"SizesOverflow",
                [](auto& b) {
                  addLocal(b, "L", "");
                  b.headSize = {65536, 65536, 65536};
                },
                false, 1, "at most 2147483647 cells"},
        BadCase{"SizesTooLarge",
                [](auto& b) {
                  addLocal(b, "L", "");
                  b.headSize = {1000, 1000, 1000};
                },
                false, 1, "does not match the sizes"},
        BadCase{"NoCells",
                [](auto& b) {
                  addLocal(b, "L", "");
                  b.headSize = {0, 2, 2};
                },
                false, 1, "sizes of 1 or more"},
        BadCase{"ActivityTooShort",
                [](auto& b) {
                  b.grids[0].activity = {1, 1};
                },
                false, 0, "does not match the sizes"},
        BadCase{"Ring",
                [](auto& b) {
                  addLocal(b, "A", "B");
                  addLocal(b, "B", "A");
                },
                true, 3, "ring"},
        BadCase{"OwnParent", [](auto& b) { addLocal(b, "A", "A"); }, true, 2, "parent grid does not exist"},
        BadCase{"NoParent", [](auto& b) { addLocal(b, "A", "NONE"); }, true, 2, "parent grid does not exist"},
        BadCase{"NoHost",
                [](auto& b) {
                  addLocal(b, "A", "");
                  b.grids[1].hosts = {13};
                },
                true, 2, "host cells do not exist"},
        BadCase{"NoConnected",
                [](auto& b) {
                  b.grids[0].nnc1 = {1, 13};
                  b.grids[0].nnc2 = {2, 1};
                },
                true, 1, "connections to cells that do not exist"},
        BadCase{"OneEnd",
                [](auto& b) {
                  b.grids[0].nnc1 = {1, 3};
                  b.grids[0].nnc2 = {2};
                },
                true, 1, "used those with both ends"},
        BadCase{"NotFinite", [](auto& b) { b.lean = nan; }, true, 1, "not finite"},
        BadCase{"ReservoirsUntold",
                [](auto& b) {
                  b.grids[0].reservoirs = {{1, 1}, {2, 9}};
                },
                false, 0, "layers of the reservoirs"}),
    [](const auto& test) { return test.param.name; });

TEST_P(BadGrids, AreToldAndDoNoHarm) {
  GridBuilder builder;
  GetParam().spoil(builder);
  GridLoad load(true);
  EXPECT_EQ(load.read(builder.egrid(bigEndian), bigEndian), GetParam().reads);
  EXPECT_EQ(load.reader.nGrids, GetParam().grids);
  EXPECT_THAT(load.lastDiagnosis().text(), HasSubstr(GetParam().problem));
  for (const auto& grid : load.reader.xGrids) {
    activeRows(*grid);
    std::int32_t steps = 0;
    for (auto g = grid->iParent; g > 0 && steps < 9; ++steps)
      g = load.grid(static_cast<std::size_t>(g) - 1).iParent;
    EXPECT_LE(steps, 2) << "all ways end at the global grid";
  }
}

TEST(OldGridFiles, CellsInAnyOrderAndShortRecordsAreRead) {
  const std::vector<std::int32_t> orders[] = {
      {1, 2, 3, 4, 5, 6}, {2, 1, 3, 4, 5, 6}, {1, 2, 3, 5, 4, 6},
      {6, 5, 4, 3, 2, 1}, {1, 2, 3, 4, 5, 2}, {1, 2, 3, 4, 5, -2}};  // inactive when it stands again
  for (const auto& order : orders) {
    for (const bool compress : {false, true}) {
      std::vector<std::byte> bytes;
      RecordWriter out(memorySink(bytes), bigEndian);
      out.integers("DIMENS", std::array{2, 3, 1});
      std::map<std::int32_t, float> last;  // what stands last for each cell
      for (const std::int32_t one : order) {
        const std::int32_t cell = std::abs(one);
        std::vector<std::int32_t> words{(cell - 1) % 2 + 1, (cell + 1) / 2, 1, cell};  // four: active
        if (one < 0) words.push_back(0);
        out.integers("COORDS", words);
        last[cell] = static_cast<float>(10 * last.size()) + static_cast<float>(cell);
        out.singles("CORNERS", std::vector<float>(24, last[cell]));
        if (one < 0) last.erase(cell);
      }
      GridLoad load(false, compress);
      ASSERT_TRUE(load.read(bytes, bigEndian)) << load.lastDiagnosis().text();
      const Hadrick& grid = load.grid();
      EXPECT_EQ(grid.nActive(), static_cast<std::int32_t>(last.size())) << "one that is missing is inactive";
      const auto rows = activeRows(grid);
      for (const auto& [cell, value] : last) {
        EXPECT_EQ(cornersOf(grid, cell)[5], value);
        EXPECT_EQ(rows.at(24 * static_cast<std::size_t>(grid.activeOf(cell)) - 1), value);
      }
    }
  }
}

/// Some writers omit the records of inactive cells.
TEST(OldGridFiles, CellsWithoutARecordAreInactive) {
  struct Case {
    std::array<std::int32_t, 3> size;
    std::vector<std::int32_t> cells;
    bool inactiveToo;  // the first cell has records that say it is inactive
    const char* message;
  };
  const Case cases[] = {{{2, 3, 1}, {1, 2, 4, 6}, false, "grid.cells.omitted"},
                        {{2, 3, 1}, {3, 4}, false, "grid.cells.omitted"},
                        {{2, 3, 1}, {1, 2, 4, 6}, true, "grid.cells.omitted"},
                        {{2, 3, 1}, {1, 2, 3, 4}, true, "grid.cells.missing"},  // truncated
                        {{100, 100, 10}, {7, 5000, 99999}, false, "grid.cells.omitted"}};
  for (const auto& [size, cells, inactiveToo, message] : cases) {
    for (const bool compress : {false, true}) {
      std::vector<std::byte> bytes;
      RecordWriter out(memorySink(bytes), bigEndian);
      out.integers("DIMENS", size);
      std::vector<std::int32_t> active;
      for (const std::int32_t cell : cells) {
        const std::int32_t at = cell - 1;
        const bool isActive = !(inactiveToo && cell == 1);
        out.integers("COORDS", std::array{at % size[0] + 1, at / size[0] % size[1] + 1,
                                          at / size[0] / size[1] + 1, cell, isActive ? 1 : 0});
        out.singles("CORNERS", std::vector<float>(24, static_cast<float>(cell)));
        if (isActive) active.push_back(cell);
      }
      GridLoad load(false, compress);
      ASSERT_TRUE(load.read(bytes, bigEndian)) << load.lastDiagnosis().text();
      EXPECT_EQ(load.lastDiagnosis().id(), message);
      const Hadrick& grid = load.grid();
      ASSERT_EQ(grid.nActive(), static_cast<std::int32_t>(active.size()));
      const auto rows = activeRows(grid);
      for (std::size_t n = 0; n < active.size(); ++n) {
        EXPECT_EQ(grid.cellOf(static_cast<std::int32_t>(n) + 1), active[n]);
        EXPECT_EQ(rows[24 * n], static_cast<float>(active[n]));
      }
      EXPECT_EQ(cornersOf(grid, 5)[0], 0);
    }
  }
}

TEST(OldGridFiles, AGridWithoutActiveCellsEndsTheRead) {
  GridBuilder builder;
  builder.grids[0].activity.assign(12, 0);
  builder.grids.push_back({.name = "LOCAL"});
  GridLoad load(false);
  EXPECT_TRUE(load.read(builder.grid(bigEndian), bigEndian));
  EXPECT_EQ(load.reader.nGrids, 1);
  EXPECT_THAT(load.lastDiagnosis().text(), HasSubstr("no active cell"));
  load.reader.NoInactive = true;
  EXPECT_TRUE(load.read(builder.grid(bigEndian), bigEndian));
  EXPECT_EQ(load.grid().nActive(), 12);
  EXPECT_EQ(load.reader.nGrids, 2);
}

}  // namespace

}  // namespace lumbarn::test
