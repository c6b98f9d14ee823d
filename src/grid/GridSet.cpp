#include "GridSet.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string>
#include <utility>

#include "../support/Text.h"

namespace lumbarn {

namespace {

constexpr std::size_t mapAxesItems = 6;

/// An empty name and the word for the global grid mean the first one.
std::string parentName(std::string_view text) {
  const auto name = trim(text);
  return name.empty() || equalNoCase(name, "GLOBAL") ? "ROOT" : std::string(name);
}

/// HOSTNUM for the matrix alone is read for both systems; the hosts of fracture cells are fracture cells.
void moveToFracture(std::vector<std::int32_t>& hosts, std::int32_t cellsOfMatrix) {
  const std::size_t half = hosts.size() / 2;
  const auto fracture = std::span(hosts).last(half);
  if (!std::ranges::equal(std::span(hosts).first(half), fracture)) return;
  for (auto& host : fracture) {
    if (host > 0 && host <= cellsOfMatrix) host += cellsOfMatrix;
  }
}

}  // namespace

GridSet::GridSet(RecordCursor& cursor, const GridReadOptions& options, Session& session)
    : cursor_(&cursor), options_(&options), session_(&session) {
  start("ROOT");
}

void GridSet::start(std::string_view zName) {
  current_ = std::make_shared<Hadrick>(*session_);
  current_->zName = zName;
  current_->zFile = cursor_->path();
  current_->zFolder = options_->zFolder;
  current_->byteSwap = options_->byteSwap;
}

void GridSet::setSize(std::int64_t nx, std::int64_t ny, std::int64_t nz) {
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  const auto sizes = std::to_string(nx) + " x " + std::to_string(ny) + " x " + std::to_string(nz);
  if (nx < 1 || ny < 1 || nz < 1) fail(Message::GridSizes, "sizes of 1 or more", sizes);
  if (nx > most || ny > most || nz > most || nx > most / ny || nx * ny > most / nz) {
    fail(Message::GridSizes, "at most 2147483647 cells", sizes);
  }
  sizesAt_ = cursor_->header().headerAt;
  current_->setSize(static_cast<std::int32_t>(nx), static_cast<std::int32_t>(ny),
                    static_cast<std::int32_t>(nz));
}

void GridSet::complete() {
  grids.push_back(current_);
  offsets_.push_back(sizesAt_);
  const std::string zName = current_->zName;
  start(zName);
}

void GridSet::passGap() {
  gap_ = true;
  firstKeyword_.clear();
  start({});
}

bool GridSet::takeShared() {
  static constexpr PairRecord pairs[] = {{"NNC1", "NNC2", GridConnection::Kind::Inside},
                                         {"NNCL", "NNCG", GridConnection::Kind::LocalGlobal},
                                         {"NNA1", "NNA2", GridConnection::Kind::Amalgamated}};
  const RecordHeader& header = cursor_->header();
  if (header.keyword == "MAPAXES") {
    takeMapAxes();
    return true;
  }
  if (header.is("GRIDUNIT", ElementType::Text)) {
    gridUnit_ = cursor_->texts();
    return true;
  }
  if (header.is("LGRPARNT", ElementType::Text)) {
    const auto words = cursor_->texts();
    current_->zParent = parentName(words.empty() ? std::string_view() : std::string_view(words.front()));
    return true;
  }
  if (header.is("MAPUNITS", ElementType::Text)) {
    const auto words = cursor_->texts();
    if (!words.empty()) mapUnit_ = trim(words.front());
    return true;
  }
  if (header.type != ElementType::Integer) return false;
  if (header.keyword == "NNCHEAD" || header.keyword == "NNCHEADA") {
    const auto words = cursor_->integers();
    const auto grid = [&](std::size_t n) {
      return n < words.size() && words[n] < std::numeric_limits<std::int32_t>::max() ? words[n] + 1 : 1;
    };
    // Numbers of local grids count from 1, as the global grid is 0.
    connected_ = header.keyword == "NNCHEAD" ? std::array{grid(1), 1} : std::array{grid(0), grid(1)};
    return true;
  }
  for (const PairRecord& pair : pairs) {
    if (header.keyword != pair.first && header.keyword != pair.second) continue;
    takeConnections(pair, header.keyword == pair.second);
    return true;
  }
  return false;
}

void GridSet::takeMapAxes() {
  const RecordHeader& header = cursor_->header();
  std::array<double, mapAxesItems> axes{};
  if (header.count < static_cast<std::int64_t>(axes.size())) {
    report(Message::GridMapAxes, "6", std::to_string(header.count), "left the grid without map axes");
    return;
  }
  if (header.type == ElementType::Double) {
    cursor_->read(std::span<double>(axes));
  } else if (header.type == ElementType::Single) {
    std::array<float, mapAxesItems> singles{};
    cursor_->read(std::span<float>(singles));
    std::ranges::copy(singles, axes.begin());
  } else {
    return;
  }
  mapAxes_ = axes;
}

/// The cells of the first array wait for those of the second. Some writers give NNCG before NNCL.
void GridSet::takeConnections(const PairRecord& record, bool second) {
  auto cells = cursor_->integers();
  if (!connectionsAt_) connectionsAt_ = cursor_->header().headerAt;
  const std::string_view partner = second ? record.first : record.second;
  if (firstKeyword_ != partner) {
    firstKeyword_ = cursor_->header().keyword;
    firstCells_ = std::move(cells);
    return;
  }
  if (cells.size() != firstCells_.size()) {
    report(Message::GridConnections, std::to_string(firstCells_.size()) + " second ends",
           std::to_string(cells.size()), "used those with both ends");
  }
  const auto& ends1 = second ? firstCells_ : cells;
  const auto& ends2 = second ? cells : firstCells_;
  std::int32_t iGrid1 = connected_[0];
  const std::int32_t iGrid2 = record.kind == GridConnection::Kind::Inside ? connected_[0] : connected_[1];
  if (gap_ && std::max(iGrid1, iGrid2) > 1) iGrid1 = 0;  // unknown, which is reported once
  const std::size_t count = std::min(ends1.size(), ends2.size());
  for (std::size_t n = 0; n < count; ++n) {
    connections_.push_back({record.kind, iGrid1, ends1[n], iGrid2, ends2[n]});
  }
  firstKeyword_.clear();
}

void GridSet::takeLgr() {
  const auto words = cursor_->texts();
  start(words.empty() ? std::string_view() : trim(words.front()));
  current_->zParent = parentName(words.size() > 1 ? std::string_view(words[1]) : std::string_view());
}

std::vector<CoarseBlock> GridSet::coarseBlocks(std::span<const std::int32_t> numbers) const {
  struct Found {
    CoarseBlock block;
    std::int64_t cells = 0;
  };
  std::map<std::int32_t, Found> found;
  for (std::size_t cell = 0; cell < numbers.size(); ++cell) {
    if (numbers[cell] <= 0) continue;
    const auto iCell = static_cast<std::int32_t>(cell) + 1;
    const auto place = current_->placeOf(iCell);
    auto& [block, cells] = found[numbers[cell]];
    for (std::size_t axis = 0; axis < 3; ++axis) {
      auto* side = &block.iBox[2 * axis];
      side[0] = cells == 0 ? place[axis] : std::min(side[0], place[axis]);
      side[1] = std::max(side[1], place[axis]);
    }
    if (cells++ == 0) block.iCell = iCell;
  }
  std::vector<CoarseBlock> blocks;
  for (const auto& [number, one] : found) {
    const auto& box = one.block.iBox;
    const auto volume =
        static_cast<std::int64_t>(box[1] - box[0] + 1) * (box[3] - box[2] + 1) * (box[5] - box[4] + 1);
    if (volume == one.cells && volume > 1) blocks.push_back(one.block);
    if (volume != one.cells) {
      report(Message::GridCoarsening, std::to_string(volume), std::to_string(one.cells),
             "left the cells of number " + std::to_string(number) + " unchanged");
    }
  }
  return blocks;
}

void GridSet::join() {
  for (const auto& grid : grids) {
    grid->dMapAxes = mapAxes_;
    grid->zMapUnit = mapUnit_;
    if (!gridUnit_.empty()) grid->zGridUnit = trim(gridUnit_[0]);
    grid->qRelativeToMap = gridUnit_.size() > 1 && equalNoCase(trim(gridUnit_[1]), "MAP");
  }
  joinParents();
  joinHosts();
  joinConnections();
}

/// The number of the parent of the grid with index n, by number as given or by name; 0 when there is none.
std::int32_t GridSet::parentNumber(std::size_t n) const {
  const auto count = static_cast<std::int32_t>(grids.size());
  const std::int32_t given = grids[n]->iParent;
  if (given >= 1 && given <= count && static_cast<std::size_t>(given) != n + 1) return given;
  for (std::int32_t g = 1; g <= count; ++g) {
    const auto index = static_cast<std::size_t>(g) - 1;
    if (index != n && equalNoCase(grids[index]->zName, grids[n]->zParent)) return g;
  }
  return 0;
}

void GridSet::joinParents() {
  for (std::size_t n = 1; n < grids.size(); ++n) {
    Hadrick& grid = *grids[n];
    if (grid.zParent.empty()) grid.zParent = "ROOT";
    grid.iParent = parentNumber(n);
    if (grid.iParent == 0) {
      reportGrid(n, Message::GridParent, "LGRPARNT", "parent grid does not exist", "the name of a grid",
                 grid.zParent, "used the global grid");
      grid.iParent = 1;
    }
  }
  for (std::size_t n = 1; n < grids.size(); ++n) {
    std::size_t steps = 0;
    for (std::int32_t g = static_cast<std::int32_t>(n) + 1; g > 1 && steps <= grids.size(); ++steps) {
      g = grids[static_cast<std::size_t>(g) - 1]->iParent;
    }
    if (steps > grids.size()) {
      reportGrid(n, Message::GridParent, "LGRPARNT", "parents form a ring", "a way to the global grid",
                 grids[n]->zParent, "used the global grid");
      grids[n]->iParent = 1;
    }
    grids[n]->zParent = grids[static_cast<std::size_t>(grids[n]->iParent) - 1]->zName;
  }
}

void GridSet::joinHosts() {
  for (std::size_t n = 0; n < grids.size(); ++n) {
    Hadrick& grid = *grids[n];
    if (grid.hostCells().empty()) continue;
    std::vector<std::int32_t> hosts(grid.hostCells().begin(), grid.hostCells().end());
    if (grid.isLocal() && grid.iDualPorosity >= 1)
      moveToFracture(hosts, grids[static_cast<std::size_t>(grid.iParent) - 1]->nCells() / 2);
    std::size_t missing = 0;
    for (auto& host : hosts) {
      if (host == 0 || cellExists(grid.iParent, host)) continue;
      host = 0;
      ++missing;
    }
    grid.setHostCells(std::move(hosts));
    if (missing == 0) continue;
    reportGrid(n, Message::GridHosts, "HOSTNUM", "host cells do not exist", "cells of the parent grid",
               std::to_string(missing) + " others", "left these cells without host");
  }
}

void GridSet::joinConnections() {
  std::size_t missing = 0;
  for (const GridConnection& connection : connections_) {
    if (!cellExists(connection.iGrid1, connection.iCell1) ||
        !cellExists(connection.iGrid2, connection.iCell2)) {
      ++missing;
      continue;
    }
    grids[static_cast<std::size_t>(connection.iGrid1) - 1]->addConnection(connection);
  }
  if (missing == 0 || grids.empty()) return;
  session_->diagnose({.message = Message::GridConnections,
                      .path = cursor_->path(),
                      .keyword = "NNC1",
                      .offset = connectionsAt_,
                      .expected = std::to_string(connections_.size()) + " sound ones",
                      .found = std::to_string(missing) + " others",
                      .action = "omitted these",
                      .certainty = Certainty::Likely});
}

bool GridSet::cellExists(std::int32_t iGrid, std::int32_t iCell) const {
  if (iGrid < 1 || static_cast<std::size_t>(iGrid) > grids.size()) return false;
  return iCell >= 1 && iCell <= grids[static_cast<std::size_t>(iGrid) - 1]->nCells();
}

Diagnosis GridSet::here(Message message, std::string_view expected, std::string_view found) const {
  const RecordHeader& header = cursor_->header();
  return {.message = message,
          .path = cursor_->path(),
          .keyword = header.keyword,
          .occurrence = cursor_->occurrence(),
          .offset = header.keyword.empty() ? cursor_->fileSize() : header.headerAt,
          .expected = std::string(expected),
          .found = std::string(found)};
}

void GridSet::fail(Message message, std::string_view expected, std::string_view found) const {
  throw BadRecord(here(message, expected, found));
}

void GridSet::fail(Message message, std::int64_t expected, std::int64_t found) const {
  fail(message, std::to_string(expected), std::to_string(found));
}

void GridSet::report(Message message, std::string_view expected, std::string_view found,
                     std::string_view action, Certainty certainty) const {
  Diagnosis diagnosis = here(message, expected, found);
  diagnosis.action = action;
  diagnosis.certainty = certainty;
  session_->diagnose(std::move(diagnosis));
}

/// About the grid with index n, once all grids are known.
void GridSet::reportGrid(std::size_t n, Message message, std::string_view keyword, std::string_view problem,
                         std::string_view expected, std::string_view found, std::string_view action) const {
  session_->diagnose(Diagnosis{.message = message,
                               .path = cursor_->path(),
                               .problem = std::string(problem) + ", grid " + grids[n]->zName,
                               .keyword = std::string(keyword),
                               .offset = offsets_[n],
                               .expected = std::string(expected),
                               .found = std::string(found),
                               .action = std::string(action),
                               .certainty = Certainty::Likely});
}

void GridSet::reportNotFinite(std::size_t count) const {
  if (count == 0) return;
  report(Message::GridNotFinite, "numbers", std::to_string(count) + " others", "kept them unchanged");
}

}  // namespace lumbarn
