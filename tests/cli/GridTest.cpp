#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CommandRun.h"
#include "support/GridBuilder.h"
#include "support/TemporaryFolder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::HasSubstr;

TEST(Grid, CornersAreThoseOfTheFile) {
  const auto rows = parseCsv(command({"grid", "--corners", "--format", "csv", sample("ARBORF")}).out);
  ASSERT_EQ(rows.size(), 1 + 297);
  EXPECT_EQ(rows[0].size(), 27);
  // Corner 1 of one cell is corner 2 of the one before it in I.
  EXPECT_EQ(rows[2][3], rows[1][6]);
  EXPECT_EQ(command({"grid", "--corners", "--format", "csv", sample("ARBOR")}).out,
            command({"grid", "--corners", "--format", "csv", sample("ARBORF")}).out);
}

TEST(Grid, RadialGridsHaveAnglesAndRefinedCellsAreCounted) {
  const test::TemporaryFolder folder;
  test::GridBuilder run;
  run.grids[0].activity = {0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
  run.grids.push_back({.size = {2, 2, 1}, .name = "WELL", .hosts = {1, 2, 2, 5}, .angles = 2});
  test::writeFile(folder.file("RUN.EGRID"), run.egrid(Form{}));
  const auto grids = parseCsv(command({"grid", "--format", "csv", folder.file("")}).out);
  ASSERT_EQ(grids.size(), 3);
  EXPECT_EQ(grids[0][7], "refined");
  EXPECT_EQ(grids[1][7], "2") << "of three refined cells one is inactive";
  const auto rows =
      parseCsv(command({"grid", "--grid", "WELL", "--corners", "--format", "csv", folder.file("")}).out);
  EXPECT_THAT(std::vector(rows[0].begin() + 3, rows[0].begin() + 7),
              ::testing::ElementsAre("r1", "theta1", "z1", "r2"));
}

struct Refused {
  std::vector<std::string> args;
  const char* message;
};
const Refused refusals[] = {
    {{"--grid", "ROT"}, "no grid \"ROT\"; did you mean \"ROOT\"?"},
    {{"--grid", "FAULT"}, "no grid \"FAULT\"; it has ROOT"},
    {{"--vtk", "FILE", "--corners"}, "--corners and --vtk cannot be given together"},
    {{"--array", "PORO"}, "--array, --step and --z-up go with --vtk"},
    {{"--vtk", "FILE", "--array", "PRESURE"},
     "no array \"PRESURE\" with a value for each cell is in the restart or the INIT file; did you mean "
     "\"PRESSURE\"?"},
    {{"--vtk", "FILE", "--array", "DOUBHEAD"}, "no array \"DOUBHEAD\""},
    {{"--vtk", "FILE", "--array", "PRESSURE", "--step", "99"}, "no restart step 99 is there"},
    {{"--vtk", "INPUT"}, "is an input, not replaced"},
};

TEST(Grid, WhatCannotBeIsRefusedAndNothingWritten) {
  const test::TemporaryFolder folder;
  const std::string input = folder.file("HOLLIN.EGRID");
  store(input, content(sample("HOLLIN/HOLLIN.EGRID")));
  for (const char* name : {"HOLLIN.INIT", "HOLLIN.UNRST"})
    store(folder.file(name), content(sample("HOLLIN/") + name));
  for (const Refused& refused : refusals) {
    std::vector<std::string> args{"grid"};
    for (const std::string& word : refused.args)
      args.push_back(word == "FILE" ? folder.file("out.vtkhdf") : word == "INPUT" ? input : word);
    args.push_back(folder.file(""));
    const Outcome run = command(args);
    EXPECT_EQ(run.status, 2) << run.err;
    EXPECT_THAT(run.err, HasSubstr(refused.message));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.file("")), {}), 3);
  }
}

TEST(Grid, AFileThatIsNoGridFileIsNamed) {
  const test::TemporaryFolder folder;
  store(folder.file("RUN.EGRID"), "FILEHAED");
  const Outcome run = command({"grid", folder.file("RUN.EGRID")});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("RUN.EGRID: does not begin with FILEHEAD"));
}

TEST(Grid, ADamagedRestartGivesTheStepsBeforeTheDamage) {
  const test::TemporaryFolder folder;
  store(folder.file("HOLLIN.EGRID"), content(sample("HOLLIN/HOLLIN.EGRID")));
  const std::string restart = content(sample("HOLLIN/HOLLIN.UNRST"));
  store(folder.file("HOLLIN.UNRST"), restart.substr(0, restart.size() / 2));
  const std::string out = folder.file("out.vtkhdf");
  const Outcome run = command({"grid", "--vtk", out, "--array", "PRESSURE", folder.file("")});
#ifdef LUMBARN_WITH_HDF5
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.err, HasSubstr("listed 7 steps"));
  EXPECT_TRUE(std::filesystem::exists(out));
#else
  EXPECT_EQ(run.status, 2);
#endif
}

TEST(Grid, CheckTellsWhatDoesNotFitTheSizes) {
  const test::TemporaryFolder folder;
  test::GridBuilder run;
  run.grids[0].activity = {1, 1, 0};
  test::writeFile(folder.file("RUN.EGRID"), run.egrid(Form{}));
  const Outcome checked = command({"check", "--format", "csv", folder.file("RUN.EGRID")});
  EXPECT_EQ(checked.status, 3);
  const auto rows = parseCsv(checked.out);
  ASSERT_EQ(rows.size(), 2) << checked.out;
  EXPECT_EQ(rows[1][2], "ACTNUM");
  EXPECT_THAT(rows[1][5], HasSubstr("12"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
