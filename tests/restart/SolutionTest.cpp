#include <filesystem>
#include <fstream>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

/// Also of a unified file under a name that is not one of a restart.
TEST_P(RestartSets, LimitsChooseSteps) {
  const auto run = fourSteps();
  for (const auto& [unified, iStart, iEnd, steps] :
       {LimitsCase{true, -1, -1, {0, 2, 5, 9}}, LimitsCase{true, 5, 2, {5}}, LimitsCase{true, 3, 4, {}},
        LimitsCase{true, 2, 5, {2, 5}}, LimitsCase{false, -1, -1, {0, 2, 5, 9}},
        LimitsCase{false, 2, 5, {2, 5}}, LimitsCase{false, 20, 30, {}}}) {
    const auto path = run.write(folder_, unified ? "ONE" : "MANY", form_, unified);
    if (unified) std::filesystem::rename(path, folder_.file("backup.bin"));
    RestartLoad load(unified ? folder_.file("backup.bin") : path);
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

TEST_P(RestartSets, ReadOnlyHeaderGivesDatesAndSizes) {
  for (const bool unified : {true, false}) {
    qvEclipseSOLUTION set;
    ASSERT_TRUE(set.CheckRESTARTFile(fourSteps().write(folder_, "RUN", form_, unified)));
    bool qOK = false;
    set.SetMultList(2, {set.FileName, folder_.file("GONE.X0001")}, qOK);
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

class PickingDialog final : public LoadDialog {
 public:
  bool show(const qvEclipseSPEC&, ECLIPSEINFO&, LoadDialogSettings&) override { return false; }
  bool showArrays(ECLIPSEINFO& selection, LoadDialogSettings& settings) override {
    offered = settings.iRestartList;
    names = selection.nSolutionVectors;
    settings.iRestartList = choice;
    return accept;
  }
  std::vector<std::int32_t> offered, choice;
  std::int32_t names = 0;
  bool accept = true;
};

TEST_P(RestartSets, ADialogPicksFilesAndASpanOfAUnifiedFile) {
  using Steps = std::vector<std::int32_t>;
  const std::tuple<bool, Steps, Steps> rows[] = {
      {false, {9, 2}, {2, 9}}, {true, {2, 9}, {2, 5, 9}}, {false, {4}, {}}};
  for (const auto& [unified, choice, steps] : rows) {
    RestartLoad load(fourSteps().write(folder_, unified ? "ONE" : "MANY", form_, unified));
    PickingDialog dialog;
    dialog.choice = choice;
    load.reader.setLoadDialog(&dialog);
    load.reader.Silent = false;
    EXPECT_EQ(load.run(), !steps.empty());
    EXPECT_THAT(dialog.offered, ElementsAre(0, 2, 5, 9));
    EXPECT_EQ(dialog.names, 1);
    EXPECT_EQ(load.steps(), steps);
    dialog.accept = false;
    EXPECT_FALSE(load.run());
  }
}

/// A load writes the index of its set where the host names a folder; the name of the index leads back to
/// both.
TEST(Solution, AnIndexIsWrittenAndLeadsToItsSet) {
  const TemporaryFolder folder;
  RestartLoad load(fourSteps().write(folder, "RUN", test::bigEndian));
  load.reader.IndexFolder = folder.file("");
  ASSERT_TRUE(load.run());
  EXPECT_FALSE(load.reader.IsInitialised(28));

  load.reader.IndexFolder.clear();
  load.reader.FileName = folder.file("RUN.RSSPEC");
  ASSERT_TRUE(load.run()) << load.lastDiagnosis().text();
  EXPECT_THAT(load.steps(), ElementsAre(0, 2, 5, 9));
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
