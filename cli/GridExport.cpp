#include "GridExport.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include <fmt/format.h>

#include "Output.h"
#include "PathArgument.h"
#include "RunArrays.h"
#include "RunIndex.h"
#include "grid/qvGRIDReader.h"
#include "support/Closest.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

using Grids = std::vector<std::shared_ptr<Hadrick>>;

/// The grids of a run; of a damaged file those that are whole.
Grids readGrids(const RunFamily& run, Console& console) {
  const RunMember* file = run.find(FileKind::EGrid);
  if (!file || (run.givenMember() && run.givenMember()->kind == FileKind::Grid)) {
    const RunMember* older = run.find(FileKind::Grid);
    if (older) file = older;
  }
  if (!file)
    throw Failure(Usage, fmt::format("{}{}: has no grid file (EGRID or GRID)", run.folder, run.base));
  qvGRIDReader reader(console.session());
  const bool egrid = file->kind == FileKind::EGrid;
  if (!(egrid ? reader.CheckEGRIDFile(file->path) : reader.CheckGRIDFile(file->path)))
    console.giveUp(file->path, fmt::format("does not begin with {}", egrid ? "FILEHEAD" : "DIMENS"));
  bool qOK = false;
  egrid ? reader.ReadEclipseEGridFile(qOK) : reader.ReadEclipseGridFile(qOK);
  console.progress().hide();
  console.checkCancelled();
  if (reader.xGrids.empty()) console.giveUp(file->path, "no grid can be read from it");
  return reader.xGrids;
}

/// The number, from 1, of the grid of a name. Throws Failure.
std::int32_t choose(const Grids& grids, const std::string& name) {
  std::vector<std::string> names;
  for (const auto& grid : grids) {
    names.push_back(grid->zName);
    if (equalNoCase(grid->zName, name)) return static_cast<std::int32_t>(names.size());
  }
  const std::string better = closest(name, names);
  throw Failure(Usage, fmt::format("no grid \"{}\"; {}", name,
                                   better.empty() ? "it has " + listText(names)
                                                  : fmt::format("did you mean \"{}\"?", better)));
}

}  // namespace

ExitStatus exportGrids(const GridExport& options, Console& console) {
  const RunFamily run = findRun(options.path);
  const Grids grids = readGrids(run, console);
  const std::int32_t iGrid = options.grid.empty() ? 0 : choose(grids, options.grid);
  const auto inputs = pathsOf(run);
  checkTarget(options.vtk, inputs, options.replace);
  std::vector<CellArray> arrays;
  VtkOptions how{.zUp = options.zUp, .iGrid = iGrid};
  std::optional<RunArrays> source;
  if (!options.arrays.empty()) {
    const Grids chosen = iGrid == 0 ? grids : Grids{grids[static_cast<std::size_t>(iGrid) - 1]};
    source.emplace(run, chosen, options.step, console);
    for (const std::string& name : options.arrays) arrays.push_back(source->array(upper(name)));
    if (std::ranges::any_of(arrays, &CellArray::changes)) how.times = source->times();
  }
  bool qOK = false;
  exportVtk(grids, arrays, how, options.vtk, console.session(), qOK);
  console.progress().hide();
  console.checkCancelled();
  if (!qOK) console.giveUp(options.vtk, "was not written");
  return console.doneStatus();
}

}  // namespace lumbarn::cli
