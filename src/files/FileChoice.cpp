#include "FileChoice.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <fmt/format.h>

#include "../support/Diagnosis.h"
#include "../support/System.h"
#include "Folder.h"
#include "Recogniser.h"
#include "SetSearch.h"

namespace lumbarn {
namespace {

// Files that were unpacked or copied together differ by less than this; those of two runs by more.
constexpr std::int64_t sameRun = std::chrono::nanoseconds(std::chrono::minutes(1)).count();

bool allNewer(const std::vector<std::string>& steps, const std::string& unified) {
  const auto stamp = stampOf(unified);
  return stamp && std::ranges::all_of(steps, [&](const std::string& step) {
           const auto stepStamp = stampOf(step);
           return stepStamp && stepStamp->modified >= stamp->modified + sameRun;
         });
}

std::string nameIn(const std::string& path) { return path.substr(FileName(path).folder.size()); }

void reportChoice(Session& session, const SetFiles& found, bool unified) {
  const std::string steps = found.steps.size() == 1 ? nameIn(found.steps.front())
                                                    : fmt::format("{} to {}", nameIn(found.steps.front()),
                                                                  nameIn(found.steps.back()));
  session.diagnose(
      Diagnosis{.message = Message::FilesBothSets,
                .path = found.unified,
                .found = steps,
                .action = unified ? "read the unified file" : "read the step files, which are newer"});
}

// A step file of another type (X0003 where the summary is asked for) indicates the form only.
std::vector<ExtensionSet> setsFor(const FileName& named, FileKind kind) {
  const ExtensionMeaning meaning = meaningOf(named.extension);
  const bool otherType = meaning.multiple() && meaning.kind != kind;
  return candidateSets(otherType ? std::string(meaning.set->unified) : named.extension, kind);
}

FileChoice choose(Session& session, const FileName& named, FileKind kind, std::optional<bool> unified) {
  const ExtensionMeaning meaning = meaningOf(named.extension);
  const std::string path = named.folder + named.base + '.' + named.extension;
  const bool namedData = meaning.kind == kind && meaning.set;
  FileChoice choice;
  const std::int32_t step = GetNumericPartOfFileName(path);
  if (step >= 0 && (namedData || meaning.kind == FileKind::Unknown)) {
    choice.namedStep = step;
    if (!unified) unified = false;
  } else if (namedData && unified.value_or(true)) {
    choice.files = {path};
    return choice;
  }
  SetFiles found;
  findSetFiles(named, setsFor(named, kind), session, found);
  const bool both = !found.steps.empty() && !found.unified.empty();
  choice.unified = unified.value_or(found.steps.empty() || (both && !allNewer(found.steps, found.unified)));
  if (both && !unified) reportChoice(session, found, choice.unified);
  if (!choice.unified) {
    choice.files = std::move(found.steps);
  } else if (!found.unified.empty()) {
    choice.files = {std::move(found.unified)};
  }
  return choice;
}

/// Reports a restart file whose records are those of another type. An INIT file begins alike, and step files
/// may contain static arrays.
void reportOtherType(Session& session, const std::string& path) {
  const Recognised found = recogniseFile(path);
  if (found.byContent && found.kind != FileKind::Restart && found.kind != FileKind::Init)
    session.diagnose(refusal(path, FileKind::Restart));
}

}  // namespace

FileChoice chooseFiles(Session& session, const std::string& named, FileKind kind,
                       std::optional<bool> unified) {
  FileName parts(named);
  if (!isFile(named)) {
    std::string why;
    const auto runs = findRuns(named, why);
    if (!runs.empty()) parts = FileName(runs.front().folder, runs.front().base, "");
  }
  return choose(session, parts, kind, unified);
}

FileChoice chooseFiles(Session& session, const RunFamily& run, FileKind kind) {
  const RunMember* given = run.givenMember();
  const std::string extension = given ? FileName(given->path).extension : "";
  // A file under a name that belongs to no set is read alone.
  if (given && given->kind == kind && meaningOf(extension).kind != kind) return {.files = {given->path}};
  FileChoice choice = choose(session, FileName(run.folder, run.base, extension), kind, std::nullopt);
  if (kind == FileKind::Restart && !choice.files.empty()) reportOtherType(session, choice.files.front());
  return choice;
}

bool isStepFile(const std::string& path) { return GetNumericPartOfFileName(path) >= 0; }

std::string fileOfRun(const std::string& path, FileKind kind, std::span<const FileKind> leads) {
  const FileName parts(path);
  const bool leading = std::ranges::count(leads, meaningOf(parts.extension).kind) > 0;
  const bool exists = isFile(path);
  if (exists && !leading) return path;
  std::string why;
  const auto runs = findRuns(leading && !exists ? parts.folder + parts.base : path, why);
  const RunMember* member = runs.size() == 1 ? runs.front().find(kind) : nullptr;
  return member ? member->path : path;
}

void reportOlderStepFiles(Session& session, std::span<const std::string> files) {
  std::optional<FileStamp> before;
  for (std::size_t i = 0; i < files.size(); ++i) {
    const auto stamp = stampOf(files[i]);
    if (stamp && before && stamp->modified + sameRun < before->modified) {
      session.diagnose(Diagnosis{.message = Message::FileOlder,
                                 .path = files[i],
                                 .expected = "written after " + nameIn(files[i - 1]),
                                 .action = "read it",
                                 .certainty = Certainty::Guess});
    }
    before = stamp;
  }
}

}  // namespace lumbarn
