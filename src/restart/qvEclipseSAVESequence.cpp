#include "qvEclipseSAVESequence.h"

#include "../support/Guarded.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseSAVESequence";

}  // namespace

void qvEclipseSAVESequence::getEclipseSAVESequence(RecordCursor& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "getEclipseSAVESequence",
          [&] { return readSaveStep(cFile, *this, *session_); });
}

void qvEclipseSAVESequence::processINTEHEAD(std::span<const std::int32_t> iHeader, bool& qOK) {
  guarded(*session_, qOK, className, "processINTEHEAD", [&] { takeINTEHEAD(*this, iHeader); });
}

void qvEclipseSAVESequence::processDBLEHEAD(std::span<const double> dHeader, bool& qOK) {
  guarded(*session_, qOK, className, "processDBLEHEAD", [&] { takeDOUBHEAD(*this, dHeader); });
}

void qvEclipseSAVESequence::getRESTARTDate(std::int32_t& iD, std::int32_t& iM, std::int32_t& iY) const {
  iD = iDay;
  iM = iMonth;
  iY = iYear;
}

void qvEclipseSAVESequence::getRESTARTDateAndTime(std::int32_t& iD, std::int32_t& iM, std::int32_t& iY,
                                                  float& sPart) const {
  getRESTARTDate(iD, iM, iY);
  sPart = sFraction;
}

void qvEclipseSAVESequence::getRestartStepInfo(std::int32_t& iStep, double& dDays) const {
  iStep = step();
  dDays = dTime;
}

}  // namespace lumbarn
