#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "../record/RecordCursor.h"
#include "ReportStep.h"

namespace lumbarn {

/// What a record marks, if anything.
enum class SectionMark : std::uint8_t {
  None,
  Step,         ///< SEQNUM: the next report step, global grid
  LocalGrid,    ///< LGR: the records of a local grid follow
  GlobalGrid,   ///< ENDLGR or LGRSGONE: those of the global grid follow
  Solution,     ///< STARTSOL
  SolutionEnd,  ///< ENDSOL
};

/// Follows the sections of a restart, INIT or grid file while a cursor walks it: which step and which grid a
/// record belongs to. Call `take` for each record. Reads the data of SEQNUM and LGR records only.
class SectionTracker {
 public:
  SectionMark take(RecordCursor& cursor);
  /// Whether a record begins a report step: SEQNUM, whatever its type.
  static bool marksStep(const RecordHeader& header) { return header.keyword == "SEQNUM" && header.count > 0; }

  /// The local grid that the current record belongs to, without blanks around its name as some writers have
  /// them; empty for the global grid.
  const std::string& grid() const { return grid_; }
  bool inLocalGrid() const { return !grid_.empty(); }
  /// Value of the step's SEQNUM; nothing in front of the first one.
  std::optional<std::int32_t> seqnum() const { return seqnum_; }
  /// Of the current step so far.
  const StepParts& parts() const { return parts_; }

  /// Begins another step, as when another file is opened or a step begins without SEQNUM.
  void beginStep();

 private:
  std::string grid_;
  std::optional<std::int32_t> seqnum_;
  StepParts parts_;
};

}  // namespace lumbarn
