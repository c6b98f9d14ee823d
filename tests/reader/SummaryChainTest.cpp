#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shapes/HeaderLayout.h"
#include "summary/RestartChain.h"
#include "support/Forms.h"
#include "support/SummaryBuilder.h"
#include "support/SummaryLoad.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using namespace test;
namespace fs = std::filesystem;

/// A run of single-row report steps at the given times; the second vector is 10 times the time.
SummaryBuilder runAt(const std::vector<float>& times, const std::string& second = "FOPR") {
  SummaryBuilder run;
  run.vectors = {{"TIME", ":+:+:+:+", 0, "DAYS"}, {second, ":+:+:+:+", 0, ""}};
  for (const float time : times) run.rows.push_back({{time, time * 10}, true});
  return run;
}

class Chains : public ::testing::Test {
 protected:
  Chains() {
    fs::create_directory(folder_.file("old"));
    first_ = runAt({1, 2, 3, 4});
    second_ = runAt({3, 4, 5});
    third_ = runAt({5, 6}, "FGPR");
  }
  /// The third run restarted from the second, that from the first; earlier ones lie where the names say.
  std::string write(const std::string& firstRoot = "OLD.RUN", const std::string& secondName = "MID") {
    second_.restart = firstRoot;
    third_.restart = secondName;
    first_.write(folder_, firstRoot, form_);
    second_.write(folder_, "MID", form_);
    return third_.write(folder_, "NEW", form_);
  }
  Form form_ = bigEndian;
  TemporaryFolder folder_;
  SummaryBuilder first_, second_, third_;
};

TEST_F(Chains, EarlierRunsComeInFrontAndTheirVectorsBehind) {
  SummaryLoad load(write());
  ASSERT_THAT(load.chainTimes(), ElementsAre(1, 2, 3, 4, 5, 6))
      << "of rows at one time the later run's stand";
  EXPECT_THAT(load.names(), ElementsAre("TIME", "FGPR", "FOPR"));
  EXPECT_THAT(load.column(2), ElementsAre(0, 0, 0, 0, 50, 60)) << "0 where a run has no such vector";
  EXPECT_THAT(load.column(3), ElementsAre(10, 20, 30, 40, 0, 0));
  EXPECT_THAT(load.reader.RowsWithValues(1), ElementsAre(true, true, true, true, true, true));
  EXPECT_THAT(load.reader.RowsWithValues(2), ElementsAre(false, false, false, false, true, true));
  EXPECT_THAT(load.reader.RowsWithValues(3), ElementsAre(true, true, true, true, false, false));
  std::string runs;
  for (const auto& row : load.reader.Rows()) runs += std::to_string(row.iRun);
  EXPECT_EQ(runs, "332211");
  ASSERT_EQ(load.session.diagnoses().size(), 1U);
  EXPECT_EQ(load.lastDiagnosis().message, Message::ChainNoValues);
  EXPECT_EQ(load.lastDiagnosis().found, "FGPR, FOPR");

  SummaryLoad alone(folder_.file("NEW.SMSPEC"));
  ASSERT_TRUE(alone.run());
  EXPECT_THAT(alone.column(1), ElementsAre(5, 6));

  SummaryLoad chosen(folder_.file("NEW.SMSPEC"));
  chosen.reader.NoRestart = false;
  chosen.reader.zOnly = "FOPR";
  ASSERT_TRUE(chosen.run());
  EXPECT_THAT(chosen.names(), ElementsAre("TIME", "FOPR"));
  EXPECT_THAT(chosen.reader.UnmatchedPatterns(), IsEmpty()) << "an earlier run had it";
}

TEST_F(Chains, StoresMergeToTheSameTable) {
  SummaryLoad load(write());
  load.reader.NoRestart = false;
  bool qOK = false;
  load.reader.ECLReadData(qOK);
  AttributeStores stores;
  ByteTable pointers;
  load.reader.GetStoreSUMMARYData(load.table, stores, pointers, load.source, load.only, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(pointers.entries(), 3U);
  EXPECT_THAT(load.column(3), ElementsAre(10, 20, 30, 40, 0, 0));
}

TEST_F(Chains, AnEarlierRunOfTheOtherFormIsFollowed) {
  const auto spec = write();
  for (const char* name : {"MID.SMSPEC", "MID.UNSMRY"}) fs::remove(folder_.file(name));
  second_.write(folder_, "MID", formatted, false);
  SummaryLoad load(spec);
  EXPECT_THAT(load.chainTimes(), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(Chains, WhereAChainBreaksItSaysWhatItLookedFor) {
  const auto spec = write();
  for (const char* name : {"OLD.RUN.SMSPEC", "OLD.RUN.UNSMRY"}) fs::remove(folder_.file(name));
  SummaryLoad load(spec);
  EXPECT_THAT(load.chainTimes(), ElementsAre(3, 4, 5, 6));
  ASSERT_EQ(load.session.diagnoses().size(), 2U);
  const Diagnosis& missing = load.session.diagnoses().front();
  EXPECT_THAT(missing.text(), HasSubstr("MID.SMSPEC: the run that this one restarted from is not found"));
  EXPECT_THAT(missing.expected, HasSubstr("OLD.RUN.SMSPEC"));

  writeFile(folder_.file("MID.UNSMRY"), std::vector{std::byte{1}});
  SummaryLoad noData(spec);
  EXPECT_THAT(noData.chainTimes(), ElementsAre(5, 6))
      << "an earlier run whose data cannot be read ends the chain";
  EXPECT_FALSE(noData.session.diagnoses().empty());
}

TEST_F(Chains, ARunThatMovedIsFoundInTheFolderOfTheLaterOne) {
  third_.restart = "/no/such/place/on/this/machine/MID";
  second_.write(folder_, "MID", form_);
  SummaryLoad load(third_.write(folder_, "NEW", form_));
  EXPECT_THAT(load.chainTimes(), ElementsAre(3, 4, 5, 6));
}

TEST_F(Chains, ARingEnds) {
  third_.restart = "MID";
  second_.restart = "NEW";
  second_.write(folder_, "MID", form_);
  SummaryLoad load(third_.write(folder_, "NEW", form_));
  EXPECT_THAT(load.chainTimes(), ElementsAre(3, 4, 5, 6));
  EXPECT_EQ(load.session.diagnoses().front().message, Message::ChainLoop);
}

TEST_F(Chains, CompletionDataTakeNoEarlierRunsUnlessTheyAreLeftOut) {
  third_.vectors.push_back({"COFR", "P1", 5, ""});
  for (auto& row : third_.rows) row.values.push_back(1);
  const auto spec = write();
  SummaryLoad load(spec);
  EXPECT_THAT(load.chainTimes(), ElementsAre(5, 6));
  EXPECT_TRUE(std::get<bool>(load.source(54)));
  EXPECT_EQ(load.lastDiagnosis().message, Message::ChainConnections);

  SummaryLoad without(spec);
  without.reader.NoRestart = false;
  without.reader.zExcept = "COFR:*";
  ASSERT_TRUE(without.run());
  EXPECT_THAT(without.column(1), ElementsAre(1, 2, 3, 4, 5, 6));
}

/// Two runs of one chain whose vectors are to be matched: TIME and two others each, with values 1 and 2 in
/// the earlier run and 3 and 4 in the later one.
struct Matching {
  using Vector = SummaryBuilder::Vector;
  const char* what;
  std::vector<Vector> earlier;
  int earlierWidth;
  std::vector<Vector> later;
  int laterWidth;
  std::vector<std::vector<float>> columns;
  std::optional<Message> message;
};

TEST(ChainMatching, ByCompleteNames) {
  const std::string prefix(44, 'W');
  const std::vector<std::vector<float>> swapped = {{1, 5}, {2, 3}, {1, 4}};
  const Matching cases[] = {
      {"parts of a name do not run together",
       {{"SOFR", "P1", 12}, {"SOFR", "P11", 2}},
       8,
       {{"SOFR", "P11", 2}, {"SOFR", "P1", 12}},
       8,
       swapped},
      {"names that agree in 40 characters",
       {{"WOPR", prefix + "1"}, {"WOPR", prefix + "2"}},
       48,
       {{"WOPR", prefix + "2"}, {"WOPR", prefix + "1"}},
       48,
       swapped},
      {"truncated names in the earlier run",
       {{"WOPR", "PRODUCER"}, {"WOPR", "INJ-1"}},
       8,
       {{"WOPR", "INJ-1"}, {"WOPR", "PRODUCER-NORTH"}},
       32,
       swapped,
       Message::ChainNames},
      {"truncated names in the later run",
       {{"WOPR", "PRODUCER-NORTH"}, {"WOPR", "INJ-1"}},
       32,
       {{"WOPR", "INJ-1"}, {"WOPR", "PRODUCER"}},
       8,
       swapped,
       Message::ChainNames},
      {"a truncated name that may be either of two",
       {{"WOPR", "PRODUCER"}, {"WOPR", "PRODUCER"}},
       8,
       {{"WOPR", "PRODUCER-NORTH"}, {"WOPR", "PRODUCER-SOUTH"}},
       32,
       {{1, 5}, {0, 3}, {0, 4}, {1, 0}, {2, 0}},
       Message::ChainNoValues},
      {"units that cannot be converted",
       {{"WOPR", "P1", 0, "STB/DAY"}, {"WOPR", "P2", 0, "SM3/DAY"}},
       8,
       {{"WOPR", "P1", 0, "SM3/DAY"}, {"WOPR", "P2", 0, ""}},
       8,
       {{1, 5}, {0, 3}, {2, 4}},
       Message::ChainUnits},
      {"units of time",
       {{"TCPU", "", 0, "DAYS"}, {"WOPR", "P2"}},
       8,
       {{"TCPU", "", 0, " HOURS"}, {"WOPR", "P2"}},
       8,
       {{1, 5}, {24, 3}, {2, 4}}},
  };
  for (const Matching& one : cases) {
    SCOPED_TRACE(one.what);
    TemporaryFolder folder;
    SummaryBuilder earlier = runAt({1}), later = runAt({5});
    for (auto* run : {&earlier, &later}) run->vectors.resize(1);
    earlier.vectors.insert(earlier.vectors.end(), one.earlier.begin(), one.earlier.end());
    earlier.nameWidth = one.earlierWidth;
    earlier.rows[0].values = {1, 1, 2};
    later.vectors.insert(later.vectors.end(), one.later.begin(), one.later.end());
    later.nameWidth = one.laterWidth;
    later.rows[0].values = {5, 3, 4};
    later.restart = "OLD";
    earlier.write(folder, "OLD", bigEndian);
    SummaryLoad load(later.write(folder, "NEW", bigEndian));
    ASSERT_THAT(load.chainTimes(), ElementsAre(1, 5));
    ASSERT_EQ(load.table.columns(), one.columns.size());
    for (std::size_t i = 0; i < one.columns.size(); ++i) EXPECT_EQ(load.column(i + 1), one.columns[i]) << i;
    if (!one.message) {
      EXPECT_THAT(load.session.diagnoses(), IsEmpty());
    } else {
      EXPECT_EQ(load.session.diagnoses().at(0).message, one.message);
    }
  }
}

TEST_F(Chains, RunsWithOtherStartDatesAndUnitsOfTimeAreShifted) {
  third_ = runAt({24, 48});
  third_.vectors[0].unit = " HOURS";
  third_.start = {5, 1, 2015};
  SummaryLoad load(write());
  EXPECT_THAT(load.chainTimes(), ElementsAre(-72, -48, -24, 0, 24, 48));
  const auto dates = load.reader.RowDates(load.table);
  ASSERT_EQ(dates.size(), 6U);
  EXPECT_EQ(isoText(dates.front(), true), "2015-01-02");
  EXPECT_EQ(isoText(dates.back(), true), "2015-01-07");
  ASSERT_EQ(load.session.diagnoses().size(), 2U);
  EXPECT_EQ(load.lastDiagnosis().message, Message::ChainStart);
}

TEST_F(Chains, RowsMissingBeforeARestartAreReported) {
  second_.firstStep = 4;
  SummaryLoad fits(write());
  fits.chainTimes();
  for (const Diagnosis& diagnosis : fits.session.diagnoses())
    EXPECT_NE(diagnosis.message, Message::ChainGap) << diagnosis.text();
  second_.firstStep = 6;
  SummaryLoad load(write());
  EXPECT_THAT(load.chainTimes(), ElementsAre(1, 2, 3, 4, 5, 6));
  ASSERT_FALSE(load.session.diagnoses().empty());
  EXPECT_EQ(load.session.diagnoses().front().message, Message::ChainGap);
  EXPECT_EQ(load.session.diagnoses().front().found, "last report step 4");
}

TEST(EarlierRunCandidates, AreTriedFromTheLikeliestOn) {
  const auto names = earlierRunCandidates("dir/A.B", "/runs/NEW.SMSPEC", false);
  EXPECT_EQ(names.front(), "/runs/dir/A.B.SMSPEC");
  EXPECT_EQ(names[8], "/runs/dir/A.SMSPEC");
  EXPECT_EQ(names[16], "/runs/A.B.SMSPEC");
  EXPECT_EQ(earlierRunCandidates("/x/A", "/runs/NEW.FSMSPEC", true).front(), "/x/A.FSMSPEC");
  EXPECT_EQ(earlierRunCandidates("C:\\x\\A", "/runs/NEW.SMSPEC", false)[8], "/runs/A.SMSPEC");
}

TEST(Profiles, AreBuiltWithTheLoadAndHandedOutStepByStep) {
  TemporaryFolder folder;
  SummaryBuilder run;
  run.lengthUnit = "METRES";
  run.vectors = {{"TIME", ":+:+:+:+", 0, "DAYS"}};
  for (const char* mnemonic : {"COFR", "CWFR"}) {
    for (const std::int32_t cell : {1, 2, 3}) {
      run.vectors.push_back(
          {mnemonic, "P1", cell, "SM3/DAY", "", {}, 100.0F - static_cast<float>(10 * cell)});
    }
  }
  for (int i = 0; i < 4; ++i) {
    const auto t = static_cast<float>(i + 1);
    run.rows.push_back({{t, t, 2 * t, 3 * t, 10 * t, 20 * t, 30 * t}, i % 2 == 0});
  }
  SummaryLoad load(run.write(folder, "RUN", bigEndian));
  load.reader.HorizWell = true;
  load.reader.InFlow = true;
  ASSERT_TRUE(load.run());

  XYData profile;
  ByteTable headers;
  SourceData source;
  bool qOK = false;
  load.reader.getSUMMARYHorizontalData(2, true, profile, headers, source, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(profile.rows(), 4U);
  EXPECT_THAT(std::vector<float>(profile.column(1).begin(), profile.column(1).end()),
              ElementsAre(0, 70, 80, 90));
  EXPECT_THAT(std::vector<float>(profile.column(2).begin(), profile.column(2).end()),
              ElementsAre(0, 12, 20, 24));
  EXPECT_EQ(ExtractAttribute(attributeVariable, headers, 2), "WOFR");
  EXPECT_EQ(std::get<std::string>(source(4)), "5 JAN 2015") << "the last row of the second report step";
  EXPECT_EQ(std::get<std::int16_t>(source(8)), 2);
  load.reader.getSUMMARYHorizontalData(3, true, profile, headers, source, qOK);
  EXPECT_FALSE(qOK);
  load.reader.getSUMMARYHorizontalData(1, false, profile, headers, source, qOK);
  EXPECT_FALSE(qOK) << "that table was not asked for";
  EXPECT_THAT(load.session.diagnoses(),
              testing::Each(testing::Field(&Diagnosis::message, Message::SystemFault)));

  // Existing hosts expect the steps and dates of the newest run also where earlier rows precede its own.
  run.write(folder, "OLD", bigEndian);
  run.restart = "OLD";
  for (auto& row : run.rows) row.values[0] += 4, row.values[1] += 4;
  SummaryLoad chain(run.write(folder, "RUN", bigEndian));
  chain.reader.HorizWell = chain.reader.InFlow = true;
  chain.reader.NoRestart = false;
  chain.reader.ECLReadData(qOK);
  ASSERT_TRUE(qOK);
  chain.reader.getSUMMARYHorizontalData(1, true, profile, headers, source, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_EQ(std::get<std::string>(source(4)), "7 JAN 2015");
  EXPECT_EQ(chain.lastDiagnosis().message, Message::ChainProfiles);
}

}  // namespace
}  // namespace lumbarn
