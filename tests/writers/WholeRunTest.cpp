// The runs of every writer in every form, checked value by value against the model that they were made from.

#include <algorithm>
#include <chrono>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/CommandRun.h"
#include "index/RestartIndexAgreement.h"
#include "support/Host.h"
#include "support/ModelRun.h"
#include "support/WriterCase.h"

namespace lumbarn {
namespace {

using namespace test;
using cli::testing::command;
using cli::testing::parseCsv;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAreArray;

class WholeRun : public ::testing::TestWithParam<WriterCase> {
 protected:
  const Writer& writer_ = GetParam().writer;
  const ModelRun run_{writer_, GetParam().form.form};
  const Model& model_ = run_.model;
  Host host_;
};
INSTANTIATE_TEST_SUITE_P(Writers, WholeRun, ::testing::ValuesIn(everyCase()), [](const auto& one) {
  return std::string(one.param.writer.name) + one.param.form.name;
});

std::vector<float> columnOf(const std::vector<std::vector<float>>& rows, std::size_t column) {
  std::vector<float> values;
  for (const auto& row : rows) values.push_back(row[column]);
  return values;
}

std::vector<std::string> namesOf(const std::vector<ModelVector>& vectors) {
  std::vector<std::string> names;
  for (const auto& vector : vectors) names.push_back(vector.name);
  return names;
}

std::chrono::sys_seconds rowDate(const Model& model, float time) {
  return model.dateAt(static_cast<double>(time) / (model.writer().units == 3 ? 24 : 1));
}

TEST_P(WholeRun, SummaryHasEveryVectorRowAndDate) {
  ASSERT_TRUE(host_.load(run_.specificationPath, 12));
  ASSERT_TRUE(host_.fetchSummary());
  EXPECT_THAT(host_.complaints(), SizeIs(writer_.running ? 1 : 0));
  const auto rows = model_.summaryRows();
  const auto vectors = model_.vectors();
  std::vector<std::string> names;
  for (const auto& vector : host_.reader.Vectors()) names.push_back(vector.name);
  ASSERT_THAT(names, ElementsAreArray(namesOf(vectors)));
  ASSERT_EQ(host_.table.rows(), rows.size());
  for (std::size_t n = 0; n < vectors.size(); ++n) {
    EXPECT_THAT(host_.column(n + 1), ElementsAreArray(columnOf(rows, n))) << vectors[n].name;
  }
  const auto dates = host_.reader.RowDates(host_.table);
  ASSERT_EQ(dates.size(), rows.size());
  for (std::size_t row = 0; row < rows.size(); ++row)
    EXPECT_EQ(isoText(dates[row]), isoText(rowDate(model_, rows[row][0])));
  EXPECT_EQ(std::get<std::int16_t>(host_.source(7)), writer_.units) << "unit system";

  if (writer_.earlier == Writer::Earlier::None) return;
  Host chain;
  chain.reader.NoRestart = false;
  chain.reader.zExcept = "COPR*";  // a table with connections has no rows of earlier runs
  ASSERT_TRUE(chain.load(run_.specificationPath, 12) && chain.fetchSummary());
  EXPECT_THAT(chain.complaints(), SizeIs(writer_.running ? 1 : 0));
  auto all = model_.earlierRows();
  all.insert(all.end(), rows.begin(), rows.end());
  for (std::size_t n = 0, column = 0; n < vectors.size(); ++n) {
    if (vectors[n].name.starts_with("COPR")) continue;
    EXPECT_THAT(chain.column(++column), ElementsAreArray(columnOf(all, n))) << vectors[n].name;
  }
}

TEST_P(WholeRun, RestartHasEveryStepGridAndArray) {
  std::vector<std::string> paths{run_.restartPath};
  if (!run_.indexPath.empty()) paths.push_back(run_.indexPath);
  for (const auto& path : paths) {
    Host host;
    ASSERT_TRUE(host.load(path, 11)) << path;
    EXPECT_THAT(host.complaints(), IsEmpty());
    const auto steps = host.reader.RestartSteps();
    const auto numbers = model_.restartSteps();
    ASSERT_EQ(steps.size(), numbers.size());
    for (std::size_t n = 0; n < steps.size(); ++n) {
      const double days = model_.daysAt(numbers[n]);
      EXPECT_EQ(steps[n].iSeqnum, numbers[n]);
      EXPECT_EQ(steps[n].dTime, writer_.doubleWords > 0 ? days : 0);
      const auto date = Model::dayMonthYear(model_.dateAt(days));
      EXPECT_EQ((std::array{steps[n].iDay, steps[n].iMonth, steps[n].iYear}), date);
      const bool empty = writer_.wellsOnlyStep && n == 1;
      for (const bool local : {false, true}) {
        if (local && !writer_.localGrid) continue;
        const auto step = static_cast<std::int32_t>(n) + 1;
        const auto* grid = host.reader.RestartGrid(step, local ? 2 : 1);
        ASSERT_TRUE(grid);
        EXPECT_EQ(grid->GridName, local ? Model::localGrid : "ROOT");
        for (const auto& array : model_.restartArrays()) {
          const auto expected = empty ? std::vector<float>() : model_.values(array, n, local);
          EXPECT_THAT(host.reader.RestartValues(step, local ? 2 : 1, array), ElementsAreArray(expected))
              << array << " of step " << numbers[n];
        }
      }
    }
  }
}

TEST_P(WholeRun, WellsHaveTheirConnectionsRatesAndControls) {
  constexpr std::array<std::string_view, 8> controls{
      "group", "", "oil rate", "water rate", "gas rate", "liquid rate", "reservoir rate", "THP"};
  host_.reader.FullWellInfo = true;
  ASSERT_TRUE(host_.load(run_.restartPath, 11));
  const auto steps = static_cast<std::int32_t>(model_.restartSteps().size());
  for (std::int32_t step = 1; step <= steps; ++step) {
    bool qOK = false;
    const auto wells = host_.reader.RestartWells(step, 1, qOK);
    ASSERT_TRUE(qOK);
    ASSERT_THAT(wells, SizeIs(2));
    for (std::size_t n = 0; n < 2; ++n) {
      const auto& well = wells[n];
      const auto cells = model_.connections(n);
      EXPECT_EQ(well.name, writer_.wells[n]);
      EXPECT_EQ(well.type(), n == 0 ? WellType::Producer : WellType::WaterInjector);
      EXPECT_EQ(well.iControl, writer_.controls[n]);
      const auto mode = static_cast<std::size_t>(well.iControl + 1);
      EXPECT_EQ(controlText(well.iControl), mode < controls.size() ? controls[mode] : "BHP");
      ASSERT_TRUE(well.rates);
      EXPECT_EQ(well.rates->oil, static_cast<double>(RestartBuilder::blockWord(n + 1, 1)));
      EXPECT_EQ(well.rates->reservoir, static_cast<double>(RestartBuilder::blockWord(n + 1, 5)));
      ASSERT_THAT(well.connections, SizeIs(writer_.icon ? cells.size() : 0));
      for (std::size_t slot = 0; slot < well.connections.size(); ++slot) {
        const auto& connection = well.connections[slot];
        EXPECT_EQ((std::array{connection.i, connection.j, connection.k}), cells[slot]);
        const auto block = n * static_cast<std::size_t>(writer_.connectionSlots) + slot + 1;
        ASSERT_TRUE(connection.numbers);
        EXPECT_EQ(connection.numbers->factor, RestartBuilder::blockWord(block, 1));
        EXPECT_EQ(connection.numbers->kh, RestartBuilder::blockWord(block, 4));
      }
    }
  }
}

TEST_P(WholeRun, InitHasArraysActiveCellsAndTables) {
  ASSERT_TRUE(host_.load(run_.initPath, 15));
  if (writer_.initIndex) {
    EXPECT_TRUE(indexOfInit(host_.session, run_.initPath, run_.initIndexPath).fromFile);
  }
  EXPECT_THAT(host_.complaints(), IsEmpty());
  bool qOK = false;
  for (const bool local : {false, true}) {
    if (local && !writer_.localGrid) continue;
    host_.reader.iGridNumber = local ? 2 : 1;
    for (const char* array : {"PORV", "PORO", "PERMX"}) {
      std::vector<float> values;
      host_.reader.GetINITArray(array, false, values, qOK);
      EXPECT_TRUE(qOK);
      EXPECT_THAT(values, ElementsAreArray(model_.values(array, 0, local))) << array;
    }
    std::vector<float> regions;
    host_.reader.GetINITArray("FIPNUM", false, regions, qOK);
    EXPECT_TRUE(qOK && regions.size() > 3 && regions[3] == (local ? 104 : 4));
  }
  host_.reader.iGridNumber = 1;
  std::vector<std::int32_t> natural, active;
  host_.reader.GetINITA2N(natural, qOK);
  for (const auto cell : model_.activeCells()) active.push_back(cell + 1);
  EXPECT_TRUE(qOK);
  EXPECT_THAT(natural, ElementsAreArray(active));
  std::vector<float> everywhere;
  host_.reader.GetINITArray("PORO", true, everywhere, qOK);
  EXPECT_TRUE(qOK);
  ASSERT_THAT(everywhere, SizeIs(Model::cells));
  for (const auto cell : model_.activeCells())
    EXPECT_EQ(everywhere[static_cast<std::size_t>(cell)], modelValue("PORO", 0, cell));

  std::vector<std::string> found, expected;
  std::int32_t nTables = 0;
  host_.reader.GetTableTypes(found, nTables, qOK);
  for (const auto& table : model_.tables()) {
    expected.push_back(table.name);
    const auto physical = host_.reader.GetINITPhysicalTable(table.name, 1, qOK);
    ASSERT_TRUE(qOK) << table.name;
    ASSERT_EQ(physical.rows(), table.rows.size()) << table.name;
    ASSERT_EQ(physical.columns.size(), table.columns.size()) << table.name;
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
      EXPECT_EQ(physical.columns[column].name, table.columns[column]);
      const bool pressure = table.columns[column] == "P" || table.columns[column] == "PREF";
      constexpr const char* units[] = {"BARSA", "PSIA", "ATMA"};
      const auto system = static_cast<std::size_t>(writer_.metricTables ? 0 : writer_.units - 1);
      EXPECT_TRUE(!pressure || physical.columns[column].units == units[system]) << table.name;
      for (std::size_t row = 0; row < table.rows.size(); ++row)
        EXPECT_EQ(physical.columns[column].values[row], table.rows[row][column]) << table.name;
    }
  }
  EXPECT_THAT(found, UnorderedElementsAreArray(expected));
}

TEST_P(WholeRun, GridHasCellsCornersAndHosts) {
  ASSERT_TRUE(host_.load(run_.gridPath, writer_.gridFile ? 14 : 23));
  EXPECT_THAT(host_.complaints(), IsEmpty());
  const auto builder = model_.grid();
  ASSERT_EQ(host_.reader.NumberGrids(), static_cast<std::int32_t>(builder.grids.size()));
  for (std::size_t n = 0; n < builder.grids.size(); ++n) {
    std::shared_ptr<Hadrick> grid;
    bool qOK = false;
    host_.reader.GetGRIDData(static_cast<std::int32_t>(n) + 1, grid, qOK);
    ASSERT_TRUE(qOK);
    const auto& model = builder.grids[n];
    EXPECT_EQ((std::array{grid->Nx(), grid->Ny(), grid->Nz()}), model.size);
    EXPECT_EQ(grid->nActive(), n == 0 ? model_.activeInGrid() : Model::localCells);
    EXPECT_THAT(grid->hostCells(), ElementsAreArray(model.hosts));
    for (std::int32_t active = 1; active <= grid->nActive(); ++active) {
      std::array<float, 24> row{};
      const std::int32_t cell = grid->cellOf(active);
      ASSERT_TRUE(grid->corners(cell, row));
      const auto [i, j, k] = grid->placeOf(cell);
      const std::int32_t layer = (k - 1) % (writer_.dualPorosity ? 2 : 4);
      for (int corner = 0; corner < 8; ++corner) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
          const double expected = builder.corner(model, i - 1, j - 1, layer, corner)[axis];
          EXPECT_EQ(row[3 * static_cast<std::size_t>(corner) + axis], static_cast<float>(expected));
        }
      }
    }
    if (n > 0 || writer_.poreVolumesDecide) continue;
    for (const auto cell : model_.activeCells()) EXPECT_GT(grid->activeOf(cell + 1), 0) << cell;
  }
}

TEST_P(WholeRun, WellTestsHaveTheirColumnsAndTimeOfDay) {
  ASSERT_TRUE(host_.load(run_.testsPath, 18));
  EXPECT_THAT(host_.complaints(), IsEmpty());
  const std::int32_t rates = writer_.measured == Writer::Measured::TwoTests ? 2 : 1;
  const auto expected = [](std::string_view name) {
    return std::vector{modelValue(name, 0, 1), modelValue(name, 0, 2)};
  };
  ASSERT_TRUE(host_.fetchTest(1));
  EXPECT_EQ(host_.well, writer_.wells[0]);
  EXPECT_EQ(host_.date, "11 JAN 2015 06:00");
  for (const char* name : {"DEPTH", "PRESSURE", "SWAT"})
    EXPECT_EQ(host_.column(name), expected(name)) << name;
  const auto layer = static_cast<float>(model_.connections(0)[0][2]);
  EXPECT_EQ(host_.column("CONKPOS"), (std::vector{layer, layer + 1}));
  ASSERT_TRUE(host_.fetchTest(rates, true));
  EXPECT_EQ(host_.well, writer_.wells[0]);
  for (const char* name : {"CONORAT", "CONWRAT", "CONGRAT"})
    EXPECT_EQ(host_.column(name), expected(name)) << name;
}

/// Bytes of a name as the command writes them.
std::string shown(std::string_view name) {
  std::string text;
  for (const char c : name)
    text += static_cast<unsigned char>(c) == 0xD8 ? std::string("\xC3\x98") : std::string(1, c);
  return text;
}

/// Runs a subcommand on the run, expects its exit status, and gives the rows, the header first.
std::vector<std::vector<std::string>> csv(std::vector<std::string> args, const std::string& path,
                                          int status = 0) {
  args.insert(args.end(), {"--format", "csv", path});
  const auto outcome = command(args);
  EXPECT_EQ(outcome.status, status) << args[0] << ": " << outcome.err;
  return parseCsv(outcome.out);
}

std::vector<float> numbers(const std::vector<std::vector<std::string>>& rows, std::size_t column = 0) {
  std::vector<float> values;
  for (std::size_t row = 1; row < rows.size(); ++row)
    values.push_back(column < rows[row].size() ? std::stof(rows[row][column]) : -1e30F);
  return values;
}

TEST_P(WholeRun, CommandShowsTheSameValues) {
  const int ending = writer_.running ? 3 : 0;
  const auto vectors = model_.vectors();
  const auto rows = model_.summaryRows();
  auto names = namesOf(vectors);
  const auto table = csv({"summary", "--keep-duplicates"}, run_.root(), ending);
  ASSERT_THAT(table, SizeIs(rows.size() + 1));
  for (auto& name : names) name = shown(name);
  if (writer_.repeatedVector) *std::ranges::find(names.rbegin(), names.rend(), "FOPR") = "FOPR#2";
  EXPECT_THAT(table[0], ElementsAreArray(names));
  for (std::size_t n = 0; n < vectors.size(); ++n)
    EXPECT_THAT(numbers(table, n), ElementsAreArray(columnOf(rows, n)));
  const auto step = model_.firstStep() + 1;
  const auto one =
      csv({"summary", "--steps", std::to_string(step), "--vectors", "FOPR"}, run_.root(), ending);
  EXPECT_THAT(numbers(one), ElementsAreArray({rows[0][0], rows[1][0]}));
  // A remark each where step files are left over and where cells are omitted; neither is a fault.
  const int findings = int{writer_.running} + int{writer_.leftovers} + int{writer_.omitsInactive};
  EXPECT_THAT(csv({"check", "--values"}, run_.root(), ending), SizeIs(1 + findings));

  const auto steps = model_.restartSteps();
  for (const bool local : {false, true}) {
    if (local && !writer_.localGrid) continue;
    const std::string grid = local ? Model::localGrid : "ROOT";
    EXPECT_THAT(numbers(csv({"restart", "--step", std::to_string(steps.back()), "--array", "PRESSURE",
                             "--grid", grid},
                            run_.root())),
                ElementsAreArray(model_.values("PRESSURE", steps.size() - 1, local)));
    EXPECT_THAT(numbers(csv({"init", "--array", "PORO", "--grid", grid}, run_.root())),
                ElementsAreArray(model_.values("PORO", 0, local)));
  }
  std::set<std::string> wells;
  for (const auto& row : csv({"wells"}, run_.root())) wells.insert(row[4]);
  EXPECT_THAT(wells, UnorderedElementsAreArray(
                         {std::string("well"), shown(writer_.wells[0]), shown(writer_.wells[1])}));
  const auto listed = csv({"tables"}, run_.root());
  EXPECT_THAT(listed, SizeIs(model_.tables().size() + 1));
  EXPECT_THAT(numbers(csv({"tables", "--table", "SWFN"}, run_.root())),
              ElementsAreArray({0.25F, 0.5F, 1.0F}));
  const auto grids = csv({"grid"}, run_.root());
  ASSERT_THAT(grids, SizeIs(writer_.localGrid ? 3 : 2));
  EXPECT_EQ(grids[1][6], std::to_string(model_.activeInGrid()));
  EXPECT_THAT(numbers(csv({"rft", "--test", "1"}, run_.root())),
              ElementsAreArray({modelValue("DEPTH", 0, 1), modelValue("DEPTH", 0, 2)}));
}

}  // namespace
}  // namespace lumbarn
