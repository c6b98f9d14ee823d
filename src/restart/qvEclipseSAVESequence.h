#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "../record/RecordCursor.h"
#include "../support/Session.h"

namespace lumbarn {

/// One report step of a save file: which one it is, its date and time, and the simulator that wrote it. No
/// arrays are taken.
///
/// A step ends behind `SAVEHEAD`, in front of the second `DYNAMIC`, at the end of the file and, in a file of
/// one step, as soon as both its headers have been read.
class qvEclipseSAVESequence {
 public:
  explicit qvEclipseSAVESequence(Session& session = Session::process()) : session_(&session) {}

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

  /// Reads the records of one step from the position of the cursor and leaves the cursor at the next step.
  /// qOK False for a record of unknown type with data, a header that is too short, damage, each of which is
  /// reported, and when the load is canceled. What was read before is kept.
  void getEclipseSAVESequence(RecordCursor& cFile, bool& qOK);

  /// Takes what an INTEHEAD has, group by group as far as it is long enough. A header of exactly 38 words is
  /// a fault (9).
  void processINTEHEAD(std::span<const std::int32_t> iHeader, bool& qOK);
  /// Takes the time. An empty header is a fault (9).
  void processDBLEHEAD(std::span<const double> dHeader, bool& qOK);

  void getRESTARTDate(std::int32_t& iD, std::int32_t& iM, std::int32_t& iY) const;
  /// The date, and the fraction of a day in the report time.
  void getRESTARTDateAndTime(std::int32_t& iD, std::int32_t& iM, std::int32_t& iY, float& sPart) const;
  /// The report step and its time in days. The step is the first that is not negative of `iSeqnum`,
  /// `iSeqnumRecord` and `iFile`; else -1.
  void getRestartStepInfo(std::int32_t& iStep, double& dDays) const;
  std::int32_t step() const;

 private:
  struct Walk;
  enum class After { GoOn, Ended, Failed };

  bool walk(RecordCursor& cFile);
  After takeRecord(RecordCursor& cFile, Walk& seen);
  After takeIntegers(RecordCursor& cFile, Walk& seen);
  After takeINTEHEAD(RecordCursor& cFile, Walk& seen);

  Session* session_;
};

}  // namespace lumbarn
