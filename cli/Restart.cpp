#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "ArrayList.h"
#include "CellOptions.h"
#include "Commands.h"
#include "run/TimeChoice.h"

namespace lumbarn::cli {
namespace {

struct RestartOptions {
  RunOptions runs;
  CellOptions cells;
  OutputOptions output;
};

/// A step and what it has, of a list for people.
struct ListedStep {
  std::int32_t number = 0;
  std::string date;
  double days = 0;
  std::vector<ListedArray> arrays;
};

std::vector<ListedStep> stepsIn(Stream&& list) {
  std::vector<ListedStep> steps;
  std::optional<LocalMoment> last;
  while (const auto batch = list.next()) {
    for (std::size_t row = 0; row < batch->rows(); ++row) {
      const std::int32_t number = (*batch)[0].values<std::int32_t>()[row];
      const double days = (*batch)[2].values<double>()[row];
      std::optional<LocalMoment> date;
      if ((*batch)[1].valid(row))
        date = LocalMoment(std::chrono::microseconds((*batch)[1].values<std::int64_t>()[row]));
      const bool same =
          !steps.empty() && steps.back().number == number && steps.back().days == days && last == date;
      if (!same) steps.push_back({number, date ? isoText(*date) : "", days, {}});
      last = date;
      if (auto array = listedArray(*batch, row); !array.array.empty())
        steps.back().arrays.push_back(std::move(array));
    }
  }
  return steps;
}

/// Leaves the time of day out where all steps are at midnight.
void shortenDates(std::vector<ListedStep>& steps) {
  constexpr std::string_view midnight = "T00:00:00";
  if (!std::ranges::all_of(
          steps, [&](const ListedStep& step) { return step.date.empty() || step.date.ends_with(midnight); }))
    return;
  for (ListedStep& step : steps) step.date = step.date.substr(0, step.date.find('T'));
}

void writeSteps(const std::vector<ListedStep>& steps, Sink& sink) {
  std::size_t next = 0;
  auto stream = streamOfRows({{.name = "step", .type = Type::Int32},
                              {.name = "date", .type = Type::Utf8},
                              {.name = "days", .type = Type::Float64}},
                             std::make_shared<StreamContext>(), [&](BatchBuilder& rows) {
                               for (; next < steps.size() && !rows.full(); ++next) {
                                 rows.set(0, steps[next].number);
                                 rows.set(1, std::string_view(steps[next].date));
                                 rows.set(2, steps[next].days);
                                 rows.endRow();
                               }
                               return next < steps.size();
                             });
  write(std::move(stream), sink, {.format = Format::Table});
}

/// For people: a table of the steps, then for each list of arrays once what it holds and which steps have it.
void writeReadable(Stream&& list, Sink& sink) {
  auto steps = stepsIn(std::move(list));
  shortenDates(steps);
  writeSteps(steps, sink);
  std::vector<std::pair<const std::vector<ListedArray>*, std::vector<std::int32_t>>> lists;
  for (const ListedStep& step : steps) {
    auto known = std::ranges::find_if(lists, [&](const auto& one) { return *one.first == step.arrays; });
    if (known == lists.end()) known = lists.insert(known, {&step.arrays, {}});
    known->second.push_back(step.number);
  }
  for (const auto& [arrays, numbers] : lists) {
    const bool all = lists.size() == 1 && numbers.size() > 1;
    const auto which =
        all ? "all steps" : fmt::format("step{} {}", numbers.size() > 1 ? "s" : "", stepsText(numbers));
    writeText(sink, fmt::format("\n{} of {}\n", arrays->empty() ? "no arrays" : "arrays", which));
    if (!arrays->empty()) writeArrayList(*arrays, false, sink);
  }
}

ExitStatus listArrays(const Run& run, const RestartOptions& options, Console& console) {
  const CellOptions& cells = options.cells;
  for (const auto& [given, name] : {std::pair{cells.all, "--all"},
                                    {cells.ijk, "--ijk"},
                                    {!cells.cells.empty(), "--cell"},
                                    {cells.nth.has_value(), "--nth"},
                                    {options.output.grdecl, "--format grdecl"}}) {
    if (given) throw Failure(Usage, fmt::format("{} goes with --array", name));
  }
  auto list = run.arrays({.grid = cells.grid, .time = stepsOf(run, cells)}, asking(console));
  if (options.output.format != Format::Table)
    return writeAnswer(std::move(list), options.output, run.paths(), console);
  return writeAnswer([&](Sink& sink) { writeReadable(std::move(list), sink); }, options.output, run.paths(),
                     console);
}

ExitStatus showRestart(const RestartOptions& options, Console& console) {
  const Run run = Run::open(options.runs.paths.front());
  if (options.cells.arrays.empty()) return listArrays(run, options, console);
  CellSelection selection = options.cells.selection();
  selection.time = stepsOf(run, options.cells);
  // One step needs no columns that tell it.
  selection.valuesOnly =
      !options.cells.time.given() && !selection.time.steps.empty() && selection.cells.empty();
  return writeCells(run, selection, options.output, console);
}

}  // namespace

void addRestart(CommandLine& line) {
  Subcommand command(line, "restart", "List the steps and arrays of a restart, or show values of arrays");
  RestartOptions& options = command.performs(showRestart);
  command.runs(options.runs);
  addCellOptions(command, options.cells);
  addStepOptions(command, options.cells);
  command.output(options.output, true);
  command.footer(
      "Names are separated by commas; options may be repeated. Example:\n"
      "  lumbarn restart --step 5 --array PRESSURE,SWAT --ijk --format csv -o step5.csv RUN\n"
      "  lumbarn restart --array PRESSURE --cell 12,8,4 --from 2001-08-01 --format csv RUN");
}

}  // namespace lumbarn::cli
