#pragma once

#include <cstdint>
#include <span>

#include "../record/RecordCursor.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "SaveStep.h"

namespace lumbarn {

/// One report step of a save file: which one it is, its date and time, and the simulator that wrote it. No
/// arrays are taken.
class LUMBARN_API qvEclipseSAVESequence : public SaveStep {
 public:
  explicit qvEclipseSAVESequence(Session& session = Session::process()) : session_(&session) {}

  /// See `readSaveStep`. qOK False when it is, and for damage, which is reported.
  void getEclipseSAVESequence(RecordCursor& cFile, bool& qOK);
  void processINTEHEAD(std::span<const std::int32_t> iHeader, bool& qOK);
  void processDBLEHEAD(std::span<const double> dHeader, bool& qOK);

  void getRESTARTDate(std::int32_t& iD, std::int32_t& iM, std::int32_t& iY) const;
  /// The date, and the fraction of a day in the report time.
  void getRESTARTDateAndTime(std::int32_t& iD, std::int32_t& iM, std::int32_t& iY, float& sPart) const;
  /// The report step and its time in days.
  void getRestartStepInfo(std::int32_t& iStep, double& dDays) const;

 private:
  Session* session_;
};

}  // namespace lumbarn
