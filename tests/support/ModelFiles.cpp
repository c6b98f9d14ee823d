#include <algorithm>
#include <numeric>
#include <utility>

#include <fmt/format.h>

#include "InitBuilder.h"
#include "ModelRun.h"

namespace lumbarn::test {

SummaryBuilder Model::summary() const {
  SummaryBuilder run{.nameWidth = writer_->nameWidth, .writer = *writer_};
  for (const auto& vector : vectors()) run.vectors.push_back(vector.record);
  auto rows = summaryRows();
  if (writer_->running) rows.push_back(rows.back());
  for (std::size_t row = 0; row < rows.size(); ++row) run.rows.push_back({rows[row], row % 2 == 0});
  run.grid = size;
  run.start = {1, 1, 2015};
  if (writer_->startWords > 3) run.start.insert(run.start.end(), {writer_->startHour, 0, 0});
  if (writer_->earlier == Writer::Earlier::Name) run.restart = "EARLIER";
  if (writer_->earlier == Writer::Earlier::MovedPath)
    run.restart = "/no/such/folder/of/a/project/that/moved/to/another/machine/EARLIER";
  run.firstStep = firstStep();
  run.intehead = writer_->specHead == Writer::SpecHead::Restart ? 0 : writer_->units;
  if (writer_->moreSpecRecords) run.lengthUnit = "METRES";
  return run;
}

SummaryBuilder Model::earlierSummary() const {
  SummaryBuilder run = summary();
  run.restart.clear();
  run.firstStep = 0;
  run.rows.clear();
  for (const auto& row : earlierRows()) run.rows.push_back({row, true});
  return run;
}

RestartBuilder::Grid Model::restartGrid(std::size_t step, bool local) const {
  RestartBuilder::Grid grid;
  if (local) {
    grid.name = localGrid;
    grid.size = {2, 2, 1};
    grid.nActive = localCells;
  } else {
    grid.size = size;
    grid.nActive = static_cast<std::int32_t>(activeCells().size());
    for (const std::size_t well : {0U, 1U}) {
      grid.wells.push_back({writer_->wells[well],
                            connections(well),
                            {{6, 1}, {7, well == 0 ? 1 : 3}, {9, writer_->controls[well]}, {11, 1}}});
    }
  }
  grid.solution = !(writer_->wellsOnlyStep && step == 1);
  if (!grid.solution) return grid;
  for (const auto& name : restartArrays()) grid.arrays.push_back({name, values(name, step, local)});
  return grid;
}

RestartBuilder Model::restart() const {
  RestartBuilder run{.writer = *writer_};
  const auto numbers = restartSteps();
  for (std::size_t place = 0; place < numbers.size(); ++place) {
    const std::int32_t number = numbers[place];
    auto& step = run.steps.emplace_back();
    step.number = number;
    if (number == 0 && writer_->initialStepIsOneInHeader) step.headNumber = 1;
    step.days = daysAt(number);
    step.date = dayMonthYear(dateAt(step.days));
    step.grids = {restartGrid(place, false)};
    if (writer_->localGrid) step.grids.push_back(restartGrid(place, true));
  }
  run.units = writer_->units;
  run.phases = writer_->gas ? 7 : 3;
  run.headerWords = writer_->headerWords;
  run.head = {{207, writer_->startHour}};
  if (writer_->activeInWord4) run.head.insert({{4, run.steps[0].grids[0].nActive}, {12, 1}});
  run.dualPorosity = writer_->dualPorosity;
  run.gridEnd = writer_->gridEnd;
  run.nCWMAX = writer_->connectionSlots;
  run.seqnum = writer_->seqnum;
  return run;
}

namespace {

/// As TAB has it: formation volume factors and viscosities as reciprocals, the viscosibility as a difference.
ModelTable asStored(ModelTable table) {
  for (auto& row : table.rows) {
    const bool constant = table.name == "PVTW" || table.name == "PVCDO";
    if (!constant && !table.name.starts_with("PVD")) continue;
    const double volume = row[1];
    const std::size_t viscosity = constant ? 3 : 2;
    row[viscosity] = 1 / (volume * row[viscosity]);
    row[1] = 1 / volume;
    if (constant) row[4] = row[2] - row[4];
  }
  return table;
}

struct Words {
  std::size_t start, rows, tables;  ///< words of TABDIMS, from 1; rows 0: none
};
Words wordsOf(std::string_view table) {
  if (table == "SWFN") return {21, 22, 23};
  if (table == "SGFN") return {24, 25, 26};
  if (table.starts_with("SOF")) return {27, 29, 30};
  if (table.starts_with("PVDO") || table == "PVCDO") return {7, 10, 11};
  if (table == "PVDG") return {14, 17, 18};
  if (table == "PVTW") return {12, 0, 13};
  return table == "DENSITY" ? Words{19, 0, 20} : Words{2, 0, 3};
}

}  // namespace

std::pair<std::vector<std::int32_t>, std::vector<double>> Model::storedTables() const {
  std::vector<std::int32_t> dims(48, writer_->tableFill);
  std::vector<double> tab;
  for (const auto& table : tables()) {
    const auto [start, rows, count] = wordsOf(table.name);
    auto stored = asStored(table);
    for (int junk = 1; writer_->junkRows && table.name.starts_with("S") && junk < 3; ++junk) {
      stored.rows.push_back(stored.rows.back());
      stored.rows.back()[0] = junk * 1e20;
    }
    dims[start - 1] = static_cast<std::int32_t>(tab.size()) + 1;
    if (rows > 0) dims[rows - 1] = static_cast<std::int32_t>(stored.rows.size());
    dims[count - 1] = 1;
    for (std::size_t column = 0; column < stored.rows[0].size(); ++column) {
      for (const auto& row : stored.rows) tab.push_back(row[column]);
    }
  }
  dims[0] = static_cast<std::int32_t>(tab.size());
  if (writer_->sizedUnusedTable) dims[32] = 1, dims[33] = 20, dims[34] = 1;
  return {dims, tab};
}

std::vector<std::byte> Model::init(const Form& form) const {
  InitBuilder file(form);
  const auto active = activeCells();
  const InitHead head{.Nx = size[0],
                      .Ny = size[1],
                      .Nz = size[2],
                      .nActive = static_cast<std::int32_t>(active.size()),
                      .word4 = writer_->activeInWord4 ? static_cast<std::int32_t>(active.size()) : 0,
                      .iUnits = writer_->units,
                      .nPhases = writer_->gas ? 7 : 3,
                      .iProgram = writer_->program,
                      .words = writer_->headerWords};
  auto localHead = head;
  localHead.Nx = localHead.Ny = 2, localHead.Nz = 1;
  localHead.nActive = localCells, localHead.word4 = 0;

  std::vector<float> volumes(cells);
  for (const std::int32_t cell : active)
    volumes[static_cast<std::size_t>(cell)] = modelValue("PORV", 0, cell);
  const auto [dims, tab] = storedTables();
  const auto staticArrays = [&](bool local) {
    file.head(local ? localHead : head);
    if (writer_->logicalWords > 0)
      file.flags({15}, static_cast<int>(writer_->logicalWords), writer_->dualPorosity);
    if (!local && writer_->doubleWords > 0)
      file.doubles("DOUBHEAD", std::vector<double>(writer_->doubleWords));
    file.singles("PORV", local ? values("PORV", 0, true) : volumes);
    for (const char* name : {"PORO", "PERMX"}) file.singles(name, values(name, 0, local));
  };
  const auto regions = [&](bool local) {
    std::vector<std::int32_t> numbers(local ? localCells : active.size());
    std::iota(numbers.begin(), numbers.end(), local ? 101 : 1);
    file.integers("FIPNUM", numbers);
  };
  const auto localGrids = [&](auto write) {
    if (!writer_->localGrid) return;
    file.local(localGrid);
    write();
    RestartBuilder::endGrid(file.out(), writer_->gridEnd);
    if (writer_->lgrsGone)
      writer_->integerLgrsGone ? file.integers("LGRSGONE", {}) : file.message("LGRSGONE");
  };

  staticArrays(false);
  if (writer_->passes) localGrids([&] { staticArrays(true); });
  file.integers("TABDIMS", dims).doubles("TAB", tab);
  regions(false);
  localGrids([&] {
    if (!writer_->passes) staticArrays(true);
    regions(true);
  });
  return file.bytes();
}

GridBuilder Model::grid() const {
  GridBuilder file;
  auto& global = file.grids[0];
  global.size = size;
  if (writer_->activity == Writer::Activity::Ones) {
    global.activity.assign(cells, 1);
    for (const std::size_t cell : {5U, 17U}) global.activity[cell] = 0;
    if (writer_->poreVolumesDecide) global.activity[17] = 1;
  }
  if (writer_->activity == Writer::Activity::Bits) global.activity = {3, 3, 1, 2, 3, 0, 3, 3, 3, 3, 3, 3};
  if (writer_->dualPorosity) {
    file.dualPorosity = 1;
    global.halfDepths = true;
  }
  if (writer_->localGrid) file.grids.push_back({.size = {2, 2, 1}, .name = localGrid, .hosts = {1, 2, 4, 5}});
  file.omitsInactive = writer_->omitsInactive;
  if (writer_->units == 2) file.gridUnit = {"FEET", ""};
  if (writer_->units == 3) file.gridUnit = {"CM", ""};
  if (writer_->mapRecords) {
    file.mapUnit = "METRES";
    file.mapAxes = {0, 1000, 0, 0, 1000, 0};
    file.gridUnit[1] = "MAP";
    file.orientation = true;
  }
  return file;
}

WellTestBuilder Model::wellTests() const {
  const auto top = connections(0)[0][2];
  std::vector<WellTestBuilder::Array> rates =
      arraysOf(fmt::format("CONIPOS: 1 1; CONJPOS: 1 1; CONKPOS: {} {}", top, top + 1));
  auto pressures = rates;
  const auto add = [](auto& arrays, const char* name) {
    arrays.push_back({name, WellTestBuilder::Singles{modelValue(name, 0, 1), modelValue(name, 0, 2)}});
  };
  for (const char* name : {"DEPTH", "PRESSURE", "SWAT"}) add(pressures, name);
  for (const char* name : {"CONORAT", "CONWRAT", "CONGRAT", "CONDEPTH"}) add(rates, name);
  const float time = 10.25F * (writer_->units == 3 ? 24 : 1);
  WellTestBuilder file{.timeUnit = writer_->testTimeUnit, .nameWidth = writer_->nameWidth};
  if (writer_->measured == Writer::Measured::OneTest)
    pressures.insert(pressures.end(), rates.begin() + 3, rates.end());
  file.tests = {{.well = writer_->wells[0], .arrays = pressures, .time = time}};
  if (writer_->measured == Writer::Measured::TwoTests)
    file.tests.push_back({.well = writer_->wells[0], .arrays = rates, .time = time});
  return file;
}

}  // namespace lumbarn::test
