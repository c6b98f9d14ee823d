#include "qvEclipseSUMMARYFile.h"

#include <algorithm>
#include <utility>

#include "../files/FileChoice.h"
#include "../shapes/HeaderLayout.h"
#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "ScratchFile.h"
#include "SummaryMerge.h"
#include "SummaryRun.h"
#include "VectorSelection.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSUMMARYFile";
std::vector<SummaryRow> rowsOf(const qvEclipseSUMMARY& summary, std::int32_t iRun) {
  std::vector<SummaryRow> rows;
  rows.reserve(summary.rows().size());
  for (const auto& place : summary.rows())
    rows.push_back({iRun, place.iFile + 1, place.iStep, place.iReportStep});
  return rows;
}

}  // namespace

void qvEclipseSUMMARYFile::setMultList(std::int32_t n, const std::vector<std::string>& files, bool& qOK) {
  guarded(*session_, qOK, className, "setMultList", [&] {
    const auto count = std::min(static_cast<std::size_t>(std::max(n, 0)), files.size());
    nMult = static_cast<std::int32_t>(count);
    zMult.assign(files.begin(), files.begin() + static_cast<std::ptrdiff_t>(count));
  });
}

void qvEclipseSUMMARYFile::ReadSUMMARYData(bool& qOK) {
  guarded(*session_, qOK, className, "ReadSUMMARYData", [&] { return readChain(); });
}

/// Forgets the runs and what was made from them.
void qvEclipseSUMMARYFile::release() {
  xSPEC.clear();
  xSUMMARY.clear();
  rows_.clear();
  times_.clear();
  vectors_.clear();
  plan_ = {};
  profilesOfChain_ = false;
}

bool qvEclipseSUMMARYFile::readChain() {
  NumRestart = 0;
  qDamaged = false;
  unmatched.clear();
  auto given = xSPEC.empty() ? nullptr : std::move(xSPEC.front());
  release();
  bool qRead = false;
  auto spec = specOfNewestRun(std::move(given), qRead);
  if (!qRead) return false;
  while (spec) {
    const bool newest = xSPEC.empty();
    if (newest) {
      iUnits = spec->iUnitSystem;
      zStartDate = spec->zStartDate;
      start_ = spec->start();
      timeUnit_ = timeIsFirst(*spec) ? spec->text(spec->xVectors.front(), attributeUnits) : "";
    }
    auto summary = selectVectorsOf(*spec, newest) ? readData(*spec, newest) : nullptr;
    if (session_->cancelled()) {
      release();
      return false;
    }
    if (!summary) return !newest;  // the runs read so far remain
    qDamaged = qDamaged || summary->qDamaged || spec->qDamaged;
    if (newest) rows_ = rowsOf(*summary, 1);
    xSPEC.push_back(std::move(spec));
    xSUMMARY.push_back(std::move(summary));
    if (NoRestart || xSPEC.size() == mostRunsOfChain) break;
    spec = earlierRun(*xSPEC.back());
  }
  NumRestart = static_cast<std::int32_t>(xSPEC.size()) - 1;
  bool qReset = false;
  InitEclipseINFO(session_->part<SelectionState>().xInfo, qReset);
  return true;
}

/// The facade may have read the specification already, in full or for its list of records only.
std::unique_ptr<qvEclipseSPEC> qvEclipseSUMMARYFile::specOfNewestRun(std::unique_ptr<qvEclipseSPEC> given,
                                                                     bool& qOK) {
  qOK = true;
  if (given && !given->qScanOnly) {
    given->zOrigin = zOrigin;
    return given;
  }
  auto spec = std::make_unique<qvEclipseSPEC>(*session_);
  spec->zFileName = zFileName;
  spec->Formatted = Formatted;
  spec->byteSwap = byteSwap;
  spec->UNIX = UNIX;
  spec->FORTRAN = FORTRAN;
  spec->zOrigin = zOrigin;
  qOK = readSpec(*spec);
  return spec;
}

bool qvEclipseSUMMARYFile::readSpec(qvEclipseSPEC& spec) {
  bool qOK = false;
  spec.ReadEclipseSPECFile(qOK);
  return qOK || (spec.qDamaged && AcceptDamaged);
}

/// Narrows the key mask of a run to the classes and members of the selection in force, then to the patterns.
bool qvEclipseSUMMARYFile::selectVectorsOf(qvEclipseSPEC& spec, bool newest) {
  bool qOK = false;
  auto& shared = session_->part<SelectionState>().xInfo;
  std::vector<bool> mask;
  if (newest) {
    mask = vectorMask(shared);
  } else if (shared.qValid) {
    ECLIPSEINFO info;
    const auto vectors = spec.keptVectors();
    setECLIPSEINFOFromOnly(*session_, spec.xStore, vectors, bOnly, qOnly, info, qOK);
    if (!qOK) return false;
    setPlotClassList(shared, info, qOK, true);
    if (!qOK) return false;
    mask = vectorMask(info);
  }
  spec.setKeyMask(mask, qOK);
  if (!qOK) return false;
  applyPatterns(spec, newest);
  return true;
}

void qvEclipseSUMMARYFile::applyPatterns(qvEclipseSPEC& spec, bool newest) {
  if (onlyPatterns.empty() && exceptPatterns.empty()) return;
  const MnemonicFilter filter(onlyPatterns, exceptPatterns);
  auto selection = selectVectors(summaryNames(spec, filter), onlyPatterns, exceptPatterns);
  // The first column is the time: rows are dated, and runs merged, by it.
  if (!selection.mask.empty() && spec.qKeyMask.front()) selection.mask.front() = true;
  bool qOK = false;
  spec.setKeyMask(selection.mask, qOK);
  const auto& missing = selection.unmatched;
  if (newest) {
    unmatched = missing;
  } else {
    std::erase_if(unmatched,
                  [&](const auto& pattern) { return std::ranges::find(missing, pattern) == missing.end(); });
  }
}

std::unique_ptr<qvEclipseSUMMARY> qvEclipseSUMMARYFile::readData(qvEclipseSPEC& spec, bool newest) {
  auto summary = std::make_unique<qvEclipseSUMMARY>(*session_);
  summary->zFileName = spec.zFileName;
  summary->Formatted = spec.Formatted;
  summary->UNIX = spec.UNIX;
  summary->byteSwap = spec.byteSwap;
  summary->FORTRAN = spec.FORTRAN;
  summary->Unified = spec.Unified;
  summary->iStart = iStart;
  summary->iEnd = iEnd;
  summary->SaveScratchFile = SaveScratchFile;
  summary->AcceptDamaged = AcceptDamaged;
  summary->iRestartStep = spec.iRestartStep;
  summary->timeFirst = timeIsFirst(spec);
  if (newest) {
    summary->Unified = Unified;
    summary->iPosition =
        iPosition;  // a position in this run's file says nothing of the files of earlier runs
    summary->iPositionHigh = iPositionHigh;
    summary->setMultList(nMult, zMult);
  } else if (!spec.Unified) {
    const FileChoice choice = chooseFiles(*session_, spec.zFileName, FileKind::Summary);
    summary->setMultList(static_cast<std::int32_t>(choice.files.size()), choice.files);
    summary->Unified = choice.unified;
  }
  summary->setKeyMask(spec.getKeyMask());
  qMask = spec.getKeyMask();
  bool qOK = false;
  summary->getEclipseSummaryFile(qOK);
  if (newest) {
    iPosition = summary->iPosition;
    iPositionHigh = summary->iPositionHigh;
  }
  return qOK ? std::move(summary) : nullptr;
}

/// The specification of the run that a run restarted from, read; null where the chain ends.
std::unique_ptr<qvEclipseSPEC> qvEclipseSUMMARYFile::earlierRun(const qvEclipseSPEC& later) {
  std::vector<std::string> chain;
  for (const auto& run : xSPEC) chain.push_back(run->zFileName);
  auto spec = findNextOfChain(chain, later, *session_);
  if (!spec) return nullptr;
  spec->zOrigin = zOrigin;
  return readSpec(*spec) ? std::move(spec) : nullptr;
}

/// What all ways of fetching share: the newest run, then each earlier one. The runs are released whatever the
/// outcome, each as soon as its data are taken. `readHeaders` takes the headers of a run, `addHeaders` adds
/// those of new columns.
template <class ReadHeaders, class AddHeaders>
bool qvEclipseSUMMARYFile::fetch(XYData& xyData, ReadHeaders readHeaders, AddHeaders addHeaders) {
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
    bool qOK = false;
    if (!readHeaders(*spec, newest)) return false;
    summary->getSummaryArray(tables.emplace_back(), qOK);
    if (!qOK) return false;
    if (newest) {
      zScratchFile = summary->zScratchFile;
      qMask = spec->getKeyMask();
    }
    ChainRun known = chainRunOf(*spec, std::move(vectors), summary->rows());
    if (iStart >= 0 || iEnd >= 0) known.iLastStep = -1;
    chain.add(std::move(known));
    if (!newest) addHeaders(chain.added());
    const auto rows = rowsOf(*summary, static_cast<std::int32_t>(run) + 1);
    rows_.insert(rows_.begin(), rows.begin(),
                 rows.begin() + static_cast<std::ptrdiff_t>(chain.plan().parts().back().rows));
  }
  if (!assemble(chain.plan(), tables, xyData)) return false;
  chain.reportGaps();
  vectors_ = chain.takeVectors();
  for (std::size_t i = 0; i < vectors_.size(); ++i) vectors_[i].column = i + 1;
  plan_ = chain.plan();
  return true;
}

/// The table of the chain, through a temporary file when memory for it and the tables of the runs does not
/// suffice.
bool qvEclipseSUMMARYFile::assemble(const ChainPlan& plan, std::vector<XYData>& tables, XYData& xyData) {
  if (tables.size() == 1) {
    xyData = std::move(tables.front());
    return true;
  }
  std::vector<const XYData*> sources;
  for (const XYData& table : tables) sources.push_back(&table);
  try {
    return fillTable(*session_, plan, sources, xyData);
  } catch (const Fault& fault) {
    if (fault.number() != FaultNumber::OutOfMemory) throw;
  }
  session_->checkMemory(plan.rows() * plan.columns() * sizeof(float));
  ScratchFile scratch("MS");
  if (!fillScratchFile(*session_, plan, sources, scratch)) return false;
  tables.clear();
  xyData = XYData(plan.rows(), plan.columns(), *session_);
  scratch.read(xyData.values());
  return true;
}

void qvEclipseSUMMARYFile::GetSUMMARYData(XYData& xyData, ByteTable& bHeaders, bool& qOK) {
  guarded(*session_, qOK, className, "GetSUMMARYData", [&] {
    ByteTable earlierHeaders;
    const auto readHeaders = [&](qvEclipseSPEC& spec, bool newest) {
      bool qRead = false;
      spec.getHeaders(newest ? bHeaders : earlierHeaders, qRead);
      return qRead;
    };
    const auto addHeaders = [&](const std::vector<std::int32_t>& added) {
      bool qAdded = false;
      mergeHeaders(*session_, earlierHeaders, added, static_cast<std::int32_t>(added.size()), bHeaders,
                   qAdded);
      if (!qAdded) throw Fault(FaultNumber::Subscript);
    };
    if (!fetch(xyData, readHeaders, addHeaders)) return false;
    if (qPerforations) qPerforations = CheckforPerfs(bHeaders, 13);
    if (!zOrigin.empty()) {
      const auto source = headerField(attributeSource);
      for (std::size_t i = 1; i <= bHeaders.entries(); ++i) {
        std::ranges::fill(bHeaders.entry(i).subspan(source.firstByte - 1, source.width), ' ');
        bHeaders.put(i, source.firstByte, source.width, zOrigin);
      }
    }
    return true;
  });
}

void qvEclipseSUMMARYFile::GetStoreSUMMARYData(XYData& xyData, AttributeStores& xStore, ByteTable& bPointers,
                                               bool& qOK) {
  guarded(*session_, qOK, className, "GetStoreSUMMARYData", [&] {
    AttributeStores earlierStores;
    ByteTable earlierPointers;
    const auto readHeaders = [&](qvEclipseSPEC& spec, bool newest) {
      bool qRead = false;
      spec.getStoreHeaders(newest ? xStore : earlierStores, newest ? bPointers : earlierPointers, qRead);
      return qRead;
    };
    const auto addHeaders = [&](const std::vector<std::int32_t>& added) {
      bool qAdded = false;
      mergeStoreHeaders(*session_, earlierStores, earlierPointers, added,
                        static_cast<std::int32_t>(added.size()), xStore, bPointers, qAdded);
      if (!qAdded) throw Fault(FaultNumber::Overflow);
    };
    if (!fetch(xyData, readHeaders, addHeaders)) return false;
    if (qPerforations) qPerforations = CheckStoreforPerfs(xStore, 13);
    return true;
  });
}

std::vector<bool> qvEclipseSUMMARYFile::rowsWithValues(std::size_t iColumn) const {
  if (iColumn < 1 || iColumn > plan_.columns()) return {};
  return plan_.rowsWithValues(iColumn);
}

void qvEclipseSUMMARYFile::getFileInfo(SourceData& vSourceData, bool& qOK) const {
  guarded(*session_, qOK, className, "getFileInfo", [&] {
    bool qInit = false;
    InitSourceData(vSourceData, qInit);
    if (!qInit) return false;
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
    return true;
  });
}

std::int32_t qvEclipseSUMMARYFile::columns() const {
  return xSUMMARY.empty() ? static_cast<std::int32_t>(vectors_.size()) : xSUMMARY.front()->nSelected;
}

void qvEclipseSUMMARYFile::SetKeys() { qMask.assign(qMask.size(), true); }

void qvEclipseSUMMARYFile::SetSUMMARYKeys(std::string_view zMnemonics) {
  SetSUMMARYKeysFromOnly(split(zMnemonics, ','));
}

void qvEclipseSUMMARYFile::SetSUMMARYKeysFromOnly(const std::vector<std::string>& zItems) {
  const auto& list = session_->part<SelectionState>().zOnly;
  qMask.assign(list.size(), false);
  for (std::size_t i = 0; i < list.size(); ++i) {
    qMask[i] =
        std::ranges::any_of(zItems, [&](const auto& item) { return equalNoCase(trim(item), trim(list[i])); });
  }
}

void qvEclipseSUMMARYFile::SetSUMMARYKeysFrombOnly() {
  std::vector<std::string> names;
  for (std::size_t i = 1; i <= bOnly.entries(); ++i) names.emplace_back(bOnly.get(i, 1, onlyNameWidth));
  SetSUMMARYKeysFromOnly(names);
}

}  // namespace lumbarn
