#include <map>
#include <memory>

#include "../summary/SummaryTable.h"
#include "../vocabulary/Units.h"
#include "RunFacts.h"

namespace lumbarn {

namespace {

/// Rows, report steps and dates; of the data only TIME is read.
void addRows(FactList& facts, const RunState& run, const SummarySpec& spec, StreamContext& context) {
  SummaryTable table(VectorChoice({"TIME"}, {}), context.session());
  auto time = table.choose(spec);
  table.add(run.summary().run(context, true), std::move(time));
  table.finish();
  if (table.rows() > 0) {
    const auto first = table.date(0);
    const auto last = table.date(table.rows() - 1);
    if (first) facts.date("first_date", *first);
    if (last) facts.date("last_date", *last);
  }
  std::int64_t steps = 0;
  for (std::size_t row = 0; row < table.rows(); ++row) {
    if (row == 0 || table.step(row) != table.step(row - 1)) ++steps;
  }
  facts.number("report_steps", steps);
  facts.number("rows", static_cast<std::int64_t>(table.rows()));
}

/// The runs before this one that are there, newest first.
std::vector<std::string> earlierRuns(const std::shared_ptr<const SummarySpec>& newest, Session& session) {
  std::vector<std::string> chain{newest->zFileName};
  auto last = newest;
  while (chain.size() < mostRunsOfChain) {
    const auto next = findNextOfChain(chain, *last, session);
    if (!next) break;
    auto read = readSpecification(next->zFileName, session);
    if (!read) break;
    last = std::move(read);
    chain.push_back(last->zFileName);
  }
  return {chain.begin() + 1, chain.end()};
}

}  // namespace

void addSummaryFacts(FactList& facts, const RunState& run, StreamContext& context) {
  const auto spec = run.summary().specification(context);
  if (const auto start = spec->start()) facts.date("start", *start);
  try {
    addRows(facts, run, *spec, context);
  } catch (const Error& error) {  // what the specification tells follows
    if (error.kind() == Error::Kind::Cancelled || error.kind() == Error::Kind::Memory) throw;
    context.session().diagnose(error.diagnosis());
  }
  const auto vectors = summaryVectors(*spec);
  facts.number("vectors", static_cast<std::int64_t>(vectors.size()));
  facts.text("units", unitSystemName(spec->iUnitSystem));
  if (const auto size = spec->gridSize()) facts.size("grid", *size);
  if (!spec->zRestartName.empty()) {
    facts.text("restarted_from", spec->zRestartName);
    facts.number("restart_step", spec->iRestartStep);
    facts.texts("earlier_runs", earlierRuns(spec, context.session()));
  }
  std::map<std::string, std::int64_t> classes;
  for (const SummaryVector& vector : vectors) ++classes[vector.classWord];
  facts.group("summary.vectors_by_class");
  for (const auto& [word, count] : classes) facts.number(word, count);
}

}  // namespace lumbarn
