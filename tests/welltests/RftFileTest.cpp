#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
  EXPECT_FALSE(run.file.CheckRFTFile(LUMBARN_EXAMPLES "/data/ARBOR/ARBOR.INIT"));
  EXPECT_EQ(run.file.FileName, "kept");
  bool qOK = true;
  run.file.getRFTData(qOK);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(run.lastDiagnosis().path, "kept");
}

/// What a file holds, by count, least, most and sum of each array, as an independent reader saw it.
class RftSamples : public ::testing::TestWithParam<std::array<const char*, 2>> {};
INSTANTIATE_TEST_SUITE_P(Runs, RftSamples,
                         ::testing::Values(std::array{"ARBORF/ARBORF.FRFT", "ARBORF.FRFT"},
                                           std::array{"HOLLIN/HOLLIN.RFT", "HOLLIN.RFT"}));

TEST_P(RftSamples, HoldWhatAnIndependentReaderFound) {
  const std::string data = LUMBARN_EXAMPLES "/data/";
  WellTestLoad run(data + GetParam()[0]);
  ASSERT_TRUE(run.loaded);
  std::ifstream in(data + "expected/" + GetParam()[1] + ".records.csv");
  std::int32_t iTest = 0;
  std::size_t compared = 0;
  std::string line;
  std::getline(in, line);  // names of the facts
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string keyword, type, number;
    std::getline(words, keyword, ',');
    std::getline(words, type, ',');
    std::vector<double> facts;  // count, least, most, sum
    while (std::getline(words, number, ',')) {
      if (number.find_first_of("0123456789") != std::string::npos) facts.push_back(std::stod(number));
    }
    if (keyword == "TIME") {
      ASSERT_TRUE(run.rft(++iTest));
      EXPECT_EQ(run.file.test(iTest).time(), static_cast<float>(facts[1]));
    }
    const auto column = run.column(keyword);
    if (column.empty() || facts.size() < 4) continue;
    ++compared;
    EXPECT_EQ(column.size(), facts[0]);
    double sum = 0;
    for (const float value : column) sum += static_cast<double>(value);
    EXPECT_NEAR(sum, facts[3], 1e-7 * std::abs(facts[3])) << line;
    EXPECT_EQ(*std::ranges::max_element(column), static_cast<float>(facts[2])) << line;
    EXPECT_EQ(*std::ranges::min_element(column), static_cast<float>(facts[1])) << line;
  }
  EXPECT_EQ(iTest, run.file.NumTests());
  EXPECT_EQ(compared, 7U * static_cast<std::size_t>(iTest));
  EXPECT_THAT(run.faults, IsEmpty());
  EXPECT_THAT(run.session.diagnoses(), IsEmpty());
}

}  // namespace
}  // namespace lumbarn
