#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shapes/HeaderLayout.h"
#include "summary/HorizontalData.h"
#include "support/Host.h"
#include "support/SummaryBuilder.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::SizeIs;

/// Three mnemonics of three connections each, lengths out of order, two report steps of two rows.
SummaryBuilder horizontalRun(float firstTime = 1) {
  SummaryBuilder run;
  run.lengthUnit = "METRES";
  run.vectors = {{"TIME", ":+:+:+:+", 0, "DAYS"}};
  const float lengths[] = {30, 10, 20};
  for (const char* mnemonic : {"COFR", "CWFR", "COFRU"}) {
    for (const std::int32_t cell : {1, 2, 3})
      run.vectors.push_back({mnemonic, "P1", cell, "SM3/DAY", "", {}, lengths[cell - 1]});
  }
  for (int row = 0; row < 4; ++row) {
    std::vector<float> values{firstTime + static_cast<float>(row)};
    for (int n = 1; n <= 9; ++n) values.push_back(100 * values[0] + static_cast<float>(n));
    run.rows.push_back({values, row % 2 == 0});
  }
  return run;
}

class Profiles : public ::testing::Test {
 protected:
  bool load(const SummaryBuilder& run, bool miniSteps = false) {
    host_.reader.HorizWell = host_.reader.InFlow = true;
    host_.reader.Connect = host_.reader.MiniSteps = miniSteps;
    return host_.load(run.write(folder_, "RUN", bigEndian), 12);
  }
  bool fetch(std::int32_t step, bool inflow) {
    bool qOK = false;
    host_.reader.getSUMMARYHorizontalData(step, inflow, host_.table, host_.headers, host_.source, qOK);
    return qOK;
  }
  std::string field(std::size_t column, std::int32_t attribute) const {
    return ExtractAttribute(attribute, host_.headers, column);
  }
  TemporaryFolder folder_;
  Host host_;
};

TEST_F(Profiles, OfInflowAreRunningSumsInOrderOfLength) {
  ASSERT_TRUE(load(horizontalRun()));
  ASSERT_TRUE(fetch(2, true));
  EXPECT_THAT(host_.column("WLENGTH"), ElementsAre(0, 10, 20, 30));
  EXPECT_THAT(host_.column("WOFR"), ElementsAre(0, 402, 402 + 403, 402 + 403 + 401));
  EXPECT_THAT(host_.column("WWFR"), ElementsAre(0, 405, 405 + 406, 405 + 406 + 404));
  EXPECT_THAT(host_.column("WOFRU"), ElementsAre(0, 408, 409, 407)) << "a fraction is not summed";
  const std::int32_t attributes[] = {attributeMember, attributeUnits, attributeIndex, attributeDataKind};
  const char* const expected[][4] = {{"P1", "METRES", "2", "Inflow"}, {"P1", "SM3/DAY", "2", "Inflow"}};
  for (const std::size_t column : {1, 2}) {
    for (std::size_t n = 0; n < 4; ++n) EXPECT_EQ(field(column, attributes[n]), expected[column - 1][n]);
  }
  EXPECT_EQ(std::get<std::string>(host_.source(4)), "5 JAN 2015") << "the last row of the second report step";
  EXPECT_EQ(std::get<std::int16_t>(host_.source(8)), 2);
  for (const auto& [step, inflow] : {std::pair{1, false}, {0, true}, {3, true}}) {
    EXPECT_FALSE(fetch(step, inflow)) << step;
    EXPECT_TRUE(host_.table.empty());
  }
  EXPECT_THAT(host_.faults, SizeIs(3));
  EXPECT_THAT(host_.session.diagnoses(), Each(Field(&Diagnosis::message, Message::SystemFault)));
}

TEST_F(Profiles, ByConnectionKeepTheValuesAndMinistepsCountFrom0) {
  ASSERT_TRUE(load(horizontalRun(), true));
  ASSERT_TRUE(fetch(3, false));
  EXPECT_THAT(host_.column("WLENGTH"), ElementsAre(10, 20, 30));
  EXPECT_THAT(host_.column("WCOFR"), ElementsAre(302, 303, 301));
  EXPECT_EQ(field(2, attributeIndex), "2");
  EXPECT_EQ(field(2, attributeDataKind), "Connect");
}

TEST_F(Profiles, OfMnemonicsWithOtherCountsOfConnectionsAreRefused) {
  auto run = horizontalRun();
  run.vectors[3].mnemonic = "CWFR";  // 2, 4 and 3 connections
  EXPECT_FALSE(load(run));
  run = horizontalRun();
  run.vectors[7].mnemonic = "COFR";  // a mnemonic that comes back counts anew
  EXPECT_FALSE(load(run));
  EXPECT_TRUE(host_.faults.empty());
}

/// Existing hosts expect the steps and dates of the newest run also where earlier rows precede its own.
TEST_F(Profiles, OfAChainHaveTheStepsOfTheNewestRun) {
  horizontalRun().write(folder_, "OLD", bigEndian);
  auto later = horizontalRun(5);
  later.restart = "OLD";
  host_.reader.NoRestart = false;
  ASSERT_TRUE(load(later));
  ASSERT_TRUE(fetch(1, true));
  EXPECT_EQ(std::get<std::string>(host_.source(4)), "7 JAN 2015");
  EXPECT_EQ(host_.lastDiagnosis().message, Message::ChainProfiles);
}

TEST(DateStamp, DaysOrInLabUnitsHoursFromTheStart) {
  struct Row {
    const char* start;
    double unitsPerDay;
    float time;
    const char* date;  // empty: refused
  };
  const Row rows[] = {{"1 JAN 2015", 1, 31.75F, "1 FEB 2015"},
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
