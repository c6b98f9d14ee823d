#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VtkExport.h"
#include "export/ReadBack.h"
#include "frame/Error.h"
#include "run/Run.h"
#include "support/GridBuilder.h"
#include "support/InitBuilder.h"
#include "support/ModelRun.h"

namespace lumbarn::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct RunExport : ::testing::Test {
  void write(const std::string& root, const lumbarn::RunExport& selection) {
    reports.clear();
    ReadOptions options;
    options.report = [this](const Diagnosis& report) { reports += report.text() + '\n'; };
    exportVtk(Run::open(root), selection, path, options);
  }
  template <class Number>
  std::vector<Number> read(const std::string& array) const {
    return test::readDataset<Number>(path, "VTKHDF/" + array);
  }
  test::TemporaryFolder folder;
  std::string path = folder.file("out.vtkhdf");
  std::string reports;
};

/// Restart and INIT arrays of every writer, its local and dual porosity grids included. Of some, the grid
/// file counts cells as active that arrays have no values for.
TEST_F(RunExport, HasTheValuesOfEveryCellAndStep) {
  for (const auto& writer : test::everyWriter) {
    SCOPED_TRACE(writer.name);
    const test::ModelRun run(writer, test::bigEndian);
    write(run.root(), {.arrays = {"pressure", "PORO"}});
    const auto grids = read<std::int32_t>("CellData/GRID");
    const auto cells = read<std::int32_t>("CellData/CELL");
    const auto active = run.model.activeCells();
    const auto check = [&](const std::string& array, std::size_t steps) {
      const auto values = read<float>("CellData/" + array);
      ASSERT_EQ(values.size(), cells.size() * steps);
      for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t step = i / cells.size();
        const std::int32_t cell = cells[i % cells.size()] - 1;
        const bool local = grids[i % cells.size()] == 2;
        const bool has = steps == 1 || !(writer.wellsOnlyStep && step == 1);
        if (has && (local || std::ranges::count(active, cell) > 0)) {
          EXPECT_EQ(values[i], test::modelValue(array, step, cell + run.model.cellOffset(local))) << array;
        } else {
          EXPECT_TRUE(std::isnan(values[i])) << array << " of cell " << cell;
        }
      }
    };
    check("PRESSURE", run.model.restartSteps().size());
    check("PORO", 1);
  }
}

TEST_F(RunExport, StepsWithOneNumberOtherTypesAndDerivedArrays) {
  test::RestartBuilder restart;
  restart.steps = {{.number = 4}, {.number = 4, .days = 9}, {.number = 5, .days = 12}};
  restart.steps[0].grids[0].arrays = {{"SWAT", {1, 1, 1, 1}}};
  restart.steps[1].grids[0].arrays = {{"SWAT", {0.25F, 0.5F, 0, 1}}, {"SGAS", {0.25F, 0.25F, 0, 0}}};
  restart.steps[2].grids[0].arrays = {{"SWAT", {5, 6, 7, 8}, true}, {"ICON", {1, 2, 3}, true}};
  test::writeFile(folder.file("RUN.UNRST"), restart.bytes(test::bigEndian));
  test::GridBuilder grid;
  grid.grids[0].size = {2, 2, 1};
  test::writeFile(folder.file("RUN.EGRID"), grid.egrid(test::bigEndian));
  write(folder.file("RUN"), {.arrays = {"SWAT", "SOIL"}});
  EXPECT_THAT(read<double>("Steps/Values"), ElementsAre(9, 12)) << "of two steps 4 the last";
  EXPECT_THAT(read<double>("CellData/SWAT"), ElementsAre(0.25, 0.5, 0, 1, 5, 6, 7, 8));
  const auto oil = read<float>("CellData/SOIL");
  EXPECT_THAT(std::vector(oil.begin(), oil.begin() + 4), ElementsAre(0.5F, 0.25F, 1, 0));
  EXPECT_TRUE(std::isnan(oil[4]));
  EXPECT_THAT(reports, HasSubstr("SOIL has no values in 1 of 2 steps"));
  write(folder.file("RUN"), {.arrays = {"SWAT"}, .step = 5});
  EXPECT_THAT(read<std::int32_t>("CellData/SWAT"), ElementsAre(5, 6, 7, 8));
  for (const auto& [array, step, problem] : {std::tuple("SWAT", 6, "it has 4, 5"),
                                             {"SGSA", 4, "has no array"},
                                             {"ICON", 5, "a value for each cell"}}) {
    try {
      write(folder.file("RUN"), {.arrays = {array}, .step = step});
      ADD_FAILURE() << array;
    } catch (const Error& error) {
      EXPECT_THAT(error.what(), HasSubstr(problem));
    }
  }
}

TEST_F(RunExport, ActiveCellsAreThoseOfTheGridFileThatThereIs) {
  test::RestartBuilder restart;
  restart.steps = {{.number = 1}};
  restart.steps[0].grids[0].nActive = 3;
  restart.steps[0].grids[0].arrays = {{"SWAT", {1, 2, 3}}};
  test::writeFile(folder.file("OLD.UNRST"), restart.bytes(test::bigEndian));
  test::GridBuilder grid;
  grid.grids[0].size = {2, 2, 1};
  grid.grids[0].activity = {1, 0, 1, 1};
  test::writeFile(folder.file("OLD.GRID"), grid.grid(test::bigEndian));
  write(folder.file("OLD"), {.arrays = {"SWAT"}, .step = 1});
  EXPECT_THAT(read<std::int32_t>("CellData/CELL"), ElementsAre(1, 3, 4));
  EXPECT_THAT(read<float>("CellData/SWAT"), ElementsAre(1, 2, 3));
}

}  // namespace
}  // namespace lumbarn::testing
