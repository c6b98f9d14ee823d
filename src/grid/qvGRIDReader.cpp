#include "qvGRIDReader.h"

#include <exception>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "../support/Guarded.h"
#include "EGridRecords.h"
#include "GridRecords.h"
#include "GridSet.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvGRIDReader";
constexpr std::int32_t gridFile = 1;
constexpr std::int32_t egridFile = 2;
constexpr std::int32_t gridFileKind = 14;

}  // namespace

bool qvGRIDReader::check(std::string_view zFile, std::string_view keyword, const char* routine) {
  bool qOK = false;
  guarded(*session_, qOK, className, routine, [&] {
    const std::string path(zFile);
    std::string error;
    const auto source = FileSource::open(path, error);
    if (!source) return false;
    const std::string_view keywords[] = {keyword};
    const auto detected = detectForm(*source, keywords);
    if (!detected) return false;
    FileName = path;
    setForm(detected->form);
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

void qvGRIDReader::ReadEclipseGridFile(bool& qOK) { readFile(gridFile, "ReadEclipseGridFile", qOK); }
void qvGRIDReader::ReadEclipseEGridFile(bool& qOK) { readFile(egridFile, "ReadEclipseEGridFile", qOK); }

void qvGRIDReader::readFile(std::int32_t fileType, const char* routine, bool& qOK) {
  FileType = fileType;
  guarded(*session_, qOK, className, routine, [&] {
    std::string error;
    std::shared_ptr<const ByteSource> source = FileSource::open(FileName, error);
    if (source) return readRecords(std::move(source));
    session_->diagnose(Diagnosis{.message = Message::FileOpen, .path = FileName, .problem = error});
    return false;
  });
}

void qvGRIDReader::readGrids(std::shared_ptr<const ByteSource> source, bool& qOK) {
  guarded(*session_, qOK, className, "readGrids", [&] { return readRecords(std::move(source)); });
}

bool qvGRIDReader::readRecords(std::shared_ptr<const ByteSource> source) {
  nGrids = 0;
  qDamaged = false;
  xGrids.clear();
  ThisGridData.reset();
  cFILETYPE xFile(*session_);
  bool qOK = false;
  setGRIDFileTypeProps(xFile, qOK);
  RecordCursor cursor(source, xFile.form(), FileName);
  cursor.attach(*session_, FileType == egridFile ? RecordFile::EGrid : RecordFile::Grid);
  const GridReadOptions options{HPGFolder, byteSwap, CompressOnLoad && !Formatted, NoInactive, Coarsened};
  GridSet set(cursor, options, *session_);
  GridRecords cells(set, source);
  bool whole = false, passed = false;
  // Keeps the complete grids; says how many there are.
  const auto keep = [&](bool damaged) {
    qDamaged = damaged;
    set.join();
    xGrids = std::move(set.grids);
    setRead();
    return fmt::format("kept {} {}", nGrids, nGrids == 1 ? "grid" : "grids");
  };
  try {
    EGridRecords arrays(set);
    whole = FileType == egridFile ? arrays.read() : cells.read();
    passed = arrays.damaged();
    if (whole && set.grids.empty()) set.fail(Message::GridMissing, "a grid", "none");
    cursor.checkUnchanged();
  } catch (const LoadCanceled&) {
    keep(false);
    return false;
  } catch (BadRecord& damage) {
    Diagnosis& diagnosis = damage.diagnosis();
    // The records of most cells pass by the cursor.
    if (diagnosis.keyword == "COORDS" || diagnosis.keyword == "CORNERS") {
      diagnosis.occurrence += cells.uncounted();
    }
    diagnosis.action = keep(true);
    throw;
  } catch (const std::exception& fault) {
    session_->diagnose(Diagnosis{.message = Message::SystemFault,
                                 .path = FileName,
                                 .problem = fault.what(),
                                 .keyword = cursor.header().keyword,
                                 .offset = cursor.header().headerAt,
                                 .action = keep(true)});
    throw;
  }
  keep(passed);
  return whole && !passed;
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
