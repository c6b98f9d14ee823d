#include <algorithm>
#include <map>
#include <span>

#include "WellTest.h"

namespace lumbarn {

namespace {

/// Segments by the one that they flow into; 0 is the well head. Those that flow into the same one stand next
/// to each other, in order.
class Tributaries {
 public:
  explicit Tributaries(const std::vector<std::int32_t>& below)
      : starts_(below.size() + 2), segments_(below.size()) {
    for (const std::int32_t b : below) ++starts_[static_cast<std::size_t>(b) + 1];
    for (std::size_t i = 1; i < starts_.size(); ++i) starts_[i] += starts_[i - 1];
    std::vector<std::size_t> place(starts_.begin(), starts_.end() - 1);
    for (std::size_t i = 0; i < below.size(); ++i) {
      segments_[place[static_cast<std::size_t>(below[i])]++] = static_cast<std::int32_t>(i + 1);
    }
  }
  std::span<const std::int32_t> of(std::int32_t segment) const {
    const auto i = static_cast<std::size_t>(segment);
    return std::span(segments_).subspan(starts_[i], starts_[i + 1] - starts_[i]);
  }

 private:
  std::vector<std::size_t> starts_;
  std::vector<std::int32_t> segments_;
};

}  // namespace

WellTopology topologyOf(const WellTest& test) {
  const WellTestColumn* next = test.segments.find("SEGNXT");
  const WellTestColumn* numbers = test.segments.find("SEGBRNO");
  auto below = next ? next->integers() : std::nullopt;
  const auto branchOf = numbers ? numbers->integers() : std::nullopt;
  WellTopology topology;
  if (!below || !branchOf || below->size() != branchOf->size()) return topology;

  const auto nSegments = static_cast<std::int64_t>(below->size());
  for (std::size_t i = 0; i < below->size(); ++i) {
    auto& b = (*below)[i];
    if (b >= 0 && b <= nSegments) continue;
    if (b != -1) topology.astray.push_back(static_cast<std::int32_t>(i + 1));
    b = 0;
  }
  const Tributaries tributaries(*below);
  const auto numberOf = [&](std::int32_t s) {
    return s == 0 ? 0 : (*branchOf)[static_cast<std::size_t>(s - 1)];
  };
  // Up from the well head, each segment after the one that it flows into. Rings are never come to.
  std::map<std::int32_t, WellBranch> branches;
  std::vector<bool> drained(below->size());
  std::vector<std::int32_t> reached = {0};
  for (std::size_t k = 0; k < reached.size(); ++k) {
    for (const std::int32_t s : tributaries.of(reached[k])) {
      reached.push_back(s);
      drained[static_cast<std::size_t>(s - 1)] = true;
      WellBranch& branch = branches[numberOf(s)];
      if (branch.segments.empty()) {
        branch.number = numberOf(s);
        branch.outletSegment = reached[k];
        branch.outletBranch = numberOf(reached[k]);
      }
      branch.segments.push_back(s);
    }
  }
  for (auto& entry : branches) topology.branches.push_back(std::move(entry.second));
  for (std::size_t i = 0; i < drained.size(); ++i) {
    if (!drained[i]) topology.undrained.push_back(static_cast<std::int32_t>(i + 1));
  }
  return topology;
}

}  // namespace lumbarn
