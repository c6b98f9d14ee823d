// Profiles along horizontal wells: what a restart chain of summaries has to collect for them.

#include <algorithm>

#include "../shapes/HeaderLayout.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../vocabulary/Units.h"
#include "SummaryMerge.h"
#include "qvEclipseSUMMARYFile.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSUMMARYFile";

/// Connection vectors of one run with their values and lengths.
bool readConnections(qvEclipseSPEC& spec, qvEclipseSUMMARY& summary, ByteTable& bHeaders, XYData& sData,
                     std::vector<float>& sLengths, std::string& zUnits) {
  std::vector<bool> qMask;
  bool qOK = false;
  spec.getHorizontalHeaders(bHeaders, qMask, qOK);
  if (!qOK) return false;
  summary.getSummaryArray(sData, qMask, qOK);
  if (!qOK) return false;
  spec.getHorizontalLengths(sLengths, zUnits, qOK);
  return qOK;
}

}  // namespace

void qvEclipseSUMMARYFile::getHorizontalData(bool qInflow, bool qConnect, bool qMiniSteps, bool& qOK) {
  guarded(*session_, qOK, className, "getHorizontalData", [&] {
    if (!qInflow && !qConnect) return true;
    ByteTable bHeaders;
    XYData sData;
    std::vector<float> sLengths;
    std::string zUnits;
    if (!getDataUsedForHorizontalWells(bHeaders, sData, sLengths, zUnits)) return false;
    bool qDone = false;
    xSUMMARY.front()->GetColumnData(1, times_, qDone);
    if (!qDone) return false;
    const HorizontalSource source{bHeaders, sData, sLengths, zUnits, xSUMMARY.front()->iSteps};
    horizontal_.getHorizontalData(source, qInflow, qConnect, qMiniSteps, qDone);
    return qDone;
  });
}

bool qvEclipseSUMMARYFile::getDataUsedForHorizontalWells(ByteTable& bHeaders, XYData& sData,
                                                         std::vector<float>& sLengths, std::string& zUnits) {
  if (xSPEC.empty() ||
      !readConnections(*xSPEC.front(), *xSUMMARY.front(), bHeaders, sData, sLengths, zUnits)) {
    return false;
  }
  for (std::size_t run = 1; run < xSPEC.size(); ++run) {
    ByteTable bEarlier;
    XYData sEarlier;
    std::vector<float> sEarlierLengths;
    std::string zEarlierUnits;
    // Deliberate: an earlier run that has no such data, or does not fit, is skipped without a report.
    if (!readConnections(*xSPEC[run], *xSUMMARY[run], bEarlier, sEarlier, sEarlierLengths, zEarlierUnits))
      continue;
    bool qMerged = false;
    mergeSUMMARYHorizData(*session_, bEarlier, sEarlier, sEarlierLengths, bHeaders, sData, sLengths, false,
                          qMerged);
  }
  // Deliberate: steps, rows and dates of profiles are those of the newest run also where rows of earlier runs
  // precede its own. Hosts know it so; each profile that is fetched is reported with a remark.
  profilesOfChain_ = sData.rows() > xSUMMARY.front()->rows().size();
  const auto source = headerField(attributeSource);
  for (std::size_t i = 1; i <= bHeaders.entries(); ++i)
    bHeaders.put(i, source.firstByte, source.width, zOrigin);
  return true;
}

void qvEclipseSUMMARYFile::getHorizontalData(std::int32_t iStep, bool qInflow, XYData& xyData,
                                             ByteTable& bHeaders, std::string& zDate, bool& qOK) {
  guarded(*session_, qOK, className, "getHorizontalData", [&] {
    bool qDone = false;
    horizontal_.getHoriz(qInflow, iStep, xyData, bHeaders, qDone);
    if (!qDone) return false;
    if (profilesOfChain_) session_->diagnose({.message = Message::ChainProfiles, .path = zFileName});
    GetDateStamp(horizontal_.iHorizSteps.at(static_cast<std::size_t>(iStep - 1)), zDate, qDone);
    return qDone;
  });
}

void qvEclipseSUMMARYFile::GetDateStamp(std::int32_t iRow, std::string& zDate, bool& qOK) {
  guarded(*session_, qOK, className, "GetDateStamp", [&] {
    bool qDone = false;
    if (times_.empty() && !xSUMMARY.empty()) {
      xSUMMARY.front()->GetColumnData(1, times_, qDone);
      if (!qDone) return false;
    }
    if (iRow < 1 || static_cast<std::size_t>(iRow) > times_.size()) throw Fault(FaultNumber::Subscript);
    // The date alone, deliberately: the time of day that hosts of old might add is that of today's date,
    // which has none.
    const double perDay = timeUnit_.empty() ? unitsPerDay(iUnits) : unitsPerDay(timeUnit_);
    lumbarn::GetDateStamp(*session_, zStartDate, perDay, times_[static_cast<std::size_t>(iRow - 1)], zDate,
                          qDone);
    return qDone;
  });
}

}  // namespace lumbarn
