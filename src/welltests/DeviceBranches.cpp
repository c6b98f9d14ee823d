#include <algorithm>
#include <unordered_map>

#include <fmt/format.h>

#include "../support/Fault.h"
#include "QVEclipseRFTtest.h"

namespace lumbarn {

namespace {

/// Steps from segment to segment that one test may take, for each of its segments. Flow paths of wells have a
/// device or two before the tubing; those of a damaged file can be rings, which the counter of the walk ends,
/// but only after as many steps as there are segments, for each of them.
constexpr std::int64_t mostStepsPerSegment = 1000;

}  // namespace

/// Moves the branches of devices out of the list, and gathers the devices anew by the tubing branch that they
/// empty into.
void QVEclipseRFTtest::processICDData() {
  if (nBranches_ < 1 || !qICD_ || !ProcessICD) return;
  const auto firstFlagged = std::stable_partition(branches_.begin(), branches_.end(),
                                                  [](const BranchRecord& record) { return !record.qICD; });
  const auto nFlagged = static_cast<std::size_t>(branches_.end() - firstFlagged);
  if (nFlagged == 0) return;
  branches_.erase(firstFlagged, branches_.end());
  nBranches_ = static_cast<std::int32_t>(branches_.size());
  // This holds for a test without PLT branches too. Deliberate.
  nPLTBranches_ = nBranches_;
  setICDBranches(nFlagged);
}

void QVEclipseRFTtest::setICDBranches(std::size_t nMost) {
  std::unordered_map<std::int32_t, std::size_t> recordOf;
  std::int64_t lastFilled = 0;
  std::int64_t stepsLeft = mostStepsPerSegment * nSegments_;
  for (std::int32_t s = 1; s <= nSegments_; ++s) {
    if (!segment(s).ICD) continue;
    std::int32_t t = below(s);
    // The counter that ends the walk in a ring begins at the length of the list filled last, so that a long
    // chain of devices may end on one of them. Deliberate.
    for (std::int64_t counter = lastFilled; segment(t).ICD; t = below(t)) {
      if (++counter > nSegments_) break;
      if (--stepsLeft < 0) throw noWayToTubing("rings of devices", FaultNumber::Overflow);
    }
    const std::int32_t b = segment(t).BRNO;
    const auto [found, isNew] = recordOf.try_emplace(b, recordOf.size());
    if (isNew) {
      if (recordOf.size() > nMost) throw noWayToTubing("more tubing branches than device branches");
      icdBranches_.resize(recordOf.size());
      icdBranches_.back().iTubingBranch = b;
    }
    ICDBranchRecord& record = icdBranches_[found->second];
    record.iSegments.push_back(s);
    record.iTubing.push_back(t);
    lastFilled = static_cast<std::int64_t>(record.iSegments.size());
  }
  nICDBranches_ = static_cast<std::int32_t>(icdBranches_.size());
}

/// The segment that one flows into.
std::int32_t QVEclipseRFTtest::below(std::int32_t iSegment) const {
  const std::int32_t t = segment(iSegment).NXT;
  if (t < 1 || t > nSegments_) throw noWayToTubing(fmt::format("segment {} below {}", t, iSegment));
  return t;
}

QVEclipseRFTtest::ToldFault QVEclipseRFTtest::noWayToTubing(std::string found, FaultNumber number) const {
  const std::int32_t iColumn = segColumns_[SegColumn::SEGNXT];
  tell(Message::WellTestReference, "SEGNXT",
       iColumn > 0 ? seg_.columns[static_cast<std::size_t>(iColumn - 1)].headerAt : TestTable::workedOut,
       "devices do not flow into the tubing", "segments down to one that is no device", std::move(found),
       "left out the device branches");
  return ToldFault(number);
}

std::int32_t QVEclipseRFTtest::BranchNumber(std::int32_t iSegment) const {
  return iSegment >= 1 && iSegment <= static_cast<std::int64_t>(segments_.size()) ? segment(iSegment).BRNO
                                                                                  : -1;
}

bool QVEclipseRFTtest::validSegmentIndex(std::int32_t iSegment) const {
  return iSegment >= 1 && iSegment <= nSegments_ - 1;  // not the last one: deliberate
}

bool QVEclipseRFTtest::validBranchIndex(std::int32_t iBranch) const {
  return iBranch >= 1 && iBranch <= nBranches_;
}

bool QVEclipseRFTtest::validICDBranchIndex(std::int32_t iBranch) const {
  return iBranch >= 1 && iBranch <= nICDBranches_;
}

/// Number of the branch at a place in the list. Throws Fault 9 outside.
std::int32_t QVEclipseRFTtest::branchNumber(std::int32_t i) const {
  if (i >= 1 && static_cast<std::size_t>(i) <= branches_.size()) {
    return branches_[static_cast<std::size_t>(i - 1)].iNumber;
  }
  if (i >= 1 && qImpliedBranches_ && i <= nPLTBranches_) return i;
  throw Fault(FaultNumber::Subscript);
}

}  // namespace lumbarn
