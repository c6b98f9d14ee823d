#include <algorithm>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/Error.h"
#include "run/Run.h"
#include "support/InitBuilder.h"
#include "support/ModelRun.h"
#include "support/WriterCase.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

constexpr double none = -1;  // stands for null

std::vector<double> valuesOf(const Batch& batch, std::string_view name) {
  auto values = batch[name].doubles();
  for (double& value : values) value = std::isnan(value) ? none : value;
  return values;
}

std::string problemOf(Error::Kind kind, auto ask) {
  try {
    ask();
  } catch (const Error& error) {
    EXPECT_EQ(error.kind(), kind) << error.what();
    return error.what();
  }
  return "answered";
}

class RunCells : public ::testing::TestWithParam<WriterCase> {
 protected:
  /// What the files have of an array in the cells given, from 0, step after step.
  std::vector<double> expected(const char* array, const std::vector<std::int32_t>& cells, bool local) const {
    std::vector<double> values;
    const bool fixed = std::string_view(array) == "PORV";
    for (std::size_t step = 0; step < model_.restartSteps().size(); ++step) {
      const bool has = fixed || !(GetParam().writer.wellsOnlyStep && step == 1);
      for (const std::int32_t cell : cells) {
        const bool active = local || std::ranges::count(active_, cell) > 0;
        values.push_back(has && active ? modelValue(array, fixed ? 0 : step, cell + model_.cellOffset(local))
                                       : none);
      }
    }
    return values;
  }

  const ModelRun files_{GetParam().writer, GetParam().form.form};
  const Model& model_ = files_.model;
  const std::vector<std::int32_t> active_ = model_.activeCells();
  const lumbarn::Run run_ = lumbarn::Run::open(files_.restartPath);
};
INSTANTIATE_TEST_SUITE_P(Writers, RunCells, ::testing::ValuesIn(everyCase()), [](const auto& one) {
  return std::string(one.param.writer.name) + one.param.form.name;
});

TEST_P(RunCells, ActiveCellsOfEachGridInAllSteps) {
  for (const bool local : {false, true}) {
    if (local && !GetParam().writer.localGrid) continue;
    const auto cells = local ? std::vector<std::int32_t>{0, 1, 2, 3} : active_;
    CellSelection selection{.arrays = {"porv,PRESS*", "SWAT"}, .ijk = true};
    if (local) selection.grid = "lgr1";
    const Batch all = run_.cells(selection, {.limits = {.rows = 5}}).collect();
    std::vector<std::string> names;
    for (const Field& field : all.schema()) names.push_back(field.name);
    EXPECT_THAT(names,
                ElementsAre("step", "date", "days", "grid", "i", "j", "k", "PORV", "PRESSURE", "SWAT"));
    for (const char* array : {"PORV", "PRESSURE", "SWAT"}) {
      EXPECT_EQ(all[array].field().type, Type::Float32);
      EXPECT_EQ(valuesOf(all, array), expected(array, cells, local)) << array;
    }
    const auto steps = model_.restartSteps();
    for (std::size_t row = 0; row < all.rows(); ++row) {
      const std::int32_t cell = cells[row % cells.size()];
      const auto at = [&](const char* name) { return all[name].values<std::int32_t>()[row]; };
      EXPECT_EQ(at("step"), steps[row / cells.size()]);
      EXPECT_EQ(all["grid"].text(row), local ? "LGR1" : "ROOT");
      const std::int32_t nx = local ? 2 : Model::size[0];
      EXPECT_EQ((at("k") - 1) * 2 * nx + (at("j") - 1) * nx + at("i") - 1, cell);
    }
  }
}

TEST_P(RunCells, ChosenCellsInAnyOrderAndTheCompleteGrid) {
  const auto [nx, ny, nz] = Model::size;
  std::vector<std::int32_t> backwards, natural;
  CellSelection selection{.arrays = {"PRESSURE", "PORV"}};
  for (std::int32_t cell = Model::cells; cell-- > 0;) {
    backwards.push_back(cell);
    natural.insert(natural.begin(), cell);
    const std::array place{cell % nx + 1, cell / nx % ny + 1, cell / nx / ny + 1};
    selection.cells.push_back({place, place});
  }
  const Batch listed = run_.cells(selection, {.limits = {.rows = 7}}).collect();
  selection.cells = {{{1, 1, 1}, {nx, ny, nz}}};
  const Batch box = run_.cells(selection).collect();
  selection = {.arrays = selection.arrays, .inactive = true};
  const Batch all = run_.cells(selection, {.limits = {.rows = 7}}).collect();
  for (const char* array : {"PRESSURE", "PORV"}) {
    EXPECT_EQ(valuesOf(listed, array), expected(array, backwards, false)) << array;
    EXPECT_EQ(valuesOf(box, array), expected(array, natural, false)) << array;
    EXPECT_EQ(valuesOf(all, array), expected(array, natural, false)) << array;
  }

  const std::int32_t step = model_.restartSteps().front();
  const Dense dense = run_.cellArray("PRESSURE", step, CellBox{{2, 1, 2}, {3, 2, 4}});
  EXPECT_THAT(dense.shape, ElementsAre(3, 2, 2));
  const auto* values = static_cast<const float*>(dense.data.get());
  for (std::int32_t i = 0; i < dense.cells(); ++i) {
    const std::int32_t cell = (i / 4 + 1) * 6 + i / 2 % 2 * 3 + i % 2 + 1;
    const bool active = std::ranges::count(active_, cell) > 0;
    EXPECT_EQ(!dense.active || ((dense.active.get()[i / 8] >> (i % 8)) & 1) != 0, active);
    EXPECT_EQ(values[i], active ? modelValue("PRESSURE", 0, cell) : 0);
  }
}

TEST_P(RunCells, ListsTheArraysThatCanBeAskedFor) {
  const Batch list = run_.arrays({.grid = "ROOT"}).collect();
  const auto arrays = model_.restartArrays();
  std::size_t listed = 0;
  for (std::size_t row = 0; row < list.rows(); ++row) {
    if (std::ranges::count(arrays, list["array"].text(row)) == 0) continue;
    ++listed;
    EXPECT_EQ(list["count"].values<std::int64_t>()[row], std::ssize(active_));
  }
  EXPECT_EQ(listed, arrays.size() * (model_.restartSteps().size() - GetParam().writer.wellsOnlyStep));
  const Batch inits = run_.arrays({.init = true, .grid = "ROOT"}).collect();
  EXPECT_EQ(inits["array"].text(0), "PORV");
  EXPECT_EQ(inits["min"].values<float>()[0], modelValue("PORV", 0, active_.front())) << "of active cells";
}

/// Steps of a grid of 2500 cells, with arrays of other types and repeated ones.
struct LongArrays : ::testing::Test {
  static constexpr std::int32_t cells = 2500;
  LongArrays() {
    std::vector<float> values(cells);
    for (std::int32_t i = 0; i < cells; ++i) values[static_cast<std::size_t>(i)] = static_cast<float>(i);
    RestartBuilder::Grid grid{.size = {50, 50, 1}, .nActive = cells};
    grid.arrays = {
        {"PRESSURE", values}, {"SWAT", std::vector<float>(cells, 0.25F)}, {"REGION", values, true}};
    restart.steps = {{.number = 1, .grids = {grid}}, {.number = 2, .days = 5, .grids = {grid}}};
    restart.steps[1].grids[0].arrays[2].integers = false;
    restart.steps[1].grids[0].arrays.push_back({"SWAT", values});
  }
  lumbarn::Run write() {
    restart.write(folder, "R", bigEndian);
    return lumbarn::Run::open(folder.file("R"));
  }
  TemporaryFolder folder;
  RestartBuilder restart;
};

TEST_F(LongArrays, TypesAndRepeatedNames) {
  restart.phases = 3;
  const lumbarn::Run run = write();
  auto stream = run.cells({.arrays = {"SWAT,REGION,SOIL"}, .cells = {{{3, 2, 1}, {3, 2, 1}}}});
  const Batch batch = std::move(stream).collect();
  EXPECT_EQ(batch["REGION"].field().type, Type::Float64) << "whole numbers in one step";
  EXPECT_THAT(valuesOf(batch, "REGION"), ElementsAre(52, 52));
  EXPECT_THAT(valuesOf(batch, "SWAT"), ElementsAre(0.25, 0.25));
  EXPECT_THAT(valuesOf(batch, "SWAT#2"), ElementsAre(none, 52));
  EXPECT_THAT(valuesOf(batch, "SOIL"), ElementsAre(0.75, 0.75));
  const Batch one = run.cells({.arrays = {"REGION"}, .time = TimeSelection::parse("1")}).collect();
  EXPECT_EQ(one["REGION"].field().type, Type::Int32);
  EXPECT_EQ(one["REGION"].values<std::int32_t>()[2499], 2499);
  const Batch records = run.cells({.arrays = {"DOUBHEAD"}, .valuesOnly = true}).collect();
  EXPECT_EQ(records["DOUBHEAD"].field().type, Type::Float64);
}

TEST_F(LongArrays, AnythingThatIsNotThereIsRefusedBeforeTheFirstRow) {
  const lumbarn::Run run = write();
  const auto ask = [&](const CellSelection& selection) {
    return [&run, selection] { (void)run.cells(selection); };
  };
  using enum Error::Kind;
  EXPECT_THAT(problemOf(NotFound, ask({.arrays = {"PRESURE"}})), HasSubstr("has no array PRESURE"));
  EXPECT_THAT(problemOf(NotFound, ask({.arrays = {"PRESSURE"}, .grid = "FINE"})), HasSubstr("it has ROOT"));
  EXPECT_THAT(problemOf(NotFound, ask({.arrays = {"PRESSURE"}, .time = TimeSelection::parse("7")})),
              HasSubstr("it has 1, 2"));
  EXPECT_THAT(problemOf(BadRequest, ask({.arrays = {"PRESSURE"}, .cells = {{{1, 51, 1}, {1, 51, 1}}}})),
              HasSubstr("cell 1,51,1 is not in grid ROOT, which has 50 x 50 x 1 cells"));
  EXPECT_THAT(problemOf(BadRequest, ask({.arrays = {"PRESSURE,INTEHEAD"}})),
              HasSubstr("show them one by one"));
  EXPECT_THAT(problemOf(BadRequest, ask({.arrays = {"INTEHEAD"}, .ijk = true})),
              HasSubstr("no values for cells"));
  auto some = run.cells({.arrays = {"PRESSURE,XYZ"}});
  EXPECT_THAT(some.remarks(), SizeIs(1)) << "what is there is shown";
}

TEST_F(LongArrays, RowsInFrontOfDamageAreDelivered) {
  auto bytes = restart.bytes(bigEndian);
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  const std::size_t second = text.find("PRESSURE", text.find("PRESSURE") + 1) + 16 + 4;
  bytes[second + 4008 + 3] ^= std::byte{1};  // the mark in front of its second block of 1000 values
  writeFile(folder.file("R.UNRST"), bytes);
  const lumbarn::Run run = lumbarn::Run::open(folder.file("R"));
  for (const bool partial : {false, true}) {
    auto stream = run.cells({.arrays = {"SWAT", "PRESSURE"}}, {.keepPartial = partial});
    std::size_t rows = 0;
    const auto read = [&] {
      while (const auto batch = stream.next()) rows += batch->rows();
    };
    EXPECT_THAT(partial ? (read(), stream.incomplete()->text()) : problemOf(Error::Kind::Damaged, read),
                HasSubstr("PRESSURE"));
    EXPECT_EQ(rows, cells + 1000U);
  }
  const auto statistics =
      run.statistics({.cells = {.arrays = {"PRESSURE"}}}, {.keepPartial = true}).collect();
  ASSERT_EQ(statistics.rows(), 1U) << "of the complete step";
  EXPECT_THAT(valuesOf(statistics, "sum"), ElementsAre(2499 * 1250));
}

TEST_F(LongArrays, StopsAndAnswersSeveralThreads) {
  const lumbarn::Run run = write();
  std::stop_source stop;
  auto stopped = run.cells({.arrays = {"PRESSURE"}}, {.stop = stop.get_token(), .limits = {.rows = 10}});
  EXPECT_TRUE(stopped.next());
  stop.request_stop();
  EXPECT_THAT(problemOf(Error::Kind::Cancelled, [&] { stopped.next(); }), HasSubstr("stopped"));

  const lumbarn::Run fresh = lumbarn::Run::open(folder.file("R"));
  std::vector<std::vector<double>> answers(4);
  std::vector<std::jthread> threads;
  for (std::size_t t = 0; t < answers.size(); ++t) {
    threads.emplace_back([&, t] {
      answers[t] = valuesOf(fresh.cells({.arrays = {"PRESSURE"}}, {.limits = {.rows = 100 + t}}).collect(),
                            "PRESSURE");
    });
  }
  threads.clear();
  ASSERT_THAT(answers[0], SizeIs(2 * cells));
  for (const auto& answer : answers) EXPECT_EQ(answer, answers[0]);
}

TEST(StaticCells, RegionsAndRecordsOfAllTypes) {
  const TemporaryFolder folder;
  InitBuilder init(bigEndian);
  init.head({.Nx = 3, .Ny = 2, .nActive = 5}).singles("PORV", {1, 2, 0, 3, 4, 5});
  init.doubles("FINE", {0.1, 0.2, 0.3, 0.4, 0.5}).integers("FIPNUM", {2, -1, 2, 2, -1});
  init.integers("SATNUM", {1, 1, 1, 2, 2});
  writeFile(folder.file("R.INIT"), init.bytes());
  const lumbarn::Run run = lumbarn::Run::open(folder.file("R"));
  const Batch cells =
      run.cells({.arrays = {"FINE", "FIPNUM"}, .cells = {{{1, 1, 1}, {3, 2, 1}}}, .init = true}).collect();
  EXPECT_THAT(valuesOf(cells, "FINE"), ElementsAre(0.1, 0.2, none, 0.3, 0.4, 0.5));
  EXPECT_EQ(cells["FIPNUM"].values<std::int32_t>()[1], -1);
  StatisticsSelection selection{
      .by = {"FIPNUM", "SATNUM"}, .weight = "PORV", .percentiles = {0, 2.5, 75, 100}};
  selection.cells = {.arrays = {"FINE"}, .init = true};
  const Batch rows = run.statistics(selection).collect();
  std::vector<std::string> regions;
  for (std::size_t row = 0; row < rows.rows(); ++row) regions.emplace_back(rows["region"].text(row));
  EXPECT_THAT(regions, ElementsAre("-1/1", "-1/2", "2/1", "2/2", "all"));
  EXPECT_THAT(valuesOf(rows, "count"), ElementsAre(1, 1, 2, 1, 5));
  EXPECT_THAT(valuesOf(rows, "weight_sum"), ElementsAre(2, 5, 4, 4, 15));
  EXPECT_EQ(valuesOf(rows, "weighted_mean")[2], (0.1 * 1 + 0.3 * 3) / 4);
  EXPECT_EQ(valuesOf(rows, "p0"), valuesOf(rows, "min"));
  EXPECT_EQ(valuesOf(rows, "p100"), valuesOf(rows, "max"));
  EXPECT_DOUBLE_EQ(valuesOf(rows, "p2.5")[4], 0.1 + 0.1 * 0.1);
  EXPECT_DOUBLE_EQ(valuesOf(rows, "p75")[2], 0.25);
  EXPECT_DOUBLE_EQ(valuesOf(rows, "p75")[4], 0.4);

  CellSelection some{.arrays = {"FINE"}, .init = true, .regions = {{"fipnum", {2, 7}}, {"SATNUM", {1}}}};
  const auto fine = [&] { return valuesOf(run.cells(some).collect(), "FINE"); };
  EXPECT_THAT(fine(), ElementsAre(0.1, 0.3));
  some.cells = {{{3, 2, 1}, {3, 2, 1}}, {{1, 2, 1}, {1, 2, 1}}, {{3, 1, 1}, {3, 1, 1}}};
  EXPECT_THAT(fine(), ElementsAre(0.3)) << "in listed cells";
  some.regions = {{"FIPNUM", {-1}}, {"SATNUM", {3, 4}}};
  EXPECT_THAT(problemOf(Error::Kind::NotFound, fine),
              HasSubstr("FIPNUM=-1 and SATNUM=3,4; of SATNUM there are 2"));
  some.regions = {{"PORV", {1}}};
  EXPECT_THAT(problemOf(Error::Kind::BadRequest, fine), HasSubstr("no region numbers"));
}

TEST_F(LongArrays, RegionsOfEachStep) {
  auto& changed = restart.steps[1].grids[0].arrays[2];
  changed.integers = true;
  std::ranges::reverse(changed.values);
  const lumbarn::Run run = write();
  const CellSelection selection{.arrays = {"PRESSURE"}, .ijk = true, .regions = {{"REGION", {5, 60}}}};
  EXPECT_THAT(valuesOf(run.cells(selection).collect(), "PRESSURE"), ElementsAre(5, 60, 2439, 2494));
}

}  // namespace
}  // namespace lumbarn
