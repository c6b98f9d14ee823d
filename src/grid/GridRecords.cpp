#include "GridRecords.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <utility>

#include "../support/Text.h"
#include "DepthRecords.h"

namespace lumbarn {

namespace {

constexpr std::size_t rowItems = 24;
constexpr std::int64_t cancelInterval = 10'000;  // cells between two checks of the cancel flag
// A file may omit inactive cells, so its size limits their number only roughly. These keep tables of one word
// for each cell within the size of the file, and small grids are always accepted.
constexpr std::uint64_t mostCellsForRecord = 64;
constexpr std::uint64_t alwaysCells = std::uint64_t{1} << 20;

}  // namespace

bool GridRecords::read() {
  RecordCursor& cursor = set_.cursor();
  Session& session = set_.session();
  while (!stopped_ && cursor.next()) {
    if (!take()) return false;
    if (session.Container) {
      session.Container->fraction(static_cast<double>(cursor.nextPosition()) /
                                  static_cast<double>(cursor.fileSize()));
    }
    if (session.yield()) return false;
  }
  return stopped_ || finish();
}

bool GridRecords::take() {
  RecordCursor& cursor = set_.cursor();
  const RecordHeader& header = cursor.header();
  if (header.is("COORDS", ElementType::Integer)) {
    takeCells();
    return !set_.session().cancelled();
  }
  if (header.is("LGR", ElementType::Text)) {
    if (!finish()) return false;
    if (!stopped_) set_.takeLgr();
    return true;
  }
  if (header.is("DIMENS", ElementType::Integer)) {
    if (!finish()) return false;
    if (!stopped_) takeSizes();
    return true;
  }
  Hadrick& grid = set_.current();
  if (header.is("RADIAL", ElementType::Text)) {
    const auto words = cursor.texts();
    grid.iGridType = !words.empty() && trim(words.front()) == "TRUE" ? 3 : 2;
  }
  if (header.is("BOXORIG", ElementType::Integer)) {
    const auto words = cursor.integers();
    std::copy_n(words.begin(), std::min(words.size(), grid.iBoxOrigin.size()), grid.iBoxOrigin.begin());
  }
  if (header.is("LGRILG", ElementType::Integer)) {
    const auto words = cursor.integers();
    if (!words.empty()) grid.iLocalNumber = words[0];
    if (words.size() > 1 && words[1] >= 0 && words[1] < INT32_MAX) grid.iParent = words[1] + 1;
  }
  const bool coarsening = header.keyword == "CORSNUM" || header.keyword == "COARSNUM";
  if (coarsening && header.type == ElementType::Integer && header.count == grid.nCells())
    coarse_ = cursor.integers();
  set_.takeShared();
  return true;
}

void GridRecords::takeSizes() {
  const auto words = set_.cursor().integers();
  if (words.size() < 3) set_.fail(Message::GridShortRecord, 3, static_cast<std::int64_t>(words.size()));
  set_.setSize(words[0], words[1], words[2]);
  const auto cells = static_cast<std::uint64_t>(set_.current().nCells());
  room_ = set_.cursor().fileSize() / (4 * rowItems);
  const std::uint64_t most = mostCellsForRecord * room_ + alwaysCells;
  if (cells > most) {
    set_.fail(Message::GridSizes, "at most " + std::to_string(most) + " cells in a file of this size",
              std::to_string(cells));
  }
  compress_ = set_.options().compress || cells > room_;
  seen_ = 0;
  reached_ = 0;
  hasInactive_ = false;
  inOrder_ = true;
  expected_ = {1, 1, 1};
  notFinite_ = 0;
  rows_ = {};
  rowCells_ = {};
  activity_ = {};
  hosts_ = {};
  coarse_ = {};
}

/// The pair of records at the cursor, which stands on COORDS.
void GridRecords::readPair(CellRecord& cell, RecordHeader& coords) {
  RecordCursor& cursor = set_.cursor();
  coords = cursor.header();
  if (coords.count < 3) set_.fail(Message::GridShortRecord, 3, coords.count);
  cell.count = std::min(static_cast<std::size_t>(coords.count), cell.words.size());
  cursor.read(std::span(cell.words).first(cell.count));
  if (!cursor.next()) set_.fail(Message::GridMissing, "CORNERS", "end of the file");
  const RecordHeader& header = cursor.header();
  if (!header.is("CORNERS", ElementType::Single) || header.count != static_cast<std::int64_t>(rowItems)) {
    set_.fail(Message::GridMissing, "CORNERS with 24 values",
              header.keyword + " with " + std::to_string(header.count));
  }
  cursor.read(std::span<float>(cell.corners));
}

void GridRecords::takeCells() {
  RecordCursor& cursor = set_.cursor();
  if (!set_.sized()) set_.fail(Message::GridMissing, "DIMENS before cells", "none");
  if (rows_.empty()) {
    const auto cells = static_cast<std::uint64_t>(set_.current().nCells());
    rows_ = XYData(rowItems, static_cast<std::size_t>(std::min(cells, room_)), set_.session());
  }
  CellRecord cell;
  RecordHeader coords;
  readPair(cell, coords);
  takeCell(cell);
  CellRecords more(source_, cursor.form(), coords, cursor.header(), cursor.nextPosition());
  std::int64_t told = 0;
  while ((inOrder_ ? reached_ : seen_) < set_.current().nCells()) {
    if (!inOrder_ || !takeRun(more)) {
      if (!more.next(cell)) break;
      takeCell(cell);
    }
    if (more.taken() - told < cancelInterval) continue;
    told = more.taken();
    if (set_.session().cancelled()) break;
  }
  uncounted_ += more.taken();
  cursor.seek(more.position());
}

/// Cells in order, up to the end of their line along I: the way of nearly all. False when the next one is not
/// that which follows.
bool GridRecords::takeRun(CellRecords& more) {
  const Hadrick& grid = set_.current();
  const auto before = static_cast<std::size_t>(reached_);
  run_.first = expected_;
  run_.most = std::min(CellRun::mostCells, static_cast<std::size_t>(grid.Nx() - expected_[0] + 1));
  run_.activeOnly = compress_;
  run_.rows = rows_.values().data() + rowItems * (compress_ ? rowCells_.size() : before);
  more.takeRun(run_);
  if (run_.count == 0) return false;
  seen_ += static_cast<std::int32_t>(run_.count);
  reached_ += static_cast<std::int32_t>(run_.count);
  expected_ = grid.placeOf(std::min(reached_, grid.nCells() - 1) + 1);
  hasInactive_ = hasInactive_ || run_.active < run_.count;
  if (run_.active < run_.count && activity_.empty()) makeActivity(static_cast<std::int32_t>(before));
  const auto states = std::span(run_.states).first(run_.count);
  if (!activity_.empty()) std::ranges::copy(states, activity_.begin() + static_cast<std::ptrdiff_t>(before));
  if (more.words() > 6 && grid.isLocal()) {
    const auto hosts = std::span(run_.hosts).first(run_.count);
    std::ranges::copy(hosts, hostCells().begin() + static_cast<std::ptrdiff_t>(before));
  }
  for (std::size_t n = 0; compress_ && n < run_.count; ++n) {
    if (states[n] > 0) rowCells_.push_back(static_cast<std::int32_t>(before + n) + 1);
  }
  notFinite_ += countNotFinite({run_.rows, rowItems * (compress_ ? run_.active : run_.count)});
  return true;
}

/// Any cell.
void GridRecords::takeCell(const CellRecord& cell) {
  const Hadrick& grid = set_.current();
  const auto& words = cell.words;
  const auto number = grid.cellAt(words[0], words[1], words[2]);
  if (number == 0) {
    set_.fail(Message::GridCell, "a cell of the grid",
              std::to_string(words[0]) + ", " + std::to_string(words[1]) + ", " + std::to_string(words[2]));
  }
  ++seen_;
  expected_ = grid.placeOf(std::min(number, grid.nCells() - 1) + 1);
  const auto index = static_cast<std::size_t>(number) - 1;
  const bool active = cell.active();
  if (inOrder_) number > reached_ ? skipTo(number) : leaveOrder();
  hasInactive_ = hasInactive_ || !active;
  if (!active && activity_.empty()) makeActivity(number - 1);
  if (!activity_.empty()) activity_[index] = active ? 1 : 0;
  if (cell.count > 6 && grid.isLocal()) hostCells()[index] = words[5];
  if (compress_ && !active) return;
  std::size_t column = index + 1;
  if (compress_) {
    rowCells_.push_back(number);
    column = rowCells_.size();
  }
  if (column > rows_.columns()) set_.fail(Message::GridCell, grid.nCells(), seen_);
  std::ranges::copy(cell.corners, rows_.values().data() + rowItems * (column - 1));
  notFinite_ += countNotFinite(cell.corners);
}

std::vector<std::int32_t>& GridRecords::hostCells() {
  if (hosts_.empty()) hosts_.assign(static_cast<std::size_t>(set_.current().nCells()), 0);
  return hosts_;
}

/// The table of activity, when the first cells were met in order and all active.
void GridRecords::makeActivity(std::int64_t first) {
  activity_.assign(static_cast<std::size_t>(set_.current().nCells()), 0);
  std::fill_n(activity_.begin(), first, 1);
}

/// Some writers omit inactive cells: those up to the next one that has records are inactive, without corners.
void GridRecords::skipTo(std::int32_t number) {
  const auto from = static_cast<std::size_t>(reached_);
  const auto to = static_cast<std::size_t>(number) - 1;
  reached_ = number;
  if (from == to) return;
  if (activity_.empty()) makeActivity(static_cast<std::int64_t>(from));
  if (!compress_) std::ranges::fill(rows_.values().subspan(rowItems * from, rowItems * (to - from)), 0.0F);
}

/// From here on a cell may occur twice and another not at all, which is then inactive and has no corners.
void GridRecords::leaveOrder() {
  inOrder_ = false;
  const auto met = static_cast<std::size_t>(reached_);
  if (activity_.empty()) makeActivity(reached_);
  if (!compress_) std::ranges::fill(rows_.values().subspan(rowItems * met), 0.0F);
}

/// The cells that have no records. A file that has records of inactive cells too omits none of them, so it
/// must have been truncated.
void GridRecords::takeOmitted() {
  const std::int32_t cells = set_.current().nCells();
  const bool last = inOrder_ && reached_ < cells && hasInactive_;
  set_.report(last ? Message::GridCellsMissing : Message::GridCellsOmitted, std::to_string(cells) + " cells",
              std::to_string(seen_), "treated the others as inactive",
              last ? Certainty::Guess : Certainty::Likely);
  if (inOrder_ && reached_ < cells) skipTo(cells + 1);
}

/// Puts the rows of active cells in the order of their numbers. Of a cell that stands twice the last counts,
/// which may be inactive.
void GridRecords::sortRows() {
  if (inOrder_) return;
  std::vector<std::size_t> order(rowCells_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [this](std::size_t n) { return rowCells_[n]; });
  std::vector<std::size_t> last;
  for (const std::size_t n : order) {
    if (activity_[static_cast<std::size_t>(rowCells_[n]) - 1] == 0) continue;
    if (!last.empty() && rowCells_[last.back()] == rowCells_[n]) last.pop_back();
    last.push_back(n);
  }
  XYData sorted(rowItems, last.size(), set_.session());
  std::vector<std::int32_t> cells;
  for (const std::size_t n : last) {
    cells.push_back(rowCells_[n]);
    std::ranges::copy(rows_.column(n + 1), sorted.column(cells.size()).begin());
  }
  rows_ = std::move(sorted);
  rowCells_ = std::move(cells);
}

bool GridRecords::finish() {
  if (!set_.sized()) return true;
  Hadrick& grid = set_.current();
  if (rows_.empty()) set_.fail(Message::GridMissing, "COORDS and CORNERS", "none");
  const bool omits = seen_ < grid.nCells();
  if (omits) takeOmitted();
  if (compress_) sortRows();
  set_.reportNotFinite(std::exchange(notFinite_, 0));
  if (compress_ || omits || !set_.options().noInactive) grid.setActive(std::exchange(activity_, {}));
  grid.setCellRows(std::exchange(rows_, {}), compress_);
  if (!hosts_.empty()) grid.setHostCells(std::exchange(hosts_, {}));
  const bool coarse = set_.options().coarsened && !coarse_.empty() && !compress_;
  if (coarse) grid.setCoarse(set_.coarseBlocks(coarse_));
  if (grid.nActive() == 0 && !compress_) {
    set_.report(Message::GridInactive, "one at least", "none", "stopped");
    stopped_ = true;
  }
  set_.complete();
  return true;
}

}  // namespace lumbarn
