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

using test::subscriptFaultIn;
using test::WellTestBuilder;
using test::WellTestLoad;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RftFile : public test::OfForm {};
INSTANTIATE_TEST_SUITE_P(Forms, RftFile, ::testing::ValuesIn(test::everyForm), test::formName);

WellTestBuilder::Array singles(const std::string& name, std::vector<float> values) { return {name, values}; }
WellTestBuilder::Array integers(const std::string& name, std::vector<std::int32_t> values) {
  return {name, values};
}

std::vector<WellTestBuilder::Array> rftArrays() {
  return {integers("CONIPOS", {4, 5}), integers("CONJPOS", {7, 7}),      integers("CONKPOS", {1, 2}),
          singles("SOIL", {9, 9}),     singles("PRESSURE", {201, 202}),  singles("SWAT", {0.25F, 0.5F}),
          singles("DEPTH", {20, 30}),  singles("SGAS", {0.125F, 0.75F}), singles("WELLPLT", {1, 2, 3})};
}

TEST_P(RftFile, GivesTheTableFromTheDepthColumnOn) {
  WellTestLoad run({{{.well = "B-1 H", .arrays = rftArrays(), .grid = "LG1"}}}, form_);
  ASSERT_TRUE(run.rft(1));
  // SOIL of the file does not count; saturations may add up to more than 1.
  EXPECT_THAT(run.names(), ElementsAre("DEPTH", "SGAS", "CONIPOS", "CONJPOS", "CONKPOS", "SOIL", "COMPLETION",
                                       "PRESSURE", "SWAT"));
  EXPECT_THAT(run.table.values(), ElementsAre(20, 30, 0.125F, 0.75F, 4, 5, 7, 7, 1, 2, 0.625F, -0.25F, 1, 2,
                                              201, 202, 0.25F, 0.5F));
  EXPECT_EQ(run.unit("DEPTH") + " " + run.unit("PRESSURE") + " " + run.unit("SWAT"), "METRES BARSA ");
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

TEST(RftFileOrder, NumbersTestsWellByWellAndTellsTheTimeOfDay) {
  WellTestBuilder builder;
  const std::vector<WellTestBuilder::Array> depth = {singles("DEPTH", {1})};
  struct Row {
    const char* well;
    float time;
    const char* date;
    int number;
  };
  const Row rows[] = {{"A", 10, "11 JAN 2015", 1},
                      {"B", 10.5F, "11 JAN 2015 12:00", 1},
                      {"A", 10.0001F, "11 JAN 2015", 2},
                      {"a", 0.9999F, "11 JAN 2015", 1},
                      {"B", 0.0007F, "11 JAN 2015 00:01", 2},
                      {"A", 3.99F, "11 JAN 2015 23:46", 3}};
  for (const Row& row : rows) builder.tests.push_back({.well = row.well, .arrays = depth, .time = row.time});
  WellTestLoad run(builder);
  ASSERT_EQ(run.file.NumTests(), 6);
  for (std::int32_t i = 1; i <= 6; ++i) {
    ASSERT_TRUE(run.rft(i));
    const Row& row = rows[i - 1];
    EXPECT_EQ(run.well, row.well);
    EXPECT_EQ(run.number, row.number);
    EXPECT_EQ(run.date, row.date) << i;
  }
  bool qOK = true;
  run.file.getRFTData(qOK);  // adds to what is there
  EXPECT_EQ(run.file.NumTests(), 12);
  ASSERT_TRUE(run.rft(12));
  EXPECT_EQ(run.number, 6);
}

TEST(RftFileOrder, TestsThatAreNotThere) {
  WellTestLoad run({{{.arrays = {singles("DEPTH", {1})}}}});
  for (const std::int32_t iTest : {0, 2}) {
    run.faults.clear();
    bool qRFT, qPLT, qSEG, qOK = true;
    run.file.getRFTTestInfo(iTest, qRFT, qPLT, qSEG, qOK);
    EXPECT_FALSE(qOK);
    EXPECT_THAT(run.faults, ElementsAre("Error:Subscript out of range (No.9) In [qvEclipseRFT (Code) "
                                        "(getRFTTestInfo)] "));
    EXPECT_EQ(run.file.NumberBranches(iTest) + run.file.NumberPLTBranches(iTest), 0);
    EXPECT_FALSE(run.rft(iTest));
  }
  EXPECT_EQ(run.file.Origin() + run.file.FileName, "");  // asking clears the name
}

TEST(RftFileOrder, CancellingKeepsTheTestsReadWithoutNumbers) {
  WellTestBuilder builder;
  builder.tests.assign(4, {.arrays = {singles("DEPTH", {1})}});
  WellTestLoad run;
  int yields = 0;
  run.session.hostYield = [&] { run.session.CancelLoad = ++yields == 2; };
  EXPECT_FALSE(run.load(builder.write(run.folder, test::bigEndian)));
  EXPECT_EQ(run.file.NumTests(), 2);
  EXPECT_TRUE(run.rft(2));
  EXPECT_EQ(run.number, 0);
}

TEST(RftFileOrder, RecordsBeforeTheFirstTimeBelongToTheFirstTest) {
  WellTestLoad run;
  for (const bool timed : {false, true}) {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), test::bigEndian);
    out.texts("WELLETC", WellTestBuilder::usualWelletc("A", ""));
    out.singles("DEPTH", std::array{5.F});
    if (timed) out.singles("TIME", std::array{1.F});
    out.singles("SWAT", std::array{0.25F});
    run.file.FileName = run.folder.file("ODD.RFT");
    run.file.byteSwap = test::bigEndian.byteSwap;
    test::writeFile(run.file.FileName, bytes);
    bool qOK = false;
    run.file.getRFTData(qOK);
    ASSERT_TRUE(qOK && run.rft(run.file.NumTests()));
    EXPECT_THAT(run.names(), ElementsAre("DEPTH", "SWAT", "SOIL", "COMPLETION"));
  }
  EXPECT_EQ(run.file.NumTests(), 2);
}

struct ArraysCase {
  const char* name;
  std::vector<WellTestBuilder::Array> arrays;
  std::vector<std::string> names;
  std::vector<float> values;
  std::string leftOut;  ///< keyword of the last diagnosis
};

class RftArrays : public ::testing::TestWithParam<ArraysCase> {};
INSTANTIATE_TEST_SUITE_P(
    Cases, RftArrays,
    ::testing::Values(
        ArraysCase{"ShortArrayIsLost",
                   {singles("DEPTH", {1, 2}), singles("SGAS", {0.5F}), singles("SWAT", {0.25F, 1})},
                   {"DEPTH", "SWAT", "SOIL", "COMPLETION"},
                   {1, 2, 0.25F, 1, 0.75F, 0, 1, 2},
                   "SGAS"},
        ArraysCase{"WithoutDepthNothingIsWorkedOut",
                   {singles("SWAT", {1, 2}), singles("PRESSURE", {3, 4})},
                   {"SWAT", "PRESSURE"},
                   {1, 2, 3, 4},
                   ""},
        ArraysCase{"EmptyArrayMakesNoTable",
                   {singles("PRESSURE", {}), singles("DEPTH", {7})},
                   {"DEPTH", "SOIL", "COMPLETION"},
                   {7, 1, 1},
                   "PRESSURE"},
        ArraysCase{"IndicesAloneMakeATableOfTheirOwn",  // I and K were not read and count as a single 0
                   {integers("J", {3, 4}), singles("CONPRES", {1, 2})},
                   {"CONIPOS", "CONKPOS"},
                   {0, 0},
                   "COMPLETION"},
        ArraysCase{"IntegersAndSinglesInOneTable",
                   {integers("DEPTH", {3, 4}), integers("UNKNOWN", {1})},
                   {"DEPTH", "SOIL", "COMPLETION"},
                   {3, 4, 1, 1, 1, 2},
                   ""}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_P(RftArrays, OfAnyLength) {
  WellTestLoad run({{{.arrays = GetParam().arrays}}});
  ASSERT_TRUE(run.rft(1));
  EXPECT_THAT(run.names(), ElementsAreArray(GetParam().names));
  EXPECT_THAT(run.table.values(), ElementsAreArray(GetParam().values));
  const Diagnosis diagnosis = run.lastDiagnosis();
  EXPECT_EQ(diagnosis.keyword, GetParam().leftOut);
  EXPECT_EQ(diagnosis.path, GetParam().leftOut.empty() ? "" : run.file.FileName);
}

TEST(RftFileFaults, EndTheirTestAndNoOther) {
  struct Row {
    WellTestBuilder::Test test;
    std::string well;
    const char* routine;
    const char* keyword;  ///< of the diagnosis
  };
  const std::vector<WellTestBuilder::Array> depth = {singles("DEPTH", {1})};
  const auto usual = WellTestBuilder::usualWelletc("A", "");
  const auto first = [&](std::size_t n) { return WellTestBuilder::Texts(usual.begin(), usual.begin() + n); };
  const Row rows[] = {
      {{.arrays = depth, .date = {1, 2}}, "", "getEclipseRFTtest", "DATE"},
      {{.arrays = depth, .welletc = first(1)}, "", "getEclipseRFTtest", "WELLETC"},
      {{.arrays = depth, .welletc = first(2)}, "A", "getEclipseRFTtest", "WELLETC"},
      {{.arrays = depth, .welletc = first(3)}, "A", "", ""},
      {{.arrays = depth, .welletc = first(6)}, "A", "", ""},
      {{.arrays = depth, .welletc = first(8)}, "A", "setUNITS", ""},
  };
  for (const Row& row : rows) {
    WellTestLoad run({{row.test, {.well = "B", .arrays = depth}}});
    ASSERT_TRUE(run.loaded);
    ASSERT_EQ(run.file.NumTests(), 2);
    EXPECT_EQ(run.file.test(1).well(), row.well);
    const std::string routine = row.routine;
    EXPECT_EQ(run.rft(1), routine != "getEclipseRFTtest");  // nothing behind the fault was read
    EXPECT_EQ(run.lastDiagnosis().keyword, row.keyword);
    if (routine.empty()) {
      EXPECT_THAT(run.faults, IsEmpty());
    } else {
      EXPECT_THAT(run.faults, ElementsAre(subscriptFaultIn(routine)));
      EXPECT_TRUE(run.lastDiagnosis().offset);
    }
    EXPECT_TRUE(run.rft(2));
  }
}

TEST(RftFileFaults, DatesAreTakenAsTheyStand) {
  const std::vector<WellTestBuilder::Array> depth = {singles("DEPTH", {1})};
  WellTestLoad run({{{.arrays = depth, .date = {5, 3, -1}}, {.arrays = depth, .date = {5, 13, 2003}}}});
  EXPECT_EQ(run.file.test(1).dateText(), "5 MAR 0000");
  EXPECT_EQ(run.file.test(2).dateText(), "5  2003");
  EXPECT_EQ(run.lastDiagnosis().keyword, "DATE");
}

TEST(RftFileFaults, WhatIsNoTestFileIsRefused) {
  WellTestLoad run;
  run.file.FileName = "kept";
  EXPECT_FALSE(run.file.CheckRFTFile(run.folder.file("NONE.RFT")));
  EXPECT_FALSE(run.file.CheckRFTFile(examplePath("/data/ARBOR/ARBOR.INIT")));
  EXPECT_EQ(run.file.FileName, "kept");
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
