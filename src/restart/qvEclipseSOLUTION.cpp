#include "qvEclipseSOLUTION.h"

#include <algorithm>
#include <utility>

#include "../shapes/OnlyList.h"
#include "../support/Guarded.h"
#include "RestartSetReader.h"
#include "StepWells.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSOLUTION";
constexpr std::int32_t unbufferedMethod = 8;

}  // namespace

bool qvEclipseSOLUTION::CheckRESTARTFile(const std::string& zFile) {
  setFlags({});
  Unified = checkedUnified_ = false;
  const auto found = formOfRestartFile(zFile, *session_);
  if (!found) return false;
  setForm(found->form);
  FileName = zFile;
  Unified = checkedUnified_ = found->unified;
  return true;
}

void qvEclipseSOLUTION::SetMultList(std::int32_t n, const std::vector<std::string>& files, bool& qOK) {
  const auto count = std::min(static_cast<std::size_t>(std::max(n, 0)), files.size());
  setFiles({files.begin(), files.begin() + static_cast<std::ptrdiff_t>(count)});
  qOK = true;
}

void qvEclipseSOLUTION::getSOLUTIONData(bool& qOK) {
  guarded(*session_, qOK, className, "getSOLUTIONData",
          [&] { return RestartSetReader(*this, form(), checkedUnified_, *this, *session_).read(); });
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
    if (iSeqnum < 1 || iSeqnum > NumSequences()) return false;
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
    nSteps = NumSequences();
    iSteps.clear();
    dTimes.clear();
    for (const RestartStep& step : steps()) {
      iSteps.push_back(step.iSeqnum);
      dTimes.push_back(step.dTime);
    }
    if (nSteps > 0) return;
    iSteps.push_back(noStep);
    dTimes.push_back(noStep);
  });
}

std::int32_t qvEclipseSOLUTION::getWellPVTNum(std::string_view zWell, bool& qOK, std::int32_t iWellIndex) {
  std::optional<std::int32_t> number;
  guarded(*session_, qOK, className, "getWellPVTNum", [&] {
    number = wellPVTNumber(select(NumSequences()).grid(), zWell, iWellIndex);
    return number.has_value();
  });
  return number.value_or(-1);
}

void qvEclipseSOLUTION::DeleteSingleSEQUENCE(std::int32_t iSeqnum, bool& qOK) {
  guarded(*session_, qOK, className, "DeleteSingleSEQUENCE", [&] {
    qvEclipseSEQUENCE& from = step(iSeqnum);
    from.iGrid = std::max(iGridNumber, 1);
    return succeeds(*session_, "qvEclipseSEQUENCE", "DeleteSEQUENCEData", [&] { from.grid().dropData(); });
  });
}

void qvEclipseSOLUTION::getRESTARTDate(std::int32_t& day, std::int32_t& month, std::int32_t& year) const {
  day = iDay;
  month = iMonth;
  year = iYear;
}

}  // namespace lumbarn
