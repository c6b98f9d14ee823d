#include "ModelRun.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <numeric>
#include <span>

#include "InitBuilder.h"
#include "record/RecordCursor.h"

namespace lumbarn::test {

namespace {

using namespace std::chrono;

constexpr double testDays = 10.25;

/// Adds the words of one table to TAB, a column after the other.
void append(std::vector<double>& tab, const ModelTable& table) {
  for (std::size_t column = 0; column < table.rows[0].size(); ++column) {
    for (const auto& row : table.rows) tab.push_back(row[column]);
  }
}

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

float modelValue(std::string_view array, std::size_t step, std::int32_t cell) {
  const auto place = static_cast<float>(cell);
  if (array == "SWAT") return static_cast<float>(step) / 16 + place / 256;
  if (array == "SGAS") return 0.25F;
  const int sum = std::accumulate(array.begin(), array.end(), 0);
  return static_cast<float>(1000 * (sum % 89)) + 100 * static_cast<float>(step) + place + 0.25F;
}

sys_seconds Model::start() const {
  return sys_days{year{2015} / January / 1} + hours{writer_->startWords > 3 ? writer_->startHour : 0};
}
std::int32_t Model::firstStep() const { return writer_->earlier == Writer::Earlier::None ? 0 : 2; }
std::vector<std::int32_t> Model::restartSteps() const {
  std::vector<std::int32_t> numbers;
  if (writer_->initialStep) numbers.push_back(0);
  for (std::int32_t step = 1; step <= writer_->steps; ++step) numbers.push_back(firstStep() + step);
  return numbers;
}
double Model::daysAt(std::int32_t step) const { return writer_->firstDay + 10.0 * step; }
sys_seconds Model::dateAt(double days) const {
  return start() + seconds{static_cast<std::int64_t>(days * 86400)};
}

std::array<std::int32_t, 3> Model::dayMonthYear(sys_seconds moment) {
  const year_month_day date{floor<days>(moment)};
  return {static_cast<std::int32_t>(static_cast<unsigned>(date.day())),
          static_cast<std::int32_t>(static_cast<unsigned>(date.month())), static_cast<int>(date.year())};
}

std::vector<std::int32_t> Model::activeCells() const {
  using enum Writer::Activity;
  const auto mask = grid().grids[0].activity;
  const auto isActive = [&](std::int32_t cell) {
    if (writer_->activity == Ones) return cell != 5 && cell != 17;
    const bool matrix = cell < cells / 2;
    return writer_->activity == Absent ||
           (mask[static_cast<std::size_t>(cell % (cells / 2))] & (matrix ? 1 : 2)) != 0;
  };
  std::vector<std::int32_t> active;
  for (std::int32_t cell = 0; cell < cells; ++cell) {
    if (isActive(cell)) active.push_back(cell);
  }
  return active;
}
std::int32_t Model::activeInGrid() const {
  return static_cast<std::int32_t>(activeCells().size()) + (writer_->poreVolumesDecide ? 1 : 0);
}

std::string Model::unit(std::string_view text) const {
  const std::size_t blanks = 8 - text.size();
  if (writer_->padding == Writer::Padding::Left) return std::string(text);
  const std::size_t front = writer_->padding == Writer::Padding::Right ? blanks : (blanks + 1) / 2;
  return std::string(front, ' ') + std::string(text);
}

std::vector<ModelVector> Model::vectors() const {
  constexpr const char* nobody = ":+:+:+:+";
  const std::string producer = writer_->wells[0], injector = writer_->wells[1], node = writer_->node;
  const std::string rate = unit(writer_->units == 2 ? "STB/DAY" : writer_->units == 3 ? "SCC/HR" : "SM3/DAY");
  const std::string pressure = unit(writer_->units == 2 ? "PSIA" : writer_->units == 3 ? "ATMA" : "BARSA");
  const std::string length = writer_->units == 2 ? "FEET" : writer_->units == 3 ? "CM" : "METRES";
  std::vector<ModelVector> all{{"TIME", {"TIME", nobody, 0, unit(writer_->units == 3 ? "HOURS" : "DAYS")}},
                               {"FOPR", {"FOPR", nobody, 0, rate}},
                               {"WOPR:" + producer, {"WOPR", producer, 1, rate}},
                               {"WWIR:" + injector, {"WWIR", injector, 2, rate}},
                               {"WBHP:" + producer, {"WBHP", producer, 1, pressure}},
                               {"GOPR:G1", {"GOPR", "G1", 1, rate}},
                               {"BPR:2,2,1", {"BPR", nobody, 5, pressure}},
                               {"COPR:" + producer + ":2,2,1", {"COPR", producer, 5, rate}},
                               {"RPR:2", {"RPR", nobody, 2, pressure}},
                               {"ROFT:1-2", {"ROFT", nobody, 1 + 32768 * 12, rate}},
                               {"AAQR:1", {"AAQR", nobody, 1, rate}},
                               {"SOFR:" + producer + ":12", {"SOFR", producer, 12, rate}},
                               {"SOFR:" + injector + ":2", {"SOFR", injector, 2, rate}},
                               {"NPR:" + node, {"NPR", node, 0, pressure}}};
  if (writer_->totals) all.push_back({"FOPT", {"FOPT", nobody, 0, unit("SM3")}});
  if (writer_->inventedVectors) {
    for (const auto& well : {producer, injector}) all.push_back({"#WSTATH1:" + well, {"#WSTATH1", well, 0}});
  }
  if (writer_->repeatedVector) all.push_back({"FOPR", {"FOPR", nobody, 0, rate}});
  if (writer_->localGrid) {
    all.push_back({"LWOPR:LGR1:" + producer, {"LWOPR", producer, 1, rate, localGrid, {1, 1, 1}}});
    all.push_back({"LBPR:LGR1:2,1,1", {"LBPR", nobody, 2, pressure, localGrid, {2, 1, 1}}});
  }
  return all;
}

std::vector<float> Model::times() const {
  std::vector<float> all;
  const double perDay = writer_->units == 3 ? 24 : 1;
  for (std::int32_t step = firstStep(); step < firstStep() + writer_->steps; ++step) {
    all.push_back(static_cast<float>((daysAt(step) + 4) * perDay));
    all.push_back(static_cast<float>(daysAt(step + 1) * perDay));
  }
  return all;
}

std::vector<std::vector<float>> Model::summaryRows() const {
  const auto names = vectors();
  std::vector<std::vector<float>> rows;
  for (const float time : times()) {
    auto& row = rows.emplace_back();
    for (std::size_t column = 0; column < names.size(); ++column)
      row.push_back(static_cast<float>(100 * column + rows.size()) + 0.5F);
    row[0] = time;
    if (!writer_->totals) continue;
    const auto* before = rows.size() > 1 ? &rows[rows.size() - 2] : nullptr;
    const auto total =
        static_cast<std::size_t>(std::ranges::find(names, "FOPT", &ModelVector::name) - names.begin());
    row[total] = before ? (*before)[total] + row[1] * (time - (*before)[0]) : 0;
  }
  if (writer_->running) rows.pop_back();
  return rows;
}

std::vector<std::vector<float>> Model::earlierRows() const {
  std::vector<std::vector<float>> rows;
  if (writer_->earlier == Writer::Earlier::None) return rows;
  for (const int step : {1, 2}) {
    auto& row = rows.emplace_back(vectors().size(), 50.0F + static_cast<float>(step));
    row[0] = static_cast<float>(daysAt(step) * (writer_->units == 3 ? 24 : 1));
  }
  return rows;
}

SummaryBuilder Model::summary() const {
  SummaryBuilder run;
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
  run.program = writer_->program;
  run.restartRecord = writer_->specHead != Writer::SpecHead::InteheadDimens;
  run.namesRecord = writer_->namesRecord;
  run.nameWidth = writer_->nameWidth;
  run.sequence = writer_->sequence;
  if (writer_->skippedMinistep) run.ministeps = {119, 121, 121, 122, 123, 124};
  if (writer_->ownRecord) run.ownRecord = writer_->ownRecord;
  run.runtimeRecords = writer_->moreSpecRecords;
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

std::vector<std::string> Model::restartArrays() const {
  std::vector<std::string> names{"PRESSURE", "SWAT"};
  if (writer_->gas) names.emplace_back("SGAS");
  return names;
}

std::vector<float> Model::values(std::string_view array, std::size_t step, bool local) const {
  std::vector<float> all;
  if (local) {
    for (std::int32_t cell = 0; cell < localCells; ++cell)
      all.push_back(modelValue(array, step, cell + cellOffset(true)));
  } else {
    for (const std::int32_t cell : activeCells()) all.push_back(modelValue(array, step, cell));
  }
  return all;
}

std::vector<std::array<std::int32_t, 3>> Model::connections(std::size_t well) const {
  if (well == 1) return {{3, 2, 2}};
  if (writer_->connectionSlots == 1) return {{1, 1, 1}};
  return {{1, 1, 1}, {1, 1, 2}};
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
  RestartBuilder run;
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
  run.program = writer_->program;
  run.headerWords = writer_->headerWords;
  run.head = {{207, writer_->startHour}};
  if (writer_->activeInWord4) run.head.insert({{4, run.steps[0].grids[0].nActive}, {12, 1}});
  run.logicalWords = writer_->logicalWords;
  run.doubleWords = writer_->doubleWords;
  run.dualPorosity = writer_->dualPorosity;
  run.solutionMarks = writer_->solutionMarks;
  run.gridEnd = writer_->gridEnd;
  run.nCWMAX = writer_->connectionSlots;
  run.icon = writer_->icon;
  run.nameWidth = writer_->nameWidth;
  run.doubleGroups = writer_->doubleGroups;
  if (writer_->ownRecord) run.ownRecord = writer_->ownRecord;
  run.seqnum = writer_->seqnum;
  run.seqnumInStepFiles = writer_->seqnumInStepFiles;
  return run;
}

std::vector<ModelTable> Model::tables() const {
  const double small = writer_->tinyNumbers ? 0.1234e-101 : 0;
  std::vector<ModelTable> all{
      {"SWFN", {"SW", "KRW", "PCOW"}, {{0.25, small, 4}, {0.5, 0.5, 2}, {1, 1, 0}}},
      {"PVTW", {"PREF", "BW", "CW", "MUW", "CV"}, {{200, 0.5, 0.0078125, 2, 0.00390625}}}};
  if (writer_->gas) {
    all.push_back({"SGFN", {"SG", "KRG", "PCOG"}, {{0, 0, 0}, {0.5, 0.25, 1}, {0.75, 1, 2}}});
    all.push_back({"PVDG", {"P", "BG", "MUG"}, {{1, 0.5, 0.25}, {100, 0.25, 0.5}, {300, 0.125, 1}}});
    all.push_back({"SOF3", {"SO", "KROW", "KROG"}, {{0, 0, 0}, {0.5, 0.25, 0.125}, {0.75, 1, 1}}});
  } else {
    all.push_back({"SOF2", {"SO", "KRO"}, {{0, 0}, {0.5, 0.25}, {0.75, 1}}});
  }
  if (writer_->constantCompressibility)
    all.push_back({"PVCDO", {"PREF", "BO", "CO", "MUO", "CVO"}, {{200, 1.25, 0.0625, 2, 0.5}}});
  else
    all.push_back({"PVDO", {"P", "BO", "MUO"}, {{100, 2, 0.5}, {200, 1, 1}, {300, 0.5, 2}}});
  all.push_back({"DENSITY", {"OIL", "WATER", "GAS"}, {{800, 1000, 1}}});
  all.push_back({"ROCK", {"PREF", "CR"}, {{200, 0.0625}}});
  return all;
}

std::vector<std::byte> Model::init(const Form& form) const {
  InitBuilder file(form);
  const auto active = activeCells();
  InitHead head{.Nx = size[0],
                .Ny = size[1],
                .Nz = size[2],
                .nActive = static_cast<std::int32_t>(active.size()),
                .iUnits = writer_->units,
                .nPhases = writer_->gas ? 7 : 3,
                .iProgram = writer_->program,
                .words = writer_->headerWords};
  if (writer_->activeInWord4) head.word4 = head.nActive;
  const InitHead localHead{.Nx = 2,
                           .Ny = 2,
                           .Nz = 1,
                           .nActive = 4,
                           .iUnits = writer_->units,
                           .nPhases = head.nPhases,
                           .iProgram = head.iProgram,
                           .words = head.words};

  std::vector<float> volumes(cells);
  for (const std::int32_t cell : active)
    volumes[static_cast<std::size_t>(cell)] = modelValue("PORV", 0, cell);
  std::vector<std::int32_t> dims(48, writer_->tableFill);
  std::vector<double> tab;
  for (const auto& table : tables()) {
    const auto [start, rows, count] = wordsOf(table.name);
    auto stored = asStored(table);
    if (writer_->junkRows && (table.name.starts_with("S"))) {
      for (const double times : {1, 2}) {
        auto row = stored.rows.back();
        row[0] = times * 1e20;
        stored.rows.push_back(row);
      }
    }
    dims[start - 1] = static_cast<std::int32_t>(tab.size()) + 1;
    if (rows > 0) dims[rows - 1] = static_cast<std::int32_t>(stored.rows.size());
    dims[count - 1] = 1;
    append(tab, stored);
  }
  dims[0] = static_cast<std::int32_t>(tab.size());
  if (writer_->sizedUnusedTable) dims[32] = 1, dims[33] = 20, dims[34] = 1;

  const auto staticArrays = [&](bool local) {
    file.singles("PORV", local ? values("PORV", 0, true) : volumes);
    for (const char* name : {"PORO", "PERMX"}) file.singles(name, values(name, 0, local));
  };
  const auto regions = [&](bool local) {
    const std::size_t count = local ? localCells : active.size();
    std::vector<std::int32_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), local ? 101 : 1);
    file.integers("FIPNUM", numbers);
  };
  const auto localGrids = [&](auto write) {
    if (!writer_->localGrid) return;
    file.local(localGrid);
    write();
    writer_->gridEnd == RestartBuilder::GridEnd::Message ? file.message("ENDLGR")
                                                         : file.integers("ENDLGR", {});
  };
  const auto endPass = [&] {
    if (!writer_->localGrid || !writer_->lgrsGone) return;
    writer_->integerLgrsGone ? file.integers("LGRSGONE", {}) : file.message("LGRSGONE");
  };
  const auto flags = [&] {
    if (writer_->logicalWords == 0) return;
    const auto words = static_cast<int>(writer_->logicalWords);
    writer_->dualPorosity ? file.flags({15}, words) : file.flags({}, words);
  };

  file.head(head);
  flags();
  if (writer_->doubleWords > 0) file.doubles("DOUBHEAD", std::vector<double>(writer_->doubleWords));
  staticArrays(false);
  if (writer_->passes) {
    localGrids([&] { file.head(localHead), flags(), staticArrays(true); });
    endPass();
  }
  file.integers("TABDIMS", dims).doubles("TAB", tab);
  regions(false);
  localGrids([&] {
    if (!writer_->passes) file.head(localHead), flags(), staticArrays(true);
    regions(true);
  });
  endPass();
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
  using Singles = WellTestBuilder::Singles;
  using Integers = WellTestBuilder::Integers;
  std::vector<WellTestBuilder::Array> cellsOf{
      {"CONIPOS", Integers{1, 1}}, {"CONJPOS", Integers{1, 1}}, {"CONKPOS", Integers{1, 2}}};
  auto pressures = cellsOf, rates = cellsOf;
  for (const char* name : {"DEPTH", "PRESSURE", "SWAT"})
    pressures.push_back({name, Singles{modelValue(name, 0, 1), modelValue(name, 0, 2)}});
  for (const char* name : {"CONORAT", "CONWRAT", "CONGRAT", "CONDEPTH"})
    rates.push_back({name, Singles{modelValue(name, 0, 1), modelValue(name, 0, 2)}});
  WellTestBuilder file;
  file.timeUnit = writer_->testTimeUnit;
  file.nameWidth = writer_->nameWidth;
  const auto [day, month, year] = dayMonthYear(sys_days{std::chrono::year{2015} / January / 11});
  const WellTestBuilder::Test test{.well = writer_->wells[0],
                                   .arrays = pressures,
                                   .time = static_cast<float>(testDays * (writer_->units == 3 ? 24 : 1)),
                                   .date = {day, month, year}};
  file.tests = {test, test};
  if (writer_->measured == Writer::Measured::TwoTests) {
    file.tests[1].arrays = rates;
  } else {
    file.tests.pop_back();
    file.tests[0].arrays.insert(file.tests[0].arrays.end(), rates.begin() + 3, rates.end());
  }
  return file;
}

std::vector<std::byte> withLinesOf(const Writer& writer, const Form& form, std::vector<std::byte> bytes) {
  if (!form.formatted() || (!writer.headersInFirstColumn && !writer.carriageReturns)) return bytes;
  const std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  std::string all;
  for (std::size_t at = 0; at < text.size();) {
    const auto end = text.find('\n', at);
    std::string line = text.substr(at, end - at);
    // " 'KEYWORD '           3 'INTE'": no line of strings has this length.
    const bool header = line.size() == 30 && line[1] == '\'';
    if (header && writer.headersInFirstColumn) line.erase(0, 1);
    all += line + (writer.carriageReturns ? "\r\n" : "\n");
    at = end + 1;
  }
  return bytesOf(all);
}

void ModelRun::store(const std::string& path, std::vector<std::byte> bytes) const {
  writeFile(path, withLinesOf(writer(), form, std::move(bytes)));
}

std::string ModelRun::named(const char* unformatted, const char* formattedName) const {
  return folder.file(std::string("RUN.") + (form.formatted() ? formattedName : unformatted));
}

ModelRun::ModelRun(const Writer& writer, const Form& runForm) : model(writer), form(runForm) {
  writeSummary();
  writeRestart();
  initPath = named("INIT", "FINIT");
  store(initPath, model.init(form));
  gridPath = writer.gridFile ? named("GRID", "FGRID") : named("EGRID", "FEGRID");
  store(gridPath, writer.gridFile ? model.grid().grid(form) : model.grid().egrid(form));
  testsPath = named("RFT", "FRFT");
  store(testsPath, model.wellTests().bytes(form));
  if (writer.index) writeIndex();
}

namespace {

/// Sets the times of a file back, as those of an earlier run.
void makeOlder(const std::string& path) {
  std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) - std::chrono::hours(1));
}

}  // namespace

void ModelRun::writeSummary() {
  const SummaryBuilder run = model.summary();
  specificationPath = named("SMSPEC", "FSMSPEC");
  store(specificationPath, run.spec(form));
  if (writer().bothForms) {
    const Form other = form.formatted() ? bigEndian : formatted;
    writeFile(folder.file(form.formatted() ? "RUN.SMSPEC" : "RUN.FSMSPEC"), run.spec(other));
  }
  if (writer().earlier != Writer::Earlier::None) model.earlierSummary().write(folder, "EARLIER", form);
  const char* letter = form.formatted() ? "A" : "S";
  std::int32_t number = model.firstStep();
  if (!writer().unified) {
    for (const auto& bytes : run.steps(form)) store(folder.stepFile("RUN", letter, ++number), bytes);
    return;
  }
  auto bytes = withLinesOf(writer(), form, run.data(form));
  if (writer().running) bytes.resize(bytes.size() - 20);
  writeFile(named("UNSMRY", "FUNSMRY"), bytes);
  if (!writer().leftovers) return;
  auto longer = run;
  for (auto& row : longer.rows) std::ranges::fill(std::span(row.values).subspan(1), -1.0F);
  for (const auto& old : longer.steps(form)) {
    store(folder.stepFile("RUN", letter, ++number), old);
    makeOlder(folder.stepFile("RUN", letter, number));
  }
}

void ModelRun::writeRestart() {
  const RestartBuilder run = model.restart();
  const char* letter = form.formatted() ? "F" : "X";
  const auto storeSteps = [&](const RestartBuilder& files) {
    for (const auto& step : files.steps)
      store(folder.stepFile("RUN", letter, step.number), files.bytes(form, step));
  };
  if (!writer().unified) {
    storeSteps(run);
    restartPath = folder.stepFile("RUN", letter, run.steps[0].number);
    return;
  }
  restartPath = named("UNRST", "FUNRST");
  store(restartPath, run.bytes(form));
  if (!writer().leftovers) return;
  auto longer = run;
  for (auto& step : longer.steps) {
    for (auto& grid : step.grids) {
      for (auto& array : grid.arrays) std::ranges::fill(array.values, -1.0F);
    }
  }
  storeSteps(longer);
  for (const auto& step : longer.steps) makeOlder(folder.stepFile("RUN", letter, step.number));
}

namespace {

/// The arrays of one grid as RSSPEC lists them.
struct IndexGroup {
  std::vector<std::string> names, types;
  std::vector<std::int32_t> numbers, low, high;
  std::vector<float> extremes;

  void add(const RecordHeader& header) {
    names.push_back(header.keyword);
    types.push_back(header.typeWord);
    numbers.push_back(static_cast<std::int32_t>(header.count));
    low.push_back(static_cast<std::int32_t>(header.headerAt & 0x7FFFFFFF));
    high.push_back(static_cast<std::int32_t>(header.headerAt >> 31));
    extremes.push_back(0);
  }
  void write(RecordWriter& out) {
    if (names.empty()) return;
    out.texts("NAME", names);
    out.texts("TYPE", types);
    out.integers("NUMBER", numbers);
    out.integers("POINTER", low);
    out.integers("POINTERB", high);
    out.singles("ARRAYMAX", extremes);
    out.singles("ARRAYMIN", extremes);
    *this = {};
  }
};

}  // namespace

void ModelRun::writeIndex() {
  std::string why;
  auto records = openRecords(restartPath, why);
  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), form);
  const RestartBuilder run = model.restart();
  out.integers("INTEHEAD", run.intehead(run.steps[0], run.steps[0].grids[0]));
  IndexGroup group;
  std::size_t next = 0;
  while (records->next()) {
    const RecordHeader header = records->header();
    if (header.keyword == "SEQNUM") {
      group.write(out);
      const auto& step = run.steps.at(next++);
      out.doubles("TIME", std::array{step.days});
      const bool counts = writer().itime == Writer::ItimeWords::TimeStep;
      std::vector<std::int32_t> words{step.number, step.date[0], step.date[1], step.date[2]};
      words.insert(words.end(), {counts ? 7 : -2345, 1, 0, 0, 1, 1, 0, 0, 0});
      out.integers("ITIME", words);
    } else if (header.keyword == "LGR") {
      group.write(out);
      out.texts("LGRNAME", std::array<std::string, 1>{Model::localGrid});
    } else if (header.count > 0) {
      group.add(header);
    }
  }
  group.write(out);
  indexPath = named("RSSPEC", "FRSSPEC");
  store(indexPath, bytes);
}

}  // namespace lumbarn::test
