#include "CellOptions.h"
#include "Commands.h"

namespace lumbarn::cli {
namespace {

struct CellsOptions {
  RunOptions runs;
  CellOptions cells;
  bool init = false;
  OutputOptions output;
};

ExitStatus showCells(const CellsOptions& options, Console& console) {
  const Run run = Run::open(options.runs.paths.front());
  if (options.cells.arrays.empty()) throw Failure(Usage, "which arrays to show is given by --array NAMES");
  CellSelection selection = options.cells.selection();
  selection.init = options.init;
  selection.ijk = true;
  selection.time = stepsOf(run, options.cells);
  return writeCells(run, selection, options.output, console);
}

struct StatsOptions {
  RunOptions runs;
  std::vector<std::string> arrays;
  std::vector<std::string> by;
  std::string weight;
  std::vector<std::string> percentiles;
  std::vector<std::string> regions;
  std::string grid;
  bool init = false;
  TimeOptions time;
  OutputOptions output;
};

ExitStatus showStats(const StatsOptions& options, Console& console) {
  if (options.arrays.empty()) throw Failure(Usage, "which arrays to summarize is given by --array NAMES");
  StatisticsSelection selection{.by = options.by, .weight = options.weight};
  selection.cells.arrays = options.arrays;
  selection.cells.init = options.init;
  selection.cells.regions = regionsFrom(options.regions);
  for (const std::string& text : options.percentiles)
    selection.percentiles.push_back(positiveNumber("--percentiles", text));
  if (!options.grid.empty()) selection.cells.grid = options.grid;
  return answer(options.runs, options.output, console, [&](const Run& run, const ReadOptions& read) {
    CellOptions steps;
    steps.time = options.time;
    selection.cells.time = stepsOf(run, steps);
    return run.statistics(selection, read);
  });
}

}  // namespace

void addCells(CommandLine& line) {
  Subcommand command(line, "cells", "Show values of arrays by cell, over time");
  CellsOptions& options = command.performs(showCells);
  command.runs(options.runs);
  addCellOptions(command, options.cells);
  addStepOptions(command, options.cells);
  command.flag("--init", options.init, "Show arrays of the INIT file, once and without steps");
  command.output(options.output, true);
  command.footer(
      "Arrays that the restart does not have are looked for in the INIT file. Example:\n"
      "  lumbarn cells --array PRESSURE,PORO --cell 12,8,4 --cell 3,1,1:5 --format csv RUN");
}

void addStats(CommandLine& line) {
  Subcommand command(line, "stats", "Summarize arrays by region: count, smallest, largest, means and sums");
  StatsOptions& options = command.performs(showStats);
  command.runs(options.runs);
  command.repeated("--array", options.arrays, "NAMES", "Arrays to summarize, as PRESSURE,SWAT or S*");
  command.list("--by", options.by, "NAMES", "Arrays of region numbers, as FIPNUM or FIPNUM,SATNUM");
  command.value("--weight", options.weight, "NAME", "The array by which means are weighted, as PORV");
  command.list("--percentiles", options.percentiles, "P,Q",
               "Percentiles, as 10,50,90, in columns p10, p50, p90; without weights");
  addRegionOption(command, options.regions);
  command.value("--grid", options.grid, "LGR", "The local grid to summarize; ROOT is the global one");
  command.flag("--init", options.init, "Summarize arrays of the INIT file, without steps");
  command.time(options.time);
  command.output(options.output);
  command.footer(
      "Region and weight arrays may be those of the INIT file. Percentile p of n values is at p / 100 * (n - "
      "1)\n"
      "in their ascending order, counted from 0, linear between the two values at its sides. Example:\n"
      "  lumbarn stats --array PRESSURE --by FIPNUM --weight PORV --steps last --format csv RUN");
}

}  // namespace lumbarn::cli
