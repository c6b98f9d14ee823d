#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "../files/Extensions.h"
#include "../files/FileChoice.h"
#include "../files/FileSets.h"
#include "../record/ByteSource.h"
#include "../record/LoadedFiles.h"
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

/// The first array whose name an earlier one has; their number if there is none.
std::size_t repeatedArray(const std::vector<KeptArray>& arrays,
                          std::vector<std::pair<std::string_view, std::size_t>>& names) {
  names.clear();
  for (const KeptArray& array : arrays) names.emplace_back(array.name, names.size());
  std::ranges::sort(names);
  std::size_t first = arrays.size();
  for (std::size_t i = 1; i < names.size(); ++i) {
    if (names[i].first == names[i - 1].first) first = std::min(first, names[i].second);
  }
  return first;
}

}  // namespace

/// What one load has found out.
struct qvEclipseSOLUTION::Load {
  std::int32_t jStart = -1;
  std::int32_t jEnd = -1;
  std::size_t expected = 0;         ///< steps of a multiple set
  bool qSized = false;              ///< the capacity of the step table is known
  bool qAtEnd = false;              ///< the unified file has no more records
  bool qFailed = false;             ///< something was damaged; a truncated last step is not
  std::optional<StepParts> before;  ///< of the last complete step
  std::uint64_t start = 0;          ///< byte offset of the step that is being read
  bool stepTwice = false;           ///< reported: a step number, or an array of a step, that occurs again
  bool arrayTwice = false;
  bool stop = false;
  std::unordered_set<std::int32_t> numbers;                     ///< of the steps that were kept
  std::vector<std::pair<std::string_view, std::size_t>> names;  ///< of one grid's arrays: working memory
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
    return prepare(load) && readEntries(load) && (!load.qFailed || AcceptDamaged);
  });
  xSEQ_.resize(static_cast<std::size_t>(std::max(nSequences_, 1)));
}

bool qvEclipseSOLUTION::prepare(Load& load) {
  const bool qList = !iRestartList.empty() && iRestartList.front() > -1;
  if (qList && Unified) {
    // Deliberate: of a unified file, all steps between the first and the last of the list are read.
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
    return true;
  }
  load.expected = zMultList.size();
  return !qList || applyStepList();
}

bool qvEclipseSOLUTION::applyStepList() {
  std::vector<std::string> kept;
  for (const auto& file : zMultList) {
    const bool listed = std::ranges::count(iRestartList, GetNumericPartOfFileName(file)) > 0;
    if (listed && kept.size() < iRestartList.size()) kept.push_back(file);
  }
  if (kept.empty()) {
    session_->diagnose({.message = Message::RestartStepsMissing, .path = FileName, .action = "read nothing"});
    return false;
  }
  bool qDone = false;
  SetMultList(static_cast<std::int32_t>(kept.size()), kept, qDone);
  return qDone;
}

bool qvEclipseSOLUTION::readEntries(Load& load) {
  if (!Unified) reportOlderStepFiles(*session_, zMultList);
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
    session_->diagnose({.message = Message::FileOpen,
                        .path = path,
                        .problem = "cannot be opened: " + why,
                        .action = missing ? "skipped the file" : "stopped"});
    return missing;
  }
  if (source->size() == 0) {  // not an error of the last file, which a running simulation has just created
    reportDamage(load, entry, {.message = Message::FileEmpty, .path = path, .offset = 0, .cutOff = true});
    return true;
  }
  constexpr std::string_view firstWords[] = {"INTEHEAD", "SEQNUM"};
  const auto detected = detectForm(*source, firstWords);
  if (const auto stamp = source->stamp()) session_->part<LoadedFiles>().stamps[path] = *stamp;
  RecordCursor cursor(std::move(source), detected ? detected->form : form(), path);
  cursor.attach(*session_, RecordFile::Restart);
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
    cursor.checkUnchanged();
  } catch (BadRecord& damage) {
    reportDamage(load, entry, std::move(damage.diagnosis()));
  } catch (const Fault& fault) {
    if (fault.number() != FaultNumber::Overflow || !AcceptDamaged) throw;
    qDamaged = load.qFailed = true;  // a header that cannot be is damage too
    reportCurrentException(*session_, className, "getSOLUTIONData");
  }
  return true;
}

bool qvEclipseSOLUTION::readOneStep(Load& load, RecordCursor& cursor, std::size_t entry) {
  auto step = std::make_unique<qvEclipseSEQUENCE>(*session_);
  step->LoadData = LoadData;
  step->FileName = cursor.path();
  step->iSeqnum = Unified ? -1 : GetNumericPartOfFileName(cursor.path());
  // The working limits, where there are such: an end below the start counts as the start.
  step->iStart = Unified ? load.jStart : iStart;
  step->iEnd = Unified ? load.jEnd : iEnd;
  step->Unified = Unified;
  step->ReadOnlyHeader = ReadOnlyHeader;
  step->qMarkers = qMarkers;
  step->Origin = Origin;
  step->selection = &selection;
  step->partsBefore = load.before ? &*load.before : nullptr;
  load.start = cursor.nextPosition();
  if (!step->readStep(cursor)) return false;
  load.qAtEnd = step->qAtEnd;
  if (!step->qAnyRecord) return true;  // blank lines behind the last record
  const auto behind = step->damageBehind;
  if (step->qDamaged) qDamaged = load.qFailed = true;
  const bool last = step->qAtEnd && !behind && entry + 1 == zMultList.size();
  const bool complete = checkComplete(load, *step, cursor, last);
  if (complete && !step->qHeadersOnly) load.before = step->parts();
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
  if (qUse && complete && !keepStep(load, cursor, std::move(step))) return false;
  if (behind && load.qAtEnd) throw BadRecord(*behind);
  if (behind) {
    qDamaged = load.qFailed = true;
    session_->diagnose(*behind);
  }
  return !session_->yield();
}

bool qvEclipseSOLUTION::keepStep(Load& load, const RecordCursor& cursor,
                                 std::unique_ptr<qvEclipseSEQUENCE> step) {
  bool qDone = false;
  step->addDerivedData(qDone);
  if (!qDone) return false;
  step->selection = nullptr;
  reportRepeats(load, *step);
  if (!load.qSized) {
    nSequencesMax_ = firstCapacity(load, cursor);
    xSEQ_.reserve(nSequencesMax_);
    load.qSized = true;
  }
  addSEQUENCE(std::move(step));
  return true;
}

/// A host that selects by number or name gets one of several; a position selects each.
void qvEclipseSOLUTION::reportRepeats(Load& load, const qvEclipseSEQUENCE& step) const {
  const auto report = [&](bool& reported, Message message, std::uint64_t offset, std::string found) {
    if (std::exchange(reported, true)) return;
    session_->diagnose({.message = message,
                        .path = step.FileName,
                        .offset = offset,
                        .found = std::move(found),
                        .action = "kept both; each is selected by its position"});
  };
  if (!load.numbers.insert(step.iSeqnum).second)
    report(load.stepTwice, Message::StepTwice, load.start, fmt::format("2 steps {}", step.iSeqnum));
  for (std::int32_t iGrid = 1; iGrid <= step.nGrids && !load.arrayTwice; ++iGrid) {
    const auto& arrays = step.grid(iGrid).arrays.arrays();
    if (const auto again = repeatedArray(arrays, load.names); again < arrays.size())
      report(load.arrayTwice, Message::ArrayTwice, arrays[again].header.headerAt,
             fmt::format("{} twice in step {}", arrays[again].name, step.iSeqnum));
  }
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

/// Reports a step that is not complete, as a running or a killed simulation leaves it: not an error.
bool qvEclipseSOLUTION::checkComplete(const Load& load, const qvEclipseSEQUENCE& step,
                                      const RecordCursor& cursor, bool last) {
  const StepParts* before = last && load.before ? &*load.before : nullptr;
  const auto missing =
      step.qHeadersOnly ? std::string_view() : missingPart(step.parts(), before, last && !before && Unified);
  if (missing.empty()) return true;
  qDamaged = true;
  const bool atEnd = step.qAtEnd;
  auto diagnosis = incompleteStep(cursor.path(), step.iSeqnum, missing,
                                  atEnd ? cursor.fileSize() : cursor.nextPosition(), atEnd ? "" : "SEQNUM");
  diagnosis.action = fmt::format("skipped the step; kept {} steps", nSequences_);
  session_->diagnose(std::move(diagnosis));
  return false;
}

/// Reports damage that no record follows. It ends a file but says nothing of the other files of a set. A last
/// record that is truncated is what a running simulation leaves.
void qvEclipseSOLUTION::reportDamage(Load& load, std::size_t entry, Diagnosis diagnosis) {
  const bool last = entry + 1 == zMultList.size();
  qDamaged = true;
  load.qFailed = load.qFailed || !(last && diagnosis.cutOff);
  diagnosis.action = last ? fmt::format("kept {} steps", nSequences_) : "continued with the next file";
  session_->diagnose(std::move(diagnosis));
}

}  // namespace lumbarn
