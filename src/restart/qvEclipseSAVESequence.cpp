#include "qvEclipseSAVESequence.h"

#include <cmath>

#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseSAVESequence";
constexpr std::int32_t compositional = 300;  // the simulator that writes INITIAL, STATIC and DYNAMIC

/// A word of a header, from 1.
template <class T>
T word(std::span<const T> header, std::size_t iWord) {
  if (iWord < 1 || iWord > header.size()) throw Fault(FaultNumber::Subscript);
  return header[iWord - 1];
}

/// A year as writers of all times give it: in full, as the years since 1900, or as two digits of this
/// century.
std::int32_t fullYear(std::int32_t year) {
  if (year >= 1000) return year;
  return year + (year >= 90 ? 1900 : 2000);
}

void reportShortHeader(Session& session, const RecordCursor& cFile) {
  const RecordHeader& header = cFile.header();
  session.diagnose({.message = Message::HeaderLength,
                    .path = cFile.path(),
                    .keyword = header.keyword,
                    .occurrence = cFile.occurrence(),
                    .offset = header.headerAt,
                    .expected = header.count < 1 ? "a word at least" : "one word more",
                    .found = std::to_string(header.count) + " words",
                    .action = "stopped at this step"});
}

}  // namespace

struct qvEclipseSAVESequence::Walk {
  bool inteHead = false;
  bool doubHead = false;
  bool dynamic = false;
};

void qvEclipseSAVESequence::getEclipseSAVESequence(RecordCursor& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "getEclipseSAVESequence", [&] {
    try {
      return walk(cFile);
    } catch (BadRecord& damage) {
      qCutOff = damage.diagnosis().cutOff;
      damage.diagnosis().action = qCutOff ? "skipped the step" : "stopped at this step";
      throw;
    } catch (const Fault& fault) {
      if (fault.number() == FaultNumber::Subscript) reportShortHeader(*session_, cFile);
      throw;
    }
  });
}

bool qvEclipseSAVESequence::walk(RecordCursor& cFile) {
  Walk seen;
  while (cFile.next()) {
    if (session_->cancelled()) return false;
    const After after = takeRecord(cFile, seen);
    if (after == After::Failed) return false;
    const bool headersDone = !Unified && seen.inteHead && seen.doubHead;
    if (after == After::Ended || headersDone) return true;
  }
  return true;
}

qvEclipseSAVESequence::After qvEclipseSAVESequence::takeRecord(RecordCursor& cFile, Walk& seen) {
  const RecordHeader& header = cFile.header();
  ++nRecords;
  switch (header.type) {
    case ElementType::Integer:
      return takeIntegers(cFile, seen);
    case ElementType::Double:
      if (header.keyword == "DOUBHEAD" && !seen.doubHead) {
        bool qDone = false;
        processDBLEHEAD(cFile.doubles(), qDone);
        if (!qDone) {
          reportShortHeader(*session_, cFile);
          return After::Failed;
        }
        seen.doubHead = true;
      }
      return After::GoOn;
    case ElementType::Single:
    case ElementType::Text:
    case ElementType::Logical:
      return After::GoOn;
    case ElementType::Short:
    case ElementType::None:
    case ElementType::Unknown:
      break;
  }
  if (header.count <= 0) return After::GoOn;
  session_->diagnose({.message = Message::SaveRecordType,
                      .path = cFile.path(),
                      .keyword = header.keyword,
                      .occurrence = cFile.occurrence(),
                      .offset = header.headerAt,
                      .expected = "INTE, REAL, DOUB, CHAR or LOGI",
                      .found = header.typeWord,
                      .action = "stopped at this step"});
  return After::Failed;
}

qvEclipseSAVESequence::After qvEclipseSAVESequence::takeIntegers(RecordCursor& cFile, Walk& seen) {
  const std::string& keyword = cFile.header().keyword;
  if (keyword == "SAVEHEAD") {
    const auto words = cFile.integers();
    iProgram = word<std::int32_t>(words, 1);
    if (words.size() >= 2) iVersion = words[1];
    qSaveHead = true;
    qVersionKnown = true;
    return After::Ended;
  }
  if (keyword == "DYNAMIC" && seen.dynamic) {
    cFile.seek(cFile.header().headerAt);
    --nRecords;
    return After::Ended;
  }
  if (keyword == "INITIAL" || keyword == "STATIC" || keyword == "DYNAMIC") {
    iProgram = compositional;
    qVersionKnown = true;
    seen.dynamic = seen.dynamic || keyword == "DYNAMIC";
  } else if (keyword == "SEQNUM") {
    iSeqnumRecord = word<std::int32_t>(cFile.integers(), 1);
  } else if (keyword == "INTEHEAD" && !seen.inteHead) {
    return takeINTEHEAD(cFile, seen);
  }
  return After::GoOn;
}

qvEclipseSAVESequence::After qvEclipseSAVESequence::takeINTEHEAD(RecordCursor& cFile, Walk& seen) {
  bool qDone = false;
  processINTEHEAD(cFile.integers(), qDone);
  if (!qDone) {
    reportShortHeader(*session_, cFile);
    return After::Failed;
  }
  seen.inteHead = true;
  if (iSeqnum >= 0 && iEnd != -1 && iSeqnum > iEnd) qPastEnd = true;
  return After::GoOn;
}

void qvEclipseSAVESequence::processINTEHEAD(std::span<const std::int32_t> iHeader, bool& qOK) {
  guarded(*session_, qOK, className, "processINTEHEAD", [&] {
    if (iHeader.size() < 11) return;
    iWord11 = word(iHeader, 11);
    // Deliberate: the check is off by one, so that a header of exactly 38 words is a fault, as hosts expect.
    if (iHeader.size() < 38) return;
    iSeqnum = word(iHeader, 39);
    if (iHeader.size() < 84) return;
    iStartWords = {word(iHeader, 82), word(iHeader, 83), word(iHeader, 84)};
    qStart = true;
    if (iHeader.size() < 87) return;
    iDay = word(iHeader, 85);
    iMonth = word(iHeader, 86);
    iYear = word(iHeader, 87);
    if (iHeader.size() < 140) return;
    if (const std::int32_t year = word(iHeader, 140); year >= 0) iVersion = fullYear(year);
  });
}

void qvEclipseSAVESequence::processDBLEHEAD(std::span<const double> dHeader, bool& qOK) {
  guarded(*session_, qOK, className, "processDBLEHEAD", [&] {
    dTime = word(dHeader, 1);
    sFraction = static_cast<float>(dTime - std::trunc(dTime));
  });
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

std::int32_t qvEclipseSAVESequence::step() const {
  for (const std::int32_t number : {iSeqnum, iSeqnumRecord, iFile}) {
    if (number >= 0) return number;
  }
  return -1;
}

void qvEclipseSAVESequence::getRestartStepInfo(std::int32_t& iStep, double& dDays) const {
  iStep = step();
  dDays = dTime;
}

}  // namespace lumbarn
