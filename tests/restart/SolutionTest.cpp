#include <filesystem>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/CommandRun.h"
#include "reader/LoadDialog.h"
#include "restart/MarkerTable.h"
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

struct Sample {
  const char* folder;
  const char* file;
  std::int32_t step = -1;  ///< of a multiple set: the one that the table is of
};
class RestartSamples : public ::testing::TestWithParam<Sample> {};

/// Compares with tables of the records that an independent reader made.
TEST_P(RestartSamples, HoldWhatTheIndependentReaderFound) {
  const auto& [folder, file, step] = GetParam();
  RestartLoad load(examplePath("/data/") + folder + "/" + file);
  load.reader.iStart = load.reader.iEnd = step;
  ASSERT_TRUE(load.run()) << load.lastDiagnosis().text();
  EXPECT_TRUE(load.session.diagnoses().empty());
  const auto records = cli::testing::content(examplePath("/data/expected/") + file + ".records.csv");
  std::int32_t iStep = 0, iArray = 0;
  bool solution = false;
  for (const auto& record : cli::testing::parseCsv(records)) {
    if (record[0] == "STARTSOL") ++iStep, iArray = 0;
    const bool array =
        std::exchange(solution, (solution || record[0] == "STARTSOL") && record[0] != "ENDSOL");
    if (!array || !solution) continue;
    ++iArray;
    ASSERT_LE(static_cast<std::size_t>(iArray), load.names(iStep).size());
    EXPECT_EQ(load.names(iStep)[static_cast<std::size_t>(iArray) - 1], record[0]);
    const auto values = load.reader.RestartValues(iStep, 1, iArray);
    ASSERT_EQ(values.size(), static_cast<std::size_t>(load.reader.RestartGrid(iStep, 1)->nActive));
    double sum = 0;
    for (const float value : values) sum += value;
    EXPECT_EQ(std::ranges::min(values), std::stof(record[3])) << record[0];
    EXPECT_EQ(std::ranges::max(values), std::stof(record[4])) << record[0];
    EXPECT_NEAR(sum, std::stod(record[5]), 1e-9 * std::abs(sum)) << record[0];
  }
  EXPECT_EQ(static_cast<std::size_t>(iStep), load.steps().size());
  EXPECT_GT(iArray, 0);
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

/// Also of a unified file under a name that is not one of a restart.
TEST_P(RestartSets, LimitsChooseSteps) {
  const auto run = fourSteps();
  const std::tuple<bool, std::int32_t, std::int32_t, std::vector<std::int32_t>> rows[] = {
      {true, -1, -1, {0, 2, 5, 9}},  {true, 5, 2, {5}},     {true, 3, 4, {}},   {true, 2, 5, {2, 5}},
      {false, -1, -1, {0, 2, 5, 9}}, {false, 2, 5, {2, 5}}, {false, 20, 30, {}}};
  for (const auto& [unified, iStart, iEnd, steps] : rows) {
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

/// Operations of hosts that read the steps one by one.
TEST(Solution, AnswersHostsForEachStep) {
  const TemporaryFolder folder;
  const auto bytes = fourSteps().bytes(test::bigEndian);
  const auto path = fourSteps().write(folder, "RUN", test::bigEndian);
  qvEclipseSOLUTION set;
  bool qOK = false, qFlag = false;
  std::vector<std::int32_t> numbers;
  std::vector<double> times;
  std::int32_t n = -1, nPerfs = -1;
  set.GetRestartRecordTimesAndSteps(numbers, times, n, qOK);
  EXPECT_THAT(numbers, ElementsAre(-32768));
  ASSERT_TRUE(set.CheckRESTARTFile(path));
  set.setONLYList({"PRESSURE"}, true, qOK);
  ByteTable only;
  set.getbONLYList(only, qFlag, qOK);
  EXPECT_EQ(trimRight(only.get(1, 1, onlyNameWidth)), "PRESSURE");
  set.iStart = set.iEnd = -1;
  set.getSOLUTIONData(qOK);
  ASSERT_TRUE(qOK);
  set.GetRestartRecordTimesAndSteps(numbers, times, n, qOK);
  EXPECT_THAT(numbers, ElementsAre(0, 2, 5, 9));
  EXPECT_THAT(times, ElementsAre(0, 20, 50, 90));
  std::array<std::int32_t, 3> date{};
  set.getRESTARTDate(date[0], date[1], date[2]);
  EXPECT_THAT(date, ElementsAre(10, 2, 2020));

  const auto& step = set.step(3);
  ColumnTable<std::int32_t> places;
  set.getSingleSEQUENCEFODInfo(3, places, qOK);
  VectorDetails details;
  step.GetVectorDetails(details, qOK);
  EXPECT_THAT(details.zVectors, ElementsAre("PRESSURE"));
  EXPECT_THAT((std::array{details.nNumber[0], details.iType[0], details.iPointer[0], details.iPointerB[0]}),
              ElementsAre(4, 3, places(3, 1), 0));
  EXPECT_THAT((std::array{details.dTime[0], double{details.sMin[0]}, double{details.sMax[0]}}),
              ElementsAre(50, 5, 5));
  step.getSEQUENCEFODInfo(places, qOK);
  step.GetINTEHEAD(numbers, qOK);
  EXPECT_EQ(numbers.at(64), 6) << "day";
  EXPECT_THAT((std::array{step.Nx(1, qOK), step.Ny(1, qOK), step.Nz(1, qOK), step.Nx(2, qOK)}),
              ElementsAre(2, 2, 1, -1));
  step.NumMarkers(1, n, nPerfs, qOK);
  EXPECT_EQ(n + nPerfs, 0);
  XYData table;
  ByteTable headers;
  SourceData source;
  MarkerTable markers;
  set.iGridNumber = 1;
  set.GetSingleSEQUENCEFOD(3, table, headers, source, markers, n, places, qFlag, qOK);
  EXPECT_TRUE(qOK && !qFlag && table(1, 1) == 5);
  set.DeleteSingleSEQUENCE(3, qOK);
  EXPECT_TRUE(qOK && step.grid(1).arrays.nVectors() == 0);
  EXPECT_EQ(step.grid(1).zDate, "6 FEB 2020");

  auto cursor = test::cursorOver(bytes, test::bigEndian);
  qvEclipseSEQUENCE one;
  one.Unified = true;
  one.getEclipseSEQUENCE(cursor, qOK);
  EXPECT_TRUE(qOK && cursor.next()) << "in front of the next SEQNUM";
  std::vector<std::string> names;
  one.GetINITVectorList(cursor, n, names, qOK, true);
  EXPECT_THAT(names, ElementsAre("PRESSURE"));
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
  load.reader.DeleteObject(28);
  EXPECT_FALSE(load.reader.IsInitialised(28));
}

}  // namespace
}  // namespace lumbarn
