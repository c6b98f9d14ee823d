#include "RestartPart.h"

#include <algorithm>
#include <utility>

#include "../files/FileChoice.h"
#include "../files/FileSets.h"
#include "../files/Folder.h"
#include "../files/Recogniser.h"
#include "../index/IndexFile.h"
#include "../index/RestartIndex.h"
#include "../support/Text.h"
#include "LoadDialog.h"

namespace lumbarn {

namespace {

bool isRestartIndex(const std::string& path) {
  return meaningOf(FileName(path).extension).kind == FileKind::Rsspec;
}

/// The files that a restart load reads: a restart index or the root name of a run leads to the run's set, any
/// other file is itself, or a member of its set.
std::vector<std::string> restartFilesOf(const std::string& path, Session& session) {
  const bool belongsToSet = isStepFile(path) || meaningOf(FileName(path).extension).kind == FileKind::Restart;
  if (isFile(path) && !belongsToSet && !isRestartIndex(path)) return {path};
  return chooseFiles(session, path, FileKind::Restart).files;
}

/// The names of all arrays of a set, in order of first appearance.
std::vector<std::string> arrayNames(const qvEclipseSOLUTION& set) {
  std::vector<std::string> names;
  for (std::int32_t i = 1; i <= set.NumSequences(); ++i) {
    const auto& step = set.step(i);
    for (std::int32_t grid = 1; grid <= step.nGrids; ++grid) {
      for (const auto& array : step.grid(grid).arrays.arrays()) {
        if (std::ranges::find(names, array.name) == names.end()) names.push_back(array.name);
      }
    }
  }
  return names;
}

std::vector<std::int32_t> stepNumbers(const qvEclipseSOLUTION& set) {
  std::vector<std::int32_t> numbers;
  for (std::int32_t i = 1; i <= set.NumSequences(); ++i) numbers.push_back(set.step(i).iSeqnum);
  return numbers;
}

}  // namespace

void RestartIndexPart::load() {
  auto index = std::make_unique<qvEclipseRSSPEC>(session());
  bool qOK = false;
  index->CheckRESTARTFile(options().FileName, qOK);
  if (qOK) index->getRSSPECData(qOK);
  if (qOK) index_ = std::move(index);
}

/// What was chosen before the set is read.
struct RestartPart::Choice {
  std::vector<std::string> files;  ///< one unified file, or step files
  std::vector<std::int32_t> iRestartList{-1};
  bool qWriteIndex = false;  ///< asked for by the dialog
};

std::vector<std::string> RestartPart::unmatched() const {
  return set_ ? set_->selection.unmatched() : std::vector<std::string>();
}

void RestartPart::load() {
  yield();
  set_.reset();
  index_->release();
  if (isRestartIndex(options().FileName)) index_->load();
  Choice choice;
  choice.files = restartFilesOf(options().FileName, session());
  auto set = open(choice.files);
  if (dialog()) chooseByDialog(*set, choice);
  setFiles(*set, choice.files);
  yield();
  set_ = std::move(set);
  read(choice);
}

std::unique_ptr<qvEclipseSOLUTION> RestartPart::open(const std::vector<std::string>& files) const {
  const std::string& zFile = options().FileName;
  const bool index = isRestartIndex(zFile);
  const bool named = isFile(zFile) && !index;
  const std::string path = named ? zFile : files.empty() ? "" : files.front();
  if (path.empty()) {
    failWith(index ? Diagnosis{.message = Message::RunMember,
                               .path = zFile,
                               .problem = "is an index; no restart files go with it",
                               .expected = "restart files of the same name",
                               .action = "read the index only"}
                   : refusal(zFile, FileKind::Restart));
  }
  auto set = std::make_unique<qvEclipseSOLUTION>(session());
  if (!set->CheckRESTARTFile(path) || isOfOtherType(path, FileKind::Restart))
    failWith(refusal(path, FileKind::Restart));
  setForm(*set);
  options().Unified = set->Unified;
  return set;
}

/// The files of a multiple set. A range that holds none of the files is a set without steps. A unified file
/// of one step may lack SEQNUM, so only the name shows that its step is not the number of a file.
void RestartPart::setFiles(qvEclipseSOLUTION& set, std::vector<std::string> files) const {
  if (options().Unified) return;
  auto nFiles = static_cast<std::int32_t>(files.size());
  bool qOK = false;
  if (nFiles != 1 || isStepFile(files.front()))
    GetFileListUsingStartAndEnd(options().iStart, options().iEnd, options().Formatted, options().Unified, {},
                                nFiles, files, qOK);
  require([&](bool& qSet) { set.SetMultList(nFiles, files, qSet); });
}

void RestartPart::chooseByDialog(const qvEclipseSOLUTION& set, Choice& choice) const {
  qvEclipseSOLUTION all(session());
  bool qOK = false;
  all.CheckRESTARTFile(set.FileName);
  all.LoadData = false;
  all.iStart = all.iEnd = -1;
  all.AcceptDamaged = true;
  all.setONLYList({}, true, qOK);
  setFiles(all, choice.files);
  require([&](bool& qRead) { all.getSOLUTIONData(qRead); });

  auto& shared = offerArrays(arrayNames(all));
  const auto allSteps = stepNumbers(all);
  LoadDialogSettings settings;
  settings.Unified = options().Unified;
  settings.Formatted = options().Formatted;
  settings.byteSwap = options().byteSwap;
  settings.FileName = set.FileName;
  settings.zFileType = "SOLUTION";
  settings.iRestartList = allSteps;
  if (!dialog()->showArrays(shared, settings)) throw LoadCanceled();

  require([&](bool& qMade) { CreateOnlyList(11, shared, options().bOnly, options().qOnly, qMade); });
  options().iStart = settings.iStart;
  options().iEnd = settings.iEnd;
  options().zOrigin = settings.zOrigin;
  choice.qWriteIndex = settings.writeIndex;
  if (settings.iRestartList != allSteps && !settings.iRestartList.empty())
    choice.iRestartList = settings.iRestartList;
}

void RestartPart::read(Choice& choice) {
  auto& set = *set_;
  bool qOK = false;
  set.LoadData = options().LoadData;
  set.setbONLYList(options().bOnly, options().qOnly, qOK);
  set.selection = ArraySelection(onlyPatterns(), exceptPatterns());
  set.setMarkerMethod(options().MarkerMethod);
  set.qMarkers = set.qMarkers || options().FullWellInfo;
  set.iStart = options().iStart;
  set.iEnd = options().iEnd;
  set.iRestartList = std::move(choice.iRestartList);
  setOrigin();
  set.Origin = options().zOrigin;
  set.AcceptDamaged = options().AcceptDamaged;
  set.getSOLUTIONData(qOK);
  if (options().iStart != -1) options().AllData = false;
  if (!qOK) throw ReportedFailure();
  if (choice.qWriteIndex || !options().IndexFolder.empty()) writeIndex();
}

void RestartPart::writeIndex() const {
  if (!hasIndexFolder(set_->FileName)) return;
  require([&](bool& qOK) {
    WriteEclipseRsspecFile(walkRestart(session(), set_->zMultList), indexPath(set_->FileName, "RSSPEC"), qOK,
                           session());
  });
}

qvEclipseSOLUTION& RestartPart::set() const {
  set_->iGridNumber = options().iGridNumber;
  return *set_;
}

std::vector<RestartStep> RestartPart::steps() const {
  return set_ ? set_->steps() : std::vector<RestartStep>();
}

const RESTARTGRID* RestartPart::grid(std::int32_t iSeqnum, std::int32_t iGrid) const {
  if (!set_ || iSeqnum < 1 || iSeqnum > set_->NumSequences()) return nullptr;
  const auto& step = std::as_const(*set_).step(iSeqnum);
  return iGrid >= 1 && iGrid <= step.nGrids ? &step.grid(iGrid) : nullptr;
}

std::span<const float> RestartPart::values(std::int32_t iSeqnum, std::int32_t iGrid,
                                           std::int32_t iVector) const {
  const RESTARTGRID* from = grid(iSeqnum, iGrid);
  const bool held = from && from->arrays.hasValues() && iVector >= 1 && iVector <= from->arrays.nVectors();
  return held ? from->arrays.column(iVector) : std::span<const float>();
}

std::span<const float> RestartPart::values(std::int32_t iSeqnum, std::int32_t iGrid,
                                           std::string_view zName) const {
  const RESTARTGRID* from = grid(iSeqnum, iGrid);
  return values(iSeqnum, iGrid, from ? from->arrays.find(upper(trim(zName))) : 0);
}

}  // namespace lumbarn
