#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../frame/Stream.h"
#include "Selections.h"

namespace lumbarn {

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
class Run {
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
  std::vector<std::string> files() const;
  /// The step of the step file that the run was opened by, as X0003.
  std::optional<std::int32_t> namedStep() const;

  /// The steps of the restart files, in the order of the files.
  std::vector<StepInfo> steps(const ReadOptions& options = {}) const;

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

  explicit Run(std::shared_ptr<const RunState> state) : state_(std::move(state)) {}
  const RunState& state() const { return *state_; }
  const std::shared_ptr<const RunState>& sharedState() const { return state_; }

 private:
  std::shared_ptr<const RunState> state_;
};

}  // namespace lumbarn
