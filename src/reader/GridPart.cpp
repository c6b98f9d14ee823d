#include "GridPart.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>

#include "../files/FileChoice.h"
#include "../files/Recogniser.h"
#include "../grid/GridCache.h"
#include "../support/Text.h"

namespace lumbarn {

void GridPart::load(FileKind kind) {
  yield();
  auto reader = std::make_unique<qvGRIDReader>(session());
  const bool egrid = kind == FileKind::EGrid;
  const std::string path = fileOfRun(options().FileName, kind);
  if (!(egrid ? reader->CheckEGRIDFile(path) : reader->CheckGRIDFile(path))) failWith(refusal(path, kind));
  setForm(*reader);
  setFileProps();
  options().HPGChosenFile.clear();
  reader->HPGFolder = options().HPGFolder;
  reader->Origin = options().zOrigin;
  setOptions(*reader);
  reader_ = std::move(reader);
  const GridCache cache(options().HPGFileName, *reader_, session());
  const bool haveFolder = !options().HPGFolder.empty();
  if (options().LoadHPGridFiles && haveFolder && cache.load(reader_->xGrids)) {
    reader_->setRead();
    options().HPGChosenFile = options().HPGFileName;
    return;
  }
  bool qOK = false;
  egrid ? reader_->ReadEclipseEGridFile(qOK) : reader_->ReadEclipseGridFile(qOK);
  if (qOK && options().SaveHPGridFiles && haveFolder) cache.save(reader_->xGrids);
  const bool accepted = options().AcceptDamaged && reader_->qDamaged && reader_->nGrids > 0;
  if (!qOK && !accepted) throw ReportedFailure();
}

void GridPart::setFileProps() const {
  setOrigin();
  if (!options().HPGFileName.empty() || options().HPGFolder.empty()) return;
  const auto name = "HPG" + FileName(options().FileName).base + ".gfile";
  options().HPGFileName = (std::filesystem::path(options().HPGFolder) / name).string();
}

void GridPart::setOptions(qvGRIDReader& reader) const {
  reader.CompressOnLoad = options().CompressOnLoad;
  reader.NoInactive = options().NoInactive;
  reader.Coarsened = options().Coarsened;
}

bool GridPart::hasUsableCache() const {
  setFileProps();
  qvGRIDReader reader(session());
  const std::string& path = options().FileName;
  if (options().HPGFolder.empty() || !(reader.CheckEGRIDFile(path) || reader.CheckGRIDFile(path)))
    return false;
  setOptions(reader);
  return GridCache(options().HPGFileName, reader, session()).usable();
}

std::shared_ptr<Hadrick> GridPart::grid(std::int32_t iGrid) const {
  if (iGrid < 1 || iGrid > nGrids()) return nullptr;
  return reader_->xGrids[static_cast<std::size_t>(iGrid) - 1];
}

std::shared_ptr<Hadrick> GridPart::grid(std::string_view zName) const {
  const auto& grids = reader_->xGrids;
  const auto found =
      std::ranges::find_if(grids, [&](const auto& grid) { return upper(grid->zName) == upper(zName); });
  return found == grids.end() ? nullptr : *found;
}

std::shared_ptr<const Hadrick> GridPart::gridWithGeometry(std::int32_t iGrid) const {
  const auto found = grid(iGrid);
  return found && found->hasGeometry() ? found : nullptr;
}

void GridPart::fillCorners(const Hadrick& grid, XYData& sCorners) const {
  constexpr std::size_t rowItems = 24;
  const auto rows = static_cast<std::size_t>(grid.nActive());
  if (sCorners.rows() != rowItems || sCorners.columns() != rows) sCorners = XYData(rowItems, rows, session());
  if (rows > 0) grid.activeCorners(1, sCorners.values());
}

void GridPart::setActivity(Hadrick& grid, const std::vector<std::int32_t>& iACTNUM) const {
  const auto refused = grid.setActive(iACTNUM);
  if (refused <= 0) return;
  session().diagnose(Diagnosis{.message = Message::CellGeometry,
                               .path = options().FileName,
                               .problem = "geometry of inactive cells was not kept, grid " + grid.zName,
                               .found = std::to_string(refused) + " cells to become active",
                               .action = "left them inactive"});
}

}  // namespace lumbarn
