#include <map>

#include <nlohmann/json.hpp>

#include "Failure.h"
#include "PathArgument.h"
#include "RunFacts.h"
#include "files/Recogniser.h"
#include "reader/qvEclipseReader.h"
#include "summary/qvEclipseSUMMARYFile.h"
#include "vocabulary/Units.h"

namespace lumbarn::cli {
namespace {

/// Rows, report steps and dates of the data; of the vectors only the time is read.
void addRows(Facts& facts, const std::string& file, Console& console) {
  qvEclipseReader reader(console.session());
  reader.FileName = file;
  reader.whichtype = 12;
  reader.Silent = true;
  reader.AcceptDamaged = true;
  reader.VectorPatterns = {"TIME"};
  bool qOK = false;
  reader.ECLReadData(qOK);
  XYData values;
  ByteTable bHeaders;
  SourceData vSourceData;
  ByteTable bOnlyUsed;
  if (qOK) reader.GetSUMMARYData(values, bHeaders, vSourceData, bOnlyUsed, qOK);
  console.checkCancelled();
  if (!qOK) return;
  const auto dates = reader.RowDates(values);
  if (!dates.empty()) {
    facts["first_date"] = isoText(dates.front(), true);
    facts["last_date"] = isoText(dates.back(), true);
  }
  std::int64_t steps = 0;
  const SummaryRow* before = nullptr;
  for (const SummaryRow& row : reader.Rows()) {
    if (!before || before->iFile != row.iFile || before->iStep != row.iStep) ++steps;
    before = &row;
  }
  facts["report_steps"] = steps;
  facts["rows"] = values.rows();
}

}  // namespace

Facts summaryFacts(const RunFamily& run, Console& console) {
  const std::string path = summarySpecification(run).path;
  qvEclipseSPEC spec(console.session());
  bool qOK = false;
  if (spec.CheckSPECFile(path)) {
    spec.ReadEclipseSPECFile(qOK);
  } else {
    console.tell(refusal(path, FileKind::SummarySpec));
  }
  console.checkCancelled();
  Facts facts = Facts::object();
  if (!qOK && !spec.qDamaged) return facts;

  if (const auto start = spec.start()) facts["start"] = isoText(*start, true);
  addRows(facts, summaryFile(run), console);
  const auto vectors = summaryVectors(spec);
  facts["vectors"] = vectors.size();
  facts["units"] = unitSystemName(spec.iUnitSystem);
  if (const auto size = spec.gridSize()) facts["grid"] = *size;
  if (!spec.zRestartName.empty()) {
    facts["restarted_from"] = spec.zRestartName;
    facts["restart_step"] = spec.iRestartStep;
  }
  std::map<std::string, std::int64_t> classes;
  for (const SummaryVector& vector : vectors) ++classes[vector.classWord];
  if (!classes.empty()) facts["vectors_by_class"] = classes;
  return facts;
}

}  // namespace lumbarn::cli
