// What the files of a run state about which cells are active.

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "../index/RestartIndexHeads.h"
#include "../index/SectionTracker.h"
#include "ActiveCells.h"

namespace lumbarn {
namespace {

std::unique_ptr<RecordCursor> openFile(const Session& session, const std::string& path, RecordFile file) {
  std::string why;
  auto cursor = openRecords(path, why);
  if (!cursor) throw BadRecord({.message = Message::FileOpen, .path = path, .problem = why});
  cursor->attach(session, file);
  return cursor;
}

/// ACTNUM of a grid, and HOSTNUM of the local grids that lie in it.
class EGridWalk {
 public:
  EGridWalk(std::string_view grid, ActivityEvidence& evidence) : grid_(grid), evidence_(evidence) {}

  /// False when nothing more is needed.
  bool take(RecordCursor& cursor, const Session& session) {
    const RecordHeader& header = cursor.header();
    section_.take(cursor);
    const bool own = sameGrid(section_.grid(), grid_);
    if (header.is("FILEHEAD", ElementType::Integer)) {
      const auto words = cursor.integers();
      evidence_.dualPorosity = words.size() >= dualPorosityWord && words[dualPorosityWord - 1] >= 1;
    } else if (header.is("LGR", ElementType::Text)) {
      parent_.clear();
    } else if (header.is("LGRPARNT", ElementType::Text) && header.count > 0) {
      parent_ = firstText(cursor);
    } else if (header.is("ACTNUM", ElementType::Integer) && own && isOfGrid(header.count)) {
      session.checkMemory(static_cast<std::size_t>(header.count) * sizeof(std::int32_t));
      evidence_.actnum = cursor.integers();
      return !decided();
    } else if (header.keyword == "ENDGRID" && own && !evidence_.actnum) {
      evidence_.actnum.emplace();
      return !decided();
    } else if (header.is("HOSTNUM", ElementType::Integer) && !own && sameGrid(parent_, grid_)) {
      const auto hosts = cursor.integers();
      evidence_.hosts.insert(evidence_.hosts.end(), hosts.begin(), hosts.end());
    }
    return true;
  }

 private:
  static constexpr std::size_t dualPorosityWord = 6;

  bool isOfGrid(std::int64_t count) const {
    return count > 0 && (count == evidence_.cells || 2 * count == evidence_.cells);
  }
  bool decided() const {
    const auto cells = decideActiveCells(evidence_);
    return cells && cells->certainty == Certainty::Certain;
  }

  std::string_view grid_;
  ActivityEvidence& evidence_;
  SectionTracker section_;
  std::string parent_;
};

/// PORV, the current record, in pieces.
void collectPoreVolumes(RecordCursor& cursor, const Session& session, ActivityEvidence& evidence) {
  constexpr std::size_t pieceElements = std::size_t{1} << 16;
  session.checkMemory(static_cast<std::size_t>(evidence.active) * sizeof(std::int32_t));
  std::vector<std::int32_t> porous;
  std::vector<float> piece(pieceElements);
  for (std::int64_t first = 0; first < cursor.header().count;) {
    if (session.cancelled()) return;
    const auto left = static_cast<std::size_t>(cursor.header().count - first);
    const auto values = std::span(piece).first(std::min(left, pieceElements));
    cursor.read(values, first);
    for (const float value : values) {
      ++first;
      if (value > 0) porous.push_back(static_cast<std::int32_t>(first));
    }
  }
  evidence.porous = std::move(porous);
  evidence.porvAt = cursor.header().headerAt;
}

}  // namespace

void collectInit(const Session& session, const std::string& initFile, std::string_view grid,
                 ActivityEvidence& evidence) {
  const auto cursor = openFile(session, initFile, RecordFile::Init);
  SectionTracker section;
  while (cursor->next() && !session.cancelled()) {
    section.take(*cursor);
    const RecordHeader& header = cursor->header();
    if (!header.is("PORV", ElementType::Single) || header.count != evidence.cells ||
        !sameGrid(section.grid(), grid))
      continue;
    return collectPoreVolumes(*cursor, session, evidence);
  }
}

void collectEGrid(const Session& session, const std::string& egridFile, std::string_view grid,
                  ActivityEvidence& evidence) {
  const auto cursor = openFile(session, egridFile, RecordFile::EGrid);
  EGridWalk walk(grid, evidence);
  while (cursor->next() && !session.cancelled()) {
    if (!walk.take(*cursor, session)) return;
  }
}

std::optional<ActiveCells> findActiveCells(Session& session, const std::string& initFile,
                                           const std::string& egridFile, std::string_view grid,
                                           const GridCells& cells) {
  if (!cells.known()) return std::nullopt;
  if (cells.cells > std::numeric_limits<std::int32_t>::max()) {
    session.diagnose({.message = Message::ActiveCellsBeyondNumbers,
                      .path = initFile.empty() ? egridFile : initFile,
                      .expected = "at most 2147483647 cells",
                      .found = std::to_string(cells.cells)});
    return std::nullopt;
  }
  ActivityEvidence evidence{.cells = cells.cells, .active = cells.active};
  auto decided = decideActiveCells(evidence);
  const auto read = [&](const std::string& file, auto collect) {
    if (file.empty() || (decided && decided->certainty == Certainty::Certain)) return;
    try {
      collect(session, file, grid, evidence);
    } catch (BadRecord& damage) {
      damage.diagnosis().action = "stopped searching this file for active cells";
      session.diagnose(std::move(damage.diagnosis()));
    }
    if (!session.cancelled()) decided = decideActiveCells(evidence);
  };
  read(initFile, collectInit);
  read(egridFile, collectEGrid);
  if (!decided) return std::nullopt;
  if (decided->certainty != Certainty::Certain) {
    session.diagnose({.message = Message::ActiveCellsGuessed,
                      .path = initFile,
                      .keyword = "PORV",
                      .offset = evidence.porvAt,
                      .expected = fmt::format("{} cells with pore volume", cells.active),
                      .found = std::to_string(evidence.porous->size()),
                      .action = "used the first ones as active cells",
                      .certainty = decided->certainty});
  }
  return std::move(decided->cells);
}

}  // namespace lumbarn
