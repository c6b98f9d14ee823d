#include "qvEclipseSOLUTION.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

#include "../files/Extensions.h"
#include "../files/FileChoice.h"
#include "../files/Recogniser.h"
#include "../record/ByteSource.h"
#include "../record/cFILETYPE.h"
#include "../shapes/OnlyList.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSOLUTION";
constexpr std::array<std::string_view, 2> firstWords{"INTEHEAD", "SEQNUM"};
constexpr std::int32_t unbufferedMethod = 8;

}  // namespace

bool qvEclipseSOLUTION::CheckRESTARTFile(const std::string& zFile) {
  setFlags({});
  Unified = checkedUnified_ = false;
  std::string why;
  const std::shared_ptr<const ByteSource> source = FileSource::open(zFile, why);
  if (!source) return false;
  const auto detected = detectForm(*source, firstWords, *session_);
  Form found;
  if (detected) {
    found = detected->form;
    // Some writers begin step files with SEQNUM too.
    Unified = detected->keyword == "SEQNUM" && !isStepFile(zFile);
  } else {
    // Some writers put an array in front of the first SEQNUM.
    const auto recognised = recognise(source, zFile);
    if (recognised.kind != FileKind::Restart || !recognised.byContent || !recognised.form) return false;
    found = *recognised.form;
    Unified = recognised.unified.value_or(false) && GetNumericPartOfFileName(zFile) < 0;
  }
  setForm(found);
  FileName = zFile;
  checkedUnified_ = Unified;
  return true;
}

void qvEclipseSOLUTION::SetMultList(std::int32_t n, const std::vector<std::string>& files, bool& qOK) {
  const auto count = std::min(static_cast<std::size_t>(std::max(n, 0)), files.size());
  nMultList = static_cast<std::int32_t>(count);
  zMultList.assign(files.begin(), files.begin() + static_cast<std::ptrdiff_t>(count));
  qOK = true;
}

void qvEclipseSOLUTION::setONLYList(const std::vector<std::string>& zOnly, bool qOnly, bool& qOK) {
  Only = !zOnly.empty();
  setEclipseONLYList(*session_, zOnly, qOnly);
  qOK = true;
}

void qvEclipseSOLUTION::getONLYList(std::vector<std::string>& zOnly, bool& qOnly, bool& qOK) const {
  getEclipseONLYList(*session_, zOnly, qOnly);
  qOK = true;
}

void qvEclipseSOLUTION::setbONLYList(const ByteTable& bOnly, bool qOnly, bool& qOK) {
  std::vector<std::string> names;
  if (!isEmptyOnlyList(bOnly)) {
    for (std::size_t i = 1; i <= bOnly.entries(); ++i) names.emplace_back(bOnly.get(i, 1, onlyNameWidth));
  }
  setONLYList(names, qOnly, qOK);
}

void qvEclipseSOLUTION::getbONLYList(ByteTable& bOnly, bool& qOnly, bool& qOK) const {
  std::vector<std::string> names;
  getONLYList(names, qOnly, qOK);
  bOnly = names.empty() ? emptyOnlyList() : ByteTable(onlyWidth, names.size());
  for (std::size_t i = 0; i < names.size(); ++i) bOnly.put(i + 1, 1, onlyNameWidth, names[i]);
}

void qvEclipseSOLUTION::setMarkerMethod(std::int32_t iMethod) {
  iMarkerMethod = iMethod;
  if (iMethod == 2 || iMethod == 5) qMarkers = true;
}

qvEclipseSEQUENCE& qvEclipseSOLUTION::step(std::int32_t iSeqnum) {
  return const_cast<qvEclipseSEQUENCE&>(std::as_const(*this).step(iSeqnum));
}

const qvEclipseSEQUENCE& qvEclipseSOLUTION::step(std::int32_t iSeqnum) const {
  if (iSeqnum < 1 || iSeqnum > nSequences_) throw Fault(FaultNumber::Subscript);
  return *xSEQ_[static_cast<std::size_t>(iSeqnum) - 1];
}

void qvEclipseSOLUTION::getSingleSEQUENCEFODInfo(std::int32_t iSeqnum, ColumnTable<std::int32_t>& iFOD,
                                                 bool& qOK) {
  guarded(*session_, qOK, className, "getSingleSEQUENCEFODInfo",
          [&] { iFOD = step(iSeqnum).grid(std::max(iGridNumber, 1)).arrays.iFOD(); });
}

void qvEclipseSOLUTION::getEclipseSOLFODInfo(FileTypeSettings& qFileTypeSettings, bool& qOK) const {
  const bool fourByteMarks = !Formatted && UNIX;
  qFileTypeSettings = {FORTRAN, Formatted, fourByteMarks, !Formatted && byteSwap,
                       session_->IOMethod == unbufferedMethod};
  qOK = true;
}

void qvEclipseSOLUTION::getNxNyNzInfo(std::int32_t iSeqnum, SourceData& vSourceData, bool& qOK) const {
  guarded(*session_, qOK, className, "getNxNyNzInfo", [&] {
    if (vSourceData.size() < 3) InitSourceData(vSourceData, qOK);
    for (std::size_t i = 1; i <= 3; ++i) vSourceData(i) = std::int32_t{-1};
    if (iSeqnum < 1 || iSeqnum > nSequences_) return false;
    const RESTARTGRID& global = step(iSeqnum).grid(1);
    vSourceData(1) = global.Nx;
    vSourceData(2) = global.Ny;
    vSourceData(3) = global.Nz;
    return true;
  });
}

void qvEclipseSOLUTION::GetRestartRecordTimesAndSteps(std::vector<std::int32_t>& iSteps,
                                                      std::vector<double>& dTimes, std::int32_t& nSteps,
                                                      bool& qOK) const {
  constexpr std::int32_t noStep = -32768;
  guarded(*session_, qOK, className, "GetRestartRecordTimesAndSteps", [&] {
    nSteps = nSequences_;
    iSteps.clear();
    dTimes.clear();
    for (std::int32_t i = 1; i <= nSequences_; ++i) {
      iSteps.push_back(step(i).iSeqnum);
      dTimes.push_back(step(i).grid(1).dTime);
    }
    if (nSequences_ > 0) return;
    iSteps.push_back(noStep);
    dTimes.push_back(noStep);
  });
}

std::vector<RestartStep> qvEclipseSOLUTION::steps() const {
  std::vector<RestartStep> all;
  for (std::int32_t i = 1; i <= nSequences_; ++i) {
    const auto& one = step(i);
    const auto& global = one.grid(1);
    all.push_back({one.iSeqnum, global.dTime, global.iDay, global.iMonth, global.iYear, global.zDate,
                   one.nGrids, one.FileName});
  }
  return all;
}

std::int32_t qvEclipseSOLUTION::getWellPVTNum(std::string_view zWell, bool& qOK, std::int32_t iWellIndex) {
  std::int32_t number = -1;
  guarded(*session_, qOK, className, "getWellPVTNum", [&] {
    bool qFound = false;
    number = select(nSequences_).getWellPVTNum(zWell, qFound, iWellIndex);
    return qFound;
  });
  return number;
}

void qvEclipseSOLUTION::DeleteSingleSEQUENCE(std::int32_t iSeqnum, bool& qOK) {
  guarded(*session_, qOK, className, "DeleteSingleSEQUENCE", [&] {
    step(iSeqnum).iGrid = std::max(iGridNumber, 1);
    bool qDeleted = false;
    step(iSeqnum).DeleteSEQUENCEData(qDeleted);
    return qDeleted;
  });
}

void qvEclipseSOLUTION::getRESTARTDate(std::int32_t& iDay, std::int32_t& iMonth, std::int32_t& iYear) const {
  iDay = iDay_;
  iMonth = iMonth_;
  iYear = iYear_;
}

}  // namespace lumbarn
