#include "SummaryState.h"

#include <utility>

#include "../files/FileChoice.h"
#include "../frame/Error.h"

namespace lumbarn {
namespace {

/// Ends a question about a file of which nothing can be read; the reason was reported.
[[noreturn]] void throwUnreadable(const StreamContext& context, const std::string& path) {
  if (context.worst()) throw Error(Error::Kind::Damaged, *context.worst());
  throw Error(
      Error::Kind::Damaged,
      {.message = Message::RecordDamaged, .path = path, .problem = "nothing of the summary can be read"});
}

[[noreturn]] void throwMissing(const std::string& path, const std::string& problem) {
  throw Error(Error::Kind::NotFound, {.message = Message::RunFileMissing, .path = path, .problem = problem});
}

}  // namespace

/// A file under a name of its own is taken at the caller's word; its records show whether it is one.
std::string SummaryState::specificationPath() const {
  if (const RunMember* specification = family_.find(FileKind::SummarySpec)) return specification->path;
  const RunMember* given = family_.givenMember();
  if (given && given->kind == FileKind::Unknown) return given->path;
  throwMissing(family_.folder + family_.base, "has no summary specification (SMSPEC)");
}

std::shared_ptr<const SummarySpec> SummaryState::specification(StreamContext& context) const {
  return *specification_.get(context, [&](Session& session) {
    const std::string path = specificationPath();
    auto spec = readSpecification(path, session);
    if (session.cancelled()) throw LoadCanceled();
    if (!spec) throwUnreadable(context, path);
    return spec;
  });
}

std::shared_ptr<const SummaryRun> SummaryState::run(StreamContext& context, bool sparse) const {
  auto spec = specification(context);
  return run_.get(context, [&](Session& session) {
    const RunMember* given = family_.givenMember();
    FileChoice choice = given && given->kind == FileKind::Summary
                            ? chooseFiles(session, family_, FileKind::Summary)
                            : chooseFiles(session, spec->zFileName, FileKind::Summary);
    if (choice.files.empty()) throwMissing(spec->zFileName, "no summary data (UNSMRY, Snnnn) found for it");
    SummaryRun run = indexSummary(std::move(spec), std::move(choice), sparse, session);
    if (run.index.cancelled) throw LoadCanceled();
    if (!run.index.opened) throwUnreadable(context, run.files.front());
    return run;
  });
}

std::shared_ptr<const std::vector<SummaryRun>> SummaryState::earlierRuns(StreamContext& context,
                                                                         bool sparse) const {
  const auto newest = specification(context);
  return earlier_.get(context, [&](Session& session) { return indexEarlierRuns(*newest, sparse, session); });
}

}  // namespace lumbarn
