#include "HorizontalData.h"

#include <utility>

#include "../support/Fault.h"
#include "../support/Guarded.h"

namespace lumbarn {
namespace {

constexpr const char* className = "HorizontalData";

}  // namespace

bool HorizontalData::build(const HorizontalSource& source, bool qInflow, bool qConnect, bool qMiniSteps) {
  return inRoutine(className, "getHorizontalData", [&] {
    *this = HorizontalData(*session_);
    if (!qInflow && !qConnect) return true;
    const auto layout = layoutOf(source, qMiniSteps);
    if (!layout) return false;
    HorizontalData made(*session_);
    made.nHorizVectors = static_cast<std::int32_t>(layout->zVectors.size());
    made.nHorizSteps = static_cast<std::int32_t>(layout->iSteps.size());
    made.iHorizSteps = layout->iSteps;
    if (qInflow) made.Inflow = makeProfiles(*session_, source, *layout, true, qMiniSteps);
    if (qConnect) made.Connect = makeProfiles(*session_, source, *layout, false, qMiniSteps);
    *this = std::move(made);
    return true;
  });
}

HorizontalTable HorizontalData::step(bool qInflow, std::int32_t iStep) const {
  return inRoutine(className, "getHoriz", [&] {
    const HorizontalTable& kept = qInflow ? Inflow : Connect;
    if (iStep < 1 || iStep > nHorizSteps || kept.sData.empty()) throw Fault(FaultNumber::Subscript);
    return profilesOfStep(kept, static_cast<std::size_t>(nHorizVectors), static_cast<std::size_t>(iStep) - 1,
                          *session_);
  });
}

void HorizontalData::getHorizontalData(const HorizontalSource& source, bool qInflow, bool qConnect,
                                       bool qMiniSteps, bool& qOK) {
  guarded(*session_, qOK, className, "getHorizontalData",
          [&] { return build(source, qInflow, qConnect, qMiniSteps); });
}

void HorizontalData::getHoriz(bool qInflow, std::int32_t iStep, XYData& sData, ByteTable& bHeaders,
                              bool& qOK) const {
  guarded(*session_, qOK, className, "getHoriz", [&] {
    sData = {};
    bHeaders = {};
    auto cut = step(qInflow, iStep);
    sData = std::move(cut.sData);
    bHeaders = std::move(cut.bHeaders);
  });
}

void ExtractDifferentVectors(Session& session, const ByteTable& bHeaders, std::vector<float>& sLengths,
                             std::vector<std::string>& zVectors, std::vector<std::int32_t>& iVectorStart,
                             std::int32_t& nVectors, bool& qOK) {
  guarded(session, qOK, className, "ExtractDifferentVectors", [&] {
    nVectors = 0;
    auto layout = differentVectors(bHeaders, sLengths);
    if (!layout) return false;
    sLengths = std::move(layout->sLengths);
    zVectors = std::move(layout->zVectors);
    iVectorStart = std::move(layout->iVectorStart);
    nVectors = static_cast<std::int32_t>(zVectors.size());
    return true;
  });
}

void GetTimeStepsUsed(Session& session, std::span<const std::int32_t> iReportSteps, bool qMiniSteps,
                      std::vector<std::int32_t>& iSteps, std::int32_t& nSteps, bool& qOK) {
  guarded(session, qOK, className, "GetTimeStepsUsed", [&] {
    iSteps = stepsUsed(iReportSteps, qMiniSteps);
    nSteps = static_cast<std::int32_t>(iSteps.size());
  });
}

void StoreHorizontalDataArray(Session& session, const HorizontalSource& source,
                              const HorizontalLayout& layout, bool qInflow, bool qMiniSteps,
                              HorizontalTable& table, bool& qOK) {
  guarded(session, qOK, className, "StoreHorizontalDataArray", [&] {
    table = {};
    table = makeProfiles(session, source, layout, qInflow, qMiniSteps);
  });
}

void SetHorizLengthData(Session& session, const HorizontalLayout& layout, bool qInflow, XYData& sOut,
                        bool& qOK) {
  guarded(session, qOK, className, "SetHorizLengthData", [&] { fillLengths(layout, qInflow, sOut); });
}

void SetHorizData(Session& session, const HorizontalLayout& layout, const XYData& sData, bool qInflow,
                  XYData& sOut, bool& qOK) {
  guarded(session, qOK, className, "SetHorizData",
          [&] { fillProfiles(session, layout, sData, qInflow, sOut); });
}

void SetHorizDataHeaders(Session& session, const HorizontalLayout& layout, const HorizontalSource& source,
                         bool qInflow, bool qMiniSteps, ByteTable& bOut, bool& qOK) {
  guarded(session, qOK, className, "SetHorizDataHeaders",
          [&] { fillProfileHeaders(session, layout, source, qInflow, qMiniSteps, bOut); });
}

void GetDateStamp(Session& session, Moment start, double unitsPerDay, float sTime, std::string& zDate,
                  bool& qOK) {
  guarded(session, qOK, className, "GetDateStamp", [&] {
    const auto date = dateStamp(start, unitsPerDay, sTime);
    zDate = date.value_or("");
    return date.has_value();
  });
}

void GetDateStamp(Session& session, std::string_view zStartDate, double unitsPerDay, float sTime,
                  std::string& zDate, bool& qOK) {
  guarded(session, qOK, className, "GetDateStamp", [&] {
    const auto date = dateStamp(zStartDate, unitsPerDay, sTime);
    zDate = date.value_or("");
    return date.has_value();
  });
}

}  // namespace lumbarn
