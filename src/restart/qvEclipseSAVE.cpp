#include "qvEclipseSAVE.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "../files/Extensions.h"
#include "../files/FileSets.h"
#include "../files/Folder.h"
#include "../record/ByteSource.h"
#include "../support/Diagnosis.h"
#include "../support/Guarded.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseSAVE";

}  // namespace

struct qvEclipseSAVE::Limits {
  std::int32_t iFirst = -1;
  std::int32_t iLast = -1;
};

bool qvEclipseSAVE::CheckSAVEFile(std::string_view zFile) {
  bool qOK = false;
  guarded(*session_, qOK, className, "CheckSAVEFile", [&] {
    const std::string path(zFile);
    std::string why;
    const auto source = FileSource::open(path, why);
    if (!source) return false;
    constexpr std::string_view firstKeywords[] = {"INITIAL", "SAVEHEAD", "STATIC", "DYNAMIC"};
    const auto detected = detectForm(*source, firstKeywords);
    if (!detected) return false;
    setFlags({});
    setForm(detected->form);
    Unified = !meaningOf(lumbarn::FileName(path).extension).multiple();
    qSaveHead = detected->keyword == "SAVEHEAD";
    FileName = path;
    return true;
  });
  return qOK;
}

void qvEclipseSAVE::SetMultList(std::int32_t n, const std::vector<std::string>& files, bool& qOK) {
  const auto count = std::min(static_cast<std::size_t>(std::max(n, 0)), files.size());
  zMultList.assign(files.begin(), files.begin() + static_cast<std::ptrdiff_t>(count));
  nMultList = static_cast<std::int32_t>(count);
  qOK = true;
}

void qvEclipseSAVE::setSAVEFileTypeProps(cFILETYPE& cFile) const {
  cFile.setFlags(*this);
  cFile.IOMethod = session_->IOMethod;
}

void qvEclipseSAVE::getSAVEData(bool& qOK) {
  guarded(*session_, qOK, className, "getSAVEData", [&] {
    xSEQ.clear();
    NumSequences = 0;
    return load();
  });
  if (xSEQ.empty()) xSEQ.emplace_back(*session_);
}

bool qvEclipseSAVE::load() {
  if (!findFiles()) return false;
  Limits limits;
  bool qLimits = false;
  setEclipseSequenceLimits("SAVE", Unified, iStart, iEnd, limits.iFirst, limits.iLast, qLimits);
  if (session_->Container && nMultList > 1) session_->Container->files(nMultList);
  bool qStop = false;
  for (const std::string& zFile : zMultList) {
    if (session_->yield()) return false;
    // A set with gaps is usual, so a missing file is not reported.
    const bool qRead = Unified || isFile(zFile);
    if (qRead && !readFile(zFile, limits, qStop)) return false;
    if (session_->Container && nMultList > 1) session_->Container->fileDone();
    if (qStop) break;
  }
  return true;
}

/// Decides which files are read.
bool qvEclipseSAVE::findFiles() {
  bool qOK = true;
  if (Unified) {
    std::string extension;
    std::string name = FileName;
    if (meaningOf(lumbarn::FileName(FileName).extension).kind != FileKind::Unknown)
      setEclipseFileName(FileName, "SAVE", extension, true, Formatted, name, qOK);
    zMultList.assign(1, name);
    nMultList = 1;
    found_ = zMultList;
  } else if (zMultList.empty() || zMultList == found_) {
    GetFileNamesToLoad(FileName, iStart, iEnd, false, "SAVE", nMultList, zMultList, qOK, *session_);
    found_ = zMultList;
  }
  return qOK;
}

bool qvEclipseSAVE::readFile(const std::string& zFile, const Limits& limits, bool& qStop) {
  std::string why;
  std::shared_ptr<const ByteSource> source = FileSource::open(zFile, why);
  if (!source) {
    const bool qMissing = Unified && !isFile(zFile);
    session_->diagnose({.message = Message::FileOpen,
                        .path = zFile,
                        .problem = "cannot be opened: " + why,
                        .action = qMissing ? "skipped the file" : "stopped"});
    return qMissing;
  }
  cFILETYPE settings(*session_);
  setSAVEFileTypeProps(settings);
  RecordCursor cursor(std::move(source), settings.form(), zFile);
  cursor.attach(*session_, RecordFile::Save);
  const std::int32_t iFile = Unified ? -1 : GetNumericPartOfFileName(zFile);
  for (bool qFileDone = false; !qFileDone;) {
    if (!readStep(cursor, iFile, limits, qFileDone)) return false;
    tellProgress(cursor);
  }
  cursor.checkUnchanged();
  qStop = NumSequences > 0 && xSEQ.back().qPastEnd;
  return true;
}

/// Reads one step and keeps it if it is wanted. qFileDone becomes True when the file has no more of them.
bool qvEclipseSAVE::readStep(RecordCursor& cursor, std::int32_t iFile, const Limits& limits,
                             bool& qFileDone) {
  qvEclipseSAVESequence xStep(*session_);
  xStep.Unified = Unified;
  // In a unified set the working limit, so that a range given the wrong way round has its one step.
  xStep.iEnd = Unified ? limits.iLast : iEnd;
  xStep.iFile = iFile;
  bool qRead = false;
  xStep.getEclipseSAVESequence(cursor, qRead);
  // A file that begins with SAVEHEAD states its simulator there and has no headers of further steps.
  qFileDone = !Unified || qSaveHead || xStep.qPastEnd || xStep.qCutOff || xStep.nRecords == 0 ||
              cursor.nextPosition() >= cursor.fileSize();
  if (xStep.qCutOff || (qRead && xStep.nRecords == 0)) return !session_->cancelled();
  if (!qRead) return false;
  const std::int32_t iStep = xStep.step();
  bool qUse = false;
  bool qPast = false;
  bool qExit = false;
  bool qDone = false;
  checkSequence(Unified, iStep, limits.iFirst, limits.iLast, qUse, qPast, qDone);
  if (qUse) addSEQUENCE(std::move(xStep));
  checkForExit(Unified, iStep, limits.iLast, qExit, qDone);
  qFileDone = qFileDone || qExit;
  return !session_->yield();
}

void qvEclipseSAVE::tellProgress(const RecordCursor& cursor) const {
  if (!session_->Container || nMultList > 1 || cursor.fileSize() == 0) return;
  session_->Container->fraction(static_cast<double>(cursor.nextPosition()) /
                                static_cast<double>(cursor.fileSize()));
}

void qvEclipseSAVE::addSEQUENCE(qvEclipseSAVESequence xStep) {
  xSEQ.push_back(std::move(xStep));
  NumSequences = static_cast<std::int32_t>(xSEQ.size());
}

void qvEclipseSAVE::GetRestartRecordTimesAndSteps(std::vector<std::int32_t>& iSteps,
                                                  std::vector<double>& dTimes, std::int32_t& nSteps,
                                                  bool& qOK) const {
  nSteps = NumSequences;
  iSteps.assign(1, -32768);
  dTimes.assign(1, -32768.0);
  if (nSteps > 0) {
    iSteps.clear();
    dTimes.clear();
  }
  for (const auto& xStep : std::span(xSEQ).first(static_cast<std::size_t>(nSteps))) {
    std::int32_t iStep = -1;
    double dTime = 0;
    xStep.getRestartStepInfo(iStep, dTime);
    iSteps.push_back(iStep);
    dTimes.push_back(dTime);
  }
  qOK = true;
}

void qvEclipseSAVE::getSimulatorVersionInfo(std::int32_t& iProgram, std::int32_t& iVersion) const {
  iProgram = NumSequences > 0 ? xSEQ.front().iProgram : -1;
  iVersion = NumSequences > 0 ? xSEQ.front().iVersion : -1;
}

}  // namespace lumbarn
