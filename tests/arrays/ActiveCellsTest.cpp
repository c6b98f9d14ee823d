#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arrays/ActiveCells.h"
#include "index/ActiveCount.h"
#include "support/GridBuilder.h"
#include "support/IndexedRun.h"
#include "support/InitBuilder.h"

namespace lumbarn {
namespace {

using namespace test;

/// Headers that state another number of active cells than the arrays have values for.
TEST(ActiveCount, TheLengthOfMostArraysDecides) {
  const struct {
    const char* what;
    GridCells cells;
    std::vector<std::int64_t> lengths;
    std::int64_t active;
  } rows[] = {
      {"agreement", {.cells = 24, .active = 22}, {22, 22, 24, 24, 24, 5}, 22},
      {"no arrays of cells", {.cells = 24, .active = 22}, {7, 8}, 22},
      {"all cells are stored", {.cells = 24, .active = 22}, {24, 24, 24}, 22},
      {"IX: header counts cells without pore volume", {.cells = 24, .active = 23}, {22, 24, 22, 22}, 22},
      {"IX: header counts all cells", {.cells = 24, .active = 24}, {24, 22, 22, 22}, 22},
      {"one array of another length", {.cells = 24, .active = 22}, {24, 20}, 22},
      {"no length is that of most", {.cells = 24, .active = 22}, {20, 20, 7, 7, 9}, 22},
      {"other word of the header", {.cells = 24, .active = 7, .otherActive = 24}, {24, 24, 7}, 24},
      {"longer than the grid", {.cells = 24, .active = 22}, {30, 30, 30}, 22},
  };
  for (const auto& row : rows) {
    ArrayLengths lengths;
    for (const std::int64_t length : row.lengths) lengths.add(length);
    EXPECT_EQ(lengths.decideActive(row.cells), row.active) << row.what;
  }
}

using Words = std::vector<std::int32_t>;

TEST(ActiveCells, TheFirstSourceThatAgreesDecides) {
  const struct {
    const char* what;
    ActivityEvidence evidence;
    const char* expected;
  } rows[] = {
      {"all cells", {.cells = 3, .active = 3, .porous = Words{1}}, "1,2,3"},
      {"PORV", {.cells = 4, .active = 2, .porous = Words{2, 4}, .actnum = Words{1, 1, 0, 0}}, "2,4"},
      {"ACTNUM", {.cells = 4, .active = 2, .porous = Words{2}, .actnum = Words{1, 1, 0, 0}}, "1,2"},
      {"ACTNUM of thermal runs", {.cells = 3, .active = 2, .actnum = Words{2, 0, 3}}, "1,3"},
      {"matrix and fracture",
       {.cells = 8, .active = 4, .actnum = Words{1, 2, 3, 0}, .dualPorosity = true},
       "1,3,6,7"},
      {"ones for both systems",
       {.cells = 8, .active = 6, .actnum = Words{1, 1, 1, 0}, .dualPorosity = true},
       "1,2,3,5,6,7"},
      {"ones for the matrix",
       {.cells = 8, .active = 3, .actnum = Words{1, 1, 1, 0}, .dualPorosity = true},
       "1,2,3"},
      {"no ACTNUM, matrix", {.cells = 4, .active = 2, .actnum = Words{}, .dualPorosity = true}, "1,2"},
      {"parents of a local grid",
       {.cells = 6, .active = 4, .actnum = Words{1, 0, 0, 1, 1, 0}, .hosts = {2, 2, 5}},
       "1,2,4,5"},
      {"parents in both systems",
       {.cells = 6, .active = 4, .actnum = Words{3, 0, 0}, .dualPorosity = true, .hosts = {3}},
       "1,3,4,6"},
      {"pore volumes of too many cells", {.cells = 4, .active = 2, .porous = Words{1, 2, 4}}, "1,2 guess"},
      {"pore volumes of too few cells", {.cells = 4, .active = 3, .porous = Words{1, 2}}, "unknown"},
      {"another grid", {.cells = 4, .active = 2, .actnum = Words{1, 1, 0}}, "unknown"},
      {"damaged header", {.cells = 4, .active = -7, .porous = Words{1}, .hosts = {-1, 9}}, "unknown"},
  };
  for (const auto& row : rows) {
    const auto decided = decideActiveCells(row.evidence);
    std::string text = decided ? fmt::format("{}", fmt::join(decided->cells.iA2N(), ",")) : "unknown";
    if (decided && decided->certainty != Certainty::Certain) text += " guess";
    EXPECT_EQ(text, row.expected) << row.what;
  }
}

class ActiveCellsOfFiles : public OfForm {
 protected:
  std::string find(const GridCells& cells, const char* init, const char* egrid, const char* grid = "") {
    const auto path = [&](const char* name) { return *name ? folder_.file(name) : std::string(); };
    const auto found = findActiveCells(session_, path(init), path(egrid), grid, cells);
    return found ? fmt::format("{}", fmt::join(found->iA2N(), ",")) : "unknown";
  }
  TemporaryFolder folder_;
  Session session_;
};
INSTANTIATE_TEST_SUITE_P(Forms, ActiveCellsOfFiles, ::testing::ValuesIn(everyForm), formName);

TEST_P(ActiveCellsOfFiles, InitAndEGrid) {
  writeFile(folder_.file("R.INIT"), IndexedRun().init(form_));
  GridBuilder grid;
  grid.grids[0].activity = {1, 1, 0, 1, 1, 1, 0, 1, 1, 1, 3, 0};
  grid.grids.push_back({.size = {2, 2, 1}, .activity = {1, 0, 1, 1}, .name = "LGR1", .hosts = {3, 3, 3, 3}});
  writeFile(folder_.file("R.EGRID"), grid.egrid(form_));
  const GridCells cells{{3, 2, 2}, 12, 9};
  const GridCells local{{2, 2, 1}, 4, 3};
  EXPECT_EQ(find(cells, "R.INIT", ""), "1,2,4,5,6,8,9,10,11");
  EXPECT_EQ(find(cells, "", "R.EGRID", "ROOT"), "1,2,4,5,6,8,9,10,11");
  EXPECT_EQ(find({{3, 2, 2}, 12, 10}, "", "R.EGRID"), "1,2,3,4,5,6,8,9,10,11") << "with the refined cell";
  EXPECT_EQ(find(local, "R.INIT", "R.EGRID", "LGR1"), "1,3,4") << "PORV has a fourth cell";
  EXPECT_TRUE(session_.diagnoses().empty());
  EXPECT_EQ(find({{3, 2, 2}, 12, 7}, "", "R.EGRID"), "unknown");
  EXPECT_EQ(find(local, "R.INIT", "", "LGR1"), "1,2,3");
  EXPECT_EQ(session_.diagnoses().back().id(), "arrays.active.guess");
  session_.clearDiagnoses();
  EXPECT_EQ(find(cells, "absent", ""), "unknown");
  EXPECT_EQ(session_.diagnoses().size(), 1U);
  session_.clearDiagnoses();
  EXPECT_EQ(find({{65536, 65536, 1}, std::int64_t{65536} * 65536, 5}, "R.INIT", ""), "unknown");
  EXPECT_EQ(session_.diagnoses().back().id(), "arrays.active.number");
  grid.grids[0].activity.clear();
  writeFile(folder_.file("ALL.EGRID"), grid.egrid(form_));
  EXPECT_EQ(find({{3, 2, 2}, 12, 11}, "", "ALL.EGRID"), "unknown") << "without ACTNUM all cells are active";
  if (form_.formatted()) return;
  auto bytes = grid.egrid(form_);
  const auto keyword = bytesOf("ACTNUM");
  const auto actnum = std::search(bytes.begin(), bytes.end(), keyword.begin(), keyword.end());
  std::ranges::copy(bytesOf("REAL"), actnum + 12);
  writeFile(folder_.file("REAL.EGRID"), bytes);
  EXPECT_EQ(find(cells, "", "REAL.EGRID"), "unknown") << "not all cells, as without ACTNUM";
  EXPECT_EQ(session_.diagnoses().back().id(), "record.type");
}

}  // namespace
}  // namespace lumbarn
