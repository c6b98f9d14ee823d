#include "qvEclipseSUMMARY.h"

#include <algorithm>

#include "../support/Guarded.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseSUMMARY";

}  // namespace

void qvEclipseSUMMARY::setKeyMask(const std::vector<bool>& qMask) {
  qKeys = qMask;
  nAllKeys = static_cast<std::int32_t>(qMask.size());
  iSelected.clear();
  for (std::size_t i = 0; i < qMask.size(); ++i) {
    if (qMask[i]) iSelected.push_back(static_cast<std::int32_t>(i + 1));
  }
  nSelected = static_cast<std::int32_t>(iSelected.size());
  qSubset = nAllKeys > nSelected;
}

void qvEclipseSUMMARY::setMultList(std::int32_t n, const std::vector<std::string>& files) {
  const auto count = std::min(static_cast<std::size_t>(std::max(n, 0)), files.size());
  nFiles = static_cast<std::int32_t>(count);
  zFiles.assign(files.begin(), files.begin() + static_cast<std::ptrdiff_t>(count));
}

void qvEclipseSUMMARY::getEclipseSummaryFile(bool& qOK) {
  qOK = false;
  qOK = read();
}

void qvEclipseSUMMARY::getSummaryArray(XYData& xyData, bool& qOK) {
  guarded(*session_, qOK, className, "getSummaryArray", [&] {
    xyData = takeTable();
    return !session_->cancelled();
  });
}

void qvEclipseSUMMARY::getSummaryArray(XYData& xyData, const std::vector<bool>& qMask, bool& qOK) {
  guarded(*session_, qOK, className, "getSummaryArray", [&] {
    xyData = tableOf(qMask);
    return !session_->cancelled();
  });
}

void qvEclipseSUMMARY::GetColumnData(std::int32_t iVector, std::vector<float>& sValues, bool& qOK) {
  guarded(*session_, qOK, className, "GetColumnData", [&] { sValues = column(iVector); });
}

void qvEclipseSUMMARY::GetReportSteps(std::vector<std::int32_t>& iReportSteps, bool& qOK) const {
  iReportSteps = iSteps;
  qOK = true;
}

}  // namespace lumbarn
