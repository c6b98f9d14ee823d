#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/WellTestLoad.h"
#include "welltests/WellTest.h"

namespace lumbarn {
namespace {

using test::WellTestBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Singles = std::vector<float>;
using Integers = std::vector<std::int32_t>;
using Texts = std::vector<std::string>;

std::vector<std::string> namesOf(const std::vector<WellTestColumn>& columns) {
  std::vector<std::string> names;
  for (const auto& column : columns) names.push_back(column.name);
  return names;
}

TEST(WellTestFile, HoldsEveryArray) {
  const test::TemporaryFolder folder;
  auto arrays = test::arraysOf(
      "CONIPOS: 16777217 2; SOIL 0.5 0.25; CONPRES 1 2 3; SEGPRES 1 2 3; ILBRNO: 1 2 3; BRNST: 1 2 3 4; "
      "WELLPLT 1 2 3 4 5");
  arrays.insert(arrays.begin() + 1, {"HOSTGRID", Texts{"", " LG1"}});
  const WellTestBuilder builder{
      {{.well = "A", .arrays = test::arraysOf("DEPTH 1"), .time = 10.27F},
       {.well = "B", .arrays = arrays, .grid = "LG2", .date = {31, 2, 2015}},
       {.well = "A", .time = 30, .welletc = WellTestBuilder::usualWelletc("A", "", " HOURS")}}};
  Session session;
  const auto tests = readWellTests(builder.write(folder, test::bigEndian), session);
  ASSERT_EQ(tests.size(), 3U);
  EXPECT_EQ(isoText(*tests[0].date), "2015-01-11T06:28:48");  // the plainest with the same float
  EXPECT_FALSE(tests[1].date);
  EXPECT_EQ(isoText(*tests[2].date), "2015-01-11T06:00:00") << "time in hours";
  EXPECT_EQ(tests[2].numberInWell, 2);

  const WellTest& one = tests[1];
  EXPECT_EQ(one.well + "," + one.grid + "," + one.wellType, "B,LG2,MULTISEG");
  EXPECT_THAT(namesOf(one.connections.columns), ElementsAre("CONIPOS", "HOSTGRID", "SOIL"));
  EXPECT_THAT(namesOf(one.segments.columns), ElementsAre("SEGPRES", "ILBRNO"));
  EXPECT_THAT(namesOf(one.branches.columns), ElementsAre("BRNST"));
  EXPECT_THAT(namesOf(one.others), ElementsAre("CONPRES", "WELLPLT"));
  EXPECT_EQ(std::get<Integers>(one.connections.columns[0].values)[0], 16777217);  // no single has it
  EXPECT_EQ(std::get<Texts>(one.connections.find("HOSTGRID")->values)[1], "LG1");
  EXPECT_EQ(one.units.velocity + "," + one.unit("SEGCORTS") + "," + one.unit("CONOTUB") + "," +
                one.unit("HOSTGRID"),
            "M/SEC,SM3/DAY/METRES,SM3/DAY,");
  ASSERT_EQ(session.diagnoses().size(), 1U);
  EXPECT_EQ(session.diagnoses()[0].keyword, "CONPRES");
  EXPECT_EQ(session.diagnoses()[0].offset, one.others[0].headerAt);
}

TEST(WellTestFile, TestsBehindDamageAreRead) {
  WellTestBuilder builder;
  for (const char* well : {"A", "B", "C"})
    builder.tests.push_back({.well = well, .arrays = test::arraysOf("DEPTH 1 2; SWAT 0 1")});
  auto bytes = builder.bytes(test::bigEndian);
  const std::size_t one = bytes.size() / 3;
  test::WellTestLoad run;
  const auto path = run.folder.file("DAMAGED.RFT");
  // In the header of DATE, in a mark of WELLETC, and in the header of TIME, which takes the second test
  // along.
  const std::pair<std::size_t, std::size_t> rows[] = {{40, 3}, {90, 3}, {9, 2}};
  for (const auto& [at, found] : rows) {
    auto damaged = bytes;
    for (std::size_t i = 0; i < 12; ++i) damaged[one + at + i] = std::byte{0xEE};
    test::writeFile(path, damaged);
    run.session.clearDiagnoses();
    const auto tests = readWellTests(path, run.session);
    ASSERT_EQ(tests.size(), found) << at;
    EXPECT_EQ(tests.back().well, "C");
    EXPECT_TRUE(tests.back().complete);
    EXPECT_EQ(run.lastDiagnosis().id(), "record.gap") << at;
    run.file = qvEclipseRFT(run.session);
    ASSERT_TRUE(run.load(path)) << at;
    EXPECT_TRUE(run.file.qDamaged);
    ASSERT_EQ(static_cast<std::size_t>(run.file.NumTests()), found);
    ASSERT_TRUE(run.rft(run.file.NumTests()));
    EXPECT_EQ(run.well, "C");
  }
}

TEST(WellTestFile, TruncatedInTheNextTimeLeavesTheTestWorkedOut) {
  WellTestBuilder::Test one;
  one.arrays = test::arraysOf(
      "DEPTH 20 10; CONLENST 4 1; CONLENEN 8 3; CONORAT 1 2; CONWRAT 1 2; CONOTUB 1 2; CONWTUB 1 2");
  const std::size_t end = WellTestBuilder{{one}}.bytes(test::bigEndian).size();
  auto bytes = WellTestBuilder{{one, one}}.bytes(test::bigEndian);
  bytes.resize(end + 24 + 5);
  test::WellTestLoad run;
  const auto path = run.folder.file("CUT.RFT");
  test::writeFile(path, bytes);
  ASSERT_TRUE(run.load(path));
  EXPECT_EQ(run.file.NumTests(), 1);
  EXPECT_TRUE(run.plt(1));
  EXPECT_EQ(run.column("CONMD"), (Singles{2, 6}));
  EXPECT_TRUE(run.file.qDamaged);
  EXPECT_EQ(run.lastDiagnosis().keyword, "TIME");
  const auto tests = readWellTests(path, run.session);
  ASSERT_EQ(tests.size(), 1U);
  EXPECT_TRUE(tests[0].complete);
}

WellTopology topology(Integers next, Integers branch) {
  WellTest test;
  test.segments.columns = {{"SEGNXT", std::move(next)}, {"SEGBRNO", std::move(branch)}};
  return topologyOf(test);
}

TEST(WellTopologies, AreOrderedAgainstTheFlow) {
  // 1 <- 4 <- 2 is the stem, 3 and 5 a lateral at 4 whose numbers run down the well, 6 one at 5.
  const WellTopology well = topology({0, 4, 5, 1, 4, 5}, {1, 1, 7, 1, 7, 3});
  std::vector<Integers> found;
  for (const auto& branch : well.branches) {
    found.push_back({branch.number, branch.outletBranch, branch.outletSegment});
    found.push_back(branch.segments);
  }
  EXPECT_EQ(found, (std::vector<Integers>{{1, 0, 0}, {1, 4, 2}, {3, 7, 5}, {6}, {7, 1, 4}, {5, 3}}));
  EXPECT_THAT(well.undrained, IsEmpty());
}

TEST(WellTopologies, RingsAndSegmentsThatLeadNowhereAreTold) {
  const WellTopology well = topology({0, 3, 2, 2, 99, -1, 7}, {1, 2, 2, 2, 1, 1, 1});
  EXPECT_THAT(well.undrained, ElementsAre(2, 3, 4, 7));
  EXPECT_THAT(well.astray, ElementsAre(5));
  ASSERT_EQ(well.branches.size(), 1U);
  EXPECT_THAT(well.branches[0].segments, ElementsAre(1, 5, 6));
  EXPECT_THAT(topology({0, 1}, {1}).branches, IsEmpty());
}

}  // namespace
}  // namespace lumbarn
