#include "SaveStep.h"

#include <cmath>
#include <string>

#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"

namespace lumbarn {
namespace {

constexpr const char* className = "qvEclipseSAVESequence";  // under which hosts know faults of a step
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

/// The walk over the records of one step.
class SaveStepWalk {
 public:
  SaveStepWalk(RecordCursor& cursor, SaveStep& step, Session& session)
      : cursor_(cursor), step_(step), session_(session) {}

  /// False for what fails, which is reported, and a cancel.
  bool walk() {
    while (cursor_.next()) {
      if (session_.cancelled()) return false;
      const After after = takeRecord();
      if (after == After::Failed) return false;
      const bool headersDone = !step_.Unified && inteHead_ && doubHead_;
      if (after == After::Ended || headersDone) return true;
    }
    return true;
  }

 private:
  enum class After { GoOn, Ended, Failed };

  After takeRecord() {
    const RecordHeader& header = cursor_.header();
    ++step_.nRecords;
    switch (header.type) {
      case ElementType::Integer:
        return takeIntegers();
      case ElementType::Double:
        return header.keyword == "DOUBHEAD" && !doubHead_ ? takeTime() : After::GoOn;
      case ElementType::Single:
      case ElementType::Text:
      case ElementType::Logical:
        return After::GoOn;
      default:
        return header.count > 0 ? refuseType() : After::GoOn;
    }
  }

  After refuseType() {
    const RecordHeader& header = cursor_.header();
    session_.diagnose({.message = Message::SaveRecordType,
                       .path = cursor_.path(),
                       .keyword = header.keyword,
                       .occurrence = cursor_.occurrence(),
                       .offset = header.headerAt,
                       .expected = "INTE, REAL, DOUB, CHAR or LOGI",
                       .found = header.typeWord,
                       .action = "stopped at this step"});
    return After::Failed;
  }

  After takeIntegers() {
    const std::string& keyword = cursor_.header().keyword;
    if (keyword == "SAVEHEAD") {
      takeSavehead(cursor_.integers());
      return After::Ended;
    }
    if (keyword == "DYNAMIC" && dynamic_) {
      cursor_.seek(cursor_.header().headerAt);
      --step_.nRecords;
      return After::Ended;
    }
    if (keyword == "INITIAL" || keyword == "STATIC" || keyword == "DYNAMIC") {
      step_.iProgram = compositional;
      step_.qVersionKnown = true;
      dynamic_ = dynamic_ || keyword == "DYNAMIC";
    } else if (keyword == "SEQNUM") {
      step_.iSeqnumRecord = word<std::int32_t>(cursor_.integers(), 1);
    } else if (keyword == "INTEHEAD" && !inteHead_) {
      return takeHeader();
    }
    return After::GoOn;
  }

  void takeSavehead(std::span<const std::int32_t> words) {
    step_.iProgram = word(words, 1);
    if (words.size() >= 2) step_.iVersion = words[1];
    step_.qSaveHead = true;
    step_.qVersionKnown = true;
  }

  After takeHeader() {
    const auto words = cursor_.integers();
    inteHead_ = succeeds(session_, className, "processINTEHEAD", [&] { takeINTEHEAD(step_, words); });
    if (!inteHead_) return refuseHeader();
    if (step_.iSeqnum >= 0 && step_.iEnd != -1 && step_.iSeqnum > step_.iEnd) step_.qPastEnd = true;
    return After::GoOn;
  }

  After takeTime() {
    const auto words = cursor_.doubles();
    doubHead_ = succeeds(session_, className, "processDBLEHEAD", [&] { takeDOUBHEAD(step_, words); });
    return doubHead_ ? After::GoOn : refuseHeader();
  }

  After refuseHeader() {
    reportShortHeader(session_, cursor_);
    return After::Failed;
  }

  RecordCursor& cursor_;
  SaveStep& step_;
  Session& session_;
  bool inteHead_ = false;
  bool doubHead_ = false;
  bool dynamic_ = false;
};

}  // namespace

std::int32_t SaveStep::step() const {
  for (const std::int32_t number : {iSeqnum, iSeqnumRecord, iFile}) {
    if (number >= 0) return number;
  }
  return -1;
}

void takeINTEHEAD(SaveStep& step, std::span<const std::int32_t> header) {
  if (header.size() < 11) return;
  step.iWord11 = word(header, 11);
  // Deliberate: the check is off by one, so that a header of exactly 38 words is a fault, as hosts expect.
  if (header.size() < 38) return;
  step.iSeqnum = word(header, 39);
  if (header.size() < 84) return;
  step.iStartWords = {word(header, 82), word(header, 83), word(header, 84)};
  step.qStart = true;
  if (header.size() < 87) return;
  step.iDay = word(header, 85);
  step.iMonth = word(header, 86);
  step.iYear = word(header, 87);
  if (header.size() < 140) return;
  if (const std::int32_t year = word(header, 140); year >= 0) step.iVersion = fullYear(year);
}

void takeDOUBHEAD(SaveStep& step, std::span<const double> header) {
  step.dTime = word(header, 1);
  step.sFraction = static_cast<float>(step.dTime - std::trunc(step.dTime));
}

bool readSaveStep(RecordCursor& cursor, SaveStep& step, Session& session) {
  try {
    return SaveStepWalk(cursor, step, session).walk();
  } catch (BadRecord& damage) {
    step.qCutOff = damage.diagnosis().cutOff;
    damage.diagnosis().action = step.qCutOff ? "skipped the step" : "stopped at this step";
    throw;
  } catch (const Fault& fault) {
    if (fault.number() == FaultNumber::Subscript) reportShortHeader(session, cursor);
    throw;
  }
}

}  // namespace lumbarn
