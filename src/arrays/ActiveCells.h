#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../index/RestartIndex.h"
#include "../record/RecordCursor.h"
#include "../support/Export.h"
#include "../support/Session.h"

namespace lumbarn {

/// The active cells of one grid, numbered both ways. Arrays of a restart or INIT file have one value for each
/// active cell, in the natural order of the cells (i fastest, then j, then k). All numbers count from 1.
class LUMBARN_API ActiveCells {
 public:
  ActiveCells() = default;
  /// By the numbers of the active cells, ascending.
  ActiveCells(std::vector<std::int32_t> iA2N, std::int64_t cells) : cells_(cells), iA2N_(std::move(iA2N)) {}
  /// A grid without inactive cells. Throws Fault 6 when cell numbers do not fit into 32 bits.
  static ActiveCells all(std::int64_t cells);

  std::int64_t cells() const { return cells_; }
  std::int64_t active() const { return static_cast<std::int64_t>(iA2N_.size()); }
  /// The cell of an active cell. Throws Fault 9 outside.
  std::int32_t cellOf(std::int64_t iActive) const;
  /// The active number of a cell; 0 for an inactive one. Throws Fault 9 outside.
  std::int32_t activeOf(std::int64_t iCell) const;
  /// The cell of each active cell, ascending.
  const std::vector<std::int32_t>& iA2N() const { return iA2N_; }

 private:
  std::int64_t cells_ = 0;
  std::vector<std::int32_t> iA2N_;
};

/// What the files of a run state about which cells of a grid are active.
struct ActivityEvidence {
  std::int64_t cells = 0;   ///< of both systems of a grid with dual porosity
  std::int64_t active = 0;  ///< how many: the length of the arrays, see `ArrayLengths`
  /// Of PORV in INIT: the cells with a pore volume above 0, ascending, from 1.
  std::optional<std::vector<std::int32_t>> porous = std::nullopt;
  /// Of EGRID: ACTNUM as it is stored, with a word for each cell, or with dual porosity for each cell of the
  /// first system; empty where the grid has none because all cells are active.
  std::optional<std::vector<std::int32_t>> actnum = std::nullopt;
  bool dualPorosity = false;             ///< FILEHEAD word 6 is above 0
  std::vector<std::int32_t> hosts = {};  ///< HOSTNUM of the local grids inside this grid, from 1
  std::optional<std::uint64_t> porvAt = std::nullopt;  ///< byte offset of PORV, for diagnoses
};

struct DecidedCells {
  ActiveCells cells;
  Certainty certainty = Certainty::Certain;
};
/// Which cells are active: the first of PORV and ACTNUM that agrees with the number of active cells, as
/// stored or with the cells that local grids replace, which are active in their parent although some writers
/// store 0 for them. If neither agrees and PORV has too many cells with pore volume, the first of these are
/// returned as a guess, as existing hosts expect; with too few, nothing is returned.
LUMBARN_API std::optional<DecidedCells> decideActiveCells(const ActivityEvidence& evidence);

/// ACTNUM with a word for each cell of both systems of a grid with dual porosity, from the words of the first
/// system: bit 1 is the matrix, bit 2 the fracture. In an ACTNUM without words above 1 some writers mean both
/// systems by 1; `active`, -1 if unknown, decides.
LUMBARN_API std::vector<std::int32_t> expandActnum(std::vector<std::int32_t> actnum,
                                                   std::int64_t active = -1);

/// Reads PORV of a grid in an INIT file, and what an EGRID file states about a grid. Throw BadRecord.
LUMBARN_API void collectInit(const Session& session, const std::string& initFile, std::string_view grid,
                             ActivityEvidence& evidence);
LUMBARN_API void collectEGrid(const Session& session, const std::string& egridFile, std::string_view grid,
                              ActivityEvidence& evidence);

/// Which cells of a grid are active by the run's INIT and EGRID files; empty names are skipped. Nothing when
/// the files do not decide it. EGRID is read only if INIT does not decide, and reading stops at the first
/// array that agrees. Damage and guesses are reported as diagnoses.
LUMBARN_API std::optional<ActiveCells> findActiveCells(Session& session, const std::string& initFile,
                                                       const std::string& egridFile, std::string_view grid,
                                                       const GridCells& cells);

}  // namespace lumbarn
