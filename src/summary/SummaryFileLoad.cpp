// Reading the runs of a restart chain.

#include <algorithm>
#include <utility>

#include "../files/FileChoice.h"
#include "../shapes/HeaderLayout.h"
#include "../support/Guarded.h"
#include "SpecReader.h"
#include "SummaryRun.h"
#include "VectorSelection.h"
#include "qvEclipseSUMMARYFile.h"

namespace lumbarn {

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
  auto spec = specOfNewestRun(std::move(given));
  if (!spec) return false;
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
    if (newest) rows_ = summaryRows(*summary, 1);
    xSPEC.push_back(std::move(spec));
    xSUMMARY.push_back(std::move(summary));
    if (NoRestart || xSPEC.size() == mostRunsOfChain) break;
    spec = earlierRun(*xSPEC.back());
  }
  NumRestart = static_cast<std::int32_t>(xSPEC.size()) - 1;
  session_->part<SelectionState>().xInfo = {};
  return true;
}

/// The facade may have read the specification already, in full or for its list of records only. Null when it
/// cannot be read.
std::unique_ptr<qvEclipseSPEC> qvEclipseSUMMARYFile::specOfNewestRun(std::unique_ptr<qvEclipseSPEC> given) {
  if (given && !given->qScanOnly) {
    given->zOrigin = zOrigin;
    return given;
  }
  auto spec = std::make_unique<qvEclipseSPEC>(*session_);
  spec->zFileName = zFileName;
  spec->setFlags(*this);
  spec->zOrigin = zOrigin;
  return readSpecOf(*spec) ? std::move(spec) : nullptr;
}

bool qvEclipseSUMMARYFile::readSpecOf(qvEclipseSPEC& spec) {
  return readSpec(spec, *session_) || (spec.qDamaged && AcceptDamaged);
}

/// False for a mask that does not fit, which is reported.
bool qvEclipseSUMMARYFile::narrow(qvEclipseSPEC& spec, const std::vector<bool>& mask) {
  return succeeds(*session_, "qvEclipseSPEC", "setKeyMask", [&] { spec.narrowMask(mask); });
}

/// Narrows the key mask of a run to the classes and members of the selection in force, then to the patterns.
bool qvEclipseSUMMARYFile::selectVectorsOf(qvEclipseSPEC& spec, bool newest) {
  auto& shared = session_->part<SelectionState>().xInfo;
  std::vector<bool> mask;
  if (newest) {
    mask = vectorMask(shared);
  } else if (shared.qValid) {
    ECLIPSEINFO info;
    const auto vectors = spec.keptVectors();
    if (!succeeds(*session_, "qvOnlyList", "setECLIPSEINFOFromOnly",
                  [&] { return selectByOnlyList(spec.xStore, vectors, bOnly, qOnly, info); })) {
      return false;
    }
    carrySelection(shared, info, true);
    mask = vectorMask(info);
  }
  if (!narrow(spec, mask)) return false;
  applyPatterns(spec, newest);
  return true;
}

void qvEclipseSUMMARYFile::applyPatterns(qvEclipseSPEC& spec, bool newest) {
  if (onlyPatterns.empty() && exceptPatterns.empty()) return;
  const MnemonicFilter filter(onlyPatterns, exceptPatterns);
  auto selection = selectVectors(summaryNames(spec, filter), onlyPatterns, exceptPatterns);
  // The first column is the time: rows are dated, and runs merged, by it.
  if (!selection.mask.empty() && spec.qKeyMask.front()) selection.mask.front() = true;
  narrow(spec, selection.mask);
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
  summary->setFlags(spec);
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
  const bool whole = summary->read();
  if (newest) {
    iPosition = summary->iPosition;
    iPositionHigh = summary->iPositionHigh;
  }
  return whole ? std::move(summary) : nullptr;
}

/// The specification of the run that a run restarted from, read; null where the chain ends.
std::unique_ptr<qvEclipseSPEC> qvEclipseSUMMARYFile::earlierRun(const qvEclipseSPEC& later) {
  std::vector<std::string> chain;
  for (const auto& run : xSPEC) chain.push_back(run->zFileName);
  auto found = findNextOfChain(chain, later, *session_);
  if (!found) return nullptr;
  auto spec = std::make_unique<qvEclipseSPEC>(std::move(*found), *session_);
  spec->zOrigin = zOrigin;
  return readSpecOf(*spec) ? std::move(spec) : nullptr;
}

}  // namespace lumbarn
