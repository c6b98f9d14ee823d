#include "../files/Recogniser.h"
#include "../index/qvEclipseINSPEC.h"
#include "../index/qvEclipseRSSPEC.h"
#include "../vocabulary/Units.h"
#include "RunFacts.h"

namespace lumbarn {

namespace {

void addSteps(FactList& facts, const qvEclipseRSSPEC& index) {
  facts.number("steps", static_cast<std::int64_t>(index.steps.size()));
  if (index.steps.empty()) return;
  const auto& first = index.steps.front();
  const auto& last = index.steps.back();
  facts.number("first_step", first.iStep);
  facts.number("last_step", last.iStep);
  const auto addDate = [&](const char* property, const qvEclipseRSSPECSequence& step) {
    if (const auto date = makeMoment(step.iYear, step.iMonth, step.iDay)) facts.date(property, *date);
  };
  addDate("first_date", first);
  addDate("last_date", last);
}

void addHead(FactList& facts, const IndexFileHead& head) {
  facts.size("grid", {head.Nx, head.Ny, head.Nz});
  facts.number("active_cells", head.nActive);
  facts.text("units", unitSystemName(head.iUnits));
}

}  // namespace

void addRestartIndexFacts(FactList& facts, const RunState& run, StreamContext& context) {
  const std::string& path = run.file(FileKind::Rsspec).path;
  qvEclipseRSSPEC index(context.session());
  bool qOK = false;
  index.CheckRESTARTFile(path, qOK);
  if (!qOK) throw BadRecord(refusal(path, FileKind::Rsspec));
  index.getRSSPECData(qOK);
  if (context.session().cancelled()) throw LoadCanceled();
  addSteps(facts, index);
  addHead(facts, index.head);
  if (run.family().find(FileKind::Restart))
    facts.text("agrees_with_files", run.restartIndex(context)->fromFile ? "yes" : "no");
}

void addInitIndexFacts(FactList& facts, const RunState& run, StreamContext& context) {
  const std::string& path = run.file(FileKind::Inspec).path;
  qvEclipseINSPECFile index(context.session());
  bool qOK = false;
  index.CheckINSPECFile(path, qOK);
  if (!qOK) throw BadRecord(refusal(path, FileKind::Inspec));
  index.getINSPECData(qOK);
  if (context.session().cancelled()) throw LoadCanceled();
  std::vector<std::string> names;
  bool qNames = false;
  index.GetVectors(names, qNames);
  facts.number("arrays", static_cast<std::int64_t>(names.size()));
  addHead(facts, index.head);
  if (run.family().find(FileKind::Init))
    facts.text("agrees_with_files", run.initIndex(context)->fromFile ? "yes" : "no");
}

}  // namespace lumbarn
