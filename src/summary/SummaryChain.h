#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "../support/Dates.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "ChainPlan.h"
#include "SummaryVector.h"

namespace lumbarn {

/// What is known of one run of a restart chain before its values are read.
struct ChainRun {
  std::string path;                    ///< of its specification, for diagnoses
  std::vector<SummaryVector> vectors;  ///< the columns of its table, in order
  std::vector<float> times;            ///< TIME of each row
  std::string timeUnit;
  std::optional<Moment> start;    ///< moment at which TIME is 0
  std::int32_t nameWidth = 8;     ///< longest name that its specification can contain
  std::int32_t iRestartStep = 0;  ///< report step of an earlier run at which it was restarted; 0: none
  std::int32_t iLastStep = -1;    ///< report step of its last row; -1: not known, or limited by the caller
};

/// Combines the runs of a restart chain, added newest first, into one table: matches vectors by their full
/// names, shifts times to the start of the newest run, converts units of time, and reports what does not fit.
class LUMBARN_API SummaryChain {
 public:
  explicit SummaryChain(Session& session) : session_(session) {}

  /// Adds an earlier run. Its rows before the first time of the table are used. A vector in other units than
  /// those of the table has no values for these rows.
  void add(ChainRun run);
  /// Reports which vectors some rows have no values of.
  void reportGaps() const;

  const ChainPlan& plan() const { return plan_; }
  /// The columns of the table: those of the newest run, then those that only earlier runs have.
  const std::vector<SummaryVector>& vectors() const { return vectors_; }
  std::vector<SummaryVector> takeVectors() { return std::move(vectors_); }
  /// Numbers, from 1, of the vectors of the earlier run added last that became new columns, in order.
  const std::vector<std::int32_t>& added() const { return added_; }

 private:
  /// From the times of a run to those of the table.
  struct TimeScale {
    ChainSource source;
    double days = 0;  ///< from the start of the newest run to that of the run
  };
  void addNewest(ChainRun& run);
  TimeScale timeScale(const ChainRun& run) const;
  ChainPart match(const ChainRun& run, const TimeScale& scale);
  void reportGapBefore(const ChainRun& run) const;

  Session& session_;
  ChainPlan plan_;
  std::vector<SummaryVector> vectors_;
  std::vector<std::int32_t> widths_;  // of names in the run that each column comes from
  std::vector<std::int32_t> added_;
  std::optional<Moment> start_;  // of the newest run
  std::string timeUnit_;
  std::optional<float> firstTime_;
  std::int32_t iRestartStep_ = 0;  // of the earliest run so far
  std::string earliestPath_;
};

}  // namespace lumbarn
