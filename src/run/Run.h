#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../frame/Stream.h"
#include "../support/Export.h"
#include "Dense.h"
#include "Selections.h"

namespace lumbarn {

class Deck;
class RunState;

/// One report step of a run's restart files.
struct StepInfo {
  std::int32_t number = -1;
  double days = 0;                  ///< report time, days since the start of the run
  std::optional<LocalMoment> date;  ///< with the time of day, as far as the headers state it
  std::string file;                 ///< which has the step
};

/// A run: the files that a simulator left under one name in one folder, as a set of questions that are
/// answered by values and by streams of columns. Everything that a host, a script or a person wants to know
/// of a run is asked here.
///
/// A handle, inexpensive to copy. All questions may be asked from several threads at the same time. Each
/// reads what it needs when it is asked; what several need, as the list of steps, is read once.
///
/// Throws Error: NotFound for what the run does not have, BadRequest for a question that contradicts itself,
/// Damaged when nothing can be read, Cancelled after a stop. A stream ends with the Error of whatever damage
/// it meets, behind the last good row.
class LUMBARN_API Run {
 public:
  /// Opens the run that a path means: any file of it, its root name, or a folder that contains one run. Looks
  /// at names only. Throws Error NotFound if there is none, BadRequest with `candidates` if the path can mean
  /// several.
  static Run open(const std::string& path);
  /// The root names of the runs that a path can mean, in order; none if there are none.
  static std::vector<std::string> find(const std::string& path);

  /// Folder and base name, "cases/HOLLIN".
  std::string root() const;
  /// Base name, "HOLLIN".
  std::string name() const;
  /// The paths of the run's files.
  std::vector<std::string> paths() const;
  /// The file that the run was opened by; nothing for a root name or a folder.
  std::optional<std::string> namedFile() const;
  /// The step of the step file that the run was opened by, as X0003.
  std::optional<std::int32_t> namedStep() const;
  /// Whether a file of the run is no longer the one that was opened: smaller, another file under its name,
  /// modified at the same size, or removed. A file that has only grown, as those of a running simulation do,
  /// is not changed; nor is one that was renamed back or whose permissions are others.
  bool changed() const;

  /// The files of the run: `name`, `kind`, `form`, `bytes`, `first_step` and `last_step` of summary and
  /// restart files, and `in_use`: false where the run has several of a kind and the others are read.
  Stream files(const ReadOptions& options = {}) const;
  /// What is known of the run without reading its data: `group`, `property`, `value`, and the `type` of the
  /// value: text, number, date, size as "16 x 12 x 5", or texts for one of a list, which has a row for each.
  /// A group "summary.vectors_by_class" is within "summary"; facts without a group are of the run itself.
  /// Damage to one file does not hide the facts of the others.
  Stream facts(const ReadOptions& options = {}) const;
  /// The same of the file that the run was opened by, its kind as its content shows it. Throws Error
  /// BadRequest when it was opened by another name.
  Stream fileFacts(const ReadOptions& options = {}) const;

  /// The steps of the restart files, in the order of the files.
  std::vector<StepInfo> steps(const ReadOptions& options = {}) const;

  /// The deck of the run, read once. Throws Error NotFound without one. See
  /// <lumbarn/Decks.h>.
  Deck deck(const ReadOptions& options = {}) const;

  /// The simulation tables of the INIT file: `table`, `number` among those of that name, `rows`, and
  /// `columns` with their units.
  Stream tables(const ReadOptions& options = {}) const;
  /// One table as a deck has it: a column for each of its own, with its unit, in the units of the run. Throws
  /// Error NotFound for a table that is not there, with similar names.
  Stream table(const std::string& name, std::int32_t number = 1, const ReadOptions& options = {}) const;
  /// What the run models: `flag` and `value`, as the INIT file states it for a grid. Throws Error NotFound
  /// for a grid that is not there.
  Stream flags(const std::string& grid = {}, const ReadOptions& options = {}) const;
  /// The arrays of connections between cells that are no neighbours: `grid`, `kind`, `array`, `type`,
  /// `count`, `unit`, `min`, `max`. Of all grids if `grid` is empty.
  Stream nncArrays(const std::string& grid = {}, const ReadOptions& options = {}) const;
  /// Their values: `connection` from 1, `i1,j1,k1,i2,j2,k2` of the two cells where all are within the grid
  /// and the grid file tells them, and a column for each array, null behind its last connection. Throws Error
  /// NotFound when no array is chosen.
  Stream nnc(const NncSelection& selection = {}, const ReadOptions& options = {}) const;

  /// The grids, or the one with a name:
  /// `name,parent,type,nx,ny,nz,active,refined,connections,units,x_min,x_max,y_min,
  /// y_max,z_min,z_max,map_axes`. Extents are in the unit of length of the file; of a radial grid they are
  /// those of the cylinder in its host.
  Stream grids(const std::string& name = {}, const ReadOptions& options = {}) const;
  /// The active cells of a grid, `i,j,k` from 1 and `corners`: x, y, z of eight corners, in a radial grid r,
  /// theta, z. Depths grow downwards unless `zUp`.
  Stream corners(const CornerSelection& selection = {}, const ReadOptions& options = {}) const;

  /// The arrays of cells that the restart files have: `step, date, days, grid, array, type, count, unit`, a
  /// row for each array of each step, and one without array for a step that has none. `type` is as in the
  /// file, or "derived" for a saturation that follows from the others. Of the INIT file: `grid, array, type,
  /// count, unit, min, max`, the last two over the active cells.
  Stream arrays(const ArrayListSelection& selection = {}, const ReadOptions& options = {}) const;

  /// Values of arrays in cells of one grid: `step, date, days, grid, i, j, k` and a column for each array, in
  /// its own type and with the unit of the file, that is Float64 where the type differs between steps. There
  /// is a row for each active cell in natural order, or for each cell that is asked for; i, j, k are there on
  /// request or with a list of cells. Arrays that the restart files do not have are looked for in the INIT
  /// file, whose values are repeated in each step.
  ///
  /// Null: the cell is not active, or the step does not have the array; each is a remark. Records that are no
  /// arrays of cells can be asked for by name; rows are then their elements, and all must be of one length.
  ///
  /// Reads no more than what is asked for, in one pass. Throws Error NotFound for arrays, grids and steps
  /// that are not there, and for regions without any cell, with the numbers that there are; BadRequest for
  /// cells outside of the grid, Damaged when it matters which cells are active and no file tells it.
  Stream cells(const CellSelection& selection, const ReadOptions& options = {}) const;

  /// Values of one array in all cells of a grid, or of a box, in place; 0 in cells that are not active.
  /// `step`: of the restart files; without a value the array of the INIT file. Of several arrays of the name
  /// the first. Throws as `cells`.
  Dense cellArray(const std::string& name, std::optional<std::int32_t> step,
                  const std::optional<CellBox>& box = {}, const std::string& grid = "ROOT",
                  const ReadOptions& options = {}) const;

  /// Geometry of the cells of a grid, or of a box of it, in place and in the units of the file. Cells that
  /// are not active have a geometry too, where the file states one, and zeros otherwise. Throw Error NotFound
  /// without a grid file or for another grid, BadRequest for cells outside of the grid.
  ///
  /// Corners: Float32, 24 components, as a row of `corners`. `map`: x and y in the axes and units of the map,
  /// where the file has such.
  Dense cornerArray(const std::string& grid = "ROOT", bool map = false,
                    const std::optional<CellBox>& box = {}, const ReadOptions& options = {}) const;
  /// The mean of the eight corners, which simulators use as depth of a cell: Float64, x, y, z, also in a
  /// radial grid.
  Dense centres(const std::string& grid = "ROOT", const std::optional<CellBox>& box = {},
                const ReadOptions& options = {}) const;
  /// Bulk volumes, Float64. Negative for a cell that is inverted against most of its grid.
  Dense volumes(const std::string& grid = "ROOT", const std::optional<CellBox>& box = {},
                const ReadOptions& options = {}) const;

  /// Arrays summarized by region: `step, date, grid, array, region, count, min, max, mean, weighted_mean,
  /// sum, weight_sum, unit`; without step and date for the INIT file. A row for each region in ascending
  /// order, and the last with the region "all"; numbers of several region arrays are joined by "/". Sums and
  /// means are computed in double precision, over the cells with values. Percentiles that are asked for are
  /// columns behind weighted_mean: percentile p of n values is at p / 100 * (n - 1) in their ascending order,
  /// from 0, linear between the two values at its sides. Throws as `cells`.
  Stream statistics(const StatisticsSelection& selection, const ReadOptions& options = {}) const;
  /// The wells of the restart files: `step,date,days,grid,well` and what is known of each at the step, in the
  /// order of the files. Rates are in the units of the run; words that are not known to mean anything are
  /// left out. Throws Error NotFound for steps, grids and wells that are not there.
  Stream wells(const WellSelection& selection = {}, const ReadOptions& options = {}) const;
  /// Their connections: the same first columns, the cell from 1, its state and numbers.
  Stream connections(const WellSelection& selection = {}, const ReadOptions& options = {}) const;

  /// The list of well tests, of the simulator's file or of a text file of measured ones: `test,well,date`,
  /// the number among those of the well, the grid (measured ones: the origin), the kinds of data, rows and,
  /// of the simulator's, branches. Throws Error NotFound for tests and wells that are not there, BadRequest
  /// for report steps, which tests do not have.
  Stream tests(const TestSelection& selection = {}, const ReadOptions& options = {}) const;
  /// A table of each test, one below the other, behind `test,well,date`; DEPTH is `depth`, as it tells the
  /// row too. Of a part that is worked out there is a column for each array that any of the tests has, so all
  /// tests that are chosen are read before the first row. `TestPart::All` has a row for each value instead:
  /// `test,well,group,array,units,row,value`, values as texts. Tests without that part are left out. Throws
  /// Error NotFound if no test has it.
  Stream testRows(const TestSelection& selection = {}, const ReadOptions& options = {}) const;
  /// The vectors of the summary, one row for each: `name` (as a column of `summary` has it), `mnemonic`,
  /// `class`, `member`, `index`, `lgr`, `units`, `description`. A vector whose name occurs before is omitted,
  /// with a remark, unless `keepDuplicates` is set.
  Stream vectors(bool keepDuplicates = false, const ReadOptions& options = {}) const;
  /// Summary data, one row for each row of the files that the selection keeps: DATE (Timestamp) if requested,
  /// TIME, then the vectors, Float32 in the units of the file. Patterns give the order of the columns; what
  /// one pattern matches is in the order of the file. A row is null where its run of a chain lacks the
  /// vector. Fields have the unit, the description, and `mnemonic`, `member`, `cell` and `lgr` as metadata.
  ///
  /// Throws Error NotFound, with similar names, when there is no summary or nothing matches the patterns or
  /// the times; a remark lists patterns without a match while others match. BadRequest for an empty pattern,
  /// when `except` leaves no column, or for dates that are not known.
  Stream summary(const SummarySelection& selection = {}, const ReadOptions& options = {}) const;
  /// The files that `summary` reads of the runs that this one restarted from.
  std::vector<std::string> filesOfChain(const ReadOptions& options = {}) const;

  explicit Run(std::shared_ptr<const RunState> state) : state_(std::move(state)) {}
  const RunState& state() const { return *state_; }
  const std::shared_ptr<const RunState>& sharedState() const { return state_; }

 private:
  std::shared_ptr<const RunState> state_;
};

}  // namespace lumbarn
