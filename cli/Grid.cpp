#include <optional>

#include "Answer.h"
#include "Commands.h"
#include "VtkExport.h"

namespace lumbarn::cli {
namespace {

struct GridOptions {
  RunOptions runs;
  std::string grid;
  bool corners = false;
  bool map = false;
  bool zUp = false;
  std::string vtk;
  std::vector<std::string> arrays;
  std::optional<std::int32_t> step;
  OutputOptions output;
};

void checkOptions(const GridOptions& options) {
  const bool vtk = !options.vtk.empty();
  if (options.corners && vtk) throw Failure(Usage, "--corners and --vtk cannot be given together");
  if (!vtk && (!options.arrays.empty() || options.step))
    throw Failure(Usage, "--array and --step go with --vtk");
  if (!vtk && !options.corners && options.zUp) throw Failure(Usage, "--z-up goes with --vtk or --corners");
  if (!options.corners && options.map) throw Failure(Usage, "--map goes with --corners");
  if (vtk && (options.runs.paths.size() > 1 || options.runs.each))
    throw Failure(Usage, "--vtk exports one run at a time");
  if (vtk && !options.output.file.empty())
    throw Failure(Usage, "--vtk names its file; -o has no effect with it");
}

ExitStatus exportGrids(const GridOptions& options, Console& console) {
  const Run run = Run::open(options.runs.paths.front());
  checkTarget(options.vtk, run.paths(), options.output.replace);
  exportVtk(run, {.grid = options.grid, .arrays = options.arrays, .step = options.step, .zUp = options.zUp},
            options.vtk, asking(console));
  console.progress().hide();
  console.checkCancelled();
  return console.doneStatus();
}

ExitStatus showGrid(const GridOptions& options, Console& console) {
  checkOptions(options);
  if (!options.vtk.empty()) return exportGrids(options, console);
  return answer(options.runs, options.output, console, [&](const Run& run, const ReadOptions& read) {
    if (!options.corners) return run.grids(options.grid, read);
    return run.corners({.grid = options.grid, .map = options.map, .zUp = options.zUp}, read);
  });
}

}  // namespace

void addGrid(CommandLine& line) {
  Subcommand command(line, "grid", "List the grids of a run, their corners, or export them");
  GridOptions& options = command.performs(showGrid);
  command.runs(options.runs);
  command.value("--grid", options.grid, "NAME",
                "One grid: with --vtk in place of all, otherwise in place of ROOT");
  command.flag("--corners", options.corners, "Show the eight corners of each active cell");
  command.value("--vtk", options.vtk, "FILE",
                "Write the active cells of all grids to a VTKHDF file, for ParaView");
  command.list("--array", options.arrays, "NAME",
               "Export an array of the INIT or the restart file too, as PORO or PRESSURE");
  command.value("--step", options.step, "N", "Export restart arrays as they are at one report step");
  command.flag("--map", options.map, "Show corners in the axes and units of the map");
  command.flag("--z-up", options.zUp, "Heights in place of depths");
  command.output(options.output);
  command.footer(
      "Arrays of the restart file are exported for all its steps, which viewers of VTK 9.3 and later read;\n"
      "with --step any since 9.1 can read the file. Example:\n  lumbarn grid RUN\n"
      "  lumbarn grid --vtk run.vtkhdf --array PORO --array PRESSURE --z-up RUN");
}

}  // namespace lumbarn::cli
