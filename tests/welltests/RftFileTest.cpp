#include <algorithm>
#include <cmath>
#include <fstream>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Paths.h"
#include "support/Text.h"
#include "support/WellTestLoad.h"

namespace lumbarn {
namespace {

using test::arraysOf;
using test::subscriptFaultIn;
using test::WellTestBuilder;
using test::WellTestLoad;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::vector<WellTestBuilder::Array> depth = arraysOf("DEPTH 1");

TEST(RftFile, GivesTheTableFromTheDepthColumnOn) {
  const auto arrays = arraysOf(
      "CONIPOS: 4 5; CONJPOS: 7 7; CONKPOS: 1 2; SOIL 9 9; PRESSURE 201 202; SWAT 0.25 0.5; "
      "DEPTH 20 30; SGAS 0.125 0.75; WELLPLT 1 2 3");
  WellTestLoad run({{{.well = "B-1 H", .arrays = arrays, .grid = "LG1"}}});
  ASSERT_TRUE(run.rft(1));
  // SOIL of the file does not count; saturations may add up to more than 1.
  EXPECT_EQ(run.shown(),
            "DEPTH/METRES SGAS CONIPOS CONJPOS CONKPOS SOIL COMPLETION PRESSURE/BARSA SWAT "
            "= 20 0.125 4 7 1 0.625 1 201 0.25; 30 0.75 5 7 2 -0.25 2 202 0.5");
  EXPECT_EQ(run.well + "," + run.grid + "," + run.date + "," + run.origin, "B-1 H,LG1,11 JAN 2015,");
  const auto header = run.headers.entry(1);
  std::string expected(233, ' ');
  expected.replace(32, 3, "RFT").replace(40, 6, "METRES").replace(72, 5, "B-1 H").replace(144, 1, "1");
  expected.replace(160, 5, "DEPTH").replace(176, 5, "DEPTH");
  EXPECT_EQ(std::string(header.begin(), header.end()), expected);

  std::vector<char> bGrids;
  bool qOK = false;
  run.file.getRFTtestGrid(1, bGrids, qOK);
  EXPECT_EQ(std::string(bGrids.begin(), bGrids.end()), "LG1 LG1 ");
  EXPECT_THAT(run.faults, IsEmpty());
}

TEST(RftFile, NumbersTestsWellByWellAndTellsTheTimeOfDay) {
  WellTestBuilder builder;
  const struct {
    const char* well;
    float time;
    std::string shown;
  } rows[] = {{"A", 10, "A 1 11 JAN 2015"},
              {"B", 10.5F, "B 1 11 JAN 2015 12:00"},
              {"A", 10.0001F, "A 2 11 JAN 2015"},
              {"a", 0.9999F, "a 1 11 JAN 2015"},
              {"B", 0.0007F, "B 2 11 JAN 2015 00:01"},
              {"A", 3.99F, "A 3 11 JAN 2015 23:46"}};
  for (const auto& row : rows) builder.tests.push_back({.well = row.well, .arrays = depth, .time = row.time});
  WellTestLoad run(builder);
  ASSERT_EQ(run.file.NumTests(), 6);
  for (std::int32_t i = 1; i <= 6; ++i) {
    ASSERT_TRUE(run.rft(i));
    EXPECT_EQ(fmt::format("{} {} {}", run.well, run.number, run.date), rows[i - 1].shown);
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
  for (const bool timed : {false, true}) {
    WellTestLoad run;
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), test::bigEndian);
    out.texts("WELLETC", WellTestBuilder::usualWelletc("A", ""));
    out.singles("DEPTH", std::array{5.F});
    if (timed) out.singles("TIME", std::array{1.F});
    out.singles("SWAT", std::array{0.25F});
    run.file.FileName = run.folder.file("ODD.RFT");
    run.file.byteSwap = test::bigEndian.byteSwap;
    test::writeFile(run.file.FileName, bytes);
    run.file.getRFTData(run.loaded);
    ASSERT_TRUE(run.loaded && run.rft(1));
    EXPECT_EQ(run.shown(), "DEPTH/METRES SWAT SOIL COMPLETION = 5 0.25 0.75 1");
  }
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
      {"integers", "DEPTH: 3 4; UNKNOWN: 1", "DEPTH/METRES SOIL COMPLETION = 3 1 1; 4 1 2", ""},
  };
  for (const auto& [why, arrays, shown, leftOut] : rows) {
    WellTestLoad run({{{.arrays = arraysOf(arrays)}}});
    ASSERT_TRUE(run.rft(1)) << why;
    EXPECT_EQ(run.shown(), shown) << why;
    EXPECT_EQ(run.lastDiagnosis().keyword, leftOut) << why;
    EXPECT_EQ(run.lastDiagnosis().path, leftOut.empty() ? "" : run.file.FileName) << why;
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
    EXPECT_EQ(run.faults,
              routine.empty() ? std::vector<std::string>{} : std::vector{subscriptFaultIn(routine)});
    EXPECT_TRUE(run.rft(2));
    EXPECT_EQ(run.date, "5 MAR 0000") << "dates are taken as they stand";
  }
}

TEST(RftFile, OfAnotherKindIsRefused) {
  WellTestLoad run;
  run.file.FileName = "kept";
  EXPECT_FALSE(run.file.CheckRFTFile(run.folder.file("NONE.RFT")));
  EXPECT_FALSE(run.file.CheckRFTFile(examplePath("/data/ARBOR/ARBOR.INIT")));
  bool qOK = true;
  run.file.getRFTData(qOK);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(run.lastDiagnosis().path, "kept");
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

}  // namespace
}  // namespace lumbarn
