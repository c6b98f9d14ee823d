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

/// Tubing on branch 1, and two branches of devices and screens beside it that flow into it.
Arrays wellWithDevices() {
  return well({{1, 0}, {1, 1}, {1, 2}, {2, 2, true}, {2, 4}, {3, 3, true}, {3, 6}}, {{1, 3}, {4, 5}, {6, 7}});
}

class Segments : public test::OfForm {};
INSTANTIATE_TEST_SUITE_P(Forms, Segments, ::testing::ValuesIn(test::everyForm), test::formName);

TEST_P(Segments, OfABranchHaveAllColumns) {
  Arrays arrays = {{"SEGDEPTH", Singles{100, 110, 120}},
                   {"SEGPRES", Singles{5, 6, 7}},
                   {"SEGORAT", Singles{40, 0, 8}},
                   {"SEGWRAT", Singles{120, 16, 0}},
                   {"SEGGRAT", Singles{80, 4, 2}},
                   {"SEGOHF", Singles{0.5F, 0.25F, 1}},
                   {"SEGLENST", Singles{0, 10, 18}},
                   {"SEGLENEN", Singles{8, 18, 18}},
                   {"SEGBRNO", Integers{1, 1, 1}},
                   {"SEGNXT", Integers{0, 1, 2}},
                   {"BRNST", Integers{2}},
                   {"BRNEN", Integers{3}},
                   {"CONSEGNO", Integers{3, 2, 3}},
                   {"CONORAT", Singles{1, 2, 4}},
                   {"CONLENST", Singles{1, 2, 3}}};
  WellTestLoad run({{{.arrays = arrays, .time = 10.5F}}}, form_);
  ASSERT_EQ(run.file.NumberBranches(1), 1);
  ASSERT_TRUE(run.branch(1, 1));
  const float none = -999;
  const Singles rows[2] = {
      {14,   110,   10,   18,   8, none, none, 6, 0,    16,   4,    0,    2,    0.5F, none, none,
       none, 0.25F, none, none, 1, 1,    2,    2, none, none, none, none, none, 1,    0},
      {18,   120, 18,   18,   0, none, none, 7, 8,    0,    2,    none, none, none, none, none,
       none, 1,   none, none, 1, 2,    3,    5, none, none, none, none, none, 0,    0.25F}};
  for (std::size_t r = 0; r < 2; ++r) {
    Singles row;
    for (std::size_t c = 1; c <= 31; ++c) row.push_back(run.table(r + 1, c));
    EXPECT_THAT(row, ElementsAreArray(rows[r]));
  }
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

TEST_P(Segments, DevicesAreGatheredByTheTubingTheyEmptyInto) {
  WellTestLoad run({{{.arrays = wellWithDevices()}}}, form_);
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
}

struct DeviceCase {
  const char* name;
  Arrays arrays;
  std::int32_t branches;
  std::int32_t icdBranches;
  std::int32_t icdSegments;
  std::string fault;    ///< the routine that it ends
  std::string keyword;  ///< of the diagnosis
};

class Devices : public ::testing::TestWithParam<DeviceCase> {};
INSTANTIATE_TEST_SUITE_P(
    Cases, Devices,
    ::testing::Values(
        DeviceCase{"None", well({{1, 0}, {1, 1}}, {{1, 2}}), 1, 0, 0, "", ""},
        DeviceCase{"HalfOfABranch",
                   well({{1, 0}, {2, 1, true}, {2, 2, true}, {2, 3}, {2, 4}}, {{1, 1}, {2, 5}}), 1, 1, 2, "",
                   ""},
        DeviceCase{"LessThanHalf", well({{1, 0}, {2, 1, true}, {2, 2}, {2, 3}}, {{1, 1}, {2, 4}}), 2, 0, 1,
                   "", ""},
        DeviceCase{"AllSegments", well({{1, 0, true}, {1, 1, true}}, {{1, 2}}), 0, 0, 2, "processICDData",
                   "SEGNXT"},
        DeviceCase{"Ring", well({{1, 0}, {2, 3, true}, {2, 2, true}}, {{1, 1}, {2, 3}}), 1, 1, 2, "", ""},
        DeviceCase{"WithoutBranchTable", well({{1, 0, true}, {1, 1}}, {}), 0, 0, 1, "", ""},
        DeviceCase{"OnBranchTwoWithoutBranchTable", well({{1, 0}, {2, 1, true}}, {}), 0, 0, 0,
                   "processSEGMENTData", "SEGBRNO"},
        DeviceCase{"BranchBeyondTheTable", well({{1, 0}, {3, 1, true}}, {{1, 1}, {2, 2}}), 2, 0, 0,
                   "processSEGMENTData", "SEGBRNO"},
        DeviceCase{"BranchNumberZero", well({{0, 0, true}, {1, 1}}, {{1, 2}}), 1, 0, 0, "processSEGMENTData",
                   "SEGBRNO"},
        DeviceCase{"UnknownBranchIsNoFault", well({{-1, 0, true}, {1, 1}}, {{1, 2}}), 1, 0, 1, "", ""},
        DeviceCase{"RangeBeyondTheSegments", well({{1, 0}, {1, 1}, {2, 1, true}}, {{1, 2000000000}, {3, 3}}),
                   2, 0, 0, "processSEGMENTData", "BRNST"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_P(Devices, MakeABranchOfTheirOwn) {
  const DeviceCase& one = GetParam();
  WellTestLoad run({{{.arrays = one.arrays}, {.arrays = wellWithDevices()}}});
  EXPECT_EQ(run.file.NumberBranches(1), one.branches);
  EXPECT_EQ(run.file.NumberICDBranches(1), one.icdBranches);
  EXPECT_EQ(run.file.test(1).nICDSegments(), one.icdSegments);
  EXPECT_EQ(run.faults,
            one.fault.empty() ? std::vector<std::string>{} : std::vector{subscriptFaultIn(one.fault)});
  EXPECT_EQ(run.lastDiagnosis().keyword, one.keyword);
  run.branch(1, 1);
  run.icdBranch(1, 1);
  EXPECT_TRUE(run.icdBranch(2, 1));
}

TEST(SegmentsOfAnyKind, RingsAndRangesOverAllSegmentsTakeNoTime) {
  // A ring of devices, and as many branches over all segments that are none of devices.
  constexpr std::int32_t n = 20000;
  std::vector<Segment> ring, plain;
  std::vector<Range> branches, all;
  for (std::int32_t i = 1; i <= n; ++i) {
    ring.push_back({1, i % n + 1, true});
    plain.push_back({i, i - 1, i == 1});
    all.push_back({1, n});
  }
  WellTestLoad run({{{.arrays = well(ring, {{1, n}})}, {.arrays = well(plain, all)}}});
  EXPECT_EQ(run.lastDiagnosis().keyword, "SEGNXT");
  EXPECT_EQ(run.faults.size(), 1U);
  EXPECT_EQ(run.file.NumberICDBranches(1), 0);
}

TEST(SegmentsOfAnyKind, OneSegmentIsNeverGiven) {
  WellTestLoad run({{{.arrays = wellWithDevices()}}});
  std::int32_t iBranch = -5;
  bool qOK = true;
  run.file.GetSEGMENTtest(1, run.table, run.headers, run.number, iBranch, run.date, run.well, run.grid, qOK,
                          6);
  EXPECT_FALSE(qOK);
  EXPECT_THAT(run.faults, ElementsAre(subscriptFaultIn("getSegmenttestData")));
  run.file.GetSEGMENTtest(1, run.table, run.headers, run.number, iBranch, run.date, run.well, run.grid, qOK,
                          7);  // the last one is refused before that
  run.file.getSEGtest(1, run.table, run.headers, run.number, run.date, run.well, run.grid, qOK);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(run.faults.size(), 2U);
  EXPECT_EQ(iBranch, -5);
  EXPECT_EQ(run.file.test(1).BranchNumber(6), 3);
  EXPECT_EQ(run.file.test(1).BranchNumber(8), -1);
}

TEST(SegmentsOfAnyKind, WhatTheFileLacksStaysNull) {
  Arrays arrays = wellWithDevices();
  arrays.push_back({"SEGWRAT", Singles{1, 2, 3, 4, 5, 6, 7}});
  Arrays noStart(arrays.begin() + 1, arrays.end());
  WellTestLoad run({{{.arrays = arrays}, {.arrays = noStart}}});
  ASSERT_TRUE(run.icdBranch(1, 1));
  EXPECT_EQ(run.column("SEGORATS"), (Singles{-999, -999}));  // not the null value by a length of 0.1
  EXPECT_EQ(run.column("SEGWRATS"), (Singles{4 / 0.1F, 6 / 0.1F}));
  ASSERT_TRUE(run.branch(1, 1));
  EXPECT_EQ(run.column("SEGWCUT"), (Singles{-999, -999, -999}));
  ASSERT_TRUE(run.branch(2, 1));
  for (const char* name : {"SEGMD", "SEGLENTH", "SEGWRATS"}) EXPECT_EQ(run.column(name)[0], -999) << name;
}

TEST(SegmentSums, TakeTheNullValueForNothing) {
  const Arrays segments = well({{1, 0}, {1, 1}, {1, 2}}, {{1, 3}});
  struct Row {
    Singles rates;
    Integers segments;
    Singles sums;
    bool fault;
  };
  const Row rows[] = {{{1, 2, 4}, {2, 3, 2}, {-999, 5, 2}, false},
                      {{-1000, 1, 7}, {1, 1, 1}, {7, -999, -999}, false},  // the sum was the null value
                      {{1, 2, 4}, {1, 4, 1}, {-999, -999, -999}, true},
                      {{1, 2, 4}, {1, 0, 1}, {-999, -999, -999}, true}};
  for (const Row& row : rows) {
    Arrays arrays = segments;
    arrays.insert(arrays.end(),
                  {{"CONORAT", row.rates}, {"CONSEGNO", row.segments}, {"CONLENST", row.rates}});
    WellTestLoad run({{{.arrays = arrays}}});
    ASSERT_TRUE(run.branch(1, 1));
    EXPECT_EQ(run.column("SEGCORAT"), row.sums);
    EXPECT_EQ(run.faults,
              row.fault ? std::vector{subscriptFaultIn("setPLTSegmentData")} : std::vector<std::string>{});
    EXPECT_EQ(run.lastDiagnosis().keyword, row.fault ? "CONSEGNO" : "");
  }
}

}  // namespace
}  // namespace lumbarn
