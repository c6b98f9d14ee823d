#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/FileSets.h"
#include "support/Paths.h"
#include "support/RestartBuilder.h"
#include "support/RestartLoad.h"
#include "support/Text.h"

namespace lumbarn {
namespace {

using test::RestartBuilder;
using test::RestartLoad;
using test::TemporaryFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// The solution arrays of a table that an independent reader made, step by step.
struct ExpectedArray {
  std::string name;
  double least = 0;
  double most = 0;
  double sum = 0;
};
std::vector<std::vector<ExpectedArray>> expectedSteps(const std::string& file) {
  std::vector<std::vector<ExpectedArray>> steps;
  std::ifstream in(examplePath("/data/expected/") + file + ".records.csv");
  std::string line;
  bool solution = false;
  while (std::getline(in, line)) {
    const auto fields = split(trim(line), ',');
    if (fields[0] == "ENDSOL") solution = false;
    if (solution) {
      steps.back().push_back({fields[0], std::stod(fields[3]), std::stod(fields[4]), std::stod(fields[5])});
    }
    if (fields[0] != "STARTSOL") continue;
    solution = true;
    steps.emplace_back();
  }
  return steps;
}

struct Sample {
  const char* folder;
  const char* file;
  std::int32_t step = -1;  ///< of a multiple set: the one that the table is of
};
class RestartSamples : public ::testing::TestWithParam<Sample> {};

TEST_P(RestartSamples, HoldWhatTheIndependentReaderFound) {
  const auto& [folder, file, step] = GetParam();
  RestartLoad load(examplePath("/data/") + folder + "/" + file);
  load.reader.iStart = load.reader.iEnd = step;
  ASSERT_TRUE(load.run()) << load.lastDiagnosis().text();
  EXPECT_TRUE(load.session.diagnoses().empty());
  const auto expected = expectedSteps(file);
  ASSERT_EQ(load.steps().size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto iSeqnum = static_cast<std::int32_t>(i + 1);
    const auto* grid = load.reader.RestartGrid(iSeqnum, 1);
    ASSERT_GE(load.names(iSeqnum).size(), expected[i].size());
    for (std::size_t k = 0; k < expected[i].size(); ++k) {
      const auto& wanted = expected[i][k];
      EXPECT_EQ(load.names(iSeqnum)[k], wanted.name);
      const auto values = load.reader.RestartValues(iSeqnum, 1, static_cast<std::int32_t>(k + 1));
      ASSERT_EQ(values.size(), static_cast<std::size_t>(grid->nActive));
      double sum = 0;
      for (const float value : values) sum += value;
      EXPECT_EQ(std::ranges::min(values), static_cast<float>(wanted.least)) << wanted.name;
      EXPECT_EQ(std::ranges::max(values), static_cast<float>(wanted.most)) << wanted.name;
      EXPECT_NEAR(sum, wanted.sum, 1e-9 * std::abs(wanted.sum)) << wanted.name;
    }
    // What the samples hold beyond that follows from their saturations.
    for (std::size_t k = expected[i].size(); k < load.names(iSeqnum).size(); ++k) {
      EXPECT_EQ(load.names(iSeqnum)[k], "SOIL");
    }
  }
}
INSTANTIATE_TEST_SUITE_P(Samples, RestartSamples,
                         ::testing::Values(Sample{"ARBOR", "ARBOR.UNRST"}, Sample{"ARBORF", "ARBORF.FUNRST"},
                                           Sample{"ARBORM", "ARBORM.X0003", 3},
                                           Sample{"ARBORFM", "ARBORFM.F0003", 3},
                                           Sample{"HOLLIN", "HOLLIN.UNRST"}),
                         [](const auto& row) { return std::string(row.param.folder); });

/// Steps 0, 2, 5 and 9, each with one array of its number.
RestartBuilder fourSteps() {
  RestartBuilder run;
  for (const std::int32_t number : {0, 2, 5, 9}) {
    RestartBuilder::Grid grid;
    grid.arrays = {{"PRESSURE", std::vector<float>(4, static_cast<float>(number))}};
    run.steps.push_back({number, number * 10.0, {1 + number, 2, 2020}, {grid}});
  }
  return run;
}

class RestartSets : public test::OfForm {
 protected:
  TemporaryFolder folder_;
};
INSTANTIATE_TEST_SUITE_P(Forms, RestartSets, ::testing::ValuesIn(test::everyForm), test::formName);

struct LimitsCase {
  bool unified;
  std::int32_t iStart, iEnd;
  std::vector<std::int32_t> steps;
};

TEST_P(RestartSets, LimitsChooseSteps) {
  const auto run = fourSteps();
  for (const auto& [unified, iStart, iEnd, steps] :
       {LimitsCase{true, -1, -1, {0, 2, 5, 9}}, LimitsCase{true, 2, 5, {2, 5}}, LimitsCase{true, 5, 2, {5}},
        LimitsCase{true, 2, -1, {2}}, LimitsCase{true, -1, 5, {0, 2, 5}}, LimitsCase{true, 3, 4, {}},
        LimitsCase{true, 6, 99, {9}}, LimitsCase{false, -1, -1, {0, 2, 5, 9}},
        LimitsCase{false, 2, 5, {2, 5}}, LimitsCase{false, 5, -1, {5}}, LimitsCase{false, 20, 30, {}}}) {
    RestartLoad load(run.write(folder_, unified ? "ONE" : "MANY", form_, unified));
    load.reader.iStart = iStart;
    load.reader.iEnd = iEnd;
    ASSERT_TRUE(load.run()) << load.lastDiagnosis().text();
    EXPECT_EQ(load.reader.Unified, unified);
    ASSERT_EQ(load.steps(), steps) << unified << " " << iStart << " " << iEnd;
    for (std::size_t i = 0; i < steps.size(); ++i) {
      EXPECT_EQ(load.values("PRESSURE", static_cast<std::int32_t>(i + 1)),
                std::vector<float>(4, static_cast<float>(steps[i])));
    }
  }
}

TEST_P(RestartSets, AStepListPicksFilesAndSpansAUnifiedFile) {
  const auto run = fourSteps();
  const auto pick = [&](bool unified, std::vector<std::int32_t> list) {
    const auto path = run.write(folder_, unified ? "ONE" : "MANY", form_, unified);
    qvEclipseSOLUTION set;
    EXPECT_TRUE(set.CheckRESTARTFile(path));
    bool qOK = false;
    std::vector<std::string> files;
    std::int32_t nFiles = 0;
    GetFileNamesToLoad(path, -1, -1, set.Unified, "SOLUTION", nFiles, files, qOK);
    set.SetMultList(nFiles, files, qOK);
    set.iStart = set.iEnd = -1;
    set.iRestartList = std::move(list);
    set.getSOLUTIONData(qOK);
    std::vector<std::int32_t> steps;
    std::vector<double> times;
    std::int32_t nSteps = 0;
    bool qTable = false;
    set.GetRestartRecordTimesAndSteps(steps, times, nSteps, qTable);
    EXPECT_EQ(qOK, nSteps > 0);
    return steps;
  };
  EXPECT_THAT(pick(false, {9, 2}), ElementsAre(2, 9)) << "in order of the files";
  EXPECT_THAT(pick(true, {2, 9}), ElementsAre(2, 5, 9));
  EXPECT_THAT(pick(false, {4}), ElementsAre(-32768)) << "no file, so a failure and a table of no step";
}

TEST_P(RestartSets, FilesThatGoAndNamesThatTellNothingAreNoFailure) {
  const auto run = fourSteps();
  const auto first = run.write(folder_, "MANY", form_, false);
  qvEclipseSOLUTION set;
  ASSERT_TRUE(set.CheckRESTARTFile(first));
  bool qOK = false;
  set.SetMultList(3, {first, folder_.file("GONE.X0001"), first}, qOK);
  set.iStart = set.iEnd = -1;
  set.getSOLUTIONData(qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(set.NumSequences(), 2);

  const auto odd = folder_.file("backup.bin");
  std::filesystem::copy_file(run.write(folder_, "ONE", form_), odd);
  RestartLoad unified(odd);
  ASSERT_TRUE(unified.run());
  EXPECT_EQ(unified.steps().size(), 4U);
  std::filesystem::copy_file(first, odd, std::filesystem::copy_options::overwrite_existing);
  RestartLoad one(odd);
  ASSERT_TRUE(one.run());
  EXPECT_THAT(one.steps(), ElementsAre(0));
}

TEST_P(RestartSets, ReadOnlyHeaderGivesDatesAndSizes) {
  for (const bool unified : {true, false}) {
    qvEclipseSOLUTION set;
    ASSERT_TRUE(set.CheckRESTARTFile(fourSteps().write(folder_, "RUN", form_, unified)));
    bool qOK = false;
    set.SetMultList(1, {set.FileName}, qOK);
    set.iStart = set.iEnd = -1;
    set.ReadOnlyHeader = true;
    set.getSOLUTIONData(qOK);
    ASSERT_TRUE(qOK);
    EXPECT_EQ(set.NumSequences(), unified ? 4 : 1);
    EXPECT_EQ(set.step(1).grid(1).arrays.nVectors(), 0);
    EXPECT_EQ(set.step(1).grid(1).zDate, "1 FEB 2020");
    SourceData size;
    set.getNxNyNzInfo(1, size, qOK);
    EXPECT_EQ(size(1), Variant(std::int32_t{2}));
    set.getNxNyNzInfo(9, size, qOK);
    EXPECT_FALSE(qOK);
    EXPECT_EQ(size(1), Variant(std::int32_t{-1}));
  }
}

TEST_P(RestartSets, ADeletedStepKeepsItsDate) {
  RestartLoad load(fourSteps().write(folder_, "RUN", form_));
  ASSERT_TRUE(load.run());
  bool qOK = false;
  load.reader.DeleteRESTARTSEQUENCE(2, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_FALSE(load.fetch(2));
  EXPECT_EQ(load.reader.RestartSteps()[1].zDate, "3 FEB 2020");
  EXPECT_TRUE(load.fetch(3));
}

TEST_P(RestartSets, AnIndexLeadsToTheSet) {
  fourSteps().write(folder_, "RUN", form_);
  const auto index = folder_.file("RUN.RSSPEC");
  test::writeFile(index, {});
  RestartLoad load(index);
  ASSERT_TRUE(load.run()) << load.lastDiagnosis().text();
  EXPECT_EQ(load.steps().size(), 4U);
}

class TwoStepsDialog final : public LoadDialog {
 public:
  bool show(const qvEclipseSPEC&, ECLIPSEINFO&, LoadDialogSettings&) override { return false; }
  bool showArrays(ECLIPSEINFO& selection, LoadDialogSettings& settings) override {
    offered = settings.iRestartList;
    names = selection.nSolutionVectors;
    settings.iRestartList = {2, 9};
    return accept;
  }
  std::vector<std::int32_t> offered;
  std::int32_t names = 0;
  bool accept = true;
};

TEST_P(RestartSets, ADialogPicksSteps) {
  RestartLoad load(fourSteps().write(folder_, "MANY", form_, false));
  TwoStepsDialog dialog;
  load.reader.setLoadDialog(&dialog);
  load.reader.Silent = false;
  ASSERT_TRUE(load.run());
  EXPECT_THAT(dialog.offered, ElementsAre(0, 2, 5, 9));
  EXPECT_EQ(dialog.names, 1);
  EXPECT_THAT(load.steps(), ElementsAre(2, 9));
  dialog.accept = false;
  EXPECT_FALSE(load.run());
}

/// Whatever a damaged file gives must be whole steps, and what it does not give must be explained.
void checkWhatIsLeft(const RestartLoad& load, const std::string& file, std::size_t at) {
  for (std::int32_t i = 1; i <= static_cast<std::int32_t>(load.steps().size()); ++i) {
    ASSERT_LE(load.values("PRESSURE", i).size(), 4U) << at;
  }
  if (!load.reader.Damaged()) return;
  EXPECT_EQ(load.lastDiagnosis().path, file) << at;
  EXPECT_TRUE(load.lastDiagnosis().offset) << at;
  EXPECT_THAT(load.lastDiagnosis().action, HasSubstr(std::to_string(load.steps().size()) + " steps")) << at;
}

RestartBuilder smallSteps() {
  auto run = fourSteps();
  run.headerWords = 96;
  run.nIWELZ = 9, run.nICONZ = 6, run.nCWMAX = 2, run.nSWELZ = run.nXWELZ = run.nSCONZ = 3;
  run.steps.resize(2);
  run.steps[1].number = 1;
  for (auto& step : run.steps) step.grids[0].wells = {{"P1", {{1, 1, 1}, {1, 2, 1}}, {}}};
  return run;
}

TEST_P(RestartSets, AFileCutAnywhereGivesTheWholeSteps) {
  const auto run = smallSteps();
  for (const bool unified : {true, false}) {
    const auto file = run.write(folder_, "RUN", form_, unified);
    const auto last = unified ? file : folder_.file(form_.formatted() ? "RUN.F0001" : "RUN.X0001");
    const auto whole = unified ? run.bytes(form_) : run.bytes(form_, run.steps[1]);
    const std::size_t first = unified ? 40 : 1;  // what is shorter is no restart file
    std::size_t stepsBefore = 0;
    for (std::size_t size = first; size <= whole.size(); ++size) {
      test::writeFile(last, std::span(whole).first(size));
      RestartLoad load(file);
      ASSERT_TRUE(load.run()) << "what a running simulation leaves: " << load.lastDiagnosis().text();
      ASSERT_GE(load.steps().size(), stepsBefore) << size;
      stepsBefore = load.steps().size();
      for (std::size_t i = 0; i < stepsBefore; ++i) {
        ASSERT_EQ(load.values("PRESSURE", static_cast<std::int32_t>(i) + 1).size(), 4U) << size;
      }
      checkWhatIsLeft(load, last, size);
    }
    EXPECT_EQ(stepsBefore, 2U);
  }
}

TEST_P(RestartSets, AFileDamagedAnywhereIsSurvived) {
  const auto run = smallSteps();
  for (const bool unified : {true, false}) {
    const auto file = run.write(folder_, "RUN", form_, unified);
    const auto whole = unified ? run.bytes(form_) : run.bytes(form_, run.steps[0]);
    for (std::size_t at = 0; at < whole.size(); at += 7) {
      auto flipped = whole;
      flipped[at] ^= std::byte{0x84};
      test::writeFile(file, flipped);
      RestartLoad load(file);
      const bool strict = load.run();
      EXPECT_TRUE(strict || !load.session.diagnoses().empty()) << at;
      if (strict) checkWhatIsLeft(load, file, at);
      load.reader.AcceptDamaged = load.reader.FullWellInfo = true;
      EXPECT_GE(load.run(), strict) << at;
    }
  }
}

TEST(RestartFiles, OthersAreRefused) {
  const TemporaryFolder folder;
  const auto text = folder.file("RUN.UNRST");
  test::writeFile(text, test::bytesOf("no record file"));
  for (const auto& file : {text, folder.file("NONE.UNRST"), examplePath("/data/ARBOR/ARBOR.EGRID")}) {
    RestartLoad load(file);
    EXPECT_FALSE(load.run());
    EXPECT_EQ(load.lastDiagnosis().path, file);
    EXPECT_FALSE(load.reader.CheckECLIPSEFileType(file, 11));
  }
}

/// A load writes the index of its set where the host names a folder; the name of the index leads back to
/// both.
TEST(Solution, AnIndexIsWrittenAndLeadsToItsSet) {
  const TemporaryFolder folder;
  RestartBuilder run;
  run.steps = {{.number = 1, .grids = {{.arrays = {{"SWAT", {0, 0, 0, 1}}}}}},
               {.number = 4, .grids = {{.arrays = {{"SWAT", {0, 0, 1, 1}}}}}}};
  RestartLoad load(run.write(folder, "RUN", test::bigEndian));
  load.reader.IndexFolder = folder.file("");
  ASSERT_TRUE(load.run());
  EXPECT_FALSE(load.reader.IsInitialised(28));

  load.reader.IndexFolder.clear();
  load.reader.FileName = folder.file("RUN.RSSPEC");
  ASSERT_TRUE(load.run()) << load.lastDiagnosis().text();
  EXPECT_THAT(load.steps(), ElementsAre(1, 4));
  ASSERT_TRUE(load.reader.IsInitialised(28));
  std::vector<std::int32_t> indexed;
  bool qOK = false;
  load.reader.RestartIndexFile()->GetSequences(indexed, qOK);
  EXPECT_EQ(indexed, load.steps());

  std::filesystem::remove(folder.file("RUN.UNRST"));
  EXPECT_FALSE(load.run());
  EXPECT_TRUE(load.reader.IsInitialised(28));
  load.reader.DeleteObject(28);
  EXPECT_FALSE(load.reader.IsInitialised(28));
}

}  // namespace
}  // namespace lumbarn
