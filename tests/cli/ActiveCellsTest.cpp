#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CommandRun.h"
#include "GridArrays.h"
#include "PathArgument.h"
#include "grid/qvGRIDReader.h"
#include "support/GridBuilder.h"
#include "support/InitBuilder.h"
#include "support/RestartBuilder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Words = std::vector<std::int32_t>;

void writeStep(const test::TemporaryFolder& folder, std::array<std::int32_t, 3> size, std::int32_t nActive,
               const std::vector<test::RestartBuilder::Array>& arrays) {
  test::RestartBuilder run;
  run.steps = {{.number = 1, .grids = {{.size = size, .nActive = nActive, .arrays = arrays}}}};
  run.write(folder, "R", test::bigEndian);
}

/// i, j, k and the value of each active cell.
std::string cellsOf(const test::TemporaryFolder& folder, const std::string& name) {
  const Outcome run = command(
      {"restart", "--step", "1", "--array", name, "--ijk", folder.file("R.UNRST"), "--format", "csv"});
  return run.status == 0 ? run.out : run.err;
}

/// The grid file has the layers of the matrix only, and the run no INIT file.
TEST(ActiveCellsOfRuns, DualPorosityWithoutInit) {
  const struct {
    Words actnum;
    std::vector<float> values;
    const char* expected;
  } rows[] = {{{3, 2}, {5, 6, 7}, "1,1,1,5\r\n1,1,2,6\r\n2,1,2,7\r\n"},
              {{1, 1}, {5, 6}, "1,1,1,5\r\n2,1,1,6\r\n"},
              {{0, 1}, {5, 6}, "2,1,1,5\r\n2,1,2,6\r\n"}};
  for (const auto& row : rows) {
    const test::TemporaryFolder folder;
    test::GridBuilder grid;
    grid.dualPorosity = 1;
    grid.grids[0].size = {2, 1, 2};
    grid.grids[0].halfDepths = true;
    grid.grids[0].activity = row.actnum;
    test::writeFile(folder.file("R.EGRID"), grid.egrid(test::bigEndian));
    writeStep(folder, {2, 1, 2}, static_cast<std::int32_t>(row.values.size()), {{"PRESSURE", row.values}});
    EXPECT_EQ(cellsOf(folder, "PRESSURE"), std::string("i,j,k,PRESSURE\r\n") + row.expected);
  }
}

/// IX: the grid file and headers count cells without pore volume as active.
TEST(ActiveCellsOfRuns, ArraysOfFewerCellsThanTheGridFileStates) {
  const test::TemporaryFolder folder;
  test::GridBuilder grid;
  grid.grids[0].size = {2, 2, 1};
  test::writeFile(folder.file("R.EGRID"), grid.egrid(test::bigEndian));
  test::InitBuilder init(test::bigEndian);
  init.head({.nActive = 4, .iProgram = 300});
  init.singles("PORV", {1, 0, 3, 4}).singles("PORO", {21, 23, 24}).singles("DEPTH", {31, 33, 34});
  test::writeFile(folder.file("R.INIT"), init.bytes());
  writeStep(folder, {2, 2, 1}, 4, {{"PRESSURE", {1, 3, 4}}, {"SWAT", {0, 0, 1}}});
  EXPECT_EQ(cellsOf(folder, "pressure"), "i,j,k,PRESSURE\r\n1,1,1,1\r\n1,2,1,3\r\n2,2,1,4\r\n");
  EXPECT_THAT(command({"init", "--array", "PORO", "--ijk", "--format", "csv", folder.file("R")}).out,
              HasSubstr("1,2,1,23\r\n2,2,1,24\r\n"));

  std::ostringstream text;
  Session session;
  Console console(text, text, session, false);
  qvGRIDReader reader(session);
  bool qOK = false;
  ASSERT_TRUE(reader.CheckEGRIDFile(folder.file("R.EGRID")));
  reader.ReadEclipseEGridFile(qOK);
  GridArrays arrays(findRun(folder.file("R")), *reader.xGrids.front(), 1, console);
  std::vector<float> values(4);
  for (const auto& [name, first] : {std::pair("PRESSURE", 1.0F), {"PORO", 21.0F}}) {
    const CellArray array = arrays.array(name);
    std::get<CellReader<float>>(array.read)(0, 0, values);
    EXPECT_EQ(values[0], first);
    EXPECT_TRUE(std::isnan(values[1])) << name << " has no value for the cell without pore volume";
    EXPECT_EQ(values[3], first + 3);
  }
}

TEST(ActiveCellsOfRuns, DerivedSaturationsAndNamesThatOccurTwice) {
  const test::TemporaryFolder folder;
  writeStep(folder, {2, 2, 1}, 4,
            {{"SWAT", {0.25F, 0.5F, 0, 1}},
             {"SGAS", {0.25F, 0.25F, 0, 0}},
             {"RS", {1, 2, 3, 4}},
             {"RS", {5, 6, 7, 8}}});
  const auto list = parseCsv(command({"restart", "--format", "csv", folder.file("R")}).out);
  EXPECT_THAT(list.back(), ElementsAre("1", "2015-01-01T00:00:00", "0", "ROOT", "SOIL", "derived", "4", ""));
  const Outcome run =
      command({"restart", "--step", "1", "--array", "RS,S?IL", "--format", "csv", folder.file("R")});
  EXPECT_THAT(run.out, HasSubstr("RS,RS,SOIL\r\n1,5,0.5\r\n2,6,0.25\r\n"));
  EXPECT_THAT(run.err, HasSubstr("RS occurs twice in step 1"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
