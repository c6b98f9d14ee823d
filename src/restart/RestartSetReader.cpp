#include "RestartSetReader.h"

#include <algorithm>
#include <filesystem>

#include <fmt/format.h>

#include "../files/Extensions.h"
#include "../files/FileChoice.h"
#include "../files/Recogniser.h"
#include "../record/ByteSource.h"
#include "../record/LoadedFiles.h"
#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "StepArrays.h"

namespace lumbarn {

namespace {

constexpr std::string_view firstWords[] = {"INTEHEAD", "SEQNUM"};

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

std::optional<RestartFileForm> formOfRestartFile(const std::string& path, Session& session) {
  std::string why;
  const std::shared_ptr<const ByteSource> source = FileSource::open(path, why);
  if (!source) return std::nullopt;
  // Some writers begin step files with SEQNUM too.
  if (const auto detected = detectForm(*source, firstWords, session))
    return RestartFileForm{detected->form, detected->keyword == "SEQNUM" && !isStepFile(path)};
  // Some writers put an array in front of the first SEQNUM.
  const auto recognised = recognise(source, path);
  if (recognised.kind != FileKind::Restart || !recognised.byContent || !recognised.form) return std::nullopt;
  return RestartFileForm{*recognised.form,
                         recognised.unified.value_or(false) && GetNumericPartOfFileName(path) < 0};
}

bool RestartSetReader::read() {
  set_ = {};
  if (!chooseFiles()) return false;
  if (!options_.Unified) reportOlderStepFiles(session_, options_.zMultList);
  Progress* const progress = options_.nMultList > 1 ? session_.Container : nullptr;
  if (progress) progress->files(options_.nMultList);
  for (std::size_t entry = 0; entry < options_.zMultList.size() && !stop_; ++entry) {
    if (!readFile(entry)) return false;
    if (progress) progress->fileDone();
    if (session_.yield()) return false;
  }
  return !failed_ || options_.AcceptDamaged;
}

bool RestartSetReader::chooseFiles() {
  const auto& list = options_.iRestartList;
  const bool listed = !list.empty() && list.front() > -1;
  if (listed && options_.Unified) {
    // Deliberate: of a unified file, all steps between the first and the last of the list are read.
    options_.iStart = list.front();
    options_.iEnd = list.back();
  }
  wanted_ = options_.Unified ? stepLimits("SOLUTION", options_.iStart, options_.iEnd) : StepLimits{};
  if (!options_.Unified) return !listed || applyStepList();
  // A file that was looked at and is a unified one is read whatever its name.
  std::string unified =
      checkedUnified_ ? "" : fileNameOfKind(options_.FileName, "SOLUTION", true, form_.formatted()).name;
  if (unified.empty()) unified = options_.FileName;
  options_.setFiles({std::move(unified)});
  return true;
}

bool RestartSetReader::applyStepList() {
  std::vector<std::string> kept;
  for (const auto& file : options_.zMultList) {
    const bool listed = std::ranges::count(options_.iRestartList, GetNumericPartOfFileName(file)) > 0;
    if (listed && kept.size() < options_.iRestartList.size()) kept.push_back(file);
  }
  if (kept.empty()) {
    session_.diagnose(
        {.message = Message::RestartStepsMissing, .path = options_.FileName, .action = "read nothing"});
    return false;
  }
  options_.setFiles(std::move(kept));
  return true;
}

bool RestartSetReader::readFile(std::size_t entry) {
  const std::string& path = options_.zMultList[entry];
  std::string why;
  std::shared_ptr<const ByteSource> source = FileSource::open(path, why);
  if (!source) {
    std::error_code none;
    const bool missing = !std::filesystem::exists(path, none);
    // Deliberate: a file that has gone is passed over, one that cannot be opened is a failure.
    session_.diagnose({.message = Message::FileOpen,
                       .path = path,
                       .problem = "cannot be opened: " + why,
                       .action = missing ? "skipped the file" : "stopped"});
    return missing;
  }
  if (source->size() == 0) {  // not an error of the last file, which a running simulation has just created
    reportDamage(entry, {.message = Message::FileEmpty, .path = path, .offset = 0, .cutOff = true});
    return true;
  }
  const auto detected = detectForm(*source, firstWords);
  if (const auto stamp = source->stamp()) session_.part<LoadedFiles>().stamps[path] = *stamp;
  RecordCursor cursor(std::move(source), detected ? detected->form : form_, path);
  cursor.attach(session_, RecordFile::Restart);
  try {
    if (!readSteps(cursor, entry)) return false;
    cursor.checkUnchanged();
  } catch (BadRecord& damage) {
    reportDamage(entry, std::move(damage.diagnosis()));
  } catch (const Fault& fault) {
    if (fault.number() != FaultNumber::Overflow || !options_.AcceptDamaged) throw;
    noteDamage();  // a header that cannot be is damage too
    reportCurrentException(session_, "qvEclipseSOLUTION", "getSOLUTIONData");
  }
  return true;
}

bool RestartSetReader::readSteps(RecordCursor& cursor, std::size_t entry) {
  for (bool more = true; more && !stop_;) {
    if (!readStep(cursor, entry)) return false;
    more = options_.Unified && !atEnd_;
    if (options_.Unified && session_.Container) {
      session_.Container->fraction(static_cast<double>(cursor.nextPosition()) /
                                   static_cast<double>(std::max<std::uint64_t>(cursor.fileSize(), 1)));
    }
  }
  return true;
}

std::unique_ptr<qvEclipseSEQUENCE> RestartSetReader::makeStep(const std::string& path) {
  auto step = std::make_unique<qvEclipseSEQUENCE>(session_);
  const bool unified = options_.Unified;
  step->LoadData = options_.LoadData;
  step->FileName = path;
  step->iSeqnum = unified ? -1 : GetNumericPartOfFileName(path);
  step->iStart = unified ? wanted_.first : options_.iStart;
  step->iEnd = unified ? wanted_.last : options_.iEnd;
  step->Unified = unified;
  step->ReadOnlyHeader = options_.ReadOnlyHeader;
  step->qMarkers = options_.qMarkers;
  step->Origin = options_.Origin;
  step->selection = &options_.selection;
  step->partsBefore = before_ ? &*before_ : nullptr;
  return step;
}

bool RestartSetReader::readStep(RecordCursor& cursor, std::size_t entry) {
  auto step = makeStep(cursor.path());
  start_ = cursor.nextPosition();
  const StepEnd end = StepReader(*step, *step, session_).read(cursor);
  step->partsBefore = nullptr;
  if (end.cancelled) return false;
  atEnd_ = end.atEnd;
  if (!end.anyRecord) return true;  // blank lines behind the last record
  if (end.damaged) noteDamage();
  const bool last = end.atEnd && !end.damageBehind && entry + 1 == options_.zMultList.size();
  const bool complete = checkComplete(*step, end, cursor, last);
  if (complete && !end.headersOnly) before_ = end.parts;
  noteLast(*step);
  stop_ = wanted_.endAt(step->iSeqnum) || step->qPastEnd;
  if (complete && wanted_.contain(step->iSeqnum) && !keepStep(std::move(step))) return false;
  if (end.damageBehind) {
    if (atEnd_) throw BadRecord(*end.damageBehind);
    noteDamage();
    session_.diagnose(*end.damageBehind);
  }
  return !session_.yield();
}

void RestartSetReader::noteLast(const qvEclipseSEQUENCE& step) {
  set_.iDay = step.iDay;
  set_.iMonth = step.iMonth;
  set_.iYear = step.iYear;
  set_.iLastStep = step.iSeqnum;
  set_.nGrids = step.nGrids;
  if (step.qHaveHeader && set_.iFirstHeader.empty()) set_.iFirstHeader = step.iHeader;
}

bool RestartSetReader::keepStep(std::unique_ptr<qvEclipseSEQUENCE> step) {
  const auto derive = [&] { addDerivedSaturations(*step, *step, session_); };
  if (!succeeds(session_, "qvEclipseSEQUENCE", "addDerivedData", derive)) return false;
  step->selection = nullptr;
  reportRepeats(*step);
  set_.xSEQ.push_back(std::move(step));
  return true;
}

/// A host that selects by number or name gets one of several; a position selects each.
void RestartSetReader::reportRepeats(const qvEclipseSEQUENCE& step) {
  const auto report = [&](bool& reported, Message message, std::uint64_t offset, std::string found) {
    if (std::exchange(reported, true)) return;
    session_.diagnose({.message = message,
                       .path = step.FileName,
                       .offset = offset,
                       .found = std::move(found),
                       .action = "kept both; each is selected by its position"});
  };
  if (!numbers_.insert(step.iSeqnum).second)
    report(stepTwice_, Message::StepTwice, start_, fmt::format("2 steps {}", step.iSeqnum));
  for (std::int32_t iGrid = 1; iGrid <= step.nGrids && !arrayTwice_; ++iGrid) {
    const auto& arrays = step.grid(iGrid).arrays.arrays();
    if (const auto again = repeatedArray(arrays, names_); again < arrays.size())
      report(arrayTwice_, Message::ArrayTwice, arrays[again].header.headerAt,
             fmt::format("{} twice in step {}", arrays[again].name, step.iSeqnum));
  }
}

/// Reports a step that is not complete, as a running or a killed simulation leaves it: not an error.
bool RestartSetReader::checkComplete(const qvEclipseSEQUENCE& step, const StepEnd& end,
                                     const RecordCursor& cursor, bool last) {
  const StepParts* before = last && before_ ? &*before_ : nullptr;
  const auto missing = end.headersOnly ? std::string_view()
                                       : missingPart(end.parts, before, last && !before && options_.Unified);
  if (missing.empty()) return true;
  set_.qDamaged = true;
  const bool atEnd = end.atEnd;
  auto diagnosis = incompleteStep(cursor.path(), step.iSeqnum, missing,
                                  atEnd ? cursor.fileSize() : cursor.nextPosition(), atEnd ? "" : "SEQNUM");
  diagnosis.action = fmt::format("skipped the step; kept {} steps", set_.NumSequences());
  session_.diagnose(std::move(diagnosis));
  return false;
}

/// Reports damage that no record follows. It ends a file but says nothing of the other files of a set. A last
/// record that is truncated is what a running simulation leaves.
void RestartSetReader::reportDamage(std::size_t entry, Diagnosis diagnosis) {
  const bool last = entry + 1 == options_.zMultList.size();
  set_.qDamaged = true;
  failed_ = failed_ || !(last && diagnosis.cutOff);
  diagnosis.action =
      last ? fmt::format("kept {} steps", set_.NumSequences()) : "continued with the next file";
  session_.diagnose(std::move(diagnosis));
}

}  // namespace lumbarn
