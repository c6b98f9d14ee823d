#include "CommandTest.h"
#include "support/IndexedRun.h"
#include "support/ModelRun.h"
#include "support/RestartBuilder.h"

namespace lumbarn::cli::testing {
namespace {

struct RestartCommand : CommandTest {
  RestartCommand() {
    run_.writeRestart(folder_, "R", test::bigEndian, true);
    write("R.INIT", run_.init(test::bigEndian));
  }
  test::IndexedRun run_;
};

TEST_F(RestartCommand, ReachesEachOfTwoStepsWithTheSameNumber) {
  test::RestartBuilder twice;
  twice.steps = {{.number = 4}, {.number = 4, .days = 9}};
  twice.steps[0].grids[0].arrays = {{"SWAT", {1, 2, 3, 4}}};
  twice.steps[1].grids[0].arrays = {{"SWAT", {5, 6, 7, 8}}};
  write("TWICE.UNRST", twice.bytes(test::bigEndian));
  const auto listed = csv("restart ~TWICE --step 4");
  ASSERT_EQ(listed.size(), 3U);
  EXPECT_THAT(listed[1], ElementsAre("4", "2015-01-01T00:00:00", "0", "ROOT", "SWAT", "REAL", "4", ""));
  EXPECT_THAT(listed[2], ElementsAre("4", "2015-01-01T00:00:00", "9", "ROOT", "SWAT", "REAL", "4", ""));
  const auto shown = [this](const std::string& nth) {
    const Outcome outcome = run("restart ~TWICE --step 4 --array SWAT --format csv " + nth);
    EXPECT_THAT(outcome.err,
                HasSubstr(outcome.status == 0 ? "2 steps 4" : "there are 2 steps with number 4"));
    return outcome.out;
  };
  EXPECT_EQ(shown("--nth 1"), "SWAT\r\n1\r\n2\r\n3\r\n4\r\n");
  EXPECT_EQ(shown("--nth 2"), "SWAT\r\n5\r\n6\r\n7\r\n8\r\n");
  EXPECT_EQ(shown("--nth 2"), shown(""));
  EXPECT_EQ(shown("--nth 3"), "");
}

TEST_F(RestartCommand, IndexIsWrittenWhereToldAndUsed) {
  EXPECT_THAT(csv("restart --step 2 --array region,FULL --ijk ~R").back(),
              ElementsAre("2", "2", "2", "16777217", "210"));
  EXPECT_EQ(csv("restart --step 2 --array PRESSURE --all ~R").at(3), std::vector<std::string>{""});
  EXPECT_EQ(csv("restart @ARBORM/ARBORM.X0003").at(1).at(0), "3") << "the step of the file that is named";
  const std::string walked = run("restart ~R").out;
  const Outcome written = run("index ~R --into ~");
  EXPECT_EQ(written.status, 0) << written.err;
  EXPECT_THAT(written.out, HasSubstr("R.RSSPEC: 3 steps, "));
  EXPECT_THAT(written.out, HasSubstr("R.INSPEC: "));
  EXPECT_EQ(run("restart ~R").out, walked);
  EXPECT_THAT(run("index ~R --into ~").err, HasSubstr("--replace"));
  const Outcome checked = run("check ~R");
  EXPECT_EQ(checked.status, 0) << checked.out;
  run_.steps = {1, 2};
  run_.writeRestart(folder_, "R", test::bigEndian, true);
  EXPECT_THAT(run("restart ~R").err, HasSubstr("index does not agree"));
  const Outcome stale = run("check ~R");
  EXPECT_EQ(stale.status, 0) << "an index that is not used takes nothing away";
  EXPECT_THAT(stale.out, HasSubstr("index does not agree"));
}

/// Steps 1, 2 and 4: the first without wells, the others with a well in a local grid too. SWAT only makes
/// them long.
TEST_F(RestartCommand, WellsOfStepsAndGrids) {
  test::RestartBuilder wells;
  const test::RestartBuilder::Array array{"SWAT", {0, 0, 0, 1}};
  const test::RestartBuilder::Grid global{.arrays = {array}, .wells = {{"A", {{1, 2, 1}}, {{7, 1}}}}};
  const test::RestartBuilder::Grid local{
      .name = "FINE", .arrays = {array}, .wells = {{"B", {{2, 2, 1}}, {{7, 4}}}}};
  wells.steps = {{.number = 1, .grids = {{.arrays = {array}}}},
                 {.number = 2, .grids = {global, local}},
                 {.number = 4, .grids = {global, local}}};
  const std::string path = wells.write(folder_, "W", test::bigEndian);
  const Outcome none = run("wells --step 1 ~W.UNRST");
  EXPECT_EQ(none.err, "");
  EXPECT_EQ(csv("wells --step 1 ~W.UNRST").size(), 1);
  const auto fine = json("wells --grid fine ~W.UNRST");
  EXPECT_EQ(fine[0]["grid"], "FINE");
  EXPECT_EQ(fine[0]["well"], "B");
  EXPECT_THAT(run("restart ~W.UNRST").out, HasSubstr("arrays of steps 2, 4\n"));
  EXPECT_EQ(csv("restart --grid fine ~W.UNRST").at(1),
            (std::vector<std::string>{"1", "2015-01-01T00:00:00", "0", "", "", "", "", ""}));

  // A truncated file shows the last complete step.
  const std::string whole = content(path);
  store(path, whole.substr(0, whole.rfind("SEQNUM") + 40));
  EXPECT_EQ(run("wells ~W.UNRST").status, 3);
  EXPECT_EQ(json("wells ~W.UNRST")[0]["step"], 2);
  const Outcome behind = run("wells --step 7 ~W.UNRST");
  EXPECT_EQ(behind.status, 2);
  EXPECT_THAT(behind.err, HasSubstr("none of the report steps asked for; it has 1, 2"));
}

TEST_F(RestartCommand, DerivedSaturationsAndNamesThatOccurTwice) {
  test::RestartBuilder restart;
  restart.steps = {{.number = 1,
                    .grids = {{.arrays = {{"SWAT", {0.25F, 0.5F, 0, 1}},
                                          {"SGAS", {0.25F, 0.25F, 0, 0}},
                                          {"RS", {1, 2, 3, 4}},
                                          {"RS", {5, 6, 7, 8}}}}}}};
  write("D.UNRST", restart.bytes(test::bigEndian));
  EXPECT_THAT(csv("restart ~D").back(),
              ElementsAre("1", "2015-01-01T00:00:00", "0", "ROOT", "SOIL", "derived", "4", ""));
  const Outcome values = run("restart --step 1 --array RS,S?IL --format csv ~D");
  EXPECT_THAT(values.out, HasSubstr("RS,RS#2,SOIL\r\n1,5,0.5\r\n2,6,0.25\r\n"));
  EXPECT_THAT(values.err, HasSubstr("RS occurs twice in step 1"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
