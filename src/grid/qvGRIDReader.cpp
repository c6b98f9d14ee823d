#include "qvGRIDReader.h"

#include <string>
#include <utility>

#include "../support/Guarded.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvGRIDReader";
constexpr std::int32_t gridFile = 1;
constexpr std::int32_t egridFile = 2;
constexpr std::int32_t gridFileKind = 14;

}  // namespace

bool qvGRIDReader::check(std::string_view zFile, bool egrid, const char* routine) {
  bool qOK = false;
  guarded(*session_, qOK, className, routine, [&] {
    const auto file = recogniseGridFile(std::string(zFile), egrid);
    if (!file) return false;
    FileName = file->path;
    setForm(file->form.form());
    FORTRAN = true;
    return true;
  });
  return qOK;
}

void qvGRIDReader::setGRIDFileTypeProps(cFILETYPE& xFile, bool& qOK) const {
  xFile.setFlags(*this);
  xFile.IOMethod = session_->IOMethod;
  xFile.UseBufferedInput = usesBufferedInput(gridFileKind);
  qOK = true;
}

void qvGRIDReader::ReadEclipseGridFile(bool& qOK) {
  FileType = gridFile;
  guarded(*session_, qOK, className, "ReadEclipseGridFile", [&] { return readGrids(); });
}

void qvGRIDReader::ReadEclipseEGridFile(bool& qOK) {
  FileType = egridFile;
  guarded(*session_, qOK, className, "ReadEclipseEGridFile", [&] { return readGrids(); });
}

bool qvGRIDReader::readGrids(std::shared_ptr<const ByteSource> source) {
  const GridFile file{.path = FileName, .form = *this, .egrid = FileType == egridFile};
  if (!source) source = file.open();
  nGrids = 0;
  qDamaged = false;
  xGrids.clear();
  ThisGridData.reset();
  const GridReadOptions options{HPGFolder, byteSwap, CompressOnLoad && !Formatted, NoInactive, Coarsened};
  GridFileContent content;
  const auto keep = [&] {
    xGrids = std::move(content.grids);
    qDamaged = content.damaged;
    setRead();
  };
  try {
    const bool complete = readGridFile(file, std::move(source), options, *session_, content);
    keep();
    return complete;
  } catch (...) {
    keep();
    throw;
  }
}

void qvGRIDReader::setRead() {
  nGrids = static_cast<std::int32_t>(xGrids.size());
  GridNumber = nGrids;
  if (nGrids > 0) ThisGridData = xGrids.back();
  GridName = ThisGridData ? ThisGridData->zName : "";
}

void qvGRIDReader::GetGRIDData(std::int32_t iGrid, std::shared_ptr<Hadrick>& cGridData, bool& qOK) {
  qOK = iGrid >= 1 && iGrid <= nGrids;
  if (!qOK) return;
  ThisGridData = xGrids[static_cast<std::size_t>(iGrid) - 1];
  GridNumber = iGrid;
  GridName = ThisGridData->zName;
  cGridData = ThisGridData;
}

}  // namespace lumbarn
