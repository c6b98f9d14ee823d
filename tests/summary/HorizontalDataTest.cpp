#include <array>
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
using ::testing::AllOf;
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
  EXPECT_EQ(field(1, attributeUnits) + field(1, attributeMember) + field(2, attributeUnits),
            "METRESP1SM3/DAY");
  EXPECT_EQ(field(2, attributeIndex) + field(2, attributeDataKind), "2Inflow");
  EXPECT_EQ(std::get<std::string>(host_.source(4)), "5 JAN 2015") << "the last row of the second report step";
  EXPECT_EQ(std::get<std::int16_t>(host_.source(8)), 2);
  for (const auto& [step, inflow] : {std::pair{1, false}, {0, true}, {3, true}}) {
    EXPECT_FALSE(fetch(step, inflow)) << step;
    EXPECT_TRUE(host_.table.empty());
  }
  EXPECT_THAT(host_.faults, SizeIs(3));
  const auto isFault = AllOf(Field(&Diagnosis::message, Message::SystemFault),
                             Field(&Diagnosis::path, folder_.file("RUN.SMSPEC")));
  EXPECT_THAT(host_.session.diagnoses(), AllOf(SizeIs(3), Each(isFault)));
}

TEST_F(Profiles, ByConnectionKeepTheValuesAndMinistepsCountFrom0) {
  auto run = horizontalRun();
  run.vectors[0].unit = " HR";
  ASSERT_TRUE(load(run, true));
  ASSERT_TRUE(fetch(3, false));
  EXPECT_EQ(std::get<std::string>(host_.source(4)), "1 JAN 2015") << "the unit of TIME, not of the system";
  EXPECT_THAT(host_.column("WLENGTH"), ElementsAre(10, 20, 30));
  EXPECT_THAT(host_.column("WCOFR"), ElementsAre(302, 303, 301));
  EXPECT_EQ(field(2, attributeIndex), "2");
  EXPECT_EQ(field(2, attributeDataKind), "Connect");
}

TEST_F(Profiles, OfMnemonicsWithOtherConnectionsAreRefused) {
  const struct {
    std::size_t vector;
    const char *mnemonic, *member, *expected, *found;
  } rows[] = {
      {3, "CWFR", "P1", "2 of P1 for CWFR, as for COFR", "4"},
      {6, "COFRU", "P1", "3 of P1 for CWFR, as for COFR", "2"},  // 3, 2 and 4 connections
      {7, "COFR", "P1", "3 of P1 for COFR, as for COFR", "1"},   // a mnemonic that comes back counts anew
      {6, "CWFR", "P2", "3 of P1 for CWFR, as for COFR", "2"},
  };
  for (const auto& row : rows) {
    auto run = horizontalRun();
    run.vectors[row.vector].mnemonic = row.mnemonic;
    run.vectors[row.vector].name = row.member;
    EXPECT_FALSE(load(run));
    const Diagnosis diagnosis = host_.lastDiagnosis();
    EXPECT_EQ(diagnosis.path, folder_.file("RUN.SMSPEC"));
    EXPECT_EQ(diagnosis.offset, 160U);
    EXPECT_EQ((std::array{diagnosis.keyword, diagnosis.expected, diagnosis.found}),
              (std::array<std::string, 3>{"KEYWORDS", row.expected, row.found}));
  }
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

}  // namespace
}  // namespace lumbarn
