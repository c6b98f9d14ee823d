#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "../arrays/ActiveCells.h"
#include "../deck/Deck.h"
#include "../files/Families.h"
#include "../index/RestartIndex.h"
#include "../support/System.h"
#include "Lazy.h"
#include "SummaryState.h"

namespace lumbarn {

class Hadrick;
using Grids = std::vector<std::shared_ptr<Hadrick>>;

/// What the copies of a Run share: the names of its files, and what was read of them so far. Only the Lazy
/// members change, and they may be used from several threads.
class RunState {
 public:
  explicit RunState(RunFamily family);
  RunState(const RunState&) = delete;
  RunState& operator=(const RunState&) = delete;

  const RunFamily& family() const { return family_; }
  std::string root() const { return family_.folder + family_.base; }

  /// The file of a type. Throws Error NotFound when the run has none.
  const RunMember& file(FileKind kind) const;

  /// The steps and arrays of the restart set, or the arrays of the INIT file. Throw Error NotFound without
  /// such files, and Damaged when nothing of them can be read.
  std::shared_ptr<const RestartIndex> restartIndex(StreamContext& context) const;
  std::shared_ptr<const RestartIndex> initIndex(StreamContext& context) const;
  /// The EGRID or GRID file that is read; null when the run has neither.
  const RunMember* gridFile() const;
  /// The grids of that file; of a damaged file those that are complete.
  std::shared_ptr<const Grids> grids(StreamContext& context) const;

  /// Which cells of a grid with these cells are active, by the INIT and EGRID files, or the GRID file of a
  /// run that has no EGRID; nothing where they do not decide it.
  std::shared_ptr<const std::optional<ActiveCells>> activeCells(StreamContext& context,
                                                                const std::string& grid,
                                                                const GridCells& cells) const;

  /// The data deck. Throws Error NotFound without one.
  std::shared_ptr<const Deck> deck(StreamContext& context) const;

  const SummaryState& summary() const { return summary_; }

  /// Whether a file differs from the one that was there when the run was opened, other than by growth.
  bool changed() const;

 private:
  std::string pathOf(FileKind kind) const;
  std::optional<ActiveCells> activeInGridFile(StreamContext& context, const std::string& grid,
                                              const GridCells& cells) const;

  RunFamily family_;
  std::vector<std::optional<FileStamp>> stamps_;  // of the members, when the run was opened
  Lazy<RestartIndex> restart_;
  Lazy<RestartIndex> init_;
  Lazy<Grids> grids_;
  Lazy<Deck> deck_;
  using GridKey = std::tuple<std::string, std::int64_t, std::int64_t>;  // name, cells, active cells
  mutable std::mutex activeMutex_;                                      // of the map, not of what it holds
  mutable std::map<GridKey, Lazy<std::optional<ActiveCells>>> active_;
  SummaryState summary_;
};

/// Throws Error NotFound, with similar names among those that there are.
[[noreturn]] void throwNotFound(const std::string& path, const std::string& problem, std::string_view name,
                                const std::vector<std::string>& names);
/// Throws Error BadRequest.
[[noreturn]] void throwRefused(const std::string& path, const std::string& problem);

/// The number of a grid by its name, from 0; empty and ROOT mean the global one. Throws Error NotFound.
std::size_t numberOfGrid(const Grids& grids, const std::string& name, const std::string& root);

/// The name by which people know a grid: ROOT is the global one.
inline std::string shownGrid(const std::string& grid) { return grid.empty() ? "ROOT" : grid; }

/// The moment of a header, for columns.
inline LocalMoment toLocal(Moment moment) { return LocalMoment(moment.time_since_epoch()); }
inline std::optional<LocalMoment> toLocal(const std::optional<Moment>& moment) {
  return moment ? std::optional(toLocal(*moment)) : std::nullopt;
}

}  // namespace lumbarn
