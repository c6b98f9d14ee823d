#include <algorithm>
#include <filesystem>
#include <utility>

#include "../files/FileChoice.h"
#include "../files/FileSets.h"
#include "../files/Folder.h"
#include "../index/IndexFile.h"
#include "../restart/qvEclipseSOLUTION.h"
#include "../support/Diagnosis.h"
#include "../support/Text.h"
#include "ReaderLoad.h"

namespace lumbarn {

namespace {

bool isRestartIndex(const std::string& zFile) {
  return meaningOf(FileName(zFile).extension).kind == FileKind::Rsspec;
}

/// The files that a restart load reads: a restart index or the root name of a run leads to the run's set, any
/// other file is itself, or a member of its set.
FileChoice restartFilesOf(const std::string& zFile, Session& session) {
  const bool belongsToSet =
      isStepFile(zFile) || meaningOf(FileName(zFile).extension).kind == FileKind::Restart;
  if (isFile(zFile) && !belongsToSet && !isRestartIndex(zFile)) return {.files = {zFile}};
  return chooseFiles(session, zFile, FileKind::Restart);
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
  std::vector<std::string> files;  ///< one unified file, or step files
  std::vector<std::int32_t> iRestartList{-1};
  bool qWriteIndex = false;  ///< asked for by the dialog
};

void qvEclipseReader::ReadSolutionFile(bool& qOK) {
  load(Loaded::Restart, "ReadSolutionFile", qOK, [&] { return readSolution(); });
}

bool qvEclipseReader::readSolution() {
  if (session_->yield()) return false;
  solution_.reset();
  rsspec_.reset();
  if (isRestartIndex(FileName)) readRestartIndex();
  SolutionLoad load;
  load.set = std::make_unique<qvEclipseSOLUTION>(*session_);
  load.files = restartFilesOf(FileName, *session_).files;
  const bool named = isFile(FileName) && !isRestartIndex(FileName);
  const std::string path = named ? FileName : load.files.empty() ? "" : load.files.front();
  if (path.empty()) {
    session_->diagnose(isRestartIndex(FileName)
                           ? Diagnosis{.message = Message::RunMember,
                                       .path = FileName,
                                       .problem = "is an index; no restart files go with it",
                                       .expected = "restart files of the same name",
                                       .action = "read the index only"}
                           : refusal(FileName, FileKind::Restart));
    return false;
  }
  if (!load.set->CheckRESTARTFile(path) || isOfOtherType(path, FileKind::Restart)) {
    session_->diagnose(refusal(path, FileKind::Restart));
    return false;
  }
  Formatted = load.set->Formatted;
  UNIX = load.set->UNIX;
  byteSwap = load.set->byteSwap;
  Unified = load.set->Unified;
  if (!Silent && dialog_ && !chooseSteps(load)) return false;
  if (!setRestartFiles(*load.set, load.files) || session_->yield()) return false;
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

/// The files of a multiple set. A range that holds none of the files is a set without steps. A unified file
/// of one step may lack SEQNUM, so only the name shows that its step is not the number of a file.
bool qvEclipseReader::setRestartFiles(qvEclipseSOLUTION& set, std::vector<std::string> files) {
  if (Unified) return true;
  bool qOK = false;
  auto nFiles = static_cast<std::int32_t>(files.size());
  if (nFiles != 1 || isStepFile(files.front()))
    GetFileListUsingStartAndEnd(iStart, iEnd, Formatted, Unified, {}, nFiles, files, qOK);
  set.SetMultList(nFiles, files, qOK);
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
  if (!setRestartFiles(all, load.files)) return false;
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
  session_->diagnose(Diagnosis{.message = Message::IndexFolder,
                               .path = path,
                               .expected = "IndexFolder",
                               .action = "no index was written"});
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
  perform(routine, qOK, [&] {
    if (!requireLoaded(solution_ != nullptr, "restart")) return false;
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
  return RestartValues(iSeqnum, iGrid, grid ? grid->arrays.find(upper(trim(zName))) : 0);
}

}  // namespace lumbarn
