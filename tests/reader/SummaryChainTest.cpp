#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shapes/SelectionFixture.h"
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
    first_ = runAt({1, 2, 3, 4});
    second_ = runAt({3, 4, 5});
    third_ = runAt({5, 6}, "FGPR");
  }
  /// The third run restarted from the second, which is of the other form, and that from the first.
  std::string write() {
    second_.restart = "OLD.RUN";
    third_.restart = "MID";
    first_.write(folder_, "OLD.RUN", bigEndian);
    second_.write(folder_, "MID", formatted);
    return third_.write(folder_, "NEW", bigEndian);
  }
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

  SummaryLoad byClass(folder_.file("NEW.SMSPEC"));
  byClass.reader.bOnly = listOf({"FIELD/"});
  EXPECT_THAT(byClass.chainTimes(), ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(byClass.names(), ElementsAre("TIME", "FGPR", "FOPR"));
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

TEST_F(Chains, WhereAChainBreaksItSaysWhatItLookedFor) {
  const auto spec = write();
  for (const char* name : {"OLD.RUN.SMSPEC", "OLD.RUN.UNSMRY"}) fs::remove(folder_.file(name));
  SummaryLoad load(spec);
  EXPECT_THAT(load.chainTimes(), ElementsAre(3, 4, 5, 6));
  ASSERT_EQ(load.session.diagnoses().size(), 2U);
  const Diagnosis& missing = load.session.diagnoses().front();
  EXPECT_THAT(missing.text(), HasSubstr("MID.FSMSPEC: the run that this one restarted from is not found"));
  EXPECT_THAT(missing.expected, HasSubstr("OLD.RUN.FSMSPEC"));

  writeFile(folder_.file("MID.FUNSMRY"), std::vector{std::byte{1}});
  SummaryLoad noData(spec);
  EXPECT_THAT(noData.chainTimes(), ElementsAre(5, 6))
      << "an earlier run whose data cannot be read ends the chain";
  EXPECT_FALSE(noData.session.diagnoses().empty());
}

TEST_F(Chains, ARingEnds) {
  third_.restart = "MID";
  second_.restart = "NEW";
  second_.write(folder_, "MID", bigEndian);
  SummaryLoad load(third_.write(folder_, "NEW", bigEndian));
  EXPECT_THAT(load.chainTimes(), ElementsAre(3, 4, 5, 6));
  EXPECT_EQ(load.session.diagnoses().front().message, Message::ChainLoop);
}

TEST_F(Chains, CompletionDataTakeNoEarlierRuns) {
  third_.vectors.push_back({"COFR", "P1", 5, ""});
  for (auto& row : third_.rows) row.values.push_back(1);
  SummaryLoad load(write());
  EXPECT_THAT(load.chainTimes(), ElementsAre(5, 6));
  EXPECT_TRUE(std::get<bool>(load.source(54)));
  EXPECT_EQ(load.lastDiagnosis().message, Message::ChainConnections);
}

/// Two runs of one chain whose vectors are to be matched: TIME and two others each, with values 1 and 2 in
/// the earlier run and 3 and 4 in the later one.
struct Matching {
  const char* what;
  std::vector<SummaryBuilder::Vector> earlier, later;
  std::vector<std::vector<float>> columns;
  std::optional<Message> message;
};

TEST(ChainMatching, ByCompleteNames) {
  const std::string prefix(44, 'W');
  const std::vector<std::vector<float>> swapped = {{1, 5}, {2, 3}, {1, 4}};
  const std::vector<std::vector<float>> apart = {{1, 5}, {0, 3}, {0, 4}, {1, 0}, {2, 0}};
  using Vectors = std::vector<SummaryBuilder::Vector>;
  const Vectors producer{{"WOPR", "PRODUCER"}, {"WOPR", "INJ-1"}}, twice(2, {"WOPR", "PRODUCER"});
  const Vectors north{{"WOPR", "INJ-1"}, {"WOPR", "PRODUCER-NORTH"}};
  const Vectors two{{"WOPR", "PRODUCER-NORTH"}, {"WOPR", "PRODUCER-SOUTH"}};
  const Vectors segments{{"SOFR", "P1", 12}, {"SOFR", "P11", 2}};
  const Vectors longNames{{"WOPR", prefix + "1"}, {"WOPR", prefix + "2"}};
  const Vectors stb{{"WOPR", "P1", 0, "STB/DAY"}, {"WOPR", "P2", 0, "SM3/DAY"}};
  const Vectors sm3{{"WOPR", "P1", 0, "SM3/DAY"}, {"WOPR", "P2", 0, ""}};
  const Vectors days{{"TCPU", "", 0, "DAYS"}, {"WOPR", "P2"}},
      hours{{"TCPU", "", 0, " HOURS"}, {"WOPR", "P2"}};
  const auto reversed = [](const Vectors& vectors) { return Vectors(vectors.rbegin(), vectors.rend()); };
  const Matching cases[] = {
      {"parts of a name do not run together", segments, reversed(segments), swapped, {}},
      {"names that agree in 40 characters", longNames, reversed(longNames), swapped, {}},
      {"truncated names in the earlier run", producer, north, swapped, Message::ChainNames},
      {"truncated names in the later run", north, producer, swapped, Message::ChainNames},
      {"a truncated name that may be either of two", twice, two, apart, Message::ChainNoValues},
      {"a truncated name of two vectors", twice, north, apart, Message::ChainNoValues},
      {"a truncated name with two longer ones", producer, two, apart, Message::ChainNoValues},
      {"units that cannot be converted", stb, sm3, {{1, 5}, {0, 3}, {2, 4}}, Message::ChainUnits},
      {"units of time", days, hours, {{1, 5}, {24, 3}, {2, 4}}, {}},
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
      EXPECT_EQ(load.session.diagnoses()[0].message, one.message);
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
  second_.firstStep = 6;
  SummaryLoad load(write());
  EXPECT_THAT(load.chainTimes(), ElementsAre(1, 2, 3, 4, 5, 6));
  ASSERT_FALSE(load.session.diagnoses().empty());
  EXPECT_EQ(load.session.diagnoses().front().message, Message::ChainGap);
  EXPECT_EQ(load.session.diagnoses().front().found, "last report step 4");
}

}  // namespace
}  // namespace lumbarn
