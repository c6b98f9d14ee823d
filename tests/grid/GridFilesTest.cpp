#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include <gmock/gmock.h>

#include "GridLoad.h"
#include "support/GridBuilder.h"

namespace lumbarn::test {

namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

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
  builder.grids.push_back({.size = {40, 30, 2}, .name = "OUTER", .parent = "", .x = 70});
  builder.grids[0].nnc1 = {1, 2};
  builder.grids[0].nnc2 = {7, 12};
  builder.grids[1].nncl = {4};
  builder.grids[1].nncg = {11};
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
  EXPECT_EQ(load.grid(1).zName, "INNER");
  EXPECT_EQ(load.grid(1).iParent, 3) << "a parent may stand behind its child";
  EXPECT_EQ(load.grid(2).zParent, "ROOT");
  EXPECT_THAT(load.grid(1).hostCells(), ElementsAre(1, 2, 5, 3));
}

TEST_P(GridFiles, RadialGridsAreTold) {
  GridBuilder builder;
  builder.grids[0].angles = 2;
  GridLoad load(case_.egrid, case_.compress);
  ASSERT_TRUE(load.read(bytes(builder), form_));
  EXPECT_EQ(load.grid().iGridType, 3);
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

}  // namespace

}  // namespace lumbarn::test
