#include <algorithm>
#include <filesystem>
#include <utility>

#include "../files/Families.h"
#include "../files/FileSets.h"
#include "../index/IndexFile.h"
#include "../record/ByteSource.h"
#include "../restart/qvEclipseSOLUTION.h"
#include "../support/Diagnosis.h"
#include "../support/Guarded.h"
#include "qvEclipseReader.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseReader";

bool isRestartIndex(const std::string& zFile) {
  return meaningOf(FileName(zFile).extension).kind == FileKind::Rsspec;
}

/// The file that a restart load reads: a restart index leads to the set that it is the index of, any other
/// file is itself. Empty when the index stands alone.
std::string restartFileOf(const std::string& zFile) {
  if (!isRestartIndex(zFile)) return zFile;
  std::string why;
  const auto runs = findRuns(zFile, why);
  const RunMember* found = runs.empty() ? nullptr : runs.front().find(FileKind::Restart);
  return found ? found->path : std::string();
}

/// The names of all arrays of a set, in order of first appearance, and the numbers of its steps.
void fillChoice(const qvEclipseSOLUTION& all, ECLIPSEINFO& selection, LoadDialogSettings& settings) {
  std::vector<std::string> names;
  for (std::int32_t i = 1; i <= all.NumSequences(); ++i) {
    const auto& step = all.step(i);
    settings.iRestartList.push_back(step.iSeqnum);
    for (std::int32_t grid = 1; grid <= step.nGrids; ++grid) {
      for (const auto& array : step.grid(grid).arrays.arrays()) {
        if (std::ranges::find(names, array.name) == names.end()) names.push_back(array.name);
      }
    }
  }
  selection.nSolutionVectors = static_cast<std::int32_t>(names.size());
  selection.bSolutionNames = ByteTable(onlyNameWidth, names.size());
  selection.qSolutionChosen.assign(names.size(), true);
  for (std::size_t i = 0; i < names.size(); ++i) {
    selection.bSolutionNames.put(i + 1, 1, onlyNameWidth, names[i]);
  }
}

}  // namespace

/// What one restart load has found out before it reads.
struct qvEclipseReader::SolutionLoad {
  std::unique_ptr<qvEclipseSOLUTION> set;
  std::vector<std::int32_t> iRestartList{-1};
  bool qWriteIndex = false;  ///< asked for by the dialog
};

void qvEclipseReader::ReadSolutionFile(bool& qOK) {
  guarded(*session_, qOK, className, "ReadSolutionFile", [&] { return readSolution(); });
}

bool qvEclipseReader::readSolution() {
  if (session_->yield()) return false;
  solution_.reset();
  rsspec_.reset();
  if (isRestartIndex(FileName)) readRestartIndex();
  SolutionLoad load;
  load.set = std::make_unique<qvEclipseSOLUTION>(*session_);
  const std::string path = restartFileOf(FileName);
  if (path.empty() || !load.set->CheckRESTARTFile(path)) {
    tellNoRestart(path);
    return false;
  }
  Formatted = load.set->Formatted;
  UNIX = load.set->UNIX;
  byteSwap = load.set->byteSwap;
  Unified = load.set->Unified;
  if (!Silent && dialog_ && !chooseSteps(load)) return false;
  if (!listRestartFiles(*load.set) || session_->yield()) return false;
  return loadSolution(load);
}

/// An index that cannot be read takes nothing from the files that it is the index of.
void qvEclipseReader::readRestartIndex() {
  auto index = std::make_unique<qvEclipseRSSPEC>(*session_);
  bool qOK = false;
  index->CheckRESTARTFile(FileName, qOK);
  if (qOK) index->getRSSPECData(qOK);
  if (qOK) rsspec_ = std::move(index);
}

/// A check that says no ends a load without a message; the diagnosis is for whoever wants to know.
void qvEclipseReader::tellNoRestart(const std::string& path) {
  Diagnosis diagnosis;
  diagnosis.path = path.empty() ? FileName : path;
  const auto source = FileSource::open(diagnosis.path, diagnosis.problem);
  if (path.empty()) {
    diagnosis.problem = "is an index; no restart files go with it";
  } else if (source) {
    diagnosis.problem = source->size() == 0 ? "file is empty" : "is no restart file";
  }
  session_->diagnose(std::move(diagnosis));
}

/// The files of a multiple set. A file whose name belongs to no set is read alone; a range that holds none of
/// the files is a set without steps.
bool qvEclipseReader::listRestartFiles(qvEclipseSOLUTION& set) {
  if (Unified) return true;
  bool qOK = false;
  std::int32_t nFiles = 0;
  std::vector<std::string> zFiles;
  GetFileNamesToLoad(set.FileName, iStart, iEnd, Unified, "SOLUTION", nFiles, zFiles, qOK, *session_);
  if (!qOK) return false;
  if (zFiles.empty()) zFiles = {set.FileName}, nFiles = 1;
  set.SetMultList(nFiles, zFiles, qOK);
  return qOK;
}

bool qvEclipseReader::chooseSteps(SolutionLoad& load) {
  qvEclipseSOLUTION all(*session_);
  bool qOK = false;
  all.CheckRESTARTFile(load.set->FileName);
  all.LoadData = false;
  all.iStart = all.iEnd = -1;
  all.AcceptDamaged = true;
  all.setONLYList({}, true, qOK);
  if (!listRestartFiles(all)) return false;
  all.getSOLUTIONData(qOK);
  if (!qOK) return false;

  auto& shared = session_->part<SelectionState>().xInfo;
  InitEclipseINFO(shared, qOK);
  LoadDialogSettings settings;
  settings.Unified = Unified;
  settings.Formatted = Formatted;
  settings.byteSwap = byteSwap;
  settings.FileName = load.set->FileName;
  settings.zFileType = "SOLUTION";
  fillChoice(all, shared, settings);
  const auto allSteps = settings.iRestartList;
  if (!dialog_->showArrays(shared, settings)) return false;

  CreateOnlyList(11, shared, bOnly, qOnly, qOK);
  if (!qOK) return false;
  iStart = settings.iStart;
  iEnd = settings.iEnd;
  zOrigin = settings.zOrigin;
  load.qWriteIndex = settings.writeIndex;
  if (settings.iRestartList != allSteps && !settings.iRestartList.empty()) {
    load.iRestartList = settings.iRestartList;
  }
  return true;
}

bool qvEclipseReader::loadSolution(SolutionLoad& load) {
  bool qOK = false;
  solution_ = std::move(load.set);
  auto& set = *solution_;
  set.LoadData = LoadData;
  set.setbONLYList(bOnly, qOnly, qOK);
  auto only = VectorPatterns;
  auto except = ExceptPatterns;
  if (!zOnly.empty()) only.push_back(zOnly);
  if (!zExcept.empty()) except.push_back(zExcept);
  set.selection = ArraySelection(only, except);
  set.setMarkerMethod(MarkerMethod);
  set.qMarkers = set.qMarkers || FullWellInfo;
  set.iStart = iStart;
  set.iEnd = iEnd;
  set.iRestartList = std::move(load.iRestartList);
  SetOriginFromFileName();
  set.Origin = zOrigin;
  set.AcceptDamaged = AcceptDamaged;
  set.getSOLUTIONData(qOK);
  if (iStart != -1) AllData = false;
  if (qOK && (load.qWriteIndex || !IndexFolder.empty())) qOK = writeRestartIndex(set);
  return qOK;
}

/// Index files are never written beside the data unless the host names their folder.
bool qvEclipseReader::hasIndexFolder(const std::string& path) const {
  if (!IndexFolder.empty()) return true;
  Diagnosis diagnosis;
  diagnosis.path = path;
  diagnosis.problem = "no folder is named for the index";
  diagnosis.action = "no index was written";
  session_->diagnose(std::move(diagnosis));
  return false;
}

std::string qvEclipseReader::indexPath(const std::string& path, std::string_view kind) const {
  const auto name = lumbarn::FileName(path).base + (Formatted ? ".F" : ".") + std::string(kind);
  return (std::filesystem::path(IndexFolder) / name).string();
}

/// Writes the index of the files that were read.
bool qvEclipseReader::writeRestartIndex(const qvEclipseSOLUTION& set) {
  if (!hasIndexFolder(set.FileName)) return true;
  bool qWritten = false;
  WriteEclipseRsspecFile(walkRestart(*session_, set.zMultList), indexPath(set.FileName, "RSSPEC"), qWritten,
                         *session_);
  return qWritten;
}

/// What all fetches of a step have in common.
template <class Fetch>
void qvEclipseReader::fetchStep(const char* routine, bool& qOK, Fetch fetch) {
  guarded(*session_, qOK, className, routine, [&] {
    if (!solution_) return false;
    solution_->iGridNumber = iGridNumber;
    bool qDone = false;
    fetch(*solution_, qDone);
    return qDone;
  });
}

void qvEclipseReader::GetRESTARTSEQUENCE(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                         SourceData& vSourceData, MarkerTable& vMarkers,
                                         std::int32_t& nMarkers, bool& qOK) {
  fetchStep("GetRESTARTSEQUENCE", qOK, [&](qvEclipseSOLUTION& set, bool& qDone) {
    set.GetSingleSEQUENCE(iSeqnum, xyData, bHeaders, vSourceData, vMarkers, nMarkers, qDone);
  });
}

void qvEclipseReader::GetRESTARTSEQUENCEb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                          SourceData& vSourceData, std::vector<std::byte>& bMarkers,
                                          std::int32_t& nMarkers, bool& qOK) {
  fetchStep("GetRESTARTSEQUENCEb", qOK, [&](qvEclipseSOLUTION& set, bool& qDone) {
    set.GetSingleSEQUENCEb(iSeqnum, xyData, bHeaders, vSourceData, bMarkers, nMarkers, qDone);
  });
}

void qvEclipseReader::GetRESTARTSEQUENCEFOD(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                            SourceData& vSourceData, MarkerTable& vMarkers,
                                            std::int32_t& nMarkers, ColumnTable<std::int32_t>& iFOD,
                                            bool& qFOD, bool& qOK) {
  fetchStep("GetRESTARTSEQUENCEFOD", qOK, [&](qvEclipseSOLUTION& set, bool& qDone) {
    set.GetSingleSEQUENCEFOD(iSeqnum, xyData, bHeaders, vSourceData, vMarkers, nMarkers, iFOD, qFOD, qDone);
  });
}

void qvEclipseReader::GetRESTARTSEQUENCEFODb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                                             SourceData& vSourceData, std::vector<std::byte>& bMarkers,
                                             std::int32_t& nMarkers, ColumnTable<std::int32_t>& iFOD,
                                             bool& qFOD, bool& qOK) {
  fetchStep("GetRESTARTSEQUENCEFODb", qOK, [&](qvEclipseSOLUTION& set, bool& qDone) {
    set.GetSingleSEQUENCEFODb(iSeqnum, xyData, bHeaders, vSourceData, bMarkers, nMarkers, iFOD, qFOD, qDone);
  });
}

void qvEclipseReader::DeleteRESTARTSEQUENCE(std::int32_t iSeqnum, bool& qOK) {
  fetchStep("DeleteRESTARTSEQUENCE", qOK,
            [&](qvEclipseSOLUTION& set, bool& qDone) { set.DeleteSingleSEQUENCE(iSeqnum, qDone); });
}

void qvEclipseReader::GetRESTARTSEQUENCENxNyNz(std::int32_t iSeqnum, SourceData& vSourceData, bool& qOK) {
  fetchStep("GetRESTARTSEQUENCENxNyNz", qOK,
            [&](qvEclipseSOLUTION& set, bool& qDone) { set.getNxNyNzInfo(iSeqnum, vSourceData, qDone); });
}

void qvEclipseReader::getEclipseFODInfo(FileTypeSettings& qFileTypeSettings, bool& qOK) {
  fetchStep("getEclipseFODInfo", qOK,
            [&](qvEclipseSOLUTION& set, bool& qDone) { set.getEclipseSOLFODInfo(qFileTypeSettings, qDone); });
}

std::int32_t qvEclipseReader::getWellPVTNum(std::string_view zWell, bool& qOK, std::int32_t iWellIndex) {
  std::int32_t number = -1;
  fetchStep("getWellPVTNum", qOK, [&](qvEclipseSOLUTION& set, bool& qDone) {
    number = set.getWellPVTNum(zWell, qDone, iWellIndex);
  });
  return number;
}

std::vector<RestartStep> qvEclipseReader::RestartSteps() const {
  return solution_ ? solution_->steps() : std::vector<RestartStep>{};
}

const RESTARTGRID* qvEclipseReader::RestartGrid(std::int32_t iSeqnum, std::int32_t iGrid) const {
  if (!solution_ || iSeqnum < 1 || iSeqnum > solution_->NumSequences()) return nullptr;
  const auto& step = solution_->step(iSeqnum);
  return iGrid >= 1 && iGrid <= step.nGrids ? &step.grid(iGrid) : nullptr;
}

std::span<const float> qvEclipseReader::RestartValues(std::int32_t iSeqnum, std::int32_t iGrid,
                                                      std::int32_t iVector) const {
  const RESTARTGRID* grid = RestartGrid(iSeqnum, iGrid);
  const bool held = grid && grid->arrays.hasValues() && iVector >= 1 && iVector <= grid->arrays.nVectors();
  return held ? grid->arrays.column(iVector) : std::span<const float>();
}

std::span<const float> qvEclipseReader::RestartValues(std::int32_t iSeqnum, std::int32_t iGrid,
                                                      std::string_view zName) const {
  const RESTARTGRID* grid = RestartGrid(iSeqnum, iGrid);
  return RestartValues(iSeqnum, iGrid, grid ? grid->arrays.find(zName) : 0);
}

}  // namespace lumbarn
