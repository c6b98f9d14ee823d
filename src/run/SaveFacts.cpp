#include "../files/Recogniser.h"
#include "../restart/qvEclipseSAVE.h"
#include "RunFacts.h"

namespace lumbarn {

void addSaveFacts(FactList& facts, const RunState& run, StreamContext& context) {
  const std::string& path = run.file(FileKind::Save).path;
  qvEclipseSAVE save(context.session());
  bool qOK = false;
  if (!save.CheckSAVEFile(path)) throw BadRecord(refusal(path, FileKind::Save));
  save.getSAVEData(qOK);
  if (context.session().cancelled()) throw LoadCanceled();
  facts.number("steps", save.NumSequences);
  if (save.NumSequences == 0) return;
  const auto& first = save.xSEQ.front();
  const auto& last = save.xSEQ.back();
  if (first.step() >= 0) {
    facts.number("first_step", first.step());
    facts.number("last_step", last.step());
  }
  const auto addDate = [&](const char* property, const auto& step) {
    if (const auto date = makeMoment(step.iYear, step.iMonth, step.iDay)) facts.date(property, *date);
  };
  addDate("first_date", first);
  addDate("last_date", last);
  if (first.iProgram >= 0) facts.number("simulator", first.iProgram);
  if (first.iVersion >= 0) facts.number("version", first.iVersion);
}

}  // namespace lumbarn
