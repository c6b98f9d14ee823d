#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/WellTestLoad.h"

namespace lumbarn {
namespace {

using test::arraysOf;
using test::subscriptFaultIn;
using test::WellTestLoad;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Arrays = std::vector<test::WellTestBuilder::Array>;
using Singles = std::vector<float>;

/// Middles are 35, 15, 20 and 15; the third connection has no length. Arrays are changed or appended as
/// `others` says, and left out where it has none of their values.
Arrays plt(const std::string& others = "") {
  auto arrays = arraysOf(
      "CONIPOS: 1 2 3 4; CONJPOS: 5 5 5 5; CONKPOS: 6 7 8 9; CONORAT 10 20 5 0; CONWRAT 30 0 -5 0; "
      "CONGRAT 1000 100 7 9; CONOTUB 1 2 4 0; CONWTUB 3 2 0 0; CONGTUB 8 8 8 8; CONLENST 30 10 20 14; "
      "CONLENEN 40 20 20 16; CONBRNO: 2 1 2 1; CONSEGNO: 2 3 2 3; DEPTH 300 100 200 400; CONPRES 51 52 53 "
      "54");
  for (const auto& other : arraysOf(others)) {
    std::erase_if(arrays, [&](const auto& array) { return array.name == other.name; });
    if (std::visit([](const auto& values) { return !values.empty(); }, other.values))
      arrays.insert(arrays.begin(), other);
  }
  return arrays;
}

TEST(Plt, GoesByMeasuredDepthWithWhatIsWorkedOut) {
  WellTestLoad run({{{.arrays = plt()}}});
  ASSERT_TRUE(run.plt(1));
  EXPECT_EQ(run.names().front() + run.names().back(), "CONMDCOMPLETION");
  EXPECT_EQ(run.names().size(), 29U);
  const struct {
    const char* name;
    Singles values;
    const char* unit;
  } rows[] = {
      {"CONMD", {15, 15, 20, 35}, "METRES"},  // equal ones stay in the order of the file
      {"CONLENTH", {10, 2, 0, 10}, "METRES"},
      {"CONPRES", {52, 54, 53, 51}, "BARSA"},
      {"CONGRAT", {100, 9, 7, 1000}, "SM3/D"},
      {"CONORATS", {2, 0, 0, 1}, "SM3/DAY/METRES"},
      {"CONWRATS", {0, 0, 0, 3}, "SM3/DAY/METRES"},
      {"CONGRATS", {10, 4.5F, 0, 100}, "SM3/D/METRES"},
      {"CONWCUT", {0, 0, 0, 0.75F}, ""},
      {"CONWCUTUB", {0.5F, 0, 0, 0.75F}, ""},
      {"CONGOR", {5, 0, 7.F / 5.F, 100}, "SM3/SM3"},
      {"CONGORTUB", {4, 0, 2, 8}, "SM3/SM3"},
      {"CONBDEPH", {100, 400, 200, 300}, "METRES"},
      {"COMPLETION", {2, 4, 3, 1}, ""},
  };
  for (const auto& [name, values, unit] : rows) {
    EXPECT_EQ(run.column(name), values) << name;
    EXPECT_EQ(run.unit(name), unit) << name;
  }
  EXPECT_TRUE(run.rft(1));  // RFT tables stay in the order of the file
  EXPECT_EQ(run.column("DEPTH"), (Singles{300, 100, 200, 400}));
  EXPECT_THAT(run.faults, IsEmpty());
  ASSERT_TRUE(run.pltBranch(1, 2));
  EXPECT_EQ(run.column("CONBDEPH"), (Singles{200, 300}));
  EXPECT_EQ(run.fields(attributeDataKind)[28] + run.fields(attributeLGRName)[28], "PLTBRAN2");
}

TEST(Plt, StaysInTheOrderOfTheFileWithoutAnArrayThatItNeeds) {
  for (const std::string missing : {"CONLENEN", "CONLENST", "CONOTUB"}) {
    const bool tubing = missing == "CONOTUB", sums = missing == "CONLENEN";
    WellTestLoad run({{{.arrays = plt(missing + "; SEGBRNO: 1 1 1")}, {.arrays = plt()}}});
    EXPECT_EQ(run.lastDiagnosis().keyword, tubing ? missing : "");
    EXPECT_EQ(run.faults.size(), tubing ? 1U : 0U);
    ASSERT_TRUE(run.plt(1));
    EXPECT_EQ(run.column("CONBDEPH"), (Singles{300, 100, 200, 400})) << missing;
    // Segments get the sums when only the ends are missing.
    EXPECT_EQ(run.file.test(1).segmentTable().find("SEGCORAT") > 0, sums) << missing;
    ASSERT_TRUE(run.plt(2));
    EXPECT_EQ(run.column("CONMD"), (Singles{15, 15, 20, 35}));
    if (!sums) continue;
    ASSERT_TRUE(run.pltBranch(1, 1));
    EXPECT_EQ(run.column("CONORAT"), (Singles{20, 0}));
    EXPECT_EQ(run.column("CONBDEPH"), (Singles{300, 100}));  // the first rows, not those of its connections
  }
}

TEST(Plt, BranchesAreCountedByTheGreatestNumber) {
  const std::tuple<const char*, std::int32_t, bool> rows[] = {// branches, and whether there is a first
                                                              {"1 1 1 1", 1, false},
                                                              {"0 2 1 1", 0, false},
                                                              {"1 3 3 1", 3, true},
                                                              {"1 2 1 2000000000", 2000000000, true}};
  for (const auto& [numbers, branches, first] : rows) {
    WellTestLoad run({{{.arrays = plt(std::string("CONBRNO: ") + numbers)}}});
    EXPECT_EQ(run.file.NumberPLTBranches(1), branches);
    EXPECT_EQ(run.pltBranch(1, 1), first);
    EXPECT_EQ(run.pltBranch(1, branches), branches > 1);  // the last one has connections in each row
  }
}

TEST(Plt, TablesOfOtherLengthsAreNeverReadBeyondTheirEnd) {
  for (const std::string depths : {"5", "5 5 5", "5 5 5 5 5 5 5"}) {
    WellTestLoad run({{{.arrays = plt("DEPTH " + depths)}, {.arrays = plt()}}});
    EXPECT_EQ(run.session.diagnoses().front().keyword, "CONORAT");
    EXPECT_EQ(run.plt(1), depths.size() > 5);
    EXPECT_TRUE(run.plt(2));
  }
}

/// A character of `lengths` for each segment, "d" for a device; branch numbers, the segments below, and first
/// and last segments of the branches as texts.
Arrays well(const std::string& lengths, const std::string& branches, const std::string& next,
            const std::string& first = {}, const std::string& last = {}) {
  Singles start, end;
  for (const char length : lengths) {
    start.push_back(length == 'd' ? 0 : 10.F * static_cast<float>(start.size()));
    end.push_back(length == 'd' ? 0.1F : start.back() + 8);
  }
  Arrays arrays = arraysOf("SEGBRNO: " + branches + "; SEGNXT: " + next);
  arrays.insert(arrays.begin(), {{"SEGLENST", start}, {"SEGLENEN", end}});
  if (!first.empty())
    std::ranges::copy(arraysOf("BRNST: " + first + "; BRNEN: " + last), back_inserter(arrays));
  return arrays;
}

Arrays with(Arrays arrays, const std::string& others) {
  std::ranges::copy(arraysOf(others), back_inserter(arrays));
  return arrays;
}

/// Tubing on branch 1, and two branches of devices and screens beside it that flow into it.
const Arrays wellWithDevices = well("...d.d.", "1 1 1 2 2 3 3", "0 1 2 2 4 3 6", "1 4 6", "3 5 7");

TEST(Segments, OfABranchHaveAllColumns) {
  const auto arrays = arraysOf(
      "SEGDEPTH 100 110 120; SEGPRES 5 6 7; SEGORAT 40 0 8; SEGWRAT 120 16 0; SEGGRAT 80 4 2; "
      "SEGOHF 0.5 0.25 1; SEGLENST 0 10 18; SEGLENEN 8 18 18; SEGBRNO: 1 1 1; SEGNXT: 0 1 2; BRNST: 2; "
      "BRNEN: 3; CONSEGNO: 3 2 3; CONORAT 1 2 4; CONLENST 1 2 3");
  WellTestLoad run({{{.arrays = arrays, .time = 10.5F}}});
  ASSERT_TRUE(run.branch(1, 1));
  const std::string shown = run.shown();
  EXPECT_EQ(
      shown.substr(shown.find('=')),
      "= 14 110 10 18 8 -999 -999 6 0 16 4 0 2 0.5 -999 -999 -999 0.25 -999 -999 1 1 2 2 -999 -999 -999 "
      "-999 -999 1 0; "
      "18 120 18 18 0 -999 -999 7 8 0 2 -999 -999 -999 -999 -999 -999 1 -999 -999 1 2 3 5 -999 -999 "
      "-999 -999 -999 0 0.25");
  EXPECT_EQ(run.names()[22], "SEGNO");
  EXPECT_EQ(run.unit("SEGGVEL") + "," + run.unit("SEGCGRTS") + "," + run.unit("SEGGOR"),
            "M/SEC,SM3/D/METRES,SM3/SM3");
  EXPECT_EQ(run.fields(attributeDataKind)[0] + run.fields(attributeLGRName)[30], "SEGBRAN1");
  EXPECT_EQ(run.date, "11 JAN 2015");  // branches have no time of day
  bool qRFT, qPLT, qSEG, qOK = false;
  run.file.getRFTTestInfo(1, qRFT, qPLT, qSEG, qOK);
  EXPECT_TRUE(!qRFT && qPLT && qSEG && qOK);
}

TEST(Segments, DevicesAreGatheredByTheTubingTheyEmptyInto) {
  WellTestLoad run({{{.arrays = wellWithDevices}}});
  EXPECT_EQ(run.file.NumberBranches(1), 1);
  ASSERT_EQ(run.file.NumberICDBranches(1), 1);
  ASSERT_TRUE(run.icdBranch(1, 1));
  EXPECT_EQ(run.column("SEGMD"), (Singles{14, 24}));  // of the tubing, segments 2 and 3
  for (const auto& [name, values] : {std::pair{"SEGLENTH", Singles{0.1F, 0.1F}},
                                     {"SEGBRNO", {2, 3}},
                                     {"SEGNO", {1, 2}},
                                     {"SEGCORAT", {0, 0}}})
    EXPECT_EQ(run.column(name), values) << name;
  EXPECT_EQ(run.fields(attributeDataKind)[0] + run.fields(attributeLGRName)[0], "ICDBRAN1");
  EXPECT_FALSE(run.icdBranch(1, 2));
  EXPECT_THAT(run.faults, IsEmpty());

  std::int32_t iBranch = -5;
  bool qOK = true;
  run.file.GetSEGMENTtest(1, run.table, run.headers, run.number, iBranch, run.date, run.well, run.grid, qOK,
                          6);
  EXPECT_FALSE(qOK);
  EXPECT_THAT(run.faults, ElementsAre(subscriptFaultIn("getSegmenttestData")));
  EXPECT_EQ(iBranch, -5) << "one segment is never given";
}

TEST(Segments, MakeBranchesOfDevices) {
  const std::string icd = "processICDData", segment = "processSEGMENTData";
  const struct {
    const char *why, *lengths, *numbers, *next, *first, *last;
    std::int32_t branches, icdBranches, icdSegments;
    std::string fault, keyword;  ///< the routine that it ends, and what the diagnosis is about
  } rows[] = {{"none", "..", "1 1", "0 1", "1", "2", 1, 0, 0, "", ""},
              {"half", ".dd..", "1 2 2 2 2", "0 1 2 3 4", "1 2", "1 5", 1, 1, 2, "", ""},
              {"less than half", ".d..", "1 2 2 2", "0 1 2 3", "1 2", "1 4", 2, 0, 1, "", ""},
              {"all", "dd", "1 1", "0 1", "1", "2", 0, 0, 2, icd, "SEGNXT"},
              {"ring", ".dd", "1 2 2", "0 3 2", "1 2", "1 3", 1, 1, 2, "", ""},
              {"no branch table", "d.", "1 1", "0 1", "", "", 0, 0, 1, "", ""},
              {"branch 2, no branch table", ".d", "1 2", "0 1", "", "", 0, 0, 0, segment, "SEGBRNO"},
              {"branch 3 of 2", ".d", "1 3", "0 1", "1 2", "1 2", 2, 0, 0, segment, "SEGBRNO"},
              {"branch 0", "d.", "0 1", "0 1", "1", "2", 1, 0, 0, segment, "SEGBRNO"},
              {"unknown branch", "d.", "-1 1", "0 1", "1", "2", 1, 0, 1, "", ""},
              {"far range", "..d", "1 1 2", "0 1 1", "1 3", "2000000000 3", 2, 0, 0, segment, "BRNST"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    const auto arrays = well(row.lengths, row.numbers, row.next, row.first, row.last);
    WellTestLoad run({{{.arrays = arrays}, {.arrays = wellWithDevices}}});
    EXPECT_EQ(run.file.NumberBranches(1), row.branches);
    EXPECT_EQ(run.file.NumberICDBranches(1), row.icdBranches);
    EXPECT_EQ(run.file.test(1).nICDSegments(), row.icdSegments);
    EXPECT_EQ(run.faults,
              row.fault.empty() ? std::vector<std::string>{} : std::vector{subscriptFaultIn(row.fault)});
    EXPECT_EQ(run.lastDiagnosis().keyword, row.keyword);
    run.branch(1, 1);
    run.icdBranch(1, 1);
    EXPECT_TRUE(run.icdBranch(2, 1));
  }
}

TEST(Segments, WhatTheFileLacksStaysNull) {
  const Arrays arrays = with(wellWithDevices, "SEGWRAT 1 2 3 4 5 6 7");
  WellTestLoad run({{{.arrays = arrays}, {.arrays = {arrays.begin() + 1, arrays.end()}}}});
  ASSERT_TRUE(run.icdBranch(1, 1));
  EXPECT_EQ(run.column("SEGORATS"), (Singles{-999, -999}));  // not the null value by a length of 0.1
  EXPECT_EQ(run.column("SEGWRATS"), (Singles{4 / 0.1F, 6 / 0.1F}));
  ASSERT_TRUE(run.branch(2, 1));
  for (const char* name : {"SEGMD", "SEGLENTH", "SEGWRATS", "SEGWCUT"})
    EXPECT_EQ(run.column(name)[0], -999) << name;
}

TEST(Segments, SumsTakeTheNullValueForNothing) {
  const std::tuple<const char*, Singles, bool> rows[] = {
      // connections, sums, and whether it is a fault
      {"CONORAT 1 2 4; CONSEGNO: 2 3 2; CONLENST 1 2 4", {-999, 5, 2}, false},
      {"CONORAT -1000 1 7; CONSEGNO: 1 1 1; CONLENST 1 2 4", {7, -999, -999}, false},  // null in between
      {"CONORAT 1 2 4; CONSEGNO: 1 4 1; CONLENST 1 2 4", {-999, -999, -999}, true},
      {"CONORAT 1 2 4; CONSEGNO: 1 0 1; CONLENST 1 2 4", {-999, -999, -999}, true}};
  for (const auto& [connections, sums, fault] : rows) {
    WellTestLoad run({{{.arrays = with(well("...", "1 1 1", "0 1 2", "1", "3"), connections)}}});
    ASSERT_TRUE(run.branch(1, 1));
    EXPECT_EQ(run.column("SEGCORAT"), sums);
    EXPECT_EQ(run.faults.size(), fault ? 1U : 0U);
    EXPECT_EQ(run.lastDiagnosis().keyword, fault ? "CONSEGNO" : "");
  }
}

}  // namespace
}  // namespace lumbarn
