#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shapes/HeaderLayout.h"
#include "summary/HorizontalData.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Steps = std::vector<std::int32_t>;

/// Three mnemonics of four connections each, two report steps of two rows, lengths out of order.
class Horizontal : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* mnemonic : {"COFR", "CWFR", "COFRU"}) {
      for (int c = 0; c < 4; ++c) names.emplace_back(mnemonic);
    }
    headers = ByteTable(headerWidth, names.size());
    data = XYData(4, names.size(), session);
    for (std::size_t v = 1; v <= names.size(); ++v) {
      setAttribute(attributeVariable, headers, v, names[v - 1]);
      setAttribute(attributeMember, headers, v, "P" + std::to_string(v));
      setAttribute(attributeUnits, headers, v, "SM3/DAY");
      setAttribute(attributeSource, headers, v, "Case");
      for (std::size_t r = 1; r <= 4; ++r) data(r, v) = static_cast<float>(100 * r + v);
    }
  }
  bool build(bool qInflow, bool qConnect, bool qMiniSteps) {
    bool qOK = false;
    made.getHorizontalData({headers, data, lengths, "METRES", reportSteps}, qInflow, qConnect, qMiniSteps,
                           qOK);
    return qOK;
  }
  std::vector<float> row(std::size_t iRow) const {
    return {cut.column(iRow).begin(), cut.column(iRow).end()};
  }
  std::string field(std::size_t iRow, std::int32_t attribute) const {
    return ExtractAttribute(attribute, cutHeaders, iRow);
  }

  Session session;
  std::vector<std::string> names;
  ByteTable headers;
  XYData data;
  std::vector<float> lengths = {30, 10, 40, 20, 31, 11, 41, 21, 32, 12, 42, 22};
  Steps reportSteps = {1, 1, 2, 2};
  HorizontalData made{session};
  XYData cut;
  ByteTable cutHeaders;
};

TEST_F(Horizontal, InflowIsTheRunningSumInOrderOfLength) {
  ASSERT_TRUE(build(true, false, false));
  EXPECT_EQ(made.nHorizVectors, 3);
  EXPECT_THAT(made.iHorizSteps, ElementsAre(2, 4));
  bool qOK = false;
  made.getHoriz(true, 2, cut, cutHeaders, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_THAT(row(1), ElementsAre(0, 10, 20, 30, 40));
  EXPECT_THAT(row(2), ElementsAre(0, 402, 402 + 404, 402 + 404 + 401, 402 + 404 + 401 + 403));
  EXPECT_THAT(row(3), ElementsAre(0, 406, 406 + 408, 406 + 408 + 405, 406 + 408 + 405 + 407));
  EXPECT_THAT(row(4), ElementsAre(0, 410, 412, 409, 411)) << "a fraction is not summed";
  const char* const expected[][8] = {{"WLENGTH", "P2", "METRES", "2", "Inflow", "WLENGTH", "Case", ""},
                                     {"WOFR", "P2", "SM3/DAY", "2", "Inflow", "WOFR", "Case", ""},
                                     {"WWFR", "P6", "SM3/DAY", "2", "Inflow", "WWFR", "Case", ""},
                                     {"WOFRU", "P10", "SM3/DAY", "2", "Inflow", "WOFRU", "Case", ""}};
  for (std::size_t r = 1; r <= 4; ++r) {
    const std::int32_t attributes[] = {attributeVariable, attributeMember,  attributeUnits,  attributeIndex,
                                       attributeDataKind, attributeVerbose, attributeSource, attributeClass};
    for (std::size_t a = 0; a < 8; ++a) EXPECT_EQ(field(r, attributes[a]), expected[r - 1][a]) << r;
  }
}

TEST_F(Horizontal, ConnectKeepsTheValuesAndMinistepsCountFrom0) {
  ASSERT_TRUE(build(false, true, true));
  EXPECT_THAT(made.iHorizSteps, ElementsAre(1, 2, 3, 4));
  bool qOK = false;
  made.getHoriz(false, 3, cut, cutHeaders, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_THAT(row(1), ElementsAre(10, 20, 30, 40));
  EXPECT_THAT(row(2), ElementsAre(302, 304, 301, 303));
  EXPECT_EQ(field(1, attributeIndex), "2");
  EXPECT_EQ(field(2, attributeIndex), "2");
  EXPECT_EQ(field(2, attributeVariable), "WCOFR");
  EXPECT_EQ(field(2, attributeDataKind), "Connect");
  reportSteps.clear();
  EXPECT_TRUE(build(true, true, false)) << "a run of no rows";
}

TEST_F(Horizontal, WhatIsNotThereIsAFaultAndLeavesNothing) {
  ASSERT_TRUE(build(true, false, false));
  std::vector<std::string> reports;
  session.faultReporter = [&](std::string_view text) { reports.emplace_back(text); };
  for (const auto& [qInflow, iStep] : {std::pair{false, 1}, {true, 0}, {true, 3}}) {
    bool qOK = true;
    made.getHoriz(qInflow, iStep, cut, cutHeaders, qOK);
    EXPECT_FALSE(qOK) << iStep;
    EXPECT_TRUE(cut.empty());
    EXPECT_EQ(cutHeaders.entries(), 0U);
  }
  EXPECT_EQ(reports.size(), 3U);
}

TEST_F(Horizontal, MnemonicsWithOtherCountsOfConnectionsAreRefusedQuietly) {
  session.faultReporter = [](std::string_view text) { ADD_FAILURE() << text; };
  setAttribute(attributeVariable, headers, 4, "CWFR ");
  EXPECT_FALSE(build(true, true, false)) << "3, 5 and 4 connections";
  setAttribute(attributeVariable, headers, 4, "COFR ");
  setAttribute(attributeVariable, headers, 9, "COFR ");
  EXPECT_FALSE(build(true, true, false)) << "a mnemonic that comes back counts anew";
  SetUp();
  lengths.pop_back();
  EXPECT_FALSE(build(true, true, false)) << "not one length per vector";
  EXPECT_TRUE(made.Inflow.sData.empty());
  EXPECT_TRUE(build(false, false, false)) << "nothing was asked for";
  lengths.clear();
  headers = ByteTable(headerWidth, 0);
  EXPECT_FALSE(build(true, true, false)) << "no vectors";
}

TEST(TimeStepsUsed, LastRowOfEachRunOfEqualReportSteps) {
  Session session;
  const std::pair<Steps, Steps> rows[] = {
      {{1, 1, 2, 3, 3, 3}, {2, 3, 6}}, {{1, 2, 1}, {1, 2, 3}}, {{0, 0, 0, 5}, {3, 4}}, {{}, {}}};
  for (const auto& [reportSteps, expected] : rows) {
    Steps steps;
    std::int32_t count = 0;
    bool qOK = false;
    GetTimeStepsUsed(session, reportSteps, false, steps, count, qOK);
    EXPECT_TRUE(qOK);
    EXPECT_EQ(steps, expected);
    EXPECT_EQ(static_cast<std::size_t>(count), expected.size());
  }
}

TEST(DateStamp, DaysOrInLabUnitsHoursFromTheStart) {
  struct Row {
    const char* start;
    double unitsPerDay;
    float time;
    const char* date;  // empty: refused
  };
  const Row rows[] = {{"1 JAN 2015", 1, 0, "1 JAN 2015"},
                      {"1 JAN 2015", 1, 31.75F, "1 FEB 2015"},
                      {"1 JAN 2015", 24, 47.5F, "2 JAN 2015"},
                      {"1 JAN 2015", 1, 366, "2 JAN 2016"},
                      {"1  2015", 1, 0, ""},
                      {"30 FEB 2015", 1, 0, ""},
                      {"1 JAN 2015", 1, 1e30F, ""},
                      {"99999999999 JAN 2015", 1, 0, ""}};
  Session session;
  for (const Row& row : rows) {
    std::string date = "old";
    bool qOK = false;
    GetDateStamp(session, row.start, row.unitsPerDay, row.time, date, qOK);
    EXPECT_EQ(date, row.date) << row.start;
    EXPECT_EQ(qOK, *row.date != 0) << row.start;
  }
  std::string date;
  bool qOK = false;
  GetDateStamp(session, *makeMoment(2015, 1, 1, 18), 1, 0.5F, date, qOK);
  EXPECT_EQ(date, "2 JAN 2015");
}

}  // namespace
}  // namespace lumbarn
