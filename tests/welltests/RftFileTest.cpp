#include <algorithm>
#include <cmath>
#include <fstream>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/FaultySource.h"
#include "support/Paths.h"
#include "support/Text.h"
#include "support/WellTestLoad.h"
#include "welltests/WellTest.h"

namespace lumbarn {
namespace {

using test::arraysOf;
using test::subscriptFaultIn;
using test::WellTestBuilder;
using test::WellTestLoad;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Singles = std::vector<float>;
using Integers = std::vector<std::int32_t>;
using Texts = std::vector<std::string>;

const std::vector<WellTestBuilder::Array> depth = arraysOf("DEPTH 1");

TEST(RftFile, NumbersTestsWellByWellAndTellsTheTimeOfDay) {
  WellTestBuilder builder;
  const std::tuple<const char*, float, std::string> rows[] = {{"A", 10, "A 1 11 JAN 2015"},
                                                              {"B", 10.5F, "B 1 11 JAN 2015 12:00"},
                                                              {"A", 10.0001F, "A 2 11 JAN 2015"},
                                                              {"a", 0.9999F, "a 1 11 JAN 2015"},
                                                              {"B", 0.0007F, "B 2 11 JAN 2015 00:01"},
                                                              {"A", 3.99F, "A 3 11 JAN 2015 23:46"}};
  for (const auto& [well, time, shown] : rows)
    builder.tests.push_back({.well = well, .arrays = depth, .time = time});
  WellTestLoad run(builder);
  ASSERT_EQ(run.file.NumTests(), 6);
  for (std::int32_t i = 1; i <= 6; ++i) {
    ASSERT_TRUE(run.rft(i));
    EXPECT_EQ(fmt::format("{} {} {}", run.well, run.number, run.date), std::get<2>(rows[i - 1]));
  }
  bool qOK = true;
  run.file.getRFTData(qOK);  // adds to what is there
  ASSERT_TRUE(run.rft(12));
  EXPECT_EQ(run.number, 6);
  for (const std::int32_t iTest : {0, 13}) {
    run.faults.clear();
    bool qRFT, qPLT, qSEG;
    run.file.getRFTTestInfo(iTest, qRFT, qPLT, qSEG, qOK);
    EXPECT_THAT(run.faults, ElementsAre("Error:Subscript out of range (No.9) In [qvEclipseRFT (Code) "
                                        "(getRFTTestInfo)] "));
    EXPECT_EQ(run.file.NumberBranches(iTest) + run.file.NumberPLTBranches(iTest), 0);
    EXPECT_FALSE(qOK || run.rft(iTest));
  }
  EXPECT_EQ(run.file.Origin() + run.file.FileName, "");  // asking clears the name
  run.file.getRFTData(qOK);
  EXPECT_FALSE(qOK);
}

TEST(RftFile, CancelingKeepsTheTestsReadWithoutNumbers) {
  WellTestBuilder builder;
  builder.tests.assign(4, {.arrays = depth});
  WellTestLoad run;
  int yields = 0;
  run.session.hostYield = [&] { run.session.CancelLoad = ++yields == 2; };
  EXPECT_FALSE(run.load(builder.write(run.folder, test::bigEndian)));
  EXPECT_EQ(run.file.NumTests(), 2);
  EXPECT_TRUE(run.rft(2));
  EXPECT_EQ(run.number, 0);
}

TEST(RftFile, RecordsBeforeTheFirstTimeBelongToTheFirstTest) {
  WellTestLoad run;
  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), test::bigEndian);
  out.texts("WELLETC", WellTestBuilder::usualWelletc("A", ""));
  for (const char* keyword : {"DEPTH", "TIME", "SWAT"}) out.singles(keyword, std::array{0.25F});
  test::writeFile(run.folder.file("ODD.RFT"), bytes);
  ASSERT_TRUE(run.load(run.folder.file("ODD.RFT")) && run.rft(1));
  EXPECT_EQ(run.shown(), "DEPTH/METRES SWAT SOIL COMPLETION = 0.25 0.25 0.75 1");
}

TEST(RftFile, ArraysOfAnyLengthAreTaken) {
  const struct {
    const char *why, *arrays, *shown;
    std::string leftOut;  ///< keyword of the last diagnosis
  } rows[] = {
      {"a short array is lost", "DEPTH 1 2; SGAS 0.5; SWAT 0.25 1",
       "DEPTH/METRES SWAT SOIL COMPLETION = 1 0.25 0.75 1; 2 1 0 2", "SGAS"},
      {"nothing is derived", "SWAT 1 2; PRESSURE 3 4", "SWAT PRESSURE/BARSA = 1 3; 2 4", ""},
      {"an empty array", "PRESSURE; DEPTH 7", "DEPTH/METRES SOIL COMPLETION = 7 1 1", "PRESSURE"},
      {"I and K count as 0", "J: 3 4; CONPRES 1 2", "CONIPOS CONKPOS = 0 0", "COMPLETION"},
      {"indices of reals are of the PLT table", "DEPTH 7; CONIPOS 5", "DEPTH/METRES SOIL COMPLETION = 7 1 1",
       ""},
      {"integers", "DEPTH: 3 4; UNKNOWN: 1", "DEPTH/METRES SOIL COMPLETION = 3 1 1; 4 1 2", ""},
      {"a date of reals", "DEPTH 7; DATE 1 2 3", "DEPTH/METRES SOIL COMPLETION = 7 1 1", "DATE"},
  };
  for (const auto& [why, arrays, shown, leftOut] : rows) {
    WellTestLoad run({{{.arrays = arraysOf(arrays)}}});
    ASSERT_TRUE(run.rft(1)) << why;
    EXPECT_EQ(run.shown(), shown) << why;
    EXPECT_EQ(run.lastDiagnosis().keyword, leftOut) << why;
    EXPECT_EQ(run.lastDiagnosis().path, leftOut.empty() ? "" : run.file.FileName) << why;
    if (leftOut != "DATE") continue;
    EXPECT_EQ(run.lastDiagnosis().id(), "record.type");
    run.session.clearDiagnoses();
    EXPECT_THAT(readWellTests(run.file.FileName, run.session)[0].others, IsEmpty());
    EXPECT_EQ(run.lastDiagnosis().id(), "record.type");
  }
}

TEST(RftFile, FaultsEndTheirTestAndNoOther) {
  const auto usual = WellTestBuilder::usualWelletc("A", "");
  const auto first = [&](std::size_t n) { return WellTestBuilder::Texts(usual.begin(), usual.begin() + n); };
  const struct {
    WellTestBuilder::Test test;
    std::string well, routine, keyword;
  } rows[] = {
      {{.arrays = depth, .date = {1, 2}}, "", "getEclipseRFTtest", "DATE"},
      {{.arrays = depth, .welletc = first(1)}, "", "getEclipseRFTtest", "WELLETC"},
      {{.arrays = depth, .welletc = first(2)}, "A", "getEclipseRFTtest", "WELLETC"},
      {{.arrays = depth, .welletc = first(3)}, "A", "", ""},
      {{.arrays = depth, .welletc = first(8)}, "A", "setUNITS", ""},
      {{.arrays = depth, .date = {5, 13, 2003}}, "A", "", "DATE"},
  };
  for (const auto& [test, well, routine, keyword] : rows) {
    WellTestLoad run({{test, {.well = "B", .arrays = depth, .date = {5, 3, -1}}}});
    ASSERT_EQ(run.file.NumTests(), 2);
    EXPECT_EQ(run.file.test(1).well(), well);
    EXPECT_EQ(run.rft(1), routine != "getEclipseRFTtest");  // nothing behind the fault was read
    EXPECT_EQ(run.session.diagnoses().empty() ? "" : run.session.diagnoses()[0].keyword, keyword);
    EXPECT_EQ(run.faults, routine.empty() ? Texts{} : Texts{subscriptFaultIn(routine)});
    EXPECT_TRUE(run.rft(2));
    EXPECT_EQ(run.date, "5 MAR 0000") << "dates are taken as they stand";
  }
}

/// The tables beside what an independent reader found in the files: count, least, greatest and sum of each
/// array.
TEST(RftSamples, HoldWhatAnIndependentReaderFound) {
  const std::string data = examplePath("/data/");
  for (const std::string name : {"ARBORF.FRFT", "HOLLIN.RFT"}) {
    WellTestLoad run(data + name.substr(0, name.find('.')) + "/" + name);
    ASSERT_TRUE(run.loaded);
    std::ifstream expected(data + "expected/" + name + ".records.csv");
    std::int32_t iTest = 0;
    std::int32_t compared = 0;
    for (std::string line; std::getline(expected, line);) {
      const auto facts = split(line, ',');
      if (facts[0] == "TIME") {
        ASSERT_TRUE(run.rft(++iTest));
        EXPECT_EQ(run.file.test(iTest).time(), std::stof(facts[3]));
      }
      const auto column = run.column(facts[0]);
      if (column.empty()) continue;
      ++compared;
      EXPECT_EQ(column.size(), std::stoul(facts[2]));
      EXPECT_EQ(std::ranges::min(column), std::stof(facts[3])) << line;
      EXPECT_EQ(std::ranges::max(column), std::stof(facts[4])) << line;
      const double sum = std::accumulate(column.begin(), column.end(), 0.0);
      EXPECT_NEAR(sum, std::stod(facts[5]), 1e-7 * std::abs(sum)) << line;
    }
    EXPECT_EQ(iTest, run.file.NumTests());
    EXPECT_EQ(compared, 7 * iTest);
    EXPECT_THAT(run.faults, IsEmpty());
    EXPECT_THAT(run.session.diagnoses(), IsEmpty());
  }
}

std::vector<std::string> namesOf(const std::vector<WellTestColumn>& columns) {
  std::vector<std::string> names;
  for (const auto& column : columns) names.push_back(column.name);
  return names;
}

TEST(WellTestFile, HoldsEveryArray) {
  const test::TemporaryFolder folder;
  auto arrays = arraysOf(
      "CONIPOS: 16777217 2; SOIL 0.5 0.25; CONPRES 1 2 3; SEGPRES 1 2 3; ILBRNO: 1 2 3; BRNST: 1 2 3 4; "
      "WELLPLT 1 2 3 4 5");
  arrays.insert(arrays.begin() + 1, {"HOSTGRID", Texts{"", " LG1"}});
  const WellTestBuilder builder{
      {{.well = "A", .arrays = depth, .time = 10.27F},
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
  EXPECT_EQ(one.unit("SEGCORTS") + "," + one.unit("CONOTUB") + one.unit("HOSTGRID"),
            "SM3/DAY/METRES,SM3/DAY");
  ASSERT_EQ(session.diagnoses().size(), 1U);
  EXPECT_EQ(session.diagnoses()[0].keyword, "CONPRES");
  EXPECT_EQ(session.diagnoses()[0].offset, one.others[0].headerAt);

  const test::FaultyFiles touched(test::ReadFault::Touched, 1);
  EXPECT_EQ(readWellTests(folder.file("RUN.RFT"), session).size(), 3U);
  EXPECT_EQ(session.diagnoses().back().id(), "file.changed");
}

TEST(WellTestFile, TestsBehindDamageAreRead) {
  WellTestBuilder builder;
  for (const char* well : {"A", "B", "C"})
    builder.tests.push_back({.well = well, .arrays = arraysOf("DEPTH 1 2; SWAT 0 1")});
  const auto bytes = builder.bytes(test::bigEndian);
  const std::size_t one = bytes.size() / 3;
  WellTestLoad run;
  const auto path = run.folder.file("DAMAGED.RFT");
  // In the header of DATE, in a mark of WELLETC, and in the header of TIME, which takes the second test
  // along.
  const std::pair<std::size_t, std::size_t> rows[] = {{40, 3}, {90, 3}, {9, 2}};
  for (const auto& [at, found] : rows) {
    auto damaged = bytes;
    std::fill_n(damaged.begin() + static_cast<std::ptrdiff_t>(one + at), 12, std::byte{0xEE});
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
    ASSERT_TRUE(run.rft(static_cast<std::int32_t>(found)));
    EXPECT_EQ(run.well, "C");
  }
  const test::FaultyFiles faults(test::ReadFault::Fails, 1);
  EXPECT_THAT(readWellTests(path, run.session), IsEmpty());
  EXPECT_EQ(run.lastDiagnosis().id(), "file.read");
}

TEST(WellTestFile, TruncatedInTheNextTimeLeavesTheTestWorkedOut) {
  WellTestBuilder::Test one;
  one.arrays =
      arraysOf("DEPTH 20 10; CONLENST 4 1; CONLENEN 8 3; CONORAT 1 2; CONWRAT 1 2; CONOTUB 1 2; CONWTUB 1 2");
  auto bytes = WellTestBuilder{{one, one}}.bytes(test::bigEndian);
  bytes.resize(bytes.size() / 2 + 24 + 5);
  WellTestLoad run;
  const auto path = run.folder.file("CUT.RFT");
  test::writeFile(path, bytes);
  ASSERT_TRUE(run.load(path));
  EXPECT_EQ(run.file.NumTests(), 1);
  EXPECT_TRUE(run.plt(1));
  EXPECT_EQ(run.column("CONMD"), (Singles{2, 6}));
  EXPECT_TRUE(run.file.qDamaged);
  EXPECT_EQ(run.lastDiagnosis().keyword, "TIME");
  const auto tests = readWellTests(path, run.session);
  EXPECT_TRUE(tests.size() == 1 && tests[0].complete);
}

WellTopology topology(Integers next, Integers branch) {
  WellTest test;
  test.segments.columns = {{"SEGNXT", std::move(next)}, {"SEGBRNO", std::move(branch)}};
  return topologyOf(test);
}

TEST(WellTopologies, AreOrderedAgainstTheFlow) {
  // 1 <- 4 <- 2 is the stem, 3 and 5 a lateral at 4 whose numbers run down the well, 6 one at 5.
  std::vector<Integers> found;
  for (const auto& branch : topology({0, 4, 5, 1, 4, 5}, {1, 1, 7, 1, 7, 3}).branches) {
    found.push_back({branch.number, branch.outletBranch, branch.outletSegment});
    found.push_back(branch.segments);
  }
  EXPECT_EQ(found, (std::vector<Integers>{{1, 0, 0}, {1, 4, 2}, {3, 7, 5}, {6}, {7, 1, 4}, {5, 3}}));
  // Rings and segments that lead nowhere.
  const WellTopology well = topology({0, 3, 2, 2, 99, -1, 7}, {1, 2, 2, 2, 1, 1, 1});
  EXPECT_THAT(well.undrained, ElementsAre(2, 3, 4, 7));
  EXPECT_THAT(well.astray, ElementsAre(5));
  ASSERT_EQ(well.branches.size(), 1U);
  EXPECT_THAT(well.branches[0].segments, ElementsAre(1, 5, 6));
  EXPECT_THAT(topology({0, 1}, {1}).branches, IsEmpty());
}

}  // namespace
}  // namespace lumbarn
