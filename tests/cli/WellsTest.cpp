#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CommandRun.h"
#include "support/RestartBuilder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::HasSubstr;

/// Steps 1, 2 and 4, of which the last has a local grid with a well; SWAT only makes them long.
test::RestartBuilder threeSteps() {
  test::RestartBuilder run;
  const test::RestartBuilder::Array array{"SWAT", {0, 0, 0, 1}};
  test::RestartBuilder::Grid global{.arrays = {array}, .wells = {{"A", {{1, 2, 1}}, {{7, 1}}}}};
  test::RestartBuilder::Grid local{
      .name = "FINE", .arrays = {array}, .wells = {{"B", {{2, 2, 1}}, {{7, 4}}}}};
  run.steps = {{.number = 1, .grids = {{.arrays = {array}}}},
               {.number = 2, .grids = {global}},
               {.number = 4, .grids = {global, local}}};
  return run;
}

TEST(Wells, StepsAndGridsThatAreNotThereAreTold) {
  const test::TemporaryFolder folder;
  const std::string path = threeSteps().write(folder, "RUN", test::bigEndian);
  struct Row {
    std::vector<std::string> args;
    int status;
    const char* message;
  };
  const Row rows[] = {
      {{"--step", "3"}, 2, "RUN.UNRST has no report step 3; it has 1, 2, 4\n"},
      {{"--grid", "FIND"}, 2, "step 4 has no grid \"FIND\"; did you mean \"FINE\"?\n"},
      {{"--step", "2", "--grid", "LGR9"}, 2, "step 2 has no grid \"LGR9\"; it has ROOT\n"},
      {{"--step", "1"}, 0, "lumbarn: step 1 has no wells\n"},
      {{"--step", "one"}, 2, "--step"},
  };
  for (const Row& row : rows) {
    auto args = row.args;
    args.insert(args.begin(), "wells");
    args.push_back(path);
    const Outcome run = command(args);
    EXPECT_EQ(run.status, row.status) << row.message;
    EXPECT_THAT(run.err, HasSubstr(row.message));
    EXPECT_EQ(run.out, row.status == 0 ? "step 1, 2015-01-01, 0 days\n" : "");
  }
  test::writeFile(folder.file("OTHER.EGRID"), {});
  EXPECT_THAT(command({"wells", folder.file("OTHER")}).err, HasSubstr("OTHER: has no restart files"));

  const auto local =
      nlohmann::json::parse(command({"wells", "--format", "json", "--grid", "fine", path}).out);
  EXPECT_EQ(local["grid"], "FINE");
  EXPECT_EQ(local["wells"][0]["well"], "B");
  EXPECT_EQ(local["wells"][0]["connections"][0]["j"], 2);
}

/// A file cut anywhere shows the last step that is whole and tells where the file ends.
TEST(Wells, OfAFileThatIsCutOff) {
  const test::TemporaryFolder folder;
  auto steps = threeSteps();
  steps.steps[1].grids = steps.steps[2].grids;  // so that the local grid is expected
  const std::string path = steps.write(folder, "RUN", test::bigEndian);
  const std::string whole = content(path);
  const std::size_t last = whole.rfind("SEQNUM");
  for (std::size_t size = last + 40; size < whole.size(); size += 61) {
    store(path, whole.substr(0, size));
    const Outcome run = command({"wells", "--format", "json", path});
    ASSERT_EQ(run.status, 3) << size << run.err;
    EXPECT_EQ(nlohmann::json::parse(run.out)["step"], 2) << size;
    EXPECT_THAT(run.err, HasSubstr("RUN.UNRST: "));
  }
  store(path, whole.substr(0, last + 40));
  const Outcome behind = command({"wells", "--step", "7", path});
  EXPECT_EQ(behind.status, 1);
  EXPECT_THAT(behind.err, HasSubstr("has no report step 7; it has 1, 2"));
}

/// As writers leave it that write a unified file for a single step.
TEST(Wells, OfAFileOfOneStepWithoutItsNumber) {
  const test::TemporaryFolder folder;
  auto steps = threeSteps();
  test::writeFile(folder.file("RUN.UNRST"), steps.bytes(test::bigEndian, steps.steps[1]));
  const Outcome run = command({"wells", "--format", "json", folder.file("RUN.UNRST")});
  ASSERT_EQ(run.status, 0) << run.err;
  const auto wells = nlohmann::json::parse(run.out);
  EXPECT_EQ(wells["step"], 2);
  EXPECT_EQ(wells["wells"][0]["reservoir_rate"], 1005);
}

}  // namespace
}  // namespace lumbarn::cli::testing
