#include "ActiveCells.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <numeric>

#include "../index/RestartIndexHeads.h"
#include "../record/RecordCursor.h"
#include "../support/Fault.h"

namespace lumbarn {
namespace {

void checkNumbers(std::int64_t cells) {
  if (cells > std::numeric_limits<std::int32_t>::max()) throw Fault(FaultNumber::Overflow);
}

std::int32_t numberOf(std::size_t index) { return static_cast<std::int32_t>(index) + 1; }

/// Calls `visit` for each record of the grid until it answers True; stops at the end of the file. The records
/// of a local grid stand behind its LGR.
void visitGrid(RecordCursor& cursor, const Session& session, std::string_view grid,
               const std::function<bool(RecordCursor&)>& visit) {
  std::string current;
  while (cursor.next() && !session.cancelled()) {
    const RecordHeader& header = cursor.header();
    if (header.is("LGR", ElementType::Text) && header.count > 0) {
      current = firstText(cursor);
    } else if (header.keyword == "LGRSGONE" || header.keyword == "ENDLGR") {
      current.clear();
    } else if (sameGrid(current, grid) && visit(cursor)) {
      return;
    }
  }
}

std::optional<ActiveCells> ofPoreVolumes(RecordCursor& cursor, const Session& session, std::string_view grid,
                                         const GridCells& cells) {
  std::optional<ActiveCells> result;
  visitGrid(cursor, session, grid, [&](RecordCursor& at) {
    if (!at.header().is("PORV", ElementType::Single) || at.header().count != cells.cells) return false;
    session.checkMemory(static_cast<std::size_t>(cells.cells) * sizeof(float));
    // Without the limit: pore volumes of more cells than are active do not tell which these are.
    result = ActiveCells::fromPoreVolumes(at.singles(), cells.cells);
    return true;
  });
  return result;
}

std::optional<ActiveCells> ofActnum(RecordCursor& cursor, const Session& session, std::string_view grid,
                                    const GridCells& cells) {
  std::optional<ActiveCells> result;
  visitGrid(cursor, session, grid, [&](RecordCursor& at) {
    if (at.header().is("ACTNUM", ElementType::Integer) && at.header().count == cells.cells) {
      session.checkMemory(static_cast<std::size_t>(cells.cells) * sizeof(std::int32_t));
      result = ActiveCells::fromActnum(at.integers());
    } else if (at.header().keyword == "ENDGRID" && cells.active == cells.cells) {
      result = ActiveCells::all(cells.cells);  // ACTNUM is left out when all cells are active
    }
    return result.has_value();
  });
  return result;
}

}  // namespace

ActiveCells ActiveCells::fromPoreVolumes(std::span<const float> porv, std::int64_t nActive) {
  checkNumbers(static_cast<std::int64_t>(porv.size()));
  ActiveCells result;
  result.cells_ = static_cast<std::int64_t>(porv.size());
  for (std::size_t i = 0; i < porv.size() && result.active() < nActive; ++i) {
    if (porv[i] > 0) result.iA2N_.push_back(numberOf(i));
  }
  return result;
}

ActiveCells ActiveCells::fromActnum(std::span<const std::int32_t> actnum) {
  checkNumbers(static_cast<std::int64_t>(actnum.size()));
  ActiveCells result;
  result.cells_ = static_cast<std::int64_t>(actnum.size());
  for (std::size_t i = 0; i < actnum.size(); ++i) {
    if (actnum[i] != 0) result.iA2N_.push_back(numberOf(i));
  }
  return result;
}

ActiveCells ActiveCells::all(std::int64_t cells) {
  checkNumbers(cells);
  ActiveCells result;
  result.cells_ = cells;
  result.iA2N_.resize(static_cast<std::size_t>(cells));
  std::iota(result.iA2N_.begin(), result.iA2N_.end(), 1);
  return result;
}

std::int32_t ActiveCells::cellOf(std::int64_t iActive) const {
  if (iActive < 1 || iActive > active()) throw Fault(FaultNumber::Subscript);
  return iA2N_[static_cast<std::size_t>(iActive - 1)];
}

std::int32_t ActiveCells::activeOf(std::int64_t iCell) const {
  if (iCell < 1 || iCell > cells_) throw Fault(FaultNumber::Subscript);
  const auto found = std::ranges::lower_bound(iA2N_, iCell);
  const bool isActive = found != iA2N_.end() && *found == iCell;
  return isActive ? static_cast<std::int32_t>(found - iA2N_.begin()) + 1 : 0;
}

std::optional<ActiveCells> findActiveCells(Session& session, const std::string& initFile,
                                           const std::string& egridFile, std::string_view grid,
                                           const GridCells& cells) {
  if (!cells.known()) return std::nullopt;
  const auto read = [&](const std::string& file, auto from) -> std::optional<ActiveCells> {
    if (file.empty()) return std::nullopt;
    try {
      std::string why;
      const auto cursor = openRecords(file, why);
      if (!cursor) throw BadRecord({.path = file, .problem = why});
      auto found = from(*cursor, session, grid, cells);
      return found && found->active() == cells.active ? found : std::nullopt;
    } catch (BadRecord& damage) {
      damage.diagnosis().action = "looked no further in it for active cells";
      session.diagnose(std::move(damage.diagnosis()));
      return std::nullopt;
    }
  };
  auto found = read(initFile, ofPoreVolumes);
  if (!found) found = read(egridFile, ofActnum);
  // Nobody needs to be told where all cells are active.
  if (!found && cells.active == cells.cells) found = ActiveCells::all(cells.cells);
  return found;
}

}  // namespace lumbarn
