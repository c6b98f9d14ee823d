#include "ReaderLoad.h"

namespace lumbarn {

void qvEclipseReader::ReadGridOrEGridFile(std::int32_t iGridType, bool& qOK) {
  constexpr std::int32_t egridCode = 23;
  load(parts_->grid, "ReadGridOrEGridFile", qOK,
       [&] { parts_->grid.load(iGridType == egridCode ? FileKind::EGrid : FileKind::Grid); });
}

bool qvEclipseReader::HPGFileTest() {
  bool qUsable = false;
  perform("HPGFileTest", qUsable, [&] { return parts_->grid.hasUsableCache(); });
  return qUsable;
}

std::int32_t qvEclipseReader::NumberGrids() const {
  return parts_->deck.holdsGrid(parts_->grid) ? Deck()->nGrids() : parts_->grid.nGrids();
}

void qvEclipseReader::GetGRIDData(std::int32_t iGrid, std::shared_ptr<Hadrick>& cGridData, bool& qOK) {
  fetch(parts_->grid, "GetGRIDData", qOK,
        [&](GridPart& grid, bool& qDone) { grid.reader().GetGRIDData(iGrid, cGridData, qDone); });
}

void qvEclipseReader::getCorners(std::int32_t iGrid, XYData& sCorners, std::int32_t& nActive, bool& qOK) {
  perform("getCorners", qOK, [&] {
    if (parts_->deck.holdsGrid(parts_->grid)) {
      require([&](bool& qDone) { Deck()->getcorners(iGrid, sCorners, nActive, qDone); });
      return true;
    }
    const auto grid = parts_->grid.gridWithGeometry(iGrid);
    if (!grid) return false;
    parts_->grid.fillCorners(*grid, sCorners);
    nActive = grid->nActive();
    return true;
  });
}

void qvEclipseReader::CreateCorners(std::int32_t iGrid, bool& qOK) {
  if (parts_->deck.holdsGrid(parts_->grid)) return Deck()->createcorners(iGrid, qOK);
  qOK = parts_->grid.gridWithGeometry(iGrid) != nullptr;
}

void qvEclipseReader::SetACTNUM(std::int32_t iGrid, const std::vector<std::int32_t>& iACTNUM, bool& qOK) {
  perform("SetACTNUM", qOK, [&] {
    if (parts_->deck.holdsGrid(parts_->grid)) {
      require([&](bool& qDone) { Deck()->setACTNUM(iGrid, iACTNUM, qDone); });
      return true;
    }
    const auto grid = parts_->grid.grid(iGrid);
    if (!grid) return false;
    // Deliberate: a list of another length is no failure, and has no effect.
    if (iACTNUM.size() == static_cast<std::size_t>(grid->nCells())) parts_->grid.setActivity(*grid, iACTNUM);
    return true;
  });
}

}  // namespace lumbarn
