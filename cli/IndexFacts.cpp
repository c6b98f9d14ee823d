#include <nlohmann/json.hpp>

#include "RunFacts.h"
#include "RunIndex.h"
#include "files/Recogniser.h"
#include "index/RestartIndexAgreement.h"
#include "index/qvEclipseINSPEC.h"
#include "index/qvEclipseRSSPEC.h"
#include "vocabulary/Units.h"

namespace lumbarn::cli {
namespace {

void addSteps(Facts& facts, const qvEclipseRSSPEC& index) {
  facts["steps"] = index.steps.size();
  if (index.steps.empty()) return;
  const auto& first = index.steps.front();
  const auto& last = index.steps.back();
  facts.update({{"first_step", first.iStep}, {"last_step", last.iStep}});
  const auto addDate = [&](const char* name, const qvEclipseRSSPECSequence& step) {
    if (const auto date = makeMoment(step.iYear, step.iMonth, step.iDay)) facts[name] = isoText(*date, true);
  };
  addDate("first_date", first);
  addDate("last_date", last);
}

void addHead(Facts& facts, const IndexFileHead& head) {
  facts["grid"] = {head.Nx, head.Ny, head.Nz};
  facts["active_cells"] = head.nActive;
  facts["units"] = unitSystemName(head.iUnits);
}

}  // namespace

Facts indexFacts(const RunFamily& run, FileKind kind, Console& console) {
  const std::string path = run.find(kind)->path;
  Facts facts = Facts::object();
  bool qOK = false;
  if (kind == FileKind::Rsspec) {
    qvEclipseRSSPEC index(console.session());
    index.CheckRESTARTFile(path, qOK);
    if (qOK) {
      index.getRSSPECData(qOK);
    } else {
      console.tell(refusal(path, kind));
    }
    addSteps(facts, index);
    addHead(facts, index.head);
  } else {
    qvEclipseINSPECFile index(console.session());
    index.CheckINSPECFile(path, qOK);
    if (qOK) {
      index.getINSPECData(qOK);
    } else {
      console.tell(refusal(path, kind));
    }
    std::vector<std::string> names;
    bool qNames = false;
    index.GetVectors(names, qNames);
    facts["arrays"] = names.size();
    addHead(facts, index.head);
  }
  console.checkCancelled();
  if (!run.find(kind == FileKind::Rsspec ? FileKind::Restart : FileKind::Init)) return facts;
  const RestartIndex used = kind == FileKind::Rsspec ? restartIndex(run, console) : initIndex(run, console);
  facts["agrees_with_files"] = used.fromFile ? "yes" : "no";
  return facts;
}

}  // namespace lumbarn::cli
