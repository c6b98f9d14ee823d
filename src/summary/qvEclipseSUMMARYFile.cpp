#include "qvEclipseSUMMARYFile.h"

#include <algorithm>
#include <filesystem>

#include "../files/FileChoice.h"
#include "../shapes/HeaderLayout.h"
#include "../support/Diagnosis.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "RestartChain.h"
#include "SummaryMerge.h"
#include "VectorSelection.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSUMMARYFile";
constexpr std::size_t mostRuns = 1000;

bool sameFile(const std::string& a, const std::string& b) {
  std::error_code none;
  return std::filesystem::equivalent(a, b, none) && !none;
}

/// Whether the vectors that are kept of a run hold perforation data. Without a choice by patterns one
/// completion vector in the file is enough, also one that was not chosen: hosts know it so.
bool holdsPerforations(const qvEclipseSPEC& spec, bool byPatterns) {
  if (!spec.qPerforations || !byPatterns) return spec.qPerforations;
  return std::ranges::any_of(spec.keptVectors(),
                             [&](const auto& v) { return spec.text(v, attributeClass) == "COMPLETIONS"; });
}

void tellLeftOut(Session& session, const qvEclipseSPEC& spec) {
  Diagnosis diagnosis;
  diagnosis.path = spec.zFileName;
  diagnosis.problem = "an earlier run is not merged into a table with completion vectors";
  diagnosis.action = "left the run out; a selection without completion vectors takes it in";
  session.diagnose(std::move(diagnosis));
}

std::vector<SummaryRow> rowsOf(const qvEclipseSUMMARY& summary, std::int32_t iRun) {
  std::vector<SummaryRow> rows;
  rows.reserve(summary.rows().size());
  for (const auto& place : summary.rows()) rows.push_back({iRun, place.iFile + 1, place.iStep});
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

bool qvEclipseSUMMARYFile::readChain() {
  NumRestart = 0;
  qDamaged = false;
  unmatched.clear();
  rows_.clear();
  times_.clear();
  vectors_.clear();
  bool qRead = false;
  auto spec = specOfNewestRun(qRead);
  xSPEC.clear();
  xSUMMARY.clear();
  if (!qRead) return false;
  while (spec) {
    const bool newest = xSPEC.empty();
    if (newest) {
      iUnits = spec->iUnitSystem;
      zStartDate = spec->zStartDate;
      start_ = spec->start();
    }
    auto summary = selectVectorsOf(*spec, newest) ? readData(*spec, newest) : nullptr;
    if (session_->cancelled()) return false;
    if (!summary) return !newest;  // the runs read so far stand
    qDamaged = qDamaged || summary->qDamaged || spec->qDamaged;
    if (newest) rows_ = rowsOf(*summary, 1);
    xSPEC.push_back(std::move(spec));
    xSUMMARY.push_back(std::move(summary));
    if (NoRestart || xSPEC.size() == mostRuns) break;
    spec = earlierRun(*xSPEC.back());
  }
  NumRestart = static_cast<std::int32_t>(xSPEC.size()) - 1;
  bool qReset = false;
  InitEclipseINFO(session_->part<SelectionState>().xInfo, qReset);
  return true;
}

/// The facade may have read the specification already, in full or for its list of records only.
std::unique_ptr<qvEclipseSPEC> qvEclipseSUMMARYFile::specOfNewestRun(bool& qOK) {
  qOK = true;
  if (!xSPEC.empty() && xSPEC.front() && !xSPEC.front()->qScanOnly) {
    auto given = std::move(xSPEC.front());
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
  if (later.zRestartName.empty()) return nullptr;
  auto spec = findEarlierRun(later.zRestartName, later.zFileName, later.Formatted, *session_);
  if (!spec) return nullptr;
  const bool ring =
      std::ranges::any_of(xSPEC, [&](const auto& run) { return sameFile(run->zFileName, spec->zFileName); });
  if (ring) {
    Diagnosis diagnosis;
    diagnosis.path = later.zFileName;
    diagnosis.keyword = "RESTART";
    diagnosis.problem = "the restart chain leads back to " + spec->zFileName;
    diagnosis.action = "the restart chain ends here";
    session_->diagnose(std::move(diagnosis));
    return nullptr;
  }
  spec->zOrigin = zOrigin;
  return readSpec(*spec) ? std::move(spec) : nullptr;
}

void qvEclipseSUMMARYFile::prependRows(std::size_t count, const std::vector<SummaryRow>& earlier) {
  rows_.insert(rows_.begin(), earlier.begin(),
               earlier.begin() + static_cast<std::ptrdiff_t>(std::min(count, earlier.size())));
}

/// What all ways of fetching share: the newest run as it is, then each earlier one folded in. Each pair of
/// objects is released as soon as its data are taken.
template <class ReadHeaders, class Merge>
bool qvEclipseSUMMARYFile::fetch(XYData& xyData, ReadHeaders readHeaders, Merge merge) {
  if (xSPEC.empty()) return false;
  const bool qSave = SaveScratchFile && xSPEC.size() == 1;  // a merge needs the data in memory
  const bool byPatterns = !onlyPatterns.empty() || !exceptPatterns.empty();
  if (!zOrigin.empty()) xSPEC.front()->zOrigin = zOrigin;
  for (std::size_t run = 0; run < xSPEC.size(); ++run) {
    const auto spec = std::move(xSPEC[run]);
    const auto summary = std::move(xSUMMARY[run]);
    const bool newest = run == 0;
    summary->SaveScratchFile = qSave;
    XYData earlier;
    bool qOK = false;
    if (!readHeaders(*spec, newest)) return false;
    summary->getSummaryArray(newest ? xyData : earlier, qOK);
    if (!qOK) return false;
    if (newest) {
      zScratchFile = summary->zScratchFile;
      qPerforations = holdsPerforations(*spec, byPatterns);
      qMask = spec->getKeyMask();
      rows_ = rowsOf(*summary, 1);
      vectors_ = summaryVectors(*spec);
      continue;
    }
    qPerforations = qPerforations || holdsPerforations(*spec, byPatterns);
    if (qPerforations) {
      tellLeftOut(*session_, *spec);
      continue;
    }
    const std::size_t before = xyData.rows();
    const std::size_t columns = xyData.columns();
    const auto added = merge(earlier);  // a merge that fails leaves the table as it is, and the chain goes on
    if (xyData.columns() > columns) appendVectors(summaryVectors(*spec), added);
    prependRows(xyData.rows() - before, rowsOf(*summary, static_cast<std::int32_t>(run) + 1));
    if (session_->cancelled()) return false;
  }
  for (std::size_t i = 0; i < vectors_.size(); ++i) vectors_[i].column = i + 1;
  xSPEC.clear();
  xSUMMARY.clear();
  return true;
}

/// The vectors that a merge has added as columns, by their numbers in the earlier run.
void qvEclipseSUMMARYFile::appendVectors(std::vector<SummaryVector> earlier,
                                         std::span<const std::int32_t> added) {
  for (const auto number : added)
    vectors_.push_back(std::move(earlier.at(static_cast<std::size_t>(number - 1))));
}

void qvEclipseSUMMARYFile::GetSUMMARYData(XYData& xyData, ByteTable& bHeaders, bool& qOK) {
  guarded(*session_, qOK, className, "GetSUMMARYData", [&] {
    ByteTable earlierHeaders;
    const auto readHeaders = [&](qvEclipseSPEC& spec, bool newest) {
      bool qRead = false;
      spec.getHeaders(newest ? bHeaders : earlierHeaders, qRead);
      return qRead;
    };
    const auto merge = [&](XYData& earlier) {
      std::vector<std::int32_t> iNew, iMatch;
      std::int32_t nNew = 0;
      bool qMerged = false;
      checkSummaryList(*session_, earlierHeaders, bHeaders, iNew, nNew, iMatch, qMerged);
      mergeSUMMARYData(*session_, earlierHeaders, earlier, bHeaders, xyData, qPerforations, qMerged);
      iNew.resize(static_cast<std::size_t>(nNew));
      return iNew;
    };
    if (!fetch(xyData, readHeaders, merge)) return false;
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
    const auto merge = [&](XYData& earlier) {
      std::vector<std::int32_t> iNew, iMatch;
      std::int32_t nNew = 0;
      bool qMerged = false;
      checkStoreSummaryList(*session_, earlierStores, earlierPointers, xStore, bPointers, iNew, nNew, iMatch,
                            qMerged);
      mergeStoreSUMMARYData(*session_, earlierStores, earlierPointers, earlier, xStore, bPointers, xyData,
                            qPerforations, qMerged);
      iNew.resize(static_cast<std::size_t>(nNew));
      return iNew;
    };
    if (!fetch(xyData, readHeaders, merge)) return false;
    if (qPerforations) qPerforations = CheckStoreforPerfs(xStore, 13);
    return true;
  });
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
