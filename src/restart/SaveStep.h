#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "../record/RecordCursor.h"
#include "../support/Export.h"
#include "../support/Session.h"

namespace lumbarn {

/// One report step of a save file.
struct LUMBARN_API SaveStep {
  // What to read, set by the owner.
  bool Unified = false;     ///< the file may hold several steps
  std::int32_t iEnd = -1;   ///< last step wanted; -1: open
  std::int32_t iFile = -1;  ///< step number in the file's name; -1: none

  // What was read. Numbers that the file does not give keep the values here.
  bool qSaveHead = false;           ///< SAVEHEAD was met
  bool qVersionKnown = false;       ///< the simulator is known: iProgram is set
  std::int32_t iProgram = -1;       ///< SAVEHEAD word 1; 300 after INITIAL, STATIC or DYNAMIC
  std::int32_t iVersion = -1;       ///< SAVEHEAD word 2, or the year in INTEHEAD word 140
  std::int32_t iSeqnum = -1;        ///< report step, INTEHEAD word 39
  std::int32_t iSeqnumRecord = -1;  ///< report step, SEQNUM
  bool qStart = false;              ///< the next is set
  std::array<std::int32_t, 3> iStartWords{-1, -1, -1};  ///< INTEHEAD words 82, 83, 84; not used
  std::int32_t iDay = -1;                               ///< date of the step, INTEHEAD words 85, 86, 87
  std::int32_t iMonth = -1;
  std::int32_t iYear = -1;
  std::int32_t iWord11 = -1;  ///< INTEHEAD word 11
  float sFraction = 0;        ///< dTime less its integer part
  double dTime = 0;           ///< report time in days, DOUBHEAD word 1
  bool qPastEnd = false;      ///< the step lies behind iEnd
  bool qCutOff = false;       ///< the file ended inside of a record of this step
  std::int64_t nRecords = 0;  ///< records of this step; 0: there was no further step

  /// The report step: the first that is not negative of `iSeqnum`, `iSeqnumRecord` and `iFile`; else -1.
  std::int32_t step() const;
};

/// Takes what an INTEHEAD has, group by group as far as it is long enough. Throws Fault 9 for a header of
/// exactly 38 words.
LUMBARN_API void takeINTEHEAD(SaveStep& step, std::span<const std::int32_t> header);
/// Takes the time. Throws Fault 9 for an empty header.
LUMBARN_API void takeDOUBHEAD(SaveStep& step, std::span<const double> header);

/// Reads the records of one step from the position of the cursor and leaves the cursor at the next step. A
/// step ends behind SAVEHEAD, in front of the second DYNAMIC, at the end of the file and, in a file of one
/// step, as soon as both its headers have been read. False for a record of unknown type with data and a
/// header that is too short, which are reported, and when the load is canceled; throws BadRecord and Fault.
/// What was read before is kept.
LUMBARN_API bool readSaveStep(RecordCursor& cursor, SaveStep& step, Session& session);

}  // namespace lumbarn
