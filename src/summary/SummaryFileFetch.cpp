// Making one table of the runs of a restart chain.

#include <algorithm>
#include <utility>

#include "../shapes/HeaderLayout.h"
#include "../support/Fault.h"
#include "ChainTable.h"
#include "HeaderMerge.h"
#include "SpecHeaders.h"
#include "SummaryMerge.h"
#include "SummaryRun.h"
#include "qvEclipseSUMMARYFile.h"

namespace lumbarn {

std::vector<SummaryRow> summaryRows(const qvEclipseSUMMARY& summary, std::int32_t iRun) {
  std::vector<SummaryRow> rows;
  rows.reserve(summary.rows().size());
  for (const auto& place : summary.rows())
    rows.push_back({iRun, place.iFile + 1, place.iStep, place.iReportStep});
  return rows;
}

/// What all ways of fetching share: the newest run, then each earlier one. The runs are released whatever the
/// outcome, each as soon as its data are taken. `readHeaders` takes the headers of a run, `addHeaders` adds
/// those of new columns.
template <class ReadHeaders, class AddHeaders>
bool qvEclipseSUMMARYFile::fetchRuns(XYData& xyData, ReadHeaders readHeaders, AddHeaders addHeaders) {
  xyData = {};
  auto specs = std::exchange(xSPEC, {});
  auto summaries = std::exchange(xSUMMARY, {});
  if (specs.empty()) return false;
  const bool qSave = SaveScratchFile && specs.size() == 1;  // a merge needs the data in memory
  const bool byPatterns = !onlyPatterns.empty() || !exceptPatterns.empty();
  if (!zOrigin.empty()) specs.front()->zOrigin = zOrigin;
  SummaryChain chain(*session_);
  std::vector<XYData> tables;
  rows_.clear();
  qPerforations = false;
  for (std::size_t run = 0; run < specs.size(); ++run) {
    const auto spec = std::move(specs[run]);
    const auto summary = std::move(summaries[run]);
    const bool newest = run == 0;
    auto vectors = summaryVectors(*spec);
    qPerforations = qPerforations || holdsCompletions(*spec, vectors, byPatterns);
    if (qPerforations && !newest) {
      reportRunOmitted(*spec, *session_);
      continue;
    }
    summary->SaveScratchFile = qSave;
    if (!readHeaders(*spec, newest)) return false;
    tables.push_back(summary->takeTable());
    if (session_->cancelled()) return false;
    if (newest) {
      zScratchFile = summary->zScratchFile;
      qMask = spec->getKeyMask();
    }
    ChainRun known = chainRunOf(*spec, std::move(vectors), summary->rows());
    if (iStart >= 0 || iEnd >= 0) known.iLastStep = -1;
    chain.add(std::move(known));
    if (!newest) addHeaders(chain.added());
    const auto rows = summaryRows(*summary, static_cast<std::int32_t>(run) + 1);
    rows_.insert(rows_.begin(), rows.begin(),
                 rows.begin() + static_cast<std::ptrdiff_t>(chain.plan().parts().back().rows));
  }
  assemble(chain.plan(), tables, xyData);
  chain.reportGaps();
  vectors_ = chain.takeVectors();
  for (std::size_t i = 0; i < vectors_.size(); ++i) vectors_[i].column = i + 1;
  plan_ = chain.plan();
  return true;
}

void qvEclipseSUMMARYFile::assemble(const ChainPlan& plan, std::vector<XYData>& tables, XYData& xyData) {
  if (tables.size() == 1) {
    xyData = std::move(tables.front());
    return;
  }
  RunTables runs{{}, [&] { tables.clear(); }};
  for (const XYData& table : tables) runs.tables.push_back(&table);
  mergeTables(*session_, plan, runs, xyData);
}

bool qvEclipseSUMMARYFile::fetch(XYData& xyData, ByteTable& bHeaders) {
  ByteTable earlierHeaders;
  const auto readHeaders = [&](qvEclipseSPEC& spec, bool newest) {
    ByteTable& headers = newest ? bHeaders : earlierHeaders;
    headers = {};
    auto made = makeHeaders(spec, spec.qKeyMask, *session_);
    if (made) headers = std::move(*made);
    return made.has_value();
  };
  const auto addNew = [&](const std::vector<std::int32_t>& added) {
    addHeaders(earlierHeaders, added, bHeaders);
  };
  if (!fetchRuns(xyData, readHeaders, addNew)) return false;
  if (qPerforations) qPerforations = CheckforPerfs(bHeaders, 13);
  if (!zOrigin.empty()) {
    const auto source = headerField(attributeSource);
    for (std::size_t i = 1; i <= bHeaders.entries(); ++i) {
      std::ranges::fill(bHeaders.entry(i).subspan(source.firstByte - 1, source.width), ' ');
      bHeaders.put(i, source.firstByte, source.width, zOrigin);
    }
  }
  return true;
}

bool qvEclipseSUMMARYFile::fetch(XYData& xyData, AttributeStores& xStore, ByteTable& bPointers) {
  AttributeStores earlierStores;
  ByteTable earlierPointers;
  const auto readHeaders = [&](qvEclipseSPEC& spec, bool newest) {
    return giveStoreHeaders(spec, newest ? xStore : earlierStores, newest ? bPointers : earlierPointers,
                            *session_);
  };
  const auto addNew = [&](const std::vector<std::int32_t>& added) {
    if (!addHeaders(earlierStores, earlierPointers, added, xStore, bPointers)) {
      throw Fault(FaultNumber::Overflow);
    }
  };
  if (!fetchRuns(xyData, readHeaders, addNew)) return false;
  if (qPerforations) qPerforations = CheckStoreforPerfs(xStore, 13);
  return true;
}

std::vector<bool> qvEclipseSUMMARYFile::rowsWithValues(std::size_t iColumn) const {
  if (iColumn < 1 || iColumn > plan_.columns()) return {};
  return plan_.rowsWithValues(iColumn);
}

SourceData qvEclipseSUMMARYFile::fileInfo() const {
  SourceData vSourceData = defaultSourceData();
  vSourceData(2) = zFileName;
  vSourceData(3) = std::string("ECLIPSE");
  vSourceData(4) = zStartDate;
  vSourceData(6) = std::string("SUMMARY");
  vSourceData(7) = static_cast<std::int16_t>(iUnits);
  vSourceData(14) = std::int32_t{13};
  vSourceData(23) = std::int32_t{13};
  vSourceData(54) = qPerforations;
  vSourceData(56) = iPosition;
  vSourceData(57) = iPositionHigh;
  return vSourceData;
}

}  // namespace lumbarn
