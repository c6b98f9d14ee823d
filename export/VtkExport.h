#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace lumbarn {

class Hadrick;
class Session;

/// Gives values of active cells, in their order, from cell `first` (from 0) on: `values` has one item for
/// each component of each cell, cell by cell. `step` is from 0, and 0 for an array that does not change.
/// Called on the thread of the export, for each step in turn and within it for the cells from first to last.
/// May throw Fault or BadRecord, which ends the export.
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
  /// Negates z, for viewers that take z as height. Without, z is as in the grid, mostly a depth.
  bool zUp = false;
  /// The time of each step. Empty: no steps, and arrays that change are written as they are in step 0.
  std::vector<double> times;
};

/// Writes the active cells of a grid as a VTKHDF file of type UnstructuredGrid: hexahedra that share their
/// points, with the arrays `CELL` (number in the grid, from 1), `I`, `J`, `K` and those given. Coordinates
/// are singles in the units and axes of the grid. The eight points of a cell are ordered such that cells have
/// a positive volume in viewers, whatever the handedness of the grid. A cell
/// without corners has no size and lies at the grid's first point.
///
/// Without steps the file is of version 1.0, which viewers since VTK 9.1 read; with steps of version 2.0 (VTK
/// 9.3): the geometry and arrays that do not change are there once, the others once for each step.
///
/// The file is written piece by piece; memory goes with the number of pillars. It has a temporary name in the
/// same folder until it is complete, so on failure or when the load is cancelled (`Session::CancelLoad`)
/// there is no new file, and one that was there before is as it was. Why it failed is told as a diagnosis.
/// HDF5 is not safe in threads: one export at a time in a process.
void exportVtk(const Hadrick& grid, std::span<const CellArray> arrays, const VtkOptions& options,
               const std::string& path, Session& session, bool& qOK);

}  // namespace lumbarn
