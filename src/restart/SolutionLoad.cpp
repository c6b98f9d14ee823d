#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

#include <fmt/format.h>

#include "../files/Extensions.h"
#include "../files/FileSets.h"
#include "../record/ByteSource.h"
#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "qvEclipseSOLUTION.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSOLUTION";
constexpr std::size_t stepGrowth = 50;
/// However small the first step is beside its file: room for more is made when they come.
constexpr std::size_t mostExpected = 100000;

void tell(Session& session, const std::string& path, std::string problem, std::string action) {
  Diagnosis diagnosis;
  diagnosis.path = path;
  diagnosis.problem = std::move(problem);
  diagnosis.action = std::move(action);
  session.diagnose(std::move(diagnosis));
}

/// Throws when a file ends inside a step: its solution is open, or is missing though the step before had one.
/// Nothing else tells that a step which ends between two records is whole.
void requireWhole(const qvEclipseSEQUENCE& step, const RecordCursor& cursor, bool qSolutionExpected) {
  const bool missing = !step.qHaveHeader || (qSolutionExpected && step.qWanted && !step.qHasSolution);
  if (!missing && !step.qSolutionOpen) return;
  Diagnosis diagnosis;
  diagnosis.path = cursor.path();
  diagnosis.problem = "report step is not whole";
  diagnosis.offset = cursor.fileSize();
  diagnosis.expected = !step.qHaveHeader ? "INTEHEAD" : step.qSolutionOpen ? "ENDSOL" : "STARTSOL";
  diagnosis.found = "end of file";
  diagnosis.cutOff = true;
  throw BadRecord(std::move(diagnosis));
}

}  // namespace

/// What one load has found out.
struct qvEclipseSOLUTION::Load {
  std::int32_t jStart = -1;
  std::int32_t jEnd = -1;
  std::vector<std::int32_t> iSteps;  ///< number of each entry as the names or the list tell it
  std::size_t expected = 0;          ///< steps of a multiple set
  bool qSized = false;               ///< the capacity of the step table is known
  bool qSolutionExpected = false;    ///< the step before had one, or there is none before
  bool qAtEnd = false;               ///< the unified file has no more records
  bool stop = false;
};

void qvEclipseSOLUTION::getSOLUTIONData(bool& qOK) {
  guarded(*session_, qOK, className, "getSOLUTIONData", [&] {
    xSEQ_.clear();
    nSequences_ = 0;
    nSequencesMax_ = 1;
    nGrids = 0;
    iLastStep = iDay_ = iMonth_ = iYear_ = -1;
    iFirstHeader.clear();
    qDamaged = false;
    Load load;
    return prepare(load) && readEntries(load);
  });
  xSEQ_.resize(static_cast<std::size_t>(std::max(nSequences_, 1)));
}

bool qvEclipseSOLUTION::prepare(Load& load) {
  const bool qList = !iRestartList.empty() && iRestartList.front() > -1;
  if (qList && Unified) {
    // Deliberate: of a unified file the steps between the first and the last of the list come too.
    iStart = iRestartList.front();
    iEnd = iRestartList.back();
  }
  bool qDone = false;
  setEclipseSequenceLimits("SOLUTION", Unified, iStart, iEnd, load.jStart, load.jEnd, qDone);
  if (Unified) {
    std::string extension;
    std::string unified;
    setEclipseFileName(FileName, "SOLUTION", extension, true, Formatted, unified, qDone);
    // A file that was looked at and is a unified one is read whatever its name.
    if (checkedUnified_ || !qDone) unified = FileName;
    SetMultList(1, {unified}, qDone);
    load.iSteps = {1};
    load.qSolutionExpected = true;
    return true;
  }
  load.expected = zMultList.size();
  load.qSolutionExpected = zMultList.size() == 1;
  if (qList) return applyStepList(load);
  for (const auto& file : zMultList) load.iSteps.push_back(GetNumericPartOfFileName(file));
  return true;
}

bool qvEclipseSOLUTION::applyStepList(Load& load) {
  std::vector<std::string> kept;
  for (const auto& file : zMultList) {
    const bool listed = std::ranges::count(iRestartList, GetNumericPartOfFileName(file)) > 0;
    if (listed && kept.size() < iRestartList.size()) kept.push_back(file);
  }
  if (kept.empty()) {
    tell(*session_, FileName, "no file of the report steps asked for", "nothing read");
    return false;
  }
  bool qDone = false;
  SetMultList(static_cast<std::int32_t>(kept.size()), kept, qDone);
  load.iSteps = iRestartList;
  return qDone;
}

bool qvEclipseSOLUTION::readEntries(Load& load) {
  if (session_->Container && nMultList > 1) session_->Container->files(nMultList);
  for (std::size_t entry = 0; entry < zMultList.size() && !load.stop; ++entry) {
    if (!readFile(load, entry)) return false;
    if (session_->Container && nMultList > 1) session_->Container->fileDone();
    if (session_->yield()) return false;
  }
  return true;
}

bool qvEclipseSOLUTION::readFile(Load& load, std::size_t entry) {
  const std::string& path = zMultList[entry];
  std::string why;
  std::shared_ptr<const ByteSource> source = FileSource::open(path, why);
  if (!source) {
    std::error_code none;
    const bool missing = !std::filesystem::exists(path, none);
    // Deliberate: a file that has gone is passed over, one that cannot be opened is a failure.
    tell(*session_, path, "cannot be opened: " + why, missing ? "passed over" : "stopped");
    return missing;
  }
  constexpr std::string_view firstWords[] = {"INTEHEAD", "SEQNUM"};
  const auto detected = detectForm(*source, firstWords);
  RecordCursor cursor(std::move(source), detected ? detected->form : form(), path);
  try {
    bool qMore = true;
    while (qMore && !load.stop) {
      if (!readOneStep(load, cursor, entry)) return false;
      qMore = Unified && !load.qAtEnd;
      if (Unified && session_->Container) {
        session_->Container->fraction(static_cast<double>(cursor.nextPosition()) /
                                      static_cast<double>(std::max<std::uint64_t>(cursor.fileSize(), 1)));
      }
    }
  } catch (BadRecord& damage) {
    return endAtDamage(load, entry, damage.diagnosis());
  } catch (const Fault& fault) {
    if (fault.number() != FaultNumber::Overflow || !AcceptDamaged) throw;
    qDamaged = load.stop = true;  // a header that cannot be is damage too
    reportCurrentException(*session_, className, "getSOLUTIONData");
  }
  return true;
}

bool qvEclipseSOLUTION::readOneStep(Load& load, RecordCursor& cursor, std::size_t entry) {
  auto step = std::make_unique<qvEclipseSEQUENCE>(*session_);
  step->LoadData = LoadData;
  step->FileName = cursor.path();
  step->iSeqnum = entry < load.iSteps.size() ? load.iSteps[entry] : -1;
  // The working limits, where there are such: an end below the start counts as the start.
  step->iStart = Unified ? load.jStart : iStart;
  step->iEnd = Unified ? load.jEnd : iEnd;
  step->Unified = Unified;
  step->ReadOnlyHeader = ReadOnlyHeader;
  step->qMarkers = qMarkers;
  step->Origin = Origin;
  step->selection = &selection;
  step->nGridsExpected = std::max(nGrids, 1);
  if (!step->readStep(cursor)) return false;
  load.qAtEnd = step->qAtEnd;
  if (!step->qAnyRecord) return true;  // blank lines behind the last record
  const auto behind = step->damageBehind;
  if (step->qAtEnd && !behind) requireWhole(*step, cursor, load.qSolutionExpected);
  if (step->qWanted) load.qSolutionExpected = step->qHasSolution;

  step->getRESTARTDate(iDay_, iMonth_, iYear_);
  iLastStep = step->iSeqnum;
  nGrids = step->nGrids;
  if (step->qHaveHeader && iFirstHeader.empty()) iFirstHeader = step->iHeader;
  bool qUse = false;
  bool qPast = false;
  bool qDone = false;
  checkSequence(Unified, step->iSeqnum, load.jStart, load.jEnd, qUse, qPast, qDone);
  checkForExit(Unified, step->iSeqnum, load.jEnd, load.stop, qDone);
  load.stop = load.stop || step->qPastEnd;
  if (qUse && !keepStep(load, cursor, std::move(step))) return false;
  if (behind) throw BadRecord(*behind);
  return !session_->yield();
}

bool qvEclipseSOLUTION::keepStep(Load& load, const RecordCursor& cursor,
                                 std::unique_ptr<qvEclipseSEQUENCE> step) {
  bool qDone = false;
  step->addDerivedData(qDone);
  if (!qDone) return false;
  step->selection = nullptr;
  if (!load.qSized) {
    nSequencesMax_ = firstCapacity(load, cursor);
    xSEQ_.reserve(nSequencesMax_);
    load.qSized = true;
  }
  addSEQUENCE(std::move(step));
  return true;
}

/// Steps to expect, by the size of the first.
std::size_t qvEclipseSOLUTION::firstCapacity(const Load& load, const RecordCursor& cursor) const {
  std::size_t steps = load.expected;
  if (Unified) {
    const auto size = static_cast<double>(cursor.fileSize());
    const auto done = static_cast<double>(std::max<std::uint64_t>(cursor.nextPosition(), 1));
    steps = static_cast<std::size_t>(std::llround(size / done));
  }
  return steps < 1 ? stepGrowth : std::min(steps, mostExpected);
}

void qvEclipseSOLUTION::addSEQUENCE(std::unique_ptr<qvEclipseSEQUENCE> step) {
  if (xSEQ_.size() == nSequencesMax_) {
    nSequencesMax_ += stepGrowth;
    xSEQ_.reserve(nSequencesMax_);
  }
  xSEQ_.push_back(std::move(step));
  ++nSequences_;
}

/// A last step that is not whole is what a running or a killed simulation leaves: no damage.
bool qvEclipseSOLUTION::endAtDamage(Load& load, std::size_t entry, Diagnosis diagnosis) {
  const bool last = entry + 1 == zMultList.size();
  const bool half = last && diagnosis.cutOff;
  qDamaged = true;
  load.stop = true;
  diagnosis.action = fmt::format("kept {} steps", nSequences_);
  session_->diagnose(std::move(diagnosis));
  return half || AcceptDamaged;
}

}  // namespace lumbarn
