#include <array>
#include <optional>
#include <string>
#include <vector>

#include "Answer.h"
#include "Commands.h"

namespace lumbarn::cli {
namespace {

struct WellsOptions {
  RunOptions runs;
  TimeOptions time;
  std::optional<std::int32_t> step;
  std::vector<std::string> wells;
  std::string grid;
  bool withoutConnections = false;
  OutputOptions output;

  /// Without any time the step whose file was named, or the last one: all of them are rarely what a person
  /// wants to see.
  TimeSelection timeIn(const Run& run) const {
    TimeSelection selection = time.selection();
    if (time.given()) return selection;
    const auto wanted = step ? step : run.namedStep();
    if (wanted) selection.steps = {{*wanted, *wanted}};
    selection.last = !wanted;
    return selection;
  }
};

ExitStatus showWells(const WellsOptions& options, Console& console) {
  if (options.step && options.time.given())
    throw Failure(Usage, "--step goes without --steps, --date, --from, --to and --every");
  const auto ask = [&](bool connections, auto question) {
    return [&options, connections, question](const Run& run, const ReadOptions& read) {
      return (run.*question)({.wells = options.wells,
                              .grid = options.grid,
                              .time = options.timeIn(run),
                              .connections = connections},
                             read);
    };
  };
  const bool connections = !options.withoutConnections;
  const bool forPeople = options.output.format == Format::Table;
  if (!forPeople || !connections)
    return answer(options.runs, options.output, console, ask(connections, &Run::wells));
  const std::array<Question, 2> both = {ask(false, &Run::wells), ask(false, &Run::connections)};
  return answers(options.runs, options.output, console, both);
}

}  // namespace

void addWells(CommandLine& line) {
  Subcommand command(line, "wells", "Show the wells of report steps with their connections");
  WellsOptions& options = command.performs(showWells);
  command.runs(options.runs);
  command.value("--step", options.step, "N",
                "Report step to show; without any, that of the file, or the last one");
  command.time(options.time);
  command.list("--well", options.wells, "PATTERNS", "Wells to show: names with * and ?");
  command.value("--grid", options.grid, "LGR", "Local grid whose wells to show, or a pattern of several");
  command.flag("--no-connections", options.withoutConnections, "Show the wells alone");
  command.output(options.output);
  command.footer(
      "Other forms than tables have one row for each connection, with its well in front. A word or number\n"
      "that is not known to mean anything is left out. Example:\n  lumbarn wells --step 5 RUN");
}

}  // namespace lumbarn::cli
