#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CommandRun.h"
#include "support/IndexedRun.h"
#include "support/RestartBuilder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::HasSubstr;

struct RestartCommand : ::testing::Test {
  RestartCommand() {
    run_.writeRestart(folder_, "R", test::bigEndian, true);
    test::writeFile(folder_.file("R.INIT"), run_.init(test::bigEndian));
  }
  Outcome restart(std::vector<std::string> args) {
    args.insert(args.begin(), {"restart", "--format", "csv"});
    args.push_back(folder_.file("R"));
    return command(args);
  }
  test::TemporaryFolder folder_;
  test::IndexedRun run_;
};

TEST_F(RestartCommand, ShowsActiveCellsOrAllWithTheirNumbers) {
  const auto active = parseCsv(restart({"--step", "2", "--array", "region,FULL", "--ijk"}).out);
  ASSERT_EQ(active.size(), 10U);
  EXPECT_EQ(active[0], (std::vector<std::string>{"i", "j", "k", "REGION", "FULL"}));
  EXPECT_EQ(active[3], (std::vector<std::string>{"1", "2", "1", "3", "203"}));
  EXPECT_EQ(active[9], (std::vector<std::string>{"2", "2", "2", "16777217", "210"}));
  const auto all = parseCsv(restart({"--step", "2", "--array", "PRESSURE", "--all"}).out);
  ASSERT_EQ(all.size(), 13U);
  EXPECT_EQ(all[3][0], "-999");
  EXPECT_EQ(all[4][0], "202");
  EXPECT_EQ(parseCsv(restart({"--step", "5", "--array", "P*", "--grid", "near well"}).out)[1][0], "2500");
}

TEST_F(RestartCommand, SaysWhatThereIs) {
  const std::pair<std::vector<std::string>, const char*> rows[] = {
      {{"--step", "3"}, "has no report step 3; it has 1, 2, 5"},
      {{"--step", "2", "--array", "PRESURE"}, "did you mean \"PRESSURE\"?"},
      {{"--step", "2", "--array", "X"}, "it has PRESSURE, REGION, FULL"},
      {{"--step", "2", "--array", "X", "--grid", "Y"}, "it has ROOT, LGR1, NEAR WELL"},
      {{"--step", "2", "--array", "ZWEL"}, "holds no numbers but CHAR"},
      {{"--step", "2", "--array", "ICON", "--ijk"}, "it cannot be shown with --ijk"},
      {{"--array", "PRESSURE"}, "--array needs --step N"}};
  for (const auto& [args, message] : rows) {
    const Outcome run = restart(args);
    EXPECT_EQ(run.status, 2) << message;
    EXPECT_THAT(run.err, HasSubstr(message));
  }
}

TEST_F(RestartCommand, ReachesEachOfTwoStepsWithTheSameNumber) {
  test::RestartBuilder run;
  run.steps = {{.number = 4}, {.number = 4, .days = 9}};
  run.steps[0].grids[0].arrays = {{"SWAT", {1, 2, 3, 4}}};
  run.steps[1].grids[0].arrays = {{"SWAT", {5, 6, 7, 8}}};
  test::writeFile(folder_.file("TWICE.UNRST"), run.bytes(test::bigEndian));
  const auto shown = [&](const std::vector<std::string>& nth) {
    std::vector<std::string> args = {"restart", folder_.file("TWICE"), "--step", "4", "--array", "SWAT"};
    args.insert(args.end(), nth.begin(), nth.end());
    const Outcome outcome = command(args);
    EXPECT_THAT(outcome.err, HasSubstr(outcome.status == 0 ? "2 steps 4" : "there are 2 steps"));
    return outcome.out;
  };
  EXPECT_THAT(shown({}), HasSubstr("5"));
  EXPECT_THAT(shown({"--nth", "1"}), HasSubstr("1"));
  EXPECT_EQ(shown({"--nth", "2"}), shown({}));
  EXPECT_EQ(shown({"--nth", "3"}), "");
}

TEST_F(RestartCommand, IndexIsWrittenWhereToldAndUsed) {
  const std::string walked = restart({}).out;
  EXPECT_EQ(command({"index", folder_.file("R"), "--into", folder_.file("nowhere")}).status, 2);
  const Outcome written = command({"index", folder_.file("R"), "--into", folder_.file("")});
  EXPECT_EQ(written.status, 0) << written.err;
  EXPECT_THAT(written.out, HasSubstr("R.RSSPEC: 3 steps, "));
  EXPECT_THAT(written.out, HasSubstr("R.INSPEC: "));
  EXPECT_EQ(restart({}).out, walked);
  EXPECT_THAT(command({"index", folder_.file("R"), "--into", folder_.file("")}).err, HasSubstr("--replace"));
  const Outcome checked = command({"check", folder_.file("R")});
  EXPECT_EQ(checked.status, 0) << checked.out;
  run_.steps = {1, 2};
  run_.writeRestart(folder_, "R", test::bigEndian, true);
  EXPECT_THAT(restart({}).err, HasSubstr("index does not agree"));
  const Outcome stale = command({"check", folder_.file("R")});
  EXPECT_EQ(stale.status, 0) << "an index that is not used takes nothing away";
  EXPECT_THAT(stale.out, HasSubstr("index does not agree"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
