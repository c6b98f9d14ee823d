#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "../record/FormFlags.h"
#include "../record/cFILETYPE.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "SaveSet.h"

namespace lumbarn {

/// The save files of one run, for a fast restart: one unified file, or a file for each report step. Tells
/// which steps there are, with dates and times, and which simulator wrote them. Arrays are skipped, so a load
/// takes a time that goes by the number of records, not by their bytes.
class LUMBARN_API qvEclipseSAVE : public FormFlags, public SaveSet {
 public:
  explicit qvEclipseSAVE(Session& session = Session::process()) : session_(&session) {}

  /// True when the first record is INITIAL, SAVEHEAD, STATIC or DYNAMIC. Sets name and form. The
  /// contents do not state whether the file is one of a set, so `Unified` depends on the name: False for
  /// RUN.V0003 and the like, True for all others.
  bool CheckSAVEFile(std::string_view zFile);
  /// The files of a multiple set. Without a list a load looks for the files beside `FileName`.
  void SetMultList(std::int32_t n, const std::vector<std::string>& files, bool& qOK);
  void setSAVEFileTypeProps(cFILETYPE& cFile) const;

  /// Reads the files: the unified file of the run of `FileName`, or `FileName` itself if its extension is
  /// unknown. qOK False when a file cannot be opened, is damaged, or the load is canceled; the steps before
  /// it are kept. A missing file has no steps (a unified one is reported). A truncated step, which a running
  /// simulation leaves, is skipped with a diagnosis; it is not an error.
  void getSAVEData(bool& qOK);
  /// Adds a step behind the last.
  void addSEQUENCE(qvEclipseSAVESequence xStep) { add(std::move(xStep)); }

  /// Report step and time in days of each step. With none, one element, -32768 in both, and nSteps 0.
  void GetRestartRecordTimesAndSteps(std::vector<std::int32_t>& iSteps, std::vector<double>& dTimes,
                                     std::int32_t& nSteps, bool& qOK) const;
  /// Simulator and version by the first step; -1 in both with no steps.
  void getSimulatorVersionInfo(std::int32_t& iProgram, std::int32_t& iVersion) const;

 private:
  Session* session_;
};

}  // namespace lumbarn
