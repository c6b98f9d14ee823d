#include <algorithm>
#include <array>
#include <memory>
#include <optional>

#include <fmt/format.h>

#include "Commands.h"
#include "Output.h"
#include "PathArgument.h"
#include "RunArrays.h"
#include "RunIndex.h"
#include "grid/CellGeometryOfGrid.h"
#include "grid/RadialGrid.h"
#include "grid/Refinement.h"
#include "grid/qvGRIDReader.h"
#include "support/Closest.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

struct GridOptions {
  std::string path;
  std::string grid;
  bool corners = false;
  std::string vtk;
  std::vector<std::string> arrays;
  std::optional<std::int32_t> step;
  bool zUp = false;
  OutputOptions output;
};

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

std::string axesText(const Hadrick& grid) {
  if (!grid.dMapAxes) return "";
  std::string text;
  for (const auto axis : *grid.dMapAxes) text += fmt::format("{}{}", text.empty() ? "" : " ", axis);
  return text;
}

void listGrids(const Grids& grids, const GridOptions& options, std::ostream& out) {
  std::vector<Column> columns{
      {"name"},           {"parent"},         {"type"},           {"nx", true},          {"ny", true},
      {"nz", true},       {"active", true},   {"refined", true},  {"connections", true}, {"units"},
      {"x_min", true, 9}, {"x_max", true, 9}, {"y_min", true, 9}, {"y_max", true, 9},    {"z_min", true, 9},
      {"z_max", true, 9}, {"map_axes"}};
  for (const auto& grid : grids) {
    columns[0].width = std::max(columns[0].width, displayWidth(grid->zName));
    columns[1].width = std::max(columns[1].width, displayWidth(grid->zParent));
    columns[2].width = std::string_view("corner points").size();
    columns[9].width = std::max(columns[9].width, displayWidth(grid->zGridUnit));
    columns[16].width = std::max(columns[16].width, axesText(*grid).size());
  }
  const auto table = TableWriter::make(options.output.format, columns, out);
  std::int32_t iGrid = 0;
  for (const auto& grid : grids) {
    ++iGrid;
    if (!options.grid.empty() && !equalNoCase(options.grid, grid->zName)) continue;
    table->text(grid->zName);
    table->text(grid->zParent);
    table->text(grid->iGridType == 3 ? "radial" : "corner points");
    for (const std::int32_t number : {grid->Nx(), grid->Ny(), grid->Nz(), grid->nActive()})
      table->number(number);
    table->number(countRefined(*grid, refinedCells(grids, iGrid)));
    table->number(grid->connections().size());
    table->text(grid->zGridUnit);
    const Box box = extentOf(grids, *grid);
    for (const double end : {box.low.x, box.high.x, box.low.y, box.high.y, box.low.z, box.high.z})
      box.empty() ? table->empty() : table->number(static_cast<float>(end));  // as corners are given
    table->text(axesText(*grid));
  }
  table->finish();
}

void listCorners(const Hadrick& grid, Format format, Console& console, std::ostream& out) {
  std::vector<Column> columns{{"i", true, 4}, {"j", true, 4}, {"k", true, 4}};
  constexpr std::array boxes{"x", "y", "z"};
  constexpr std::array cylinders{"r", "theta", "z"};
  for (int corner = 1; corner <= 8; ++corner) {
    for (const char* axis : isRadial(grid) ? cylinders : boxes)
      columns.push_back({fmt::format("{}{}", axis, corner), true, 9});
  }
  const auto table = TableWriter::make(format, columns, out);
  forEachCell(grid, CellChoice::Active, [&](std::int32_t iCell, CellCorners corners) {
    if (iCell % 256 == 0) {
      console.checkCancelled();
      console.progress().fraction(static_cast<double>(iCell) / static_cast<double>(grid.nCells()));
    }
    for (const std::int32_t place : grid.placeOf(iCell)) table->number(place);
    for (const float coordinate : corners) table->number(coordinate);
  });
  table->finish();
  console.progress().hide();
}

/// Exports all grids, or the one with number iGrid.
void exportGrids(const Grids& grids, std::int32_t iGrid, const RunFamily& run, const GridOptions& options,
                 Console& console) {
#ifdef LUMBARN_WITH_HDF5
  const auto inputs = pathsOf(run);
  checkTarget(options.vtk, inputs, options.output.replace);
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
#else
  (void)grids, (void)iGrid, (void)run, (void)console;
  throw Failure(Usage, options.vtk + ": not written: this command was built without HDF5");
#endif
}

ExitStatus showGrid(const GridOptions& options, Console& console) {
  if (options.corners && !options.vtk.empty())
    throw Failure(Usage, "--corners and --vtk cannot be given together");
  if (options.vtk.empty() && (!options.arrays.empty() || options.step || options.zUp))
    throw Failure(Usage, "--array, --step and --z-up go with --vtk");
  const RunFamily run = findRun(options.path);
  const Grids grids = readGrids(run, console);
  const std::int32_t iGrid = options.grid.empty() ? 0 : choose(grids, options.grid);
  if (!options.vtk.empty()) {
    exportGrids(grids, iGrid, run, options, console);
    return console.doneStatus();
  }
  Output output(options.output, console.out(), pathsOf(run));
  if (options.corners) {
    listCorners(*grids[static_cast<std::size_t>(std::max(iGrid, 1)) - 1], options.output.format, console,
                output.stream());
  } else {
    listGrids(grids, options, output.stream());
  }
  output.commit();
  return console.doneStatus();
}

}  // namespace

void addGrid(CommandLine& line) {
  Subcommand command(line, "grid", "List the grids of a run, their corners, or export them");
  GridOptions& options = command.performs(showGrid);
  command.path(options.path);
  command.value("--grid", options.grid, "NAME",
                "One grid: with --vtk in place of all, otherwise in place of ROOT");
  command.flag("--corners", options.corners, "Show the eight corners of each active cell");
  command.value("--vtk", options.vtk, "FILE",
                "Write the active cells of all grids to a VTKHDF file, for ParaView");
  command.list("--array", options.arrays, "NAME",
               "Export an array of the INIT or the restart file too, as PORO or PRESSURE");
  command.value("--step", options.step, "N", "Export restart arrays as they are at one report step");
  command.flag("--z-up", options.zUp, "Export heights in place of depths");
  command.output(options.output);
  command.footer(
      "Arrays of the restart file are exported for all its steps, which viewers of VTK 9.3 and later read;\n"
      "with --step any since 9.1 can read the file. Example:\n  lumbarn grid RUN\n"
      "  lumbarn grid --vtk run.vtkhdf --array PORO --array PRESSURE --z-up RUN");
}

}  // namespace lumbarn::cli
