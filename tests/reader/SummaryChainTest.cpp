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
  EXPECT_THAT(load.reader.RowsWithValues(2), ElementsAre(false, false, false, false, true, true));
  EXPECT_THAT(load.reader.RowsWithValues(3), ElementsAre(true, true, true, true, false, false));
  std::string runs;
  for (const auto& row : load.reader.Rows()) runs += std::to_string(row.iRun);
  EXPECT_EQ(runs, "332211");
  ASSERT_EQ(load.session.diagnoses().size(), 1U);
  EXPECT_EQ(load.lastDiagnosis().message, Message::ChainNoValues);
  EXPECT_EQ(load.lastDiagnosis().found, "FGPR, FOPR");

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
  ASSERT_TRUE(load.Host::run());
  bool qOK = false;
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
  std::vector<Vector> earlier, later;
  std::vector<std::vector<float>> columns;
  std::optional<Message> message;
};

TEST(ChainMatching, ByCompleteNames) {
  const std::string prefix(44, 'W');
  const std::vector<std::vector<float>> swapped = {{1, 5}, {2, 3}, {1, 4}};
  using Vectors = std::vector<SummaryBuilder::Vector>;
  const Vectors producer{{"WOPR", "PRODUCER"}, {"WOPR", "INJ-1"}};
  const Vectors north{{"WOPR", "INJ-1"}, {"WOPR", "PRODUCER-NORTH"}};
  const Vectors twice(2, {"WOPR", "PRODUCER"});
  const Matching cases[] = {
      {"parts of a name do not run together",
       {{"SOFR", "P1", 12}, {"SOFR", "P11", 2}},
       {{"SOFR", "P11", 2}, {"SOFR", "P1", 12}},
       swapped},
      {"names that agree in 40 characters",
       {{"WOPR", prefix + "1"}, {"WOPR", prefix + "2"}},
       {{"WOPR", prefix + "2"}, {"WOPR", prefix + "1"}},
       swapped},
      {"truncated names in the earlier run", producer, north, swapped, Message::ChainNames},
      {"truncated names in the later run", north, producer, swapped, Message::ChainNames},
      {"a truncated name that may be either of two",
       twice,
       {{"WOPR", "PRODUCER-NORTH"}, {"WOPR", "PRODUCER-SOUTH"}},
       {{1, 5}, {0, 3}, {0, 4}, {1, 0}, {2, 0}},
       Message::ChainNoValues},
      {"a truncated name with two longer ones",
       producer,
       {{"WOPR", "PRODUCER-NORTH"}, {"WOPR", "PRODUCER-SOUTH"}},
       {{1, 5}, {0, 3}, {0, 4}, {1, 0}, {2, 0}},
       Message::ChainNoValues},
      {"units that cannot be converted",
       {{"WOPR", "P1", 0, "STB/DAY"}, {"WOPR", "P2", 0, "SM3/DAY"}},
       {{"WOPR", "P1", 0, "SM3/DAY"}, {"WOPR", "P2", 0, ""}},
       {{1, 5}, {0, 3}, {2, 4}},
       Message::ChainUnits},
      {"units of time",
       {{"TCPU", "", 0, "DAYS"}, {"WOPR", "P2"}},
       {{"TCPU", "", 0, " HOURS"}, {"WOPR", "P2"}},
       {{1, 5}, {24, 3}, {2, 4}}},
  };
  for (const Matching& one : cases) {
    SCOPED_TRACE(one.what);
    TemporaryFolder folder;
    SummaryBuilder earlier = runAt({1}), later = runAt({5});
    for (const auto& [run, vectors] : {std::pair{&earlier, &one.earlier}, {&later, &one.later}}) {
      run->vectors.resize(1);
      run->vectors.insert(run->vectors.end(), vectors->begin(), vectors->end());
      const auto longest = std::ranges::max(*vectors, {}, [](const auto& v) { return v.name.size(); });
      run->nameWidth = longest.name.size() > 8 ? 48 : 8;
    }
    earlier.rows[0].values = {1, 1, 2};
    later.rows[0].values = {5, 3, 4};
    later.restart = "OLD";
    earlier.write(folder, "OLD", bigEndian);
    SummaryLoad load(later.write(folder, "NEW", bigEndian));
    ASSERT_THAT(load.chainTimes(), ElementsAre(1, 5));
    ASSERT_EQ(load.table.columns(), one.columns.size());
    for (std::size_t i = 0; i < one.columns.size(); ++i) EXPECT_EQ(load.column(i + 1), one.columns[i]) << i;
    ASSERT_EQ(load.session.diagnoses().empty(), !one.message);
    if (one.message) {
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

}  // namespace
}  // namespace lumbarn
