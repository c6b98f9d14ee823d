#include <algorithm>
#include <set>

#include <fmt/format.h>

#include "ArrayValues.h"
#include "Commands.h"
#include "Output.h"
#include "PathArgument.h"
#include "RunIndex.h"
#include "arrays/ArrayUnits.h"
#include "arrays/DerivedSaturation.h"
#include "frame/NumberText.h"

namespace lumbarn::cli {
namespace {

struct RestartOptions {
  std::string path;
  std::optional<std::int32_t> step;
  std::optional<std::int32_t> nth;
  ArrayOptions arrays;
  OutputOptions output;
};

/// One array of a step, in words.
struct ArrayRow {
  std::string grid, array, type, unit;
  std::int64_t count;
  bool operator==(const ArrayRow&) const = default;
};

std::vector<ArrayRow> arraysOf(const IndexStep& step, const std::string& onlyGrid) {
  std::vector<ArrayRow> rows;
  std::set<std::string> derived;  // the grids whose derived array is listed, which may have several groups
  for (const IndexGroup& group : step.groups) {
    if (!onlyGrid.empty() && !sameGrid(group.grid, onlyGrid)) continue;
    const auto add = [&](const IndexEntry& entry) {
      rows.push_back({shownGrid(group.grid), std::string(entry.keyword.view()),
                      std::string(entry.isDerived() ? "derived" : entry.typeWord.view()),
                      std::string(arrayUnit(entry.keyword.view(), group.cells.units)), entry.count});
    };
    for (const IndexEntry* entry : cellArrays(group)) add(*entry);
    const auto saturation = derivedArray(step, group.grid);
    if (saturation && derived.insert(group.grid).second) add(*saturation);
  }
  return rows;
}

template <class Number>
void widen(Column& column, Number value) {
  column.width = std::max(column.width, NumberText(value).view().size());
}

/// For people: a table of the steps, then for each list of arrays once what it holds and which steps have it.
void writeReadable(const RestartIndex& index, std::span<const IndexStep* const> steps,
                   const std::string& grid, std::ostream& out) {
  const StepDates dates(index, true);
  std::vector<Column> columns{{"step", true}, {"date"}, {"days", true}};
  for (const IndexStep* step : steps) {
    widen(columns[0], step->number);
    columns[1].width = std::max(columns[1].width, dates(*step).size());
    widen(columns[2], step->days);
  }
  const auto table = TableWriter::make(Format::Table, columns, out);
  for (const IndexStep* step : steps) {
    table->number(step->number);
    table->text(dates(*step));
    table->number(step->days);
  }
  table->finish();

  std::vector<std::pair<std::vector<ArrayRow>, std::vector<std::int32_t>>> lists;
  for (const IndexStep* step : steps) {
    auto arrays = arraysOf(*step, grid);
    auto list = std::ranges::find(lists, arrays, [](const auto& one) { return one.first; });
    if (list == lists.end()) list = lists.insert(list, {std::move(arrays), {}});
    list->second.push_back(step->number);
  }
  for (const auto& [arrays, numbers] : lists) {
    out << fmt::format("\n{} of {}\n", arrays.empty() ? "no arrays" : "arrays",
                       lists.size() == 1 && numbers.size() > 1
                           ? "all steps"
                           : fmt::format("step{} {}", numbers.size() > 1 ? "s" : "", stepsText(numbers)));
    if (arrays.empty()) continue;
    const bool local = std::ranges::any_of(arrays, [](const ArrayRow& row) { return row.grid != "ROOT"; });
    std::vector<Column> titles{{"array", false, 8}, {"type"}, {"count", true}, {"unit"}};
    if (local) titles.insert(titles.begin(), {"grid", false, 8});
    for (const ArrayRow& row : arrays) widen(titles[local ? 3 : 2], row.count);
    const auto list = TableWriter::make(Format::Table, titles, out);
    for (const ArrayRow& row : arrays) {
      if (local) list->text(row.grid);
      list->text(row.array);
      list->text(row.type);
      list->number(row.count);
      list->text(row.unit);
    }
    list->finish();
  }
}

/// For programs: a row for each array of each step; one without an array for a step that has none.
void writeRows(const RestartIndex& index, std::span<const IndexStep* const> steps, const std::string& grid,
               Format format, std::ostream& out) {
  const StepDates dates(index, false);
  const auto table = TableWriter::make(
      format,
      {{"step", true}, {"date"}, {"days", true}, {"grid"}, {"array"}, {"type"}, {"count", true}, {"unit"}},
      out);
  for (const IndexStep* step : steps) {
    const auto writeStep = [&] {
      table->number(step->number);
      step->date ? table->text(dates(*step)) : table->empty();
      table->number(step->days);
    };
    const auto arrays = arraysOf(*step, grid);
    for (const ArrayRow& row : arrays) {
      writeStep();
      for (const auto* text : {&row.grid, &row.array, &row.type}) table->text(*text);
      table->number(row.count);
      table->text(row.unit);
    }
    if (!arrays.empty()) continue;
    writeStep();
    for (int i = 0; i < 5; ++i) table->empty();
  }
  table->finish();
}

/// The steps of the number requested: mostly one. Throws Failure, with the steps that there are.
std::vector<const IndexStep*> stepsOf(const RestartIndex& index, std::int32_t number) {
  auto found = index.findAll(number);
  if (!found.empty()) return found;
  std::vector<std::int32_t> numbers;
  for (const IndexStep& step : index.steps) numbers.push_back(step.number);
  throw Failure(Usage, noStepText(index.files.front(), number, numbers));
}

/// Of steps with the same number the one requested, by default the one that was written last.
const IndexStep& oneOf(const RestartIndex& index, std::span<const IndexStep* const> steps,
                       std::optional<std::int32_t> nth) {
  const std::int32_t number = steps.front()->number;
  if (const IndexStep* step = index.nth(number, nth)) return *step;
  throw Failure(
      Usage,
      fmt::format("--nth {}: there {} with number {}", *nth,
                  steps.size() == 1 ? "is one step" : fmt::format("are {} steps", steps.size()), number));
}

ExitStatus showRestart(const RestartOptions& options, Console& console) {
  const RunFamily run = findRun(options.path);
  const auto number = options.step ? options.step : namedStep(run);
  const bool values = !options.arrays.names.empty();
  if (values && !number) throw Failure(Usage, "--array needs --step N: the report step to show");
  if (!values && (options.arrays.all || options.arrays.ijk)) {
    throw Failure(Usage, fmt::format("{} goes with --array", options.arrays.all ? "--all" : "--ijk"));
  }
  if (!values && options.nth) throw Failure(Usage, "--nth goes with --array");
  Output output(options.output, console.out(), pathsOf(run));
  ArrayReader reader(restartIndex(run, console), console.session());
  const RestartIndex& index = reader.index();
  std::vector<const IndexStep*> steps;
  for (const IndexStep& step : index.steps) steps.push_back(&step);
  if (number) steps = stepsOf(index, *number);
  const std::string& grid = options.arrays.grid;
  if (!grid.empty() && !values) {
    requireGrid(steps, grid, number ? fmt::format("step {}", *number) : index.files.front());
  }
  const Format format = options.output.format;
  if (values) {
    ArrayValues(reader, oneOf(index, steps, options.nth), run, options.arrays, console)
        .write(format, output.stream());
  } else if (format == Format::Table) {
    writeReadable(index, steps, grid, output.stream());
  } else {
    writeRows(index, steps, grid, format, output.stream());
  }
  output.commit();
  return console.doneStatus();
}

}  // namespace

void addRestart(CommandLine& line) {
  Subcommand command(line, "restart", "List the steps and arrays of a restart, or show values of arrays");
  RestartOptions& options = command.performs(showRestart);
  command.path(options.path);
  command.value("--step", options.step, "N", "The report step to list or show");
  command.value("--nth", options.nth, "K",
                "Which of several steps with the number N to show, from 1; the last one when not given");
  command.repeated("--array", options.arrays.names, "NAMES", "Arrays to show, as PRESSURE,SWAT or S*");
  command.value("--grid", options.arrays.grid, "LGR",
                "The local grid to list or show; ROOT is the global one");
  command.flag("--ijk", options.arrays.ijk, "Show the numbers i, j, k of each cell in front");
  command.flag("--all", options.arrays.all,
               "Show all cells in natural order, inactive ones as -999, instead of the active cells");
  command.output(options.output);
  command.footer(
      "Names are separated by commas; options may be repeated. Example:\n"
      "  lumbarn restart --step 5 --array PRESSURE,SWAT --ijk --format csv -o step5.csv RUN");
}

}  // namespace lumbarn::cli
