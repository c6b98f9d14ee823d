#include <filesystem>
#include <utility>

#include "../files/FileChoice.h"
#include "../grid/GridCache.h"
#include "../grid/qvGridProcessor.h"
#include "ReaderLoad.h"

namespace lumbarn {

namespace {

constexpr std::int32_t egridCode = 23;
constexpr std::size_t rowItems = 24;

}  // namespace

void qvEclipseReader::ReadGridOrEGridFile(std::int32_t iGridType, bool& qOK) {
  load(Loaded::Grid, "ReadGridOrEGridFile", qOK, [&] { return readGrids(iGridType); });
}

bool qvEclipseReader::readGrids(std::int32_t iGridType) {
  if (session_->yield()) return false;
  auto grid = std::make_unique<qvGRIDReader>(*session_);
  const bool egrid = iGridType == egridCode;
  const FileKind kind = egrid ? FileKind::EGrid : FileKind::Grid;
  const std::string path = fileOfRun(FileName, kind);
  if (!(egrid ? grid->CheckEGRIDFile(path) : grid->CheckGRIDFile(path))) {
    session_->diagnose(refusal(path, kind));
    return false;
  }
  Formatted = grid->Formatted;
  UNIX = grid->UNIX;
  byteSwap = grid->byteSwap;
  SetFileProps();
  HPGChosenFile.clear();
  grid->HPGFolder = HPGFolder;
  grid->Origin = zOrigin;
  grid->CompressOnLoad = CompressOnLoad;
  grid->NoInactive = NoInactive;
  grid->Coarsened = Coarsened;
  grid_ = std::move(grid);
  const GridCache cache(HPGFileName, *grid_, *session_);
  if (LoadHPGridFiles && !HPGFolder.empty() && cache.load(grid_->xGrids)) {
    grid_->setRead();
    HPGChosenFile = HPGFileName;
    return true;
  }
  bool qOK = false;
  if (egrid) {
    grid_->ReadEclipseEGridFile(qOK);
  } else {
    grid_->ReadEclipseGridFile(qOK);
  }
  if (qOK && SaveHPGridFiles && !HPGFolder.empty()) cache.save(grid_->xGrids);
  return qOK || (AcceptDamaged && grid_->qDamaged && grid_->nGrids > 0);
}

void qvEclipseReader::SetFileProps() {
  SetOriginFromFileName();
  if (!HPGFileName.empty() || HPGFolder.empty()) return;
  const auto name = "HPG" + lumbarn::FileName(FileName).base + ".gfile";
  HPGFileName = (std::filesystem::path(HPGFolder) / name).string();
}

bool qvEclipseReader::HPGFileTest() {
  bool qUsable = false;
  perform("HPGFileTest", qUsable, [&] {
    SetFileProps();
    qvGRIDReader grid(*session_);
    if (HPGFolder.empty() || !(grid.CheckEGRIDFile(FileName) || grid.CheckGRIDFile(FileName))) return false;
    grid.CompressOnLoad = CompressOnLoad;
    grid.NoInactive = NoInactive;
    grid.Coarsened = Coarsened;
    return GridCache(HPGFileName, grid, *session_).usable();
  });
  return qUsable;
}

Hadrick* qvEclipseReader::gridAt(std::int32_t iGrid) const {
  if (iGrid < 1 || iGrid > NumberGrids()) return nullptr;
  return grid_->xGrids[static_cast<std::size_t>(iGrid) - 1].get();
}

void qvEclipseReader::GetGRIDData(std::int32_t iGrid, std::shared_ptr<Hadrick>& cGridData, bool& qOK) {
  qOK = false;
  if (requireLoaded(grid_ != nullptr, "grid")) grid_->GetGRIDData(iGrid, cGridData, qOK);
}

void qvEclipseReader::getCorners(std::int32_t iGrid, XYData& sCorners, std::int32_t& nActive, bool& qOK) {
  perform("getCorners", qOK, [&] {
    const Hadrick* grid = gridAt(iGrid);
    if (!grid || !grid->hasGeometry()) return false;
    const auto rows = static_cast<std::size_t>(grid->nActive());
    if (sCorners.rows() != rowItems || sCorners.columns() != rows)
      sCorners = XYData(rowItems, rows, *session_);
    if (rows > 0) grid->activeCorners(1, sCorners.values());
    nActive = grid->nActive();
    return true;
  });
}

void qvEclipseReader::CreateCorners(std::int32_t iGrid, bool& qOK) {
  const Hadrick* grid = gridAt(iGrid);
  qOK = grid && grid->hasGeometry();
}

void qvEclipseReader::SetACTNUM(std::int32_t iGrid, const std::vector<std::int32_t>& iACTNUM, bool& qOK) {
  perform("SetACTNUM", qOK, [&] {
    Hadrick* grid = gridAt(iGrid);
    if (!grid) return false;
    // Deliberate: a list of another length is no failure, and has no effect.
    if (iACTNUM.size() != static_cast<std::size_t>(grid->nCells())) return true;
    const auto refused = grid->setActive(iACTNUM);
    if (refused > 0) {
      session_->diagnose(Diagnosis{.message = Message::CellGeometry,
                                   .path = FileName,
                                   .problem = "geometry of inactive cells was not kept, grid " + grid->zName,
                                   .found = std::to_string(refused) + " cells to become active",
                                   .action = "left them inactive"});
    }
    return true;
  });
}

}  // namespace lumbarn
