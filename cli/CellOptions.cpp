#include "CellOptions.h"

#include <utility>

namespace lumbarn::cli {
namespace {

/// The names of the arrays among the columns of a table.
std::vector<std::string> arrayNames(const Schema& schema) {
  std::vector<std::string> names;
  for (const Field& field : schema) {
    for (const auto& [key, value] : field.metadata) {
      if (key == "mnemonic" && value == field.name) names.push_back(value);
    }
  }
  return names;
}

}  // namespace

CellSelection CellOptions::selection() const {
  CellSelection selection{.arrays = arrays, .inactive = all, .ijk = ijk, .nth = nth};
  if (!grid.empty()) selection.grid = grid;
  for (const std::string& cell : cells) selection.cells.push_back(parseCells(cell));
  if (all && !cells.empty()) throw Failure(Usage, "--all goes without --cell");
  return selection;
}

void addCellOptions(Subcommand& command, CellOptions& options) {
  command.repeated("--array", options.arrays, "NAMES", "Arrays to show, as PRESSURE,SWAT or S*");
  command.value("--grid", options.grid, "LGR", "The local grid to list or show; ROOT is the global one");
  command.repeated("--cell", options.cells, "I,J,K",
                   "Show this cell, or a box as 1:16,8,1:5, instead of the active cells");
  command.flag("--ijk", options.ijk, "Show the numbers i, j, k of each cell in front");
  command.flag("--all", options.all,
               "Show all cells in natural order, inactive ones without values, instead of the active cells");
}

void addStepOptions(Subcommand& command, CellOptions& options) {
  command.value("--step", options.step, "N", "The report step to list or show");
  command.value("--nth", options.nth, "K",
                "Which of several steps with one number to show, from 1; the last one when not given");
  command.time(options.time);
}

TimeSelection stepsOf(const Run& run, const CellOptions& options) {
  if (options.step && options.time.given())
    throw Failure(Usage, "--step goes without other choices of steps");
  if (options.time.given()) return options.time.selection();
  TimeSelection time;
  if (const auto step = options.step ? options.step : run.namedStep()) time.steps = {{*step, *step}};
  return time;
}

ExitStatus writeCells(const Run& run, const CellSelection& selection, const OutputOptions& options,
                      Console& console) {
  const auto files = run.paths();
  ReadOptions read = asking(console);
  read.limits.bytes = std::size_t{8} << 20;  // the text of a batch takes as much again, or twice that
  if (!options.grdecl) return writeAnswer(run.cells(selection, read), options, files, console);
  const auto& steps = selection.time.steps;
  const bool one = selection.init || (steps.size() == 1 && steps[0].first == steps[0].last);
  if (!one) throw Failure(Usage, "--format grdecl needs --step N: the one report step to write");
  if (!selection.cells.empty()) throw Failure(Usage, "--format grdecl writes complete grids, without --cell");
  CellSelection complete = selection;
  complete.inactive = true;
  const auto writeArrays = [&](Sink& sink) {
    const auto step = selection.init ? std::nullopt : std::optional(steps[0].first);
    for (const std::string& name : arrayNames(run.cells(complete, read).schema()))
      writeGrdecl(run.cellArray(name, step, {}, selection.grid, read), name, sink);
  };
  return writeAnswer(writeArrays, options, files, console);
}

}  // namespace lumbarn::cli
