#include "Facts.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "../files/Recogniser.h"
#include "Records.h"
#include "Run.h"
#include "RunFacts.h"

namespace lumbarn {

namespace {

using enum FileKind;

/// A group of facts and the file types that it is read from.
struct FactGroup {
  const char* name;
  std::initializer_list<FileKind> kinds;
  void (*add)(FactList&, const RunState&, StreamContext&);
};

const FactGroup ofRuns[] = {
    {"summary", {SummarySpec}, addSummaryFacts},
    {"restart", {Restart}, addRestartFacts},
    {"init", {Init}, addInitFacts},
    {"grid", {EGrid, Grid}, addGridFacts},
    {"well_tests", {Rft}, addTestFacts},
    {"save", {Save}, addSaveFacts},
};
const FactGroup ofFiles[] = {
    {"summary", {Summary}, addSummaryFacts},           {"well_tests", {UserRft, UserPlt}, addTestFacts},
    {"restart_index", {Rsspec}, addRestartIndexFacts}, {"init_index", {Inspec}, addInitIndexFacts},
    {"deck", {FileKind::Deck}, addDeckFacts},
};

/// A context that reports each damage once: several walks over a file meet the same.
std::shared_ptr<StreamContext> contextOfSeveralReads(ReadOptions options) {
  if (!options.report) return std::make_shared<StreamContext>(std::move(options));
  options.report = [report = options.report, known = std::vector<Diagnosis>()](const Diagnosis& one) mutable {
    const bool isKnown = std::ranges::any_of(known, [&](const Diagnosis& other) {
      return other.message == one.message && other.path == one.path && other.offset == one.offset &&
             (one.offset || other.problem == one.problem);
    });
    if (isKnown) return;
    known.push_back(one);
    report(one);
  };
  return std::make_shared<StreamContext>(std::move(options));
}

/// What cannot be read of one kind of files does not hide the others.
void addGroup(FactList& facts, const FactGroup& group, const RunState& run, StreamContext& context) {
  try {
    facts.group(group.name);
    group.add(facts, run, context);
  } catch (...) {
    Error error = errorInFlight();
    if (error.kind() == Error::Kind::Cancelled || error.kind() == Error::Kind::Memory) throw error;
    context.session().diagnose(error.diagnosis());
  }
}

/// The file itself, as its content shows it.
void addFile(FactList& facts, const std::string& path, const Recognised& file, StreamContext& context) {
  facts.text("file", path);
  facts.text("kind", nameOf(file.kind));
  if (file.form) facts.text("form", file.form->description());
  if (file.unified) facts.text("layout", *file.unified ? "unified" : "one file for each step");
  if (const auto stamp = stampOf(path)) facts.number("bytes", static_cast<std::int64_t>(stamp->size));
  if (file.kind == Unknown && file.form) facts.text("first_record", file.keyword);
  if (!isText(file.kind) && file.problem) {
    context.session().diagnose(*file.problem);
  } else if (file.kind == Unknown) {
    context.session().diagnose(
        {.message = Message::FileType, .path = path, .problem = "is of a type that is not known"});
  }
}

/// The run, with the file that it was opened by as what its content shows.
std::shared_ptr<const RunState> recognisedRun(const std::shared_ptr<const RunState>& run, FileKind kind) {
  RunFamily family = run->family();
  FileKind& given = family.members[*family.given].kind;
  if (given == kind) return run;
  given = kind;
  return std::make_shared<const RunState>(std::move(family));
}

}  // namespace

Stream Run::facts(const ReadOptions& options) const {
  try {
    const auto context = contextOfSeveralReads(options);
    FactList facts;
    facts.text("run", root());
    for (const FactGroup& group : ofRuns) {
      const auto isThere = [&](FileKind kind) { return state_->family().find(kind) != nullptr; };
      if (std::ranges::any_of(group.kinds, isThere)) addGroup(facts, group, *state_, *context);
    }
    return std::move(facts).stream(context);
  } catch (...) {
    throw errorInFlight();
  }
}

Stream Run::fileFacts(const ReadOptions& options) const {
  try {
    const auto path = namedFile();
    if (!path) throwRefused(root(), "is the root name of a run, not a file");
    const auto context = contextOfSeveralReads(options);
    const Recognised file = recogniseFile(*path);
    FactList facts;
    addFile(facts, *path, file, *context);
    facts.text("run", root());
    const auto run = recognisedRun(state_, file.kind);
    const auto addAll = [&](std::span<const FactGroup> groups) {
      for (const FactGroup& group : groups) {
        if (std::ranges::count(group.kinds, file.kind) > 0) addGroup(facts, group, *run, *context);
      }
    };
    addAll(ofRuns);
    addAll(ofFiles);
    return std::move(facts).stream(context);
  } catch (...) {
    throw errorInFlight();
  }
}

Stream facts(const std::string& path, const ReadOptions& options) {
  const Run run = Run::open(path);
  return run.namedFile() ? run.fileFacts(options) : run.facts(options);
}

std::optional<std::string> typeOfInput(const std::string& path) {
  const Recognised found = recogniseFile(path);
  const bool simulatorFile = found.form && (found.byContent || found.kind != Unknown);
  if (!simulatorFile && found.kind != FileKind::Deck) return std::nullopt;
  return std::string(nameOf(found.kind));
}

}  // namespace lumbarn
