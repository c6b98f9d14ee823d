#include <memory>
#include <string>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Baseline.h"
#include "Cases.h"
#include "SyntheticRun.h"
#include "reader/qvEclipseReader.h"
#include "summary/qvEclipseSPEC.h"

namespace lumbarn::bench {

namespace {

/// Loads a run as a host does, table, headers and all, and looks at what came.
void load(const SyntheticRun& run, const std::string& only, std::size_t vectors) {
  Session session;
  qvEclipseReader reader(session);
  reader.FileName = run.specification.string();
  reader.whichtype = 12;
  reader.Silent = true;
  reader.zOnly = only;
  bool qOK = false;
  reader.ECLReadData(qOK);
  XYData xyData;
  ByteTable bHeaders;
  SourceData vSourceData;
  ByteTable bOnlyUsed;
  if (qOK) reader.GetSUMMARYData(xyData, bHeaders, vSourceData, bOnlyUsed, qOK);
  require(qOK, session.diagnoses().empty() ? "no load" : session.diagnoses().back().text());
  require(xyData.rows() == run.rows, fmt::format("{} rows", xyData.rows()));
  require(xyData.columns() == vectors && bHeaders.entries() == vectors,
          fmt::format("{} vectors", xyData.columns()));
  benchmark::DoNotOptimize(xyData.values().data());
}

void readSpecification(const SyntheticRun& run) {
  Session session;
  qvEclipseSPEC spec(session);
  bool qOK = spec.CheckSPECFile(run.specification.string());
  if (qOK) spec.ReadEclipseSPECFile(qOK);
  ByteTable bHeaders;
  if (qOK) spec.getHeaders(bHeaders, qOK);
  require(qOK && bHeaders.entries() == run.vectors, "not all headers came");
}

}  // namespace

Family summaryFamily(const std::filesystem::path& folder) {
  const SummaryFiles files(folder);
  const auto plain = files.plain;
  const auto twice = files.twice;
  const auto formatted = files.formatted;
  const auto swapped = [plain] { readSwapped(plain.data); };
  const auto parsed = [formatted] {
    static const std::string text = readText(formatted.data);
    benchmark::DoNotOptimize(parseAllNumbers(text));
  };
  const auto all = [](const SyntheticRun& run) { return [run] { load(run, "", run.vectors); }; };
  // A selection brings the time along, so it has one column more.
  const auto table = static_cast<double>(plain.vectors * plain.rows * sizeof(float));
  return {"summary",
          [files] { files.write(); },
          {
              {"summary/full", "B", 1.5, 0, 1.3 * table, all(plain), swapped},
              {"summary/one", "B", 0.10, 0, 20e6, [plain] { load(plain, "WBHP:OP-40B", 2); }, swapped},
              {"summary/hundred", "B", 0.25, 0, 0, [plain] { load(plain, "WBHP:*A,GOPR:*", 101); }, swapped},
              {"summary/specification", "B", 0.05, 0, 0, [plain] { readSpecification(plain); }, swapped},
              {"summary/twice", "half", 2.4, 1.6, 0, all(twice), all(plain)},
              {"summary/formatted", "parsing", 1.5, 0, 0, all(formatted), parsed},
          }};
}

}  // namespace lumbarn::bench
