#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/WellTestLoad.h"

namespace lumbarn {
namespace {

using test::arraysOf;
using test::subscriptFaultIn;
using test::WellTestBuilder;
using test::WellTestLoad;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Arrays = std::vector<WellTestBuilder::Array>;
using Singles = std::vector<float>;
using Integers = std::vector<std::int32_t>;

/// One row for each segment: the branch, the segment below, and whether it is a device.
struct Segment {
  std::int32_t branch;
  std::int32_t next;
  bool device = false;
};
struct Range {
  std::int32_t first;
  std::int32_t last;
};

Arrays well(const std::vector<Segment>& segments, const std::vector<Range>& branches) {
  Singles start, end;
  Integers number, next, first, last;
  for (const Segment& segment : segments) {
    start.push_back(segment.device ? 0 : 10.F * static_cast<float>(start.size()));
    end.push_back(segment.device ? 0.1F : start.back() + 8);
    number.push_back(segment.branch);
    next.push_back(segment.next);
  }
  for (const Range& range : branches) {
    first.push_back(range.first);
    last.push_back(range.last);
  }
  Arrays arrays = {{"SEGLENST", start}, {"SEGLENEN", end}, {"SEGBRNO", number}, {"SEGNXT", next}};
  if (!branches.empty()) arrays.insert(arrays.end(), {{"BRNST", first}, {"BRNEN", last}});
  return arrays;
}

Arrays with(Arrays arrays, const std::string& others) {
  for (const auto& other : arraysOf(others)) arrays.push_back(other);
  return arrays;
}

/// Tubing on branch 1, and two branches of devices and screens beside it that flow into it.
Arrays wellWithDevices() {
  return well({{1, 0}, {1, 1}, {1, 2}, {2, 2, true}, {2, 4}, {3, 3, true}, {3, 6}}, {{1, 3}, {4, 5}, {6, 7}});
}

TEST(Segments, OfABranchHaveAllColumns) {
  const auto arrays = arraysOf(
      "SEGDEPTH 100 110 120; SEGPRES 5 6 7; SEGORAT 40 0 8; SEGWRAT 120 16 0; SEGGRAT 80 4 2; "
      "SEGOHF 0.5 0.25 1; SEGLENST 0 10 18; SEGLENEN 8 18 18; SEGBRNO: 1 1 1; SEGNXT: 0 1 2; BRNST: 2; "
      "BRNEN: 3; CONSEGNO: 3 2 3; CONORAT 1 2 4; CONLENST 1 2 3");
  WellTestLoad run({{{.arrays = arrays, .time = 10.5F}}});
  ASSERT_EQ(run.file.NumberBranches(1), 1);
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
  EXPECT_THAT(run.faults, IsEmpty());
}

TEST(Segments, DevicesAreGatheredByTheTubingTheyEmptyInto) {
  WellTestLoad run({{{.arrays = wellWithDevices()}}});
  EXPECT_EQ(run.file.NumberBranches(1), 1);
  EXPECT_EQ(run.file.NumberPLTBranches(1), 1);
  ASSERT_EQ(run.file.NumberICDBranches(1), 1);
  ASSERT_TRUE(run.icdBranch(1, 1));
  EXPECT_EQ(run.column("SEGMD"), (Singles{14, 24}));  // of the tubing, segments 2 and 3
  EXPECT_EQ(run.column("SEGLENTH"), (Singles{0.1F, 0.1F}));
  EXPECT_EQ(run.column("SEGBRNO"), (Singles{2, 3}));
  EXPECT_EQ(run.column("SEGNO"), (Singles{1, 2}));
  EXPECT_EQ(run.column("SEGCORAT"), (Singles{0, 0}));
  EXPECT_EQ(run.fields(attributeDataKind)[0] + run.fields(attributeLGRName)[0], "ICDBRAN1");
  EXPECT_FALSE(run.icdBranch(1, 2));
  EXPECT_THAT(run.faults, IsEmpty());

  std::int32_t iBranch = -5;
  bool qOK = true;
  run.file.GetSEGMENTtest(1, run.table, run.headers, run.number, iBranch, run.date, run.well, run.grid, qOK,
                          6);
  EXPECT_FALSE(qOK);
  EXPECT_THAT(run.faults, ElementsAre(subscriptFaultIn("getSegmenttestData")));
  run.file.getSEGtest(1, run.table, run.headers, run.number, run.date, run.well, run.grid, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(iBranch, -5) << "one segment is never given";
}

TEST(Segments, MakeBranchesOfDevices) {
  const std::string icd = "processICDData", segment = "processSEGMENTData";
  const struct {
    std::string why;
    std::vector<Segment> segments;
    std::vector<Range> ranges;
    std::int32_t branches, icdBranches, icdSegments;
    std::string fault, keyword;  ///< the routine that it ends, and what the diagnosis is about
  } rows[] = {
      {"none", {{1, 0}, {1, 1}}, {{1, 2}}, 1, 0, 0, "", ""},
      {"half", {{1, 0}, {2, 1, true}, {2, 2, true}, {2, 3}, {2, 4}}, {{1, 1}, {2, 5}}, 1, 1, 2, "", ""},
      {"less than half", {{1, 0}, {2, 1, true}, {2, 2}, {2, 3}}, {{1, 1}, {2, 4}}, 2, 0, 1, "", ""},
      {"all", {{1, 0, true}, {1, 1, true}}, {{1, 2}}, 0, 0, 2, icd, "SEGNXT"},
      {"ring", {{1, 0}, {2, 3, true}, {2, 2, true}}, {{1, 1}, {2, 3}}, 1, 1, 2, "", ""},
      {"no branch table", {{1, 0, true}, {1, 1}}, {}, 0, 0, 1, "", ""},
      {"branch 2, no branch table", {{1, 0}, {2, 1, true}}, {}, 0, 0, 0, segment, "SEGBRNO"},
      {"branch 3 of 2", {{1, 0}, {3, 1, true}}, {{1, 1}, {2, 2}}, 2, 0, 0, segment, "SEGBRNO"},
      {"branch 0", {{0, 0, true}, {1, 1}}, {{1, 2}}, 1, 0, 0, segment, "SEGBRNO"},
      {"unknown branch", {{-1, 0, true}, {1, 1}}, {{1, 2}}, 1, 0, 1, "", ""},
      {"far range", {{1, 0}, {1, 1}, {2, 1, true}}, {{1, 2000000000}, {3, 3}}, 2, 0, 0, segment, "BRNST"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    WellTestLoad run({{{.arrays = well(row.segments, row.ranges)}, {.arrays = wellWithDevices()}}});
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
  const Arrays arrays = with(wellWithDevices(), "SEGWRAT 1 2 3 4 5 6 7");
  WellTestLoad run({{{.arrays = arrays}, {.arrays = {arrays.begin() + 1, arrays.end()}}}});
  ASSERT_TRUE(run.icdBranch(1, 1));
  EXPECT_EQ(run.column("SEGORATS"), (Singles{-999, -999}));  // not the null value by a length of 0.1
  EXPECT_EQ(run.column("SEGWRATS"), (Singles{4 / 0.1F, 6 / 0.1F}));
  ASSERT_TRUE(run.branch(1, 1));
  EXPECT_EQ(run.column("SEGWCUT"), (Singles{-999, -999, -999}));
  ASSERT_TRUE(run.branch(2, 1));
  for (const char* name : {"SEGMD", "SEGLENTH", "SEGWRATS"}) EXPECT_EQ(run.column(name)[0], -999) << name;
}

TEST(Segments, SumsTakeTheNullValueForNothing) {
  const struct {
    const char* connections;
    Singles sums;
    bool fault;
  } rows[] = {
      {"CONORAT 1 2 4; CONSEGNO: 2 3 2; CONLENST 1 2 4", {-999, 5, 2}, false},
      {"CONORAT -1000 1 7; CONSEGNO: 1 1 1; CONLENST 1 2 4", {7, -999, -999}, false},  // null in between
      {"CONORAT 1 2 4; CONSEGNO: 1 4 1; CONLENST 1 2 4", {-999, -999, -999}, true},
      {"CONORAT 1 2 4; CONSEGNO: 1 0 1; CONLENST 1 2 4", {-999, -999, -999}, true}};
  for (const auto& [connections, sums, fault] : rows) {
    WellTestLoad run({{{.arrays = with(well({{1, 0}, {1, 1}, {1, 2}}, {{1, 3}}), connections)}}});
    ASSERT_TRUE(run.branch(1, 1));
    EXPECT_EQ(run.column("SEGCORAT"), sums);
    EXPECT_EQ(run.faults,
              fault ? std::vector{subscriptFaultIn("setPLTSegmentData")} : std::vector<std::string>{});
    EXPECT_EQ(run.lastDiagnosis().keyword, fault ? "CONSEGNO" : "");
  }
}

}  // namespace
}  // namespace lumbarn
