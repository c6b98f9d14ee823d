#include <algorithm>
#include <unordered_map>

#include <fmt/format.h>

#include "TestProcessing.h"

namespace lumbarn {

namespace {

/// Limit of the steps from segment to segment in one test, for each of its segments. Flow paths of wells have
/// a device or two before the tubing; those of a damaged file can be rings, which the counter of the walk
/// ends, but only after as many steps as there are segments, for each of them.
constexpr std::int64_t mostStepsPerSegment = 1000;

ReportedFault noWayToTubing(const TestWork& work, std::string found,
                            FaultNumber number = FaultNumber::Subscript) {
  work.report(Message::WellTestReference, "SEGNXT", work.test.tables.segments.headerOf("SEGNXT"),
              "devices do not flow into the tubing", "segments down to one that is no device",
              std::move(found), "left out the device branches");
  return ReportedFault(number);
}

/// The segment that one flows into.
std::int32_t below(const TestWork& work, std::int32_t iSegment) {
  const std::int32_t t = work.test.segment(iSegment).NXT;
  if (t < 1 || t > work.test.tables.nSegments)
    throw noWayToTubing(work, fmt::format("segment {} below {}", t, iSegment));
  return t;
}

/// The devices by the tubing branch that they empty into.
std::vector<ICDBranchRecord> deviceBranches(const TestWork& work, std::size_t nMost) {
  const ProcessedTest& test = work.test;
  const std::int32_t nSegments = test.tables.nSegments;
  std::vector<ICDBranchRecord> branches;
  std::unordered_map<std::int32_t, std::size_t> recordOf;
  std::int64_t lastFilled = 0;
  std::int64_t stepsLeft = mostStepsPerSegment * nSegments;
  for (std::int32_t s = 1; s <= nSegments; ++s) {
    if (!test.segment(s).ICD) continue;
    std::int32_t t = below(work, s);
    // The counter that ends the walk in a ring begins at the length of the list filled last, so that a long
    // chain of devices may end on one of them. Deliberate.
    for (std::int64_t counter = lastFilled; test.segment(t).ICD; t = below(work, t)) {
      if (++counter > nSegments) break;
      if (--stepsLeft < 0) throw noWayToTubing(work, "rings of devices", FaultNumber::Overflow);
    }
    const std::int32_t b = test.segment(t).BRNO;
    const auto [found, isNew] = recordOf.try_emplace(b, recordOf.size());
    if (isNew) {
      if (recordOf.size() > nMost) throw noWayToTubing(work, "more tubing branches than device branches");
      branches.resize(recordOf.size());
      branches.back().iTubingBranch = b;
    }
    ICDBranchRecord& record = branches[found->second];
    record.iSegments.push_back(s);
    record.iTubing.push_back(t);
    lastFilled = static_cast<std::int64_t>(record.iSegments.size());
  }
  return branches;
}

}  // namespace

/// Removes the branches of devices from the list, and gathers the devices anew by tubing branch.
void processICDData(TestWork& work) {
  ProcessedTest& test = work.test;
  if (test.tables.nBranches < 1 || !test.hasDevices || !work.options.ProcessICD) return;
  const auto firstFlagged = std::stable_partition(test.branches.begin(), test.branches.end(),
                                                  [](const BranchRecord& record) { return !record.qICD; });
  test.nMovedBranches = static_cast<std::int32_t>(test.branches.end() - firstFlagged);
  if (test.nMovedBranches == 0) return;
  test.branches.erase(firstFlagged, test.branches.end());
  // This holds for a test without PLT branches too. Deliberate.
  test.nPltBranches = test.nBranches();
  test.deviceBranches = deviceBranches(work, static_cast<std::size_t>(test.nMovedBranches));
}

}  // namespace lumbarn
