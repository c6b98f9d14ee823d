#pragma once

#include <cstdint>
#include <optional>

#include "../index/SectionTracker.h"
#include "../record/RecordCursor.h"
#include "../support/Diagnosis.h"
#include "../support/Session.h"
#include "StepData.h"
#include "StepOptions.h"

namespace lumbarn {

/// How the reading of a step ended.
struct StepEnd {
  bool cancelled = false;                 ///< by the user; nothing else is told then
  bool anyRecord = false;                 ///< the step has records at all
  bool atEnd = false;                     ///< at the end of the file
  bool damaged = false;                   ///< records of the step were damaged; the others were read
  bool headersOnly = false;               ///< behind the headers, as nothing else was wanted
  std::optional<Diagnosis> damageBehind;  ///< the step is complete, but what follows it cannot be read
  StepParts parts;                        ///< what the step consists of, for `missingPart`
};

/// Reads the records of one step.
class StepReader {
 public:
  StepReader(const StepOptions& options, StepData& step, Session& session)
      : options_(options), step_(step), session_(session) {}

  /// From the position of the cursor; in a unified file it stops before the next SEQNUM. Throws BadRecord for
  /// damage, and Fault 6 for a cell count that overflows, which is also diagnosed.
  StepEnd read(RecordCursor& cursor);

 private:
  bool takeNext(RecordCursor& cursor);
  void takeRecord(RecordCursor& cursor);
  void takeMark(SectionMark mark);
  void takeInteger(RecordCursor& cursor);
  void takeSingle(RecordCursor& cursor);
  void takeDouble(RecordCursor& cursor);
  void takeLogicals(RecordCursor& cursor);
  void takeHeader(RecordCursor& cursor);
  void takeArray(RecordCursor& cursor);
  void takeWells(RecordCursor& cursor);
  void countArrays(RecordCursor& cursor);
  void stopBehindHeaders();

  const StepOptions& options_;
  StepData& step_;
  Session& session_;
  SectionTracker sections_;
  StepEnd end_;
  bool keep_ = true;  // arrays of this step are wanted
  bool seenHeader_ = false;
  bool seenTime_ = false;
  bool arraysCounted_ = false;
  bool stop_ = false;
  std::int32_t lastLocalGrid_ = 0;
  std::int32_t lengthsOf_ = 0;  // the grid whose active cells were decided by the lengths of its arrays
};

}  // namespace lumbarn
