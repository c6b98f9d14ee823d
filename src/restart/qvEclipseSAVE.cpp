#include "qvEclipseSAVE.h"

#include <algorithm>

#include "../files/Extensions.h"
#include "../support/Guarded.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseSAVE";

}  // namespace

bool qvEclipseSAVE::CheckSAVEFile(std::string_view zFile) {
  return succeeds(*session_, className, "CheckSAVEFile", [&] {
    std::string path(zFile);
    const auto file = formOfSaveFile(path);
    if (!file) return false;
    setFlags({});
    setForm(file->form);
    Unified = !meaningOf(lumbarn::FileName(path).extension).multiple();
    qSaveHead = file->saveHead;
    FileName = std::move(path);
    return true;
  });
}

void qvEclipseSAVE::SetMultList(std::int32_t n, const std::vector<std::string>& files, bool& qOK) {
  const auto count = std::min(static_cast<std::size_t>(std::max(n, 0)), files.size());
  setFiles({files.begin(), files.begin() + static_cast<std::ptrdiff_t>(count)});
  qOK = true;
}

void qvEclipseSAVE::setSAVEFileTypeProps(cFILETYPE& cFile) const {
  cFile.setFlags(*this);
  cFile.IOMethod = session_->IOMethod;
}

void qvEclipseSAVE::getSAVEData(bool& qOK) {
  guarded(*session_, qOK, className, "getSAVEData", [&] { return readSaveSet(*this, form(), *session_); });
  if (xSEQ.empty()) xSEQ.emplace_back(*session_);
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
