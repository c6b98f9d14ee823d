#include "SummaryRun.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "../files/Recogniser.h"
#include "../shapes/HeaderLayout.h"
#include "../support/Diagnosis.h"
#include "ColumnReader.h"
#include "RestartChain.h"
#include "SpecReader.h"

namespace lumbarn {
namespace {

bool sameFile(const std::string& a, const std::string& b) {
  std::error_code none;
  return std::filesystem::equivalent(a, b, none) && !none;
}

/// Reads what was checked; null when there are no vectors.
std::shared_ptr<const SummarySpec> readChecked(SummarySpec spec, Session& session) {
  if (!readSpec(spec, session) && !spec.qDamaged) return nullptr;
  return std::make_shared<const SummarySpec>(std::move(spec));
}

}  // namespace

std::shared_ptr<const SummarySpec> readSpecification(const std::string& path, Session& session) {
  SummarySpec spec;
  if (checkSpec(spec, path, session)) return readChecked(std::move(spec), session);
  session.diagnose(refusal(path, FileKind::SummarySpec));
  return nullptr;
}

SummaryRun indexSummary(std::shared_ptr<const SummarySpec> spec, FileChoice choice, bool sparse,
                        Session& session) {
  RowIndexRequest request;
  request.zFiles = choice.files;
  request.form = spec->form();
  request.unified = choice.unified;
  request.nValues = static_cast<std::int32_t>(spec->qKeyMask.size());
  request.iRestartStep = spec->iRestartStep;
  request.timeFirst = timeIsFirst(*spec);
  request.sparse = sparse;
  if (session.Container && choice.files.size() > 1)
    session.Container->files(static_cast<int>(choice.files.size()));
  RowIndex index = indexRows(request, session);
  return {std::move(spec), std::move(choice.files), std::move(index)};
}

std::vector<SummaryRun> indexEarlierRuns(const SummarySpec& newest, bool sparse, Session& session) {
  std::vector<SummaryRun> runs;
  std::vector<std::string> chain{newest.zFileName};
  const SummarySpec* last = &newest;
  while (chain.size() < mostRunsOfChain) {
    auto found = findNextOfChain(chain, *last, session);
    auto spec = found ? readChecked(std::move(*found), session) : nullptr;
    if (!spec || session.cancelled()) break;
    FileChoice choice = chooseFiles(session, spec->zFileName, FileKind::Summary);
    if (choice.files.empty()) {
      session.diagnose({.message = Message::RunFileMissing,
                        .path = spec->zFileName,
                        .problem = "has no summary data",
                        .action = "the restart chain ends here"});
      break;
    }
    chain.push_back(spec->zFileName);
    SummaryRun run = indexSummary(std::move(spec), std::move(choice), sparse, session);
    if (!run.index.opened || run.index.cancelled) break;
    runs.push_back(std::move(run));
    last = runs.back().spec.get();
  }
  return runs;
}

std::optional<SummarySpec> findNextOfChain(std::span<const std::string> chain, const SummarySpec& last,
                                           Session& session) {
  if (last.zRestartName.empty()) return std::nullopt;
  auto spec = findEarlierRun(last.zRestartName, last.zFileName, last.Formatted, session);
  if (!spec) return std::nullopt;
  if (std::ranges::none_of(chain, [&](const auto& path) { return sameFile(path, spec->zFileName); }))
    return spec;
  session.diagnose({.message = Message::ChainLoop,
                    .path = last.zFileName,
                    .keyword = "RESTART",
                    .occurrence = 1,
                    .expected = "an earlier run",
                    .found = spec->zFileName,
                    .action = "the restart chain ends here"});
  return std::nullopt;
}

bool timeIsFirst(const SummarySpec& spec) {
  return !spec.xVectors.empty() && spec.text(spec.xVectors.front(), attributeVariable) == "TIME";
}

ChainRun chainRunOf(const SummarySpec& spec, std::vector<SummaryVector> vectors,
                    std::span<const RowPlace> rows) {
  ChainRun run{.path = spec.zFileName, .vectors = std::move(vectors), .start = spec.start()};
  run.times.reserve(rows.size());
  for (const RowPlace& row : rows) run.times.push_back(row.first);
  if (timeIsFirst(spec)) run.timeUnit = spec.text(spec.xVectors.front(), attributeUnits);
  run.nameWidth = spec.nNameWidth;
  run.iRestartStep = spec.iRestartStep;
  if (!rows.empty()) run.iLastStep = rows.back().iReportStep;
  return run;
}

bool holdsCompletions(const SummarySpec& spec, std::span<const SummaryVector> kept, bool byPatterns) {
  if (!spec.qPerforations || !byPatterns) return spec.qPerforations;
  return std::ranges::any_of(kept, [](const auto& vector) { return vector.classWord == "COMPLETIONS"; });
}

void reportRunOmitted(const SummarySpec& spec, Session& session) {
  session.diagnose({.message = Message::ChainConnections,
                    .path = spec.zFileName,
                    .action = "omitted the run; select vectors without completions to include it"});
}

}  // namespace lumbarn
