#include <filesystem>
#include <functional>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "index/IndexFile.h"
#include "index/RestartIndexAgreement.h"
#include "index/qvEclipseRSSPEC.h"
#include "support/IndexedRun.h"
#include "support/ModelRun.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::HasSubstr;

/// All that an index tells but for the ranges, in words, so that two can be compared and the difference read.
std::string textOf(const RestartIndex& index) {
  std::string text = index.form.description();
  for (const IndexStep& step : index.steps) {
    text += fmt::format("\nstep {} file {} at {} days {} {}", step.number, step.file, step.position,
                        step.days, step.date ? isoText(*step.date) : "-");
    for (const IndexGroup& group : step.groups) {
      text += fmt::format("\n  grid \"{}\" {}x{}x{} {}", group.grid, group.cells.size[0], group.cells.size[1],
                          group.cells.size[2], group.cells.active);
      for (const IndexEntry& entry : group.entries)
        text += fmt::format("\n    {} {} {} {}", entry.keyword.view(), entry.typeWord.view(), entry.count,
                            entry.position);
    }
  }
  return text;
}

/// Writes the index of what was walked, and reads it back through the check of agreement.
struct RoundTrip {
  Session session;
  RestartIndex walked;
  RestartIndex read;

  void run(const std::vector<std::string>& files, const std::string& target, bool init) {
    session.faultReporter = [](std::string_view text) { FAIL() << text; };
    walked = init ? walkInit(session, files[0]) : walkRestart(session, files);
    ASSERT_TRUE(walked.whole && !walked.steps.empty());
    bool qOK = false;
    (init ? WriteEclipseInspecFile : WriteEclipseRsspecFile)(walked, target, qOK, session);
    ASSERT_TRUE(qOK);
    read = init ? indexOfInit(session, files[0], target) : indexOfRestart(session, files, target);
    EXPECT_TRUE(read.fromFile);
    for (const auto& diagnosis : session.diagnoses()) ADD_FAILURE() << diagnosis.text();
    EXPECT_EQ(textOf(read), textOf(walked));
    EXPECT_EQ(read.header, walked.header);
  }
};

class IndexOfForm : public OfForm {
 protected:
  TemporaryFolder folder_;
  IndexedRun run_;
};
INSTANTIATE_TEST_SUITE_P(Forms, IndexOfForm, ::testing::ValuesIn(everyForm), formName);

TEST_P(IndexOfForm, OfARestartSaysWhatAWalkSays) {
  for (const bool unified : {true, false}) {
    SCOPED_TRACE(unified);
    RoundTrip trip;
    trip.run(run_.writeRestart(folder_, unified ? "U" : "M", form_, unified), folder_.file("R.RSSPEC"),
             false);
    if (HasFatalFailure()) return;
    ASSERT_EQ(trip.read.steps.size(), 3U);
    const IndexStep& step = trip.read.steps[2];
    EXPECT_EQ(step.number, 5);
    EXPECT_EQ(step.days, 5.25);
    EXPECT_EQ(isoText(*step.date), "2003-07-06T06:30:01.5");
    qvEclipseRSSPEC written(trip.session);
    bool qOK = false;
    written.CheckRESTARTFile(folder_.file("R.RSSPEC"), qOK);
    written.getRSSPECData(qOK);
    EXPECT_THAT(written.steps.at(2).iTime,
                ::testing::ElementsAre(5, 6, 7, 2003, -2345, 1, 0, 0, 1, 1, 0, 0, 0));
    ASSERT_EQ(step.groups.size(), 3U);
    EXPECT_EQ(cellArrays(step.groups[0]).size(), 3U) << "the length of ICON is that of the grid by chance";
    EXPECT_EQ(step.groups[2].grid, "NEAR WELL");
    const struct {
      const char *name, *grid;
      float minimum, maximum;
    } ranges[] = {{"PRESSURE", "", 500, 508},
                  {"pressure", "near well", 2500, 2503},
                  {"REGION", "ROOT", 1, 16777216},
                  {"DOUBHEAD", "", -std::numeric_limits<float>::max(), 5.25},
                  {"ZWEL", "", 0, 0}};
    for (const auto& [name, grid, minimum, maximum] : ranges) {
      const IndexEntry* entry = step.find(name, grid);
      ASSERT_TRUE(entry) << name;
      EXPECT_EQ(entry->minimum, minimum) << name;
      EXPECT_EQ(entry->maximum, maximum) << name;
    }
  }
}

/// One fault that makes an index another one than that of its files.
struct Fault1 {
  const char* name;
  std::function<void(RestartIndex&)> change;
  const char* told;
};
void PrintTo(const Fault1& fault, std::ostream* out) { *out << fault.name; }

IndexEntry& entryOf(RestartIndex& index, std::size_t step, std::size_t group, std::size_t entry) {
  return index.steps[step].groups[group].entries[entry];
}

const Fault1 faults[] = {
    {"LastStepMissing", [](auto& index) { index.steps.pop_back(); }, "is not indexed"},
    {"FirstStepMissing", [](auto& index) { index.steps.erase(index.steps.begin()); }, "step"},
    {"NoSteps", [](auto& index) { index.steps.clear(); }, "no steps"},
    {"StepTwice", [](auto& index) { index.steps.push_back(index.steps.back()); }, "follows step 5"},
    {"BehindTheEnd", [](auto& index) { entryOf(index, 2, 2, 3).position += 1U << 20; }, "behind the file"},
    {"FarBehindTheEnd", [](auto& index) { entryOf(index, 2, 2, 3).position = ~std::uint64_t{8}; }, "behind"},
    {"InTheMiddleOfARecord", [](auto& index) { entryOf(index, 1, 0, 1).position += 8; }, "inside of"},
    {"NotRising",
     [](auto& index) { std::swap(entryOf(index, 0, 0, 3).position, entryOf(index, 0, 0, 4).position); },
     "inside of"},
    {"OtherCount", [](auto& index) { entryOf(index, 2, 2, 3).count = 3; }, "for grid NEAR WELL of step 5"},
    {"HugeCount", [](auto& index) { entryOf(index, 1, 1, 1).count = 2147483647; }, ""},
    {"OtherName", [](auto& index) { entryOf(index, 0, 0, 0).keyword = FixedText<8>("OTHER"); }, "OTHER"},
    {"OtherNumber", [](auto& index) { index.steps[2].number = 6; }, "6"},
    {"OtherNumberBetween", [](auto& index) { index.steps[1].number = 3; }, "step 2 is step 3"},
    {"NumberNotRising", [](auto& index) { index.steps[1].number = 1; }, "follows step 1"},
    {"TimeNotRising", [](auto& index) { index.steps[1].days = 6; }, "follows step 2 at 6"},
    {"NoName", [](auto& index) { entryOf(index, 1, 0, 3).keyword = FixedText<8>("PRES\x1B"); }, "characters"},
    {"OtherDate", [](auto& index) { *index.steps[0].date += std::chrono::days(1); }, "2003-07-03"},
    {"OtherTime", [](auto& index) { index.steps[2].days += 1; }, "6.25"},
    {"OtherGrid", [](auto& index) { index.header[11] = 8; }, "other cells"},
    {"LocalGridWithoutHeader",
     [](auto& index) {
       for (auto& step : index.steps) step.groups[1].entries.erase(step.groups[1].entries.begin() + 1);
     },
     "size of the grid LGR1"},
};

class IndexDisagreement : public ::testing::TestWithParam<Fault1> {};
INSTANTIATE_TEST_SUITE_P(Faults, IndexDisagreement, ::testing::ValuesIn(faults),
                         [](const auto& row) { return row.param.name; });

TEST_P(IndexDisagreement, IsToldAndTheFilesAreWalked) {
  const TemporaryFolder folder;
  for (const bool unified : {true, false}) {
    Session session;
    const auto files = IndexedRun().writeRestart(folder, "R", bigEndian, unified);
    const RestartIndex walked = walkRestart(session, files);
    RestartIndex wrong = walked;
    for (auto& step : wrong.steps) {
      for (auto& group : step.groups) {
        for (auto& entry : group.entries) entry.minimum = entry.maximum = 0;
      }
    }
    GetParam().change(wrong);
    bool qOK = false;
    WriteEclipseRsspecFile(wrong, folder.file("R.RSSPEC"), qOK, session);
    ASSERT_TRUE(qOK);
    const RestartIndex read = indexOfRestart(session, files, folder.file("R.RSSPEC"));
    EXPECT_FALSE(read.fromFile) << unified;
    EXPECT_EQ(textOf(read), textOf(walked));
    ASSERT_EQ(session.diagnoses().size(), 1U);
    EXPECT_EQ(session.diagnoses()[0].path, folder.file("R.RSSPEC"));
    EXPECT_THAT(session.diagnoses()[0].found, HasSubstr(unified ? GetParam().told : ""));
  }
}

/// Writers differ in the words of ITIME behind the date.
TEST(IndexAgreement, TakesOnlyTheDayOfItime) {
  for (const Writer& writer : everyWriter) {
    if (!writer.index) continue;
    const ModelRun run(writer, bigEndian);
    Session session;
    const auto read = indexOfRestart(session, std::array{run.restartPath}, run.indexPath);
    EXPECT_TRUE(read.fromFile) << writer.name;
  }
}

TEST(IndexPositions, BeyondFourGigabytesAndElementsWithWordsOf32Or31Bits) {
  const TemporaryFolder folder;
  const std::vector<std::string> files{writeLargeRestart(folder)};
  Session session;
  RestartIndex walked = walkRestart(session, files);
  ASSERT_TRUE(walked.whole);
  const auto& entries = walked.steps[0].groups[0].entries;
  ASSERT_EQ(entries.size(), 4U);
  ASSERT_EQ(entries[2].count, std::int64_t{65536} * 32769);
  ASSERT_GT(entries[3].position, std::uint64_t{1} << 32);
  for (auto& entry : walked.steps[0].groups[0].entries) entry.minimum = entry.maximum = 0;
  for (const int lowBits : {32, 31}) {
    RestartIndex written = walked;
    for (auto& entry : written.steps[0].groups[0].entries) {
      const auto low = entry.position & ((std::uint64_t{1} << lowBits) - 1);
      entry.position = (entry.position >> lowBits << 32) | low;
    }
    bool qOK = false;
    WriteEclipseRsspecFile(written, folder.file("R.RSSPEC"), qOK, session);
    ASSERT_TRUE(qOK);
    const RestartIndex read = indexOfRestart(session, files, folder.file("R.RSSPEC"));
    EXPECT_TRUE(read.fromFile) << lowBits;
    EXPECT_EQ(textOf(read), textOf(walked)) << lowBits;
  }
}

TEST(IndexWriter, LeavesNothingBehindWhenItCannotFinish) {
  const TemporaryFolder folder;
  const auto files = IndexedRun().writeRestart(folder, "R", bigEndian, true);
  const std::string target = folder.file("R.RSSPEC");
  writeFile(target, bytesOf("as before"));
  const auto entries = [&] {
    return std::distance(std::filesystem::directory_iterator(folder.file("")),
                         std::filesystem::directory_iterator());
  };
  const auto before = entries();
  const auto write = [&](const std::string& path, const std::function<void(RestartIndex&, Session&)>& spoil) {
    Session session;
    RestartIndex index = walkRestart(session, files);
    spoil(index, session);
    bool qOK = true;
    WriteEclipseRsspecFile(index, path, qOK, session);
    EXPECT_FALSE(qOK);
    EXPECT_EQ(entries(), before);
    EXPECT_EQ(std::filesystem::file_size(target), 9U);
    return session.diagnoses().size();
  };
  EXPECT_EQ(write(target, [](auto&, auto& session) { session.CancelLoad = true; }), 0U);
  EXPECT_EQ(write(target, [](auto& index, auto&) { index.whole = false; }), 1U);
  EXPECT_EQ(write(target, [](auto& index, auto&) { entryOf(index, 2, 1, 3).position += 4; }), 1U);
  EXPECT_EQ(write(target, [](auto& index, auto&) { entryOf(index, 2, 1, 3).count += 1; }), 1U);
  EXPECT_EQ(write(target, [](auto& index, auto&) { index.files[0] += ".absent"; }), 1U);
  EXPECT_EQ(write(folder.file("nowhere/R.RSSPEC"), [](auto&, auto&) {}), 1U);
}

}  // namespace
}  // namespace lumbarn
