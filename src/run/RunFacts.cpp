#include "RunFacts.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>

#include "../grid/Hadrick.h"
#include "../vocabulary/Units.h"
#include "ChosenTests.h"
#include "InitContent.h"
#include "Records.h"

namespace lumbarn {

namespace {

void addCells(FactList& facts, const GridCells& cells) {
  if (!cells.known()) return;
  facts.size("grid", cells.size);
  facts.number("active_cells", cells.active);
}

/// In the order of the file.
std::vector<std::string> localGridsOf(const RestartIndex& index) {
  std::vector<std::string> names;
  for (const IndexStep& step : index.steps) {
    for (const IndexGroup& group : step.groups) {
      if (!isGlobalGrid(group.grid) && std::ranges::count(names, group.grid) == 0)
        names.push_back(group.grid);
    }
  }
  return names;
}

void addDates(FactList& facts, std::optional<Moment> first, std::optional<Moment> last) {
  if (first) facts.date("first_date", *first);
  if (last) facts.date("last_date", *last);
}

void addUnits(FactList& facts, const RestartIndex& index) {
  if (index.header.size() >= 3) facts.text("units", unitSystemName(index.header[2]));
}

/// Damage to the records is reported by whoever reads what they hold.
std::int64_t countRecords(const std::string& path, const ReadOptions& options) {
  ReadOptions silent = options;
  silent.report = nullptr;
  silent.keepPartial = true;
  Stream all = records(path, silent);
  std::size_t count = 0;
  while (const auto batch = all.next()) count += batch->rows();
  return static_cast<std::int64_t>(count);
}

void addInitContent(FactList& facts, const RunState& run, StreamContext& context) {
  const auto init = openInit(run, context, true);
  const ModelFlags& flags = init->grid(1).flags;
  std::vector<std::string> phases;
  if (flags.Oil) phases.emplace_back("oil");
  if (flags.Water) phases.emplace_back("water");
  if (flags.Gas) phases.emplace_back("gas");
  facts.texts("phases", phases);
  std::int64_t connections = 0;
  for (std::int32_t grid = 1; grid <= init->nGrids(); ++grid) {
    for (const auto& record : init->grid(grid).xNNC) connections += record.nItems;
  }
  facts.number("nnc", connections);
  facts.texts("tables", init->tables.names());
}

}  // namespace

void addRestartFacts(FactList& facts, const RunState& run, StreamContext& context) {
  const auto index = run.restartIndex(context);
  const auto& steps = index->steps;
  facts.number("steps", static_cast<std::int64_t>(steps.size()));
  facts.number("first_step", steps.front().number);
  facts.number("last_step", steps.back().number);
  const auto dated = [](const IndexStep& step) { return step.date.has_value(); };
  const auto first = std::ranges::find_if(steps, dated);
  if (first != steps.end())
    addDates(facts, first->date, std::find_if(steps.rbegin(), steps.rend(), dated)->date);
  addCells(facts, steps.front().cellsOf({}));
  facts.texts("local_grids", localGridsOf(*index));
  addUnits(facts, *index);
  if (run.family().find(FileKind::Rsspec)) facts.text("index_agrees", index->fromFile ? "yes" : "no");
}

void addInitFacts(FactList& facts, const RunState& run, StreamContext& context) {
  const auto index = run.initIndex(context);
  const IndexStep& content = index->steps.front();
  facts.number("records", countRecords(index->files.front(), context.options()));
  if (content.date) facts.date("date", *content.date);
  addCells(facts, content.cellsOf({}));
  facts.texts("local_grids", localGridsOf(*index));
  addUnits(facts, *index);
  std::size_t arrays = 0;
  for (const IndexGroup& group : content.groups) arrays += cellArrays(group).size();
  facts.number("arrays", static_cast<std::int64_t>(arrays));
  if (run.family().find(FileKind::Inspec)) facts.text("index_agrees", index->fromFile ? "yes" : "no");
  addInitContent(facts, run, context);
}

void addGridFacts(FactList& facts, const RunState& run, StreamContext& context) {
  const auto grids = run.grids(context);
  const Hadrick& global = *grids->front();
  if (!global.zGridUnit.empty()) facts.text("length_unit", global.zGridUnit);
  facts.size("grid", {global.Nx(), global.Ny(), global.Nz()});
  facts.number("active_cells", global.nActive());
  std::vector<std::string> localGrids;
  for (const auto& grid : *grids) {
    if (grid->isLocal()) localGrids.push_back(grid->zName);
  }
  facts.texts("local_grids", localGrids);
}

void addTestFacts(FactList& facts, const RunState& run, StreamContext& context) {
  ChosenTests tests(run, {}, false, context);
  std::int64_t count = 0;
  std::int64_t rows = 0;
  std::set<std::string> wells;
  std::optional<Moment> first;
  std::optional<Moment> last;
  while (const auto next = tests.next()) {
    const TestSummary& test = next->test;
    ++count;
    rows += static_cast<std::int64_t>(test.rows);
    wells.insert(test.well);
    if (!test.date) continue;
    first = first ? std::min(first, test.date) : test.date;
    last = std::max(last, test.date);
  }
  facts.number("tests", count);
  facts.texts("wells", {wells.begin(), wells.end()});
  facts.number("rows", rows);
  addDates(facts, first, last);
}

}  // namespace lumbarn
