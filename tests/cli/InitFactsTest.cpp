#include "CommandTest.h"
#include "support/GridBuilder.h"
#include "support/InitBuilder.h"

namespace lumbarn::cli::testing {
namespace {

struct InitFacts : CommandTest {};

TEST_F(InitFacts, ReportATruncatedRecordOnce) {
  test::InitBuilder init(test::bigEndian);
  init.head({}).integers("TABDIMS", std::vector(100, 1)).doubles("TAB", std::vector<double>(100, 1));
  auto bytes = init.bytes();
  bytes.resize(bytes.size() - 50);
  write("CUT.INIT", bytes);
  const Outcome found = run("info ~CUT.INIT");
  EXPECT_EQ(found.status, 3);
  EXPECT_EQ(std::ranges::count(found.err, '\n'), 1) << found.err;
}

TEST_F(InitFacts, ConnectionsHaveTheirCellsFromTheGridFile) {
  test::GridBuilder grid;
  grid.grids[0].nnc1 = {1, 2};
  grid.grids[0].nnc2 = {7, 12};
  write("CASE.EGRID", grid.egrid(test::bigEndian));
  test::InitBuilder init(test::bigEndian);
  init.head({.Nx = 3, .Ny = 2, .Nz = 2, .nActive = 12}).singles("TRANNNC", {0.5F, 0.25F});
  write("CASE.INIT", init.bytes());
  EXPECT_THAT(csv("init --nnc --array TRANNNC ~CASE")[2],
              ElementsAre("2", "2", "1", "1", "3", "2", "2", "0.25"));
  EXPECT_THAT(run("init --nnc --array TRANNNK ~CASE").err, HasSubstr("did you mean \"TRANNNC\"?"));
  EXPECT_THAT(run("init ~CASE").err, HasSubstr("the file has no arrays"));
  EXPECT_THAT(run("init --nnc --array TRANNNC --ijk ~CASE").err, HasSubstr("goes with arrays of cells"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
