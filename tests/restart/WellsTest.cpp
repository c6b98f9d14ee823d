#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "restart/StepWells.h"
#include "support/RestartBuilder.h"
#include "support/RestartLoad.h"

namespace lumbarn {
namespace {

using test::RestartBuilder;
using test::RestartLoad;
using ::testing::Each;
using ::testing::ElementsAre;

/// P1 with two connections, OBS with none, I1 with one.
RestartBuilder threeWells() {
  RestartBuilder run;
  run.steps = {{1, 1.0, {1, 1, 2020}}};
  auto& grid = run.steps[0].grids[0];
  grid.arrays = {{"PRESSURE", {1, 2, 3, 4}}};
  grid.wells = {{"P1", {{1, 1, 1}, {1, 2, 1}}, {{7, 1}, {9, 3}, {13, 5}, {11, 1}}},
                {"OBS", {}, {{5, -7}, {7, 9}, {13, 6}, {16, 4}}},
                {" I1", {{2, 2, 1}}, {{7, 4}, {13, 7}}}};
  return run;
}

class WellTables : public test::OfForm {
 protected:
  test::TemporaryFolder folder_;
};
INSTANTIATE_TEST_SUITE_P(Forms, WellTables, ::testing::ValuesIn(test::everyForm), test::formName);

template <class T>
std::vector<T> row(const ColumnTable<T>& table, std::size_t iRow) {
  std::vector<T> all;
  for (std::size_t i = 1; i <= table.columns(); ++i) all.push_back(table(iRow, i));
  return all;
}

/// Counts that the records do not bear out: the table is left out, and all else is read.
TEST_P(WellTables, RecordsThatDoNotFitAreLeftOut) {
  constexpr std::int32_t most = 2147483647;
  const std::tuple<std::size_t, std::int32_t, std::int32_t RESTARTGRID::*, bool RESTARTGRID::*> cases[] = {
      {25, 7, &RESTARTGRID::nIWELZ, &RESTARTGRID::qIWEL},
      {17, most, &RESTARTGRID::nIWELZ, &RESTARTGRID::qIWEL},
      {17, 4, &RESTARTGRID::nZWELZ, &RESTARTGRID::qZWEL},
      {26, 74, &RESTARTGRID::nSWELZ, &RESTARTGRID::qSWEL},
      {27, 91, &RESTARTGRID::nXWELZ, &RESTARTGRID::qXWEL},
      {33, 7, &RESTARTGRID::nICONZ, &RESTARTGRID::qICON},
      {18, most, &RESTARTGRID::nICONZ, &RESTARTGRID::qICON},
      {18, 1, &RESTARTGRID::nICONZ, &RESTARTGRID::qICON},
      {34, 7, &RESTARTGRID::nSCONZ, &RESTARTGRID::qSCON}};
  for (const auto& [word, value, words, flag] : cases) {
    auto run = threeWells();
    run.head = {{word, value}};
    RestartLoad loaded(run.write(folder_, "RUN", form_));
    loaded.reader.FullWellInfo = true;
    ASSERT_TRUE(loaded.run()) << word;
    const auto& grid = *loaded.reader.RestartGrid(1, 1);
    EXPECT_EQ(grid.*words, 0) << word;
    EXPECT_FALSE(grid.*flag) << word;
    EXPECT_EQ(loaded.session.diagnoses().front().id(), "restart.well-record.length");
    EXPECT_EQ(loaded.values("PRESSURE").size(), 4U);
  }
}

/// Markers read the tables in parallel, so connections of other wells may not remain.
TEST(WellSteps, WellsThatComeAgainTakeTheirConnectionsAlong) {
  qvEclipseSEQUENCE step;
  auto& grid = step.grid();
  grid.nWells = 1, grid.nCWMAX = 3, grid.nIWELZ = 5, grid.nICONZ = 2;
  bool qOK = false;
  step.processIWEL(std::vector{1, 1, 0, 0, 2}, qOK);
  step.processICON(std::vector(6, 1), qOK);
  EXPECT_TRUE(qOK && grid.qICON);
  step.processIWEL(std::vector{1, 1, 0, 0, 3}, qOK);
  EXPECT_FALSE(grid.qICON);
  std::vector<std::int32_t> header(20);
  header[16] = 2, header[17] = 3;
  step.processINTEHEAD(HeaderWords(header));
  EXPECT_FALSE(grid.qIWEL) << "wells of another count";
}

TEST(WellSteps, ValuesThatAreNoneStayZero) {
  qvEclipseSEQUENCE step;
  auto& grid = step.grid();
  grid.nWells = 1, grid.nXWELZ = 3;
  bool qOK = false;
  step.processXWEL(std::vector{1e36, -1e37, 1e37}, qOK);
  EXPECT_THAT(row(grid.dWELL, 1), ElementsAre(1e36, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(WellSteps, PhasesAndTypes) {
  for (const auto& [type, control, phase] :
       {std::array{1, 1, 1}, std::array{1, 4, 4}, std::array{1, 5, 1}, std::array{4, 2, 3},
        std::array{11, 1, 2}, std::array{13, 1, 1}, std::array{2, 1, -1}}) {
    EXPECT_EQ(EclipseWellPhase(type, control), phase) << type;
  }
  for (const auto& [type, host] : {std::pair{1, 4}, {2, 6}, {3, 2}, {4, 1}, {0, -1}, {5, -1}}) {
    EXPECT_EQ(EclipseToQVWellType(type), host);
  }
}

/// Those of the grid that is chosen, though the step has another one without wells behind it.
TEST_P(WellTables, PVTNumbersGoByNameOrNumber) {
  auto run = threeWells();
  run.steps[0].grids.push_back({"FINE", {2, 1, 1}, 2, {{"PRESSURE", {1, 2}}}, {}});
  RestartLoad loaded(run.write(folder_, "RUN", form_));
  ASSERT_TRUE(loaded.run());
  const std::tuple<const char*, std::int32_t, std::int32_t> rows[] = {
      {"P1", -1, 5}, {" OBS ", -1, 6}, {"NONE", -1, 7}, {"", 2, 6}, {"", 4, -1}, {"", -1, -1}};
  for (const auto& [name, index, number] : rows) {
    bool qOK = false;
    EXPECT_EQ(loaded.reader.getWellPVTNum(name, qOK, index), number) << name;
    EXPECT_EQ(qOK, number > 0);
  }
}

}  // namespace
}  // namespace lumbarn
