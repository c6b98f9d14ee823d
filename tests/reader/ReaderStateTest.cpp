// Includes the main header alone, as a host does: all types of its operations must be complete.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reader/qvEclipseReader.h"
#include "support/RestartBuilder.h"
#include "support/SummaryBuilder.h"
#include "support/SummaryLoad.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;

static_assert(sizeof(MarkerTable) > 0);

SummaryBuilder run(float firstTime) {
  SummaryBuilder run;
  run.vectors = {{"TIME", ":+:+:+:+", 0, "DAYS"}, {"FOPR", ":+:+:+:+", 0, "SM3/DAY"}};
  run.rows = {{{firstTime, 1}}, {{firstTime + 1, 2}}};
  return run;
}

RestartBuilder restart(std::initializer_list<std::int32_t> steps) {
  RestartBuilder builder;
  for (const std::int32_t number : steps) {
    RestartBuilder::Grid grid;
    grid.arrays = {{"PRESSURE", {1, 2, 3, 4}}};
    builder.steps.push_back({.number = number, .days = 1.0 * number, .grids = {grid}});
  }
  return builder;
}

TEST(ReaderState, TheOutcomeIsThatOfTheLastLoadWhateverTheCode) {
  TemporaryFolder folder;
  const auto spec = run(1).write(folder, "RUN", bigEndian);
  auto bytes = run(1).data(bigEndian);
  bytes.resize(bytes.size() - 4);
  writeFile(folder.file("RUN.UNSMRY"), bytes);
  SummaryLoad load(spec);
  load.reader.VectorPatterns = {"FOPR,NONE*"};
  ASSERT_TRUE(load.run());
  for (const std::int32_t code : {0, 11, 12, 13, 14, 15, 18}) {
    load.reader.whichtype = code;
    EXPECT_TRUE(load.reader.Damaged()) << code;
    EXPECT_THAT(load.reader.UnmatchedPatterns(), ElementsAre("NONE*")) << code;
  }
}

TEST(ReaderState, EachRefusalHasADiagnosis) {
  TemporaryFolder folder;
  const auto spec = run(1).write(folder, "RUN", bigEndian);
  restart({1}).write(folder, "RUN", bigEndian, true);
  struct Row {
    std::int32_t code;
    const char* file;
    Message message;
  };
  const Row rows[] = {
      {0, "RUN.SMSPEC", Message::FileCode},  {99, "RUN.SMSPEC", Message::FileCode},
      {11, "RUN.SMSPEC", Message::FileType}, {15, "RUN.SMSPEC", Message::FileType},
      {15, "RUN.UNRST", Message::FileType},  {12, "RUN.UNRST", Message::FileType},
      {14, "RUN.SMSPEC", Message::FileType}, {23, "RUN.SMSPEC", Message::FileType},
      {18, "RUN.SMSPEC", Message::FileType}, {11, "NONE.UNRST", Message::FileOpen},
      {15, "NONE", Message::FileOpen},
  };
  for (const Row& row : rows) {
    Host load(folder.file(row.file), row.code);
    EXPECT_FALSE(load.run());
    EXPECT_EQ(load.lastDiagnosis().message, row.message) << row.code << " " << row.file;
    EXPECT_EQ(load.lastDiagnosis().path, folder.file(row.file));
  }

  SummaryLoad load(spec);
  ASSERT_TRUE(load.run());
  EXPECT_FALSE(load.fetchSummary());
  EXPECT_EQ(load.lastDiagnosis().message, Message::FetchedBefore);
  bool qOK = true;
  load.reader.DeleteRESTARTSEQUENCE(1, qOK);
  EXPECT_EQ(load.lastDiagnosis().message, Message::NotLoaded);
}

TEST(ReaderState, ARootNameOrADataFileLeadsToTheSummary) {
  TemporaryFolder folder;
  run(1).write(folder, "RUN", bigEndian);
  run(7).write(folder, "RUN", bigEndian, false);  // step files of another run, of the same age
  for (const char* name : {"RUN", "RUN.UNSMRY", "RUN.SMSPEC"}) {
    SummaryLoad load(folder.file(name));
    ASSERT_TRUE(load.run()) << name;
    EXPECT_THAT(load.column(1), ElementsAre(1, 2)) << name;
    EXPECT_EQ(load.session.diagnoses().size(), std::string(name) == "RUN.UNSMRY" ? 0U : 1U) << name;
  }
  SummaryLoad steps(folder.file("RUN.S0002"));
  ASSERT_TRUE(steps.run());
  EXPECT_THAT(steps.column(1), ElementsAre(7, 8)) << "a step file leads to its set";
}

TEST(ReaderState, NothingThatOneLoadFoundAppliesToTheNext) {
  TemporaryFolder folder;
  const auto unified = run(1).write(folder, "ONE", bigEndian);
  const auto multiple = run(5).write(folder, "TWO", bigEndian, false);
  SummaryLoad load(unified);
  ASSERT_TRUE(load.run());
  EXPECT_TRUE(load.reader.Unified);
  load.reader.FileName = multiple;
  ASSERT_TRUE(load.run());
  EXPECT_THAT(load.column(1), ElementsAre(5, 6));
  EXPECT_EQ(load.reader.zOrigin, "TWO");
  load.reader.zOrigin = "mine";
  load.reader.FileName = unified;
  ASSERT_TRUE(load.run());
  EXPECT_EQ(load.reader.zOrigin, "mine") << "what the host set stays";
  load.reader.FileName = folder.file("NONE.SMSPEC");
  EXPECT_FALSE(load.run());
  EXPECT_FALSE(load.reader.IsInitialised(13)) << "the data of another file must not remain under this name";
}

// Writers that begin each step file with SEQNUM.
TEST(ReaderState, AllStepFilesThatBeginAsAUnifiedFileAreRead) {
  TemporaryFolder folder;
  for (const std::int32_t number : {1, 2, 3}) {
    restart({number}).write(folder, "T", bigEndian, true);
    std::filesystem::rename(folder.file("T.UNRST"), folder.file("RUN.X000" + std::to_string(number)));
  }
  for (const char* name : {"RUN.X0002", "RUN"}) {
    Host load(folder.file(name), 11);
    EXPECT_TRUE(load.run());
    EXPECT_EQ(load.reader.RestartSteps().size(), 3U) << name;
    EXPECT_FALSE(load.reader.RestartValues(1, 1, "pressure").empty()) << "names in any letter case";
  }
}

}  // namespace
}  // namespace lumbarn
