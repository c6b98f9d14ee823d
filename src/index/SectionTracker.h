#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "../record/RecordCursor.h"
#include "../support/Export.h"
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
class LUMBARN_API SectionTracker {
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

  /// Whether the record begins another step than the current one. Some writers put an array in front of the
  /// first SEQNUM; it belongs to that step.
  bool beginsAnother(const RecordHeader& header) const {
    return marksStep(header) && (numbered_ || parts_.header);
  }
  /// Begins another step, as when another file is opened. `numbered`: by a SEQNUM that cannot be read.
  void beginStep(bool numbered = false);

  /// Damage was passed over: `damaged` is the header of the record if it could be read. SEQNUM may have been
  /// in it, so that what follows belongs to another step.
  void passGap(const RecordHeader& damaged, const Gap& gap);
  bool afterGap() const { return gap_; }
  /// A record of a name that the step's grid has already: behind a gap it is another step's.
  void repeated() { lost_ = lost_ || gap_; }
  /// It is not known which step the records belong to, until the next SEQNUM.
  bool lost() const { return lost_; }

 private:
  std::string grid_;
  std::optional<std::int32_t> seqnum_;
  StepParts parts_;
  std::uint64_t start_ = 0;  // of the step
  bool started_ = false;
  bool numbered_ = false;    // SEQNUM was met
  bool gridHeader_ = false;  // INTEHEAD of the grid was met
  bool gap_ = false;
  bool lost_ = false;
};

/// Makes `cursor` continue behind damage and states in `diagnosis` what was passed over. Gives nothing when
/// no record follows: then the file ends there, or cannot be read, which is reported if it is found here.
LUMBARN_API std::optional<Gap> passDamage(RecordCursor& cursor, Diagnosis& diagnosis, Session& session);

}  // namespace lumbarn
