#include <nlohmann/json.hpp>

#include "Failure.h"
#include "RunFacts.h"
#include "files/Recogniser.h"
#include "restart/qvEclipseSAVE.h"
#include "support/Dates.h"

namespace lumbarn::cli {

Facts saveFacts(const RunFamily& run, Console& console) {
  const std::string& path = run.find(FileKind::Save)->path;
  qvEclipseSAVE save(console.session());
  bool qOK = false;
  if (save.CheckSAVEFile(path)) {
    save.getSAVEData(qOK);
  } else {
    console.tell(refusal(path, FileKind::Save));
  }
  console.checkCancelled();
  Facts facts = {{"steps", save.NumSequences}};
  if (save.NumSequences == 0) return facts;
  const auto& first = save.xSEQ.front();
  const auto& last = save.xSEQ.back();
  if (first.step() >= 0) facts.update({{"first_step", first.step()}, {"last_step", last.step()}});
  for (const auto& [name, step] : {std::pair("first_date", &first), std::pair("last_date", &last)}) {
    const auto date = makeMoment(step->iYear, step->iMonth, step->iDay);
    if (date) facts[name] = isoText(*date, true);
  }
  if (first.iProgram >= 0) facts["simulator"] = first.iProgram;
  if (first.iVersion >= 0) facts["version"] = first.iVersion;
  return facts;
}

}  // namespace lumbarn::cli
