#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// The main header before all others, as a host includes it: all types of its operations must be complete.
#include "reader/qvEclipseInfo.h"
#include "reader/qvEclipseReader.h"
#include "support/ModelRun.h"
#include "support/Paths.h"
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
  const TemporaryFolder folder;
  writeFile(folder.file("R.RFT"), bytesOf("RFT\nWELLNAME A\nP DEPTH\n1 2\nx"));
  const ModelRun model(everyWriter[0], bigEndian);
  const std::pair<std::string, std::int32_t> files[] = {
      {model.restartPath, 11},   {model.specificationPath, 12}, {model.initPath, 15},
      {model.testsPath, 18},     {model.gridPath, 23},          {model.indexPath, 28},
      {folder.file("R.RFT"), 76}};
  for (const auto& [path, code] : files) {
    SCOPED_TRACE(path);
    Host host(path, code);
    FileDescriptor file{path};
    EXPECT_TRUE(host.reader.CheckifEclipse(file));
    EXPECT_EQ(file.iType, code);
    for (const std::int32_t asked : {12, 18, 76, 77, code})
      EXPECT_EQ(host.reader.CheckECLIPSEFileType(path, asked), asked == code) << asked;
    if (code == 28) continue;
    host.reader.AcceptDamaged = true;
    host.reader.VectorPatterns = {"*,NONE*"};
    EXPECT_TRUE(host.run() && !host.reader.Damaged());
    const std::string data = code == 12 ? model.root() + ".UNSMRY" : path;
    std::filesystem::resize_file(data, std::filesystem::file_size(data) - 4);
    host.run();
    host.reader.whichtype = 0;
    EXPECT_TRUE(code == 76 || host.reader.Damaged());
    EXPECT_EQ(host.reader.UnmatchedPatterns().size(), code <= 15 ? 1U : 0U);
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
    EXPECT_TRUE(row.message != Message::FileCode ||
                load.lastDiagnosis().expected == "11 to 16, 18, 23, 25, 76 or 77");
  }

  SummaryLoad load(spec);
  ASSERT_TRUE(load.run());
  EXPECT_FALSE(load.fetchSummary());
  EXPECT_EQ(load.lastDiagnosis().message, Message::FetchedBefore);
  bool qOK = true;
  load.reader.DeleteRESTARTSEQUENCE(1, qOK);
  EXPECT_EQ(load.lastDiagnosis().message, Message::NotLoaded);
  EXPECT_EQ(load.lastDiagnosis().expected, "a load of restart data");
}

TEST(ReaderState, AMovedReaderLoadsByItsOwnOptions) {
  TemporaryFolder folder;
  const auto first = run(1).write(folder, "ONE", bigEndian);
  const auto second = run(5).write(folder, "TWO", bigEndian);
  Session session;
  auto from = std::make_unique<qvEclipseReader>(session);
  from->FileName = first;
  bool qOK = false;
  from->ReadSummaryFile(qOK);
  qvEclipseReader reader(std::move(*from));
  from.reset();
  EXPECT_EQ(reader.NumberTimeSteps(), 2);
  reader.FileName = second;
  reader.ReadSummaryFile(qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(reader.zOrigin, "TWO");
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

/// A thread to each session: a race would show under load as other values, or to a sanitizer.
TEST(ReaderState, SessionsLoadSideBySide) {
  const std::string files[] = {"ARBOR/ARBOR.SMSPEC", "CEDAR/CEDAR_R2.SMSPEC", "HOLLIN/HOLLIN.SMSPEC"};
  std::array<std::vector<float>, 6> values;
  const auto loadOften = [&](std::size_t number) {
    for (int round = 0; round < 10; ++round) {
      SummaryLoad load(examplePath("/data/") + files[number % 3]);
      load.reader.zExcept = "CO*,CW*,CG*,CPR*";
      load.reader.NoRestart = false;
      if (!load.run()) return;
      values[number].assign(load.table.values().begin(), load.table.values().end());
    }
  };
  {
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < values.size(); ++i) threads.emplace_back(loadOften, i);
  }
  for (std::size_t i = 0; i < 3; ++i) EXPECT_TRUE(values[i].size() > 100 && values[i] == values[i + 3]);
}

TEST(Info, TheLogHasTheVersionAtStartAndEnd) {
  TemporaryFolder folder;
  Session session;
  qvEclipseInfo info(session);
  info.CloseDown();  // nothing was logged before, so nothing is now
  info.CancelLoad(true);
  EXPECT_TRUE(info.CancelLoad() && session.cancelled());
  const std::string version = info.DLLVersion(folder.file("host.log"), "Host starts", true);
  EXPECT_THAT(version, ::testing::MatchesRegex("Lumbarn v[0-9.]+ [0-9]{4}-[0-9]{2}-[0-9]{2}"));
  info.CloseDown();
  std::ifstream in(folder.file("host.txt"));
  const std::string text(std::istreambuf_iterator<char>(in), {});
  EXPECT_EQ(text, "Host starts\n" + version + " OK\n" + version + " Close Down\n");
}

}  // namespace
}  // namespace lumbarn
