#include "EGridRecords.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "../arrays/ActiveCells.h"
#include "../index/SectionTracker.h"
#include "CellNumbers.h"
#include "DepthRecords.h"

namespace lumbarn {

namespace {

constexpr std::size_t rangeRows = 6;
constexpr double flatPillar = 1e-20;

/// A word of a header record, from 1; 0 where the record ends before it.
std::int32_t word(const std::vector<std::int32_t>& words, std::size_t n) {
  return n <= words.size() ? words[n - 1] : 0;
}

}  // namespace

bool EGridRecords::read() {
  for (;;) {
    try {
      return readOn();
    } catch (BadRecord& damage) {
      if (!continueBehind(damage.diagnosis())) throw;
    }
  }
}

/// False when no record follows. Without the global grid, local grids have no place.
bool EGridRecords::continueBehind(Diagnosis& diagnosis) {
  if (set_.grids.empty()) return false;
  const std::string name = set_.current().zName;
  if (!passDamage(set_.cursor(), diagnosis, set_.session())) return false;
  diagnosis.path = set_.cursor().path();
  diagnosis.action = fmt::format("dropped grid {}; {}", name, diagnosis.action);
  set_.session().diagnose(std::move(diagnosis));
  set_.passGap();
  pending_ = {};
  damaged_ = afterGap_ = true;
  return true;
}

bool EGridRecords::readOn() {
  RecordCursor& cursor = set_.cursor();
  Session& session = set_.session();
  while (cursor.next()) {
    if (!take()) return false;
    if (session.Container) {
      session.Container->fraction(static_cast<double>(cursor.header().dataAt) /
                                  static_cast<double>(cursor.fileSize()));
    }
    if (session.yield()) return false;
  }
  // A file may end right before ENDGRID; but without ACTNUM nobody knows what else is missing.
  if (set_.sized() && !pending_.hasActivity) set_.fail(Message::GridMissing, "ENDGRID", "end of the file");
  return finish();
}

/// One record. False when the load is cancelled.
bool EGridRecords::take() {
  const RecordHeader& header = set_.cursor().header();
  const auto& keyword = header.keyword;
  // What belongs to the grid that the damage is in, or to one whose beginning it hides.
  afterGap_ = afterGap_ && keyword != "LGR" && !keyword.starts_with("NNCHEAD");
  if (afterGap_) return true;
  if (keyword == "ENDGRID") return ProcessEGridCorners();
  if (header.is("LGR", ElementType::Text)) {
    if (!finish()) return false;
    set_.takeLgr();
    pending_ = {};
    return true;
  }
  if (header.is("GRIDHEAD", ElementType::Integer)) {
    if (!finish()) return false;
    takeGridHead();
    return true;
  }
  if (header.is("FILEHEAD", ElementType::Integer)) takeFileHead();
  if (header.is("COORD", ElementType::Single)) takeCoord();
  if (header.is("COORDSYS", ElementType::Integer)) pending_.coordSystem = set_.cursor().integers();
  if (header.is("ZCORN", ElementType::Single)) takeZcorn();
  if (header.is("ACTNUM", ElementType::Integer)) {
    pending_.activity = cellArray();
    pending_.hasActivity = true;
  }
  const bool coarsening = keyword == "CORSNUM" || keyword == "COARSNUM";
  if (coarsening && header.type == ElementType::Integer) pending_.coarse = cellArray();
  if (header.is("HOSTNUM", ElementType::Integer)) pending_.hosts = cellArray();
  set_.takeShared();
  return true;
}

void EGridRecords::takeFileHead() {
  const auto words = set_.cursor().integers();
  if (word(words, 5) != 0) {
    set_.fail(Message::GridType, "0 in word 5", std::to_string(word(words, 5)));
  }
  dualPorosity_ = word(words, 6);
}

void EGridRecords::takeGridHead() {
  const auto words = set_.cursor().integers();
  if (words.size() < 4) set_.fail(Message::GridShortRecord, 4, static_cast<std::int64_t>(words.size()));
  const bool dual = dualPorosity_ >= 1;
  set_.setSize(words[1], words[2], dual ? 2 * static_cast<std::int64_t>(words[3]) : words[3]);
  Hadrick& grid = set_.current();
  grid.iDualPorosity = dualPorosity_;
  grid.nTheta = std::max(word(words, 27), 0);
  grid.iGridType = word(words, 27) < 1 ? 2 : 3;
  auto& index = grid.iIndex;
  const std::array<std::array<std::size_t, 2>, 6> kept{
      {{2, 28}, {3, 29}, {4, 30}, {7, 31}, {6, 32}, {5, 33}}};
  for (const auto& [to, from] : kept) index[to - 1] = word(words, from);
  // The last layer inside the host, which the second system moves down by the layers of the first.
  if (dual && index[4] >= 1) {
    const auto both = static_cast<std::int64_t>(index[4]) + words[3];
    index[4] = static_cast<std::int32_t>(std::clamp<std::int64_t>(both, INT32_MIN, INT32_MAX));
  }
  index[8] = grid.Nx();
  index[9] = grid.Ny();
  index[10] = grid.Nz();
  pending_ = {};
  pending_.nReservoirs = std::max(word(words, 25), 1);
}

void EGridRecords::needSizes() const {
  if (!set_.sized()) set_.fail(Message::GridMissing, "GRIDHEAD before arrays", "none");
}

void EGridRecords::takeCoord() {
  needSizes();
  const Hadrick& grid = set_.current();
  const auto count = set_.cursor().header().count;
  const std::int64_t pillars = (grid.Nx() + std::int64_t{1}) * (grid.Ny() + std::int64_t{1});
  if (count % (6 * pillars) != 0 || count / (6 * pillars) != pending_.nReservoirs) {
    set_.fail(
        Message::GridLength,
        std::to_string(6 * pillars) + " for each of " + std::to_string(pending_.nReservoirs) + " reservoirs",
        std::to_string(count));
  }
  pending_.coord = set_.cursor().singles();
  set_.reportNotFinite(countNotFinite(pending_.coord));
  std::int64_t flat = 0;
  for (std::size_t p = 0; p < pending_.coord.size(); p += 6) {
    const double height = static_cast<double>(pending_.coord[p + 5]) - pending_.coord[p + 2];
    if (!(std::abs(height) > flatPillar)) ++flat;
  }
  if (flat > 0) {
    set_.report(Message::GridFlatPillars, "top and bottom at two depths", std::to_string(flat) + " others",
                "used the top point for all depths");
  }
}

/// The depths are fetched at the end of the grid, when it is known which are wanted.
void EGridRecords::takeZcorn() {
  needSizes();
  const Hadrick& grid = set_.current();
  const RecordHeader& header = set_.cursor().header();
  const std::int64_t whole = 8 * static_cast<std::int64_t>(grid.nCells());
  const bool half = dualPorosity_ >= 1 && header.count == whole / 2;
  if (header.count != whole && !half) {
    set_.fail(Message::GridLength, whole, header.count);
  }
  pending_.zcorn = header;
}

/// An array with one integer for each cell: of a radial grid perhaps for fewer angles, with two porosity
/// systems perhaps for one.
std::vector<std::int32_t> EGridRecords::cellArray() {
  needSizes();
  const Hadrick& grid = set_.current();
  const auto count = set_.cursor().header().count;
  const std::int64_t cells = grid.nCells();
  const bool both = dualPorosity_ >= 1 && count * 2 == cells;
  const std::int32_t Nz = both ? grid.Nz() / 2 : grid.Nz();
  const std::int64_t perAngle = static_cast<std::int64_t>(grid.Nx()) * Nz;
  const std::int64_t wanted = both ? cells / 2 : cells;
  if (count == wanted) return both ? bothPorosities(set_.cursor().integers()) : set_.cursor().integers();
  if (grid.nTheta >= 1 && count > 0 && count < wanted && count % perAngle == 0) {
    const auto values = set_.cursor().integers();
    std::vector<std::int32_t> spread;
    if (spreadOverAngles<std::int32_t>(grid.Nx(), grid.Ny(), Nz, static_cast<std::int32_t>(count / perAngle),
                                       values.size(), values, spread))
      return spread;
  }
  set_.fail(Message::GridLength, cells, count);
}

/// ACTNUM states the cells of each system; all other words apply to the cells of both.
std::vector<std::int32_t> EGridRecords::bothPorosities(std::vector<std::int32_t> values) {
  if (set_.cursor().header().keyword == "ACTNUM") return expandActnum(std::move(values));
  const std::size_t half = values.size();
  values.resize(2 * half);
  std::copy_n(values.begin(), half, values.begin() + static_cast<std::ptrdiff_t>(half));
  return values;
}

/// First and last layer of each reservoir.
std::vector<std::array<std::int32_t, 2>> EGridRecords::ranges() const {
  const Hadrick& grid = set_.current();
  const auto count = static_cast<std::size_t>(pending_.nReservoirs);
  const auto& words = pending_.coordSystem;
  std::vector<std::array<std::int32_t, 2>> found;
  for (std::size_t r = 0; r < count && rangeRows * r + 1 < words.size(); ++r) {
    found.push_back({words[rangeRows * r], words[rangeRows * r + 1]});
  }
  const bool sound = found.size() == count && std::ranges::all_of(found, [&](const auto& range) {
                       return range[0] >= 1 && range[0] <= range[1] && range[1] <= grid.Nz();
                     });
  if (sound) return found;
  if (count > 1)
    set_.fail(Message::GridReservoirs, "COORDSYS for each of " + std::to_string(count),
              std::to_string(found.size()));
  if (!words.empty()) {
    set_.report(Message::GridLayers, "layers 1 to " + std::to_string(grid.Nz()), "others in COORDSYS",
                "used all layers");
  }
  return {{1, grid.Nz()}};
}

bool EGridRecords::ProcessEGridCorners() {
  if (!set_.sized()) return true;  // ENDGRID of a grid that has been finished
  if (pending_.coord.empty()) set_.fail(Message::GridMissing, "COORD", "none");
  if (!pending_.zcorn) set_.fail(Message::GridMissing, "ZCORN", "none");
  RecordCursor& cursor = set_.cursor();
  Hadrick& grid = set_.current();
  if (pending_.hasActivity) grid.setActive(std::move(pending_.activity));
  grid.setPillars(std::move(pending_.coord), ranges());
  const bool coarse = set_.options().coarsened && !pending_.coarse.empty();
  auto blocks = coarse ? set_.coarseBlocks(pending_.coarse) : std::vector<CoarseBlock>{};

  const auto resume = cursor.nextPosition();
  const RecordHeader here = cursor.header();
  cursor.setCurrent(*pending_.zcorn);
  // The corners of a coarsened cell are those of cells that do not count, so that all depths must stay.
  const bool compress = set_.options().compress && blocks.empty();
  std::size_t nNotFinite = 0;
  const bool read = compress ? processActiveCornerPoints_Grid(cursor, grid, set_.session(), nNotFinite)
                             : processCornerPoints_Grid(cursor, {}, grid, set_.session(), nNotFinite);
  if (!read) return false;
  set_.reportNotFinite(nNotFinite);
  // The record that ended the grid may be the first of the next one, and is still to be taken.
  if (!here.keyword.empty()) cursor.setCurrent(here);
  cursor.seek(resume);
  if (!blocks.empty()) grid.setCoarse(std::move(blocks));
  if (!pending_.hosts.empty()) grid.setHostCells(std::move(pending_.hosts));
  set_.complete();
  pending_ = {};
  return true;
}

/// A grid without ENDGRID.
bool EGridRecords::finish() {
  if (!set_.sized()) return true;
  set_.report(Message::GridEnd, "ENDGRID", set_.cursor().header().keyword, "used the records before it",
              pending_.hasActivity ? Certainty::Likely : Certainty::Guess);
  return ProcessEGridCorners();
}

}  // namespace lumbarn
