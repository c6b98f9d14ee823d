#include "RowSteps.h"

#include <algorithm>
#include <limits>

namespace lumbarn {

RowSteps::RowSteps(bool unified, std::int32_t iRestartStep)
    : unified_(unified), base_(std::max(iRestartStep, 0)) {}

void RowSteps::take(std::int32_t value) {
  if (headers_ == 0) first_ = value;
  rising_ = rising_ && value > 0 && (headers_ == 0 || value - 1 == last_);
  last_ = value;
  ++headers_;
}

std::int32_t RowSteps::step(std::int32_t iHeader, std::int32_t iFile) const {
  // A lone value shows no increase, so it may be a time stamp.
  if (rising_ && headers_ > 1) return first_ + iHeader - 1;
  if (!unified_) return iFile;
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(std::int64_t{base_} + iHeader, most));
}

}  // namespace lumbarn
