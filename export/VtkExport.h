#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace lumbarn {

class Hadrick;
class Run;
class Session;
struct ReadOptions;

/// Gives values of active cells in the order of the file, which has one grid after the other and each grid's
/// cells by number, from cell `first` (from 0) on: `values` has one item for each component of each cell,
/// cell by cell. `step` is from 0, and 0 for an array that does not change. Called on the thread of the
/// export, for each step in turn and within it for the cells from first to last; a call never spans two
/// grids. May throw Fault or BadRecord, which ends the export.
template <class Number>
using CellReader = std::function<void(std::size_t step, std::size_t first, std::span<Number> values)>;

/// Values for each cell, to be exported under a name.
struct CellArray {
  std::string name;  ///< a "/" becomes "_", as HDF5 keeps that for itself
  std::variant<CellReader<float>, CellReader<double>, CellReader<std::int32_t>> read;
  std::size_t components = 1;
  bool changes = false;  ///< has values of its own for each step
};

struct VtkOptions {
  /// Negates z, for viewers that take z as height. Otherwise z is as in the grid, usually a depth.
  bool zUp = false;
  /// The time of each step. Empty: no steps, and arrays that change are written as they are in step 0.
  std::vector<double> times;
  /// The number, from 1, of the only grid to export; 0: all grids.
  std::int32_t iGrid = 0;
};

/// Writes the active cells of the grids of a file (`qvGRIDReader::xGrids`), one grid after the other, as one
/// VTKHDF file of type UnstructuredGrid: hexahedra that share their points within a grid, with the arrays
/// given and these:
///
/// - `CELL` (number in its grid, from 1), `I`, `J`, `K`; `GRID`, the number of its grid, from 1;
/// - `SYSTEM`, when a grid has two porosity systems: 1 matrix, 2 fracture. Both occupy the same space;
/// - `vtkGhostType`, when all grids are exported and a local grid replaces cells of another: 40 (refined and
///   hidden) for these cells, so that viewers do not draw both.
///
/// Coordinates are singles in the units and axes of the grids. Radial grids become cylinders around the axis
/// of `radialCenter`: a cell of more than 15 degrees becomes several hexahedra with the same values and
/// numbers, and a full circle is closed. The eight points of a cell are ordered such that cells have a
/// positive volume in viewers, whatever the handedness of the grid. A cell without corners has no size and
/// lies at the grid's first point.
///
/// Without steps the file is of version 1.0, which viewers since VTK 9.1 read; with steps of version 2.0 (VTK
/// 9.3): the geometry and arrays that do not change are there once, the others once for each step.
///
/// The file is written piece by piece; memory goes with the number of pillars. It has a temporary name in the
/// same folder until it is complete, so on failure or when the load is canceled (`Session::CancelLoad`) there
/// is no new file, and one that was there before is unchanged. The reason for a failure is reported as a
/// diagnosis. HDF5 is not safe in threads: one export at a time in a process.
void exportVtk(std::span<const std::shared_ptr<Hadrick>> grids, std::span<const CellArray> arrays,
               const VtkOptions& options, const std::string& path, Session& session, bool& qOK);

/// The same for one grid. The parent of a local grid is not known, so a radial one is written around 0, 0.
void exportVtk(const Hadrick& grid, std::span<const CellArray> arrays, const VtkOptions& options,
               const std::string& path, Session& session, bool& qOK);

/// What of a run is exported beside the shape of its grids.
struct RunExport {
  std::string grid{};                  ///< empty: all grids; ROOT: the global one
  std::vector<std::string> arrays{};   ///< names of arrays of the restart files or the INIT file
  std::optional<std::int32_t> step{};  ///< restart arrays as they are at this step; otherwise at all steps
  bool zUp = false;                    ///< heights in place of depths
};

/// Writes the grids of a run with arrays of it. An array has the type that holds its values in all steps and
/// grids. Where a step or grid does not have it, or a cell has no value, it is not a number, or 0 for whole
/// numbers. Of steps with one number the last is exported. One array of one step and grid is in memory at a
/// time.
///
/// Throws Error: NotFound for grids, arrays and steps that are not there, Damaged when it matters which cells
/// are active and no file tells it, and when the file cannot be written.
void exportVtk(const Run& run, const RunExport& selection, const std::string& path,
               const ReadOptions& options);

}  // namespace lumbarn
