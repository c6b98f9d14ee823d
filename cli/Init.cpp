#include <fmt/format.h>

#include "Answer.h"
#include "ArrayList.h"
#include "CellOptions.h"
#include "Commands.h"

namespace lumbarn::cli {
namespace {

struct InitOptions {
  RunOptions runs;
  CellOptions cells;
  bool flags = false;
  bool nnc = false;
  OutputOptions output;
};

/// For people without the grid where there is only one.
void writeReadable(Stream&& list, Console& console, Sink& sink) {
  std::vector<ListedArray> arrays;
  while (const auto batch = list.next()) {
    for (std::size_t row = 0; row < batch->rows(); ++row) arrays.push_back(listedArray(*batch, row));
  }
  if (arrays.empty()) console.say("the file has no arrays");
  writeArrayList(arrays, true, sink);
}

ExitStatus showCellArrays(const InitOptions& options, Console& console) {
  const Run run = Run::open(options.runs.paths.front());
  if (!options.cells.arrays.empty()) {
    CellSelection selection = options.cells.selection();
    selection.init = true;
    selection.valuesOnly = selection.cells.empty();
    return writeCells(run, selection, options.output, console);
  }
  auto list = run.arrays({.init = true, .grid = options.cells.grid}, asking(console));
  if (options.output.format != Format::Table)
    return writeAnswer(std::move(list), options.output, run.paths(), console);
  return writeAnswer([&](Sink& sink) { writeReadable(std::move(list), console, sink); }, options.output,
                     run.paths(), console);
}

ExitStatus showInit(const InitOptions& options, Console& console) {
  const bool values = !options.cells.arrays.empty();
  const char* ofCells = options.cells.all              ? "--all"
                        : options.cells.ijk            ? "--ijk"
                        : !options.cells.cells.empty() ? "--cell"
                        : options.output.grdecl        ? "--format grdecl"
                                                       : nullptr;
  if (!values && ofCells) throw Failure(Usage, fmt::format("{} goes with --array", ofCells));
  if (options.nnc && ofCells)
    throw Failure(Usage, fmt::format("{} goes with arrays of cells, not with --nnc", ofCells));
  if (options.flags && (options.nnc || values))
    throw Failure(Usage, fmt::format("--flags goes without {}", options.nnc ? "--nnc" : "--array"));
  if (!options.flags && !options.nnc) return showCellArrays(options, console);
  return answer(options.runs, options.output, console, [&](const Run& run, const ReadOptions& read) {
    if (options.flags) return run.flags(options.cells.grid, read);
    return values ? run.nnc({.arrays = options.cells.arrays, .grid = options.cells.grid}, read)
                  : run.nncArrays(options.cells.grid, read);
  });
}

}  // namespace

void addInit(CommandLine& line) {
  Subcommand command(line, "init",
                     "List the static arrays of a run, or show values, model flags or connections");
  InitOptions& options = command.performs(showInit);
  command.runs(options.runs);
  addCellOptions(command, options.cells);
  command.flag("--flags", options.flags, "Show what the run models");
  command.flag("--nnc", options.nnc, "List the connection arrays by kind, or with --array show their values");
  command.output(options.output, true);
  command.footer(
      "Names are separated by commas; options may be repeated. Example:\n"
      "  lumbarn init --array PORO,PERMX --ijk --format csv -o rock.csv RUN\n"
      "  lumbarn init --array PORO --format grdecl -o poro.grdecl RUN");
}

}  // namespace lumbarn::cli
