#include "CommandTest.h"
#include "support/InitBuilder.h"

namespace lumbarn::cli::testing {
namespace {

struct InitCommand : CommandTest {
  InitCommand() { write("CASE.INIT", test::twoLocalGrids(test::bigEndian)); }
};

TEST_F(InitCommand, ShowsArraysOfEveryGridWithTheirCells) {
  const auto list = csv("init ~CASE");
  ASSERT_EQ(list.size(), 1u + 6 + 3 + 5);
  EXPECT_THAT(list[2], ElementsAre("ROOT", "DEPTH", "REAL", "6", "M", "1", "6"));
  EXPECT_THAT(list.back(), ElementsAre("RING", "PVTNUM", "INTE", "2", "", "5", "6"));
  EXPECT_EQ(csv("init --grid box ~CASE").size(), 4u);
  EXPECT_THAT(csv("init --nnc ~CASE").back(),
              ElementsAre("RING", "local to local", "TRANLL", "REAL", "2", "CPM3/D/BAR", "34", "35"));
  EXPECT_EQ(csv("init --array PORO,DEPTH --ijk ~CASE"), (Rows{{"i", "j", "k", "PORO", "DEPTH"},
                                                              {"1", "1", "1", "5", "1"},
                                                              {"3", "1", "1", "6", "3"},
                                                              {"1", "2", "1", "7", "4"},
                                                              {"3", "2", "1", "8", "6"}}));
  const auto all = csv("init --array poro,DEPTH,SATNUM --ijk --all ~CASE");
  ASSERT_EQ(all.size(), 7u);
  EXPECT_THAT(all[5], ElementsAre("2", "2", "1", "", "", ""));
  EXPECT_EQ(csv("init --array PERM* --grid RING ~CASE"), (Rows{{"PERMR"}, {"25"}, {"26"}}));
  EXPECT_THAT(csv("init --nnc --array TRAN* ~CASE")[2], ElementsAre("2", "0.25"));
}

TEST_F(InitCommand, CheckFindsWhatDoesNotFit) {
  EXPECT_EQ(run("check ~CASE").status, 0);
  EXPECT_EQ(run("check @ARBOR/ARBOR.INIT").status, 0) << "words left at 1 are no finding";
  test::InitBuilder init(test::bigEndian);
  init.head({.Nx = 3, .Ny = 2, .nActive = 4}).singles("PORV", {1, 1, 1, 0, 0, 0});
  for (const auto* array : {"DEPTH", "NTG"}) init.singles(array, {1, 1, 1, 1, 1, 1});
  write("CASE.INIT", init.bytes());
  const auto found = run("check ~CASE");
  EXPECT_EQ(found.status, 3);
  EXPECT_THAT(found.out, HasSubstr("2 findings")) << "told once, not for each array";
  EXPECT_THAT(found.out, HasSubstr("pore volumes disagree with the active cells of grid ROOT (PORV"));
  const auto unknown = run("init --array DEPTH --ijk ~CASE");
  EXPECT_EQ(unknown.status, 1);
  EXPECT_THAT(unknown.err, HasSubstr("CASE.INIT: which 4 of the 6 cells are active is not known"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
