#pragma once

#include <cstdint>

namespace lumbarn {

/// Report steps of the rows of one run. `SEQHDR` is the step only where its values are above 0 and each is
/// one more than the one before it; most writers store a time stamp or 0 there. Otherwise the step is the
/// number in the name of a step file, and in a unified file the count of SEQHDR records plus the step of the
/// restart (word 6 of DIMENS).
class RowSteps {
 public:
  RowSteps(bool unified, std::int32_t iRestartStep);

  /// Takes the value of the next SEQHDR, in the order of the files.
  void take(std::int32_t value);
  /// SEQHDR records taken so far.
  std::int32_t headers() const { return headers_; }
  /// True when SEQHDR records to come cannot change the steps of those already taken.
  bool settled() const { return !rising_ || first_ - 1 == base_; }
  /// Step of a row after `iHeader` SEQHDR records, in a file whose name ends in `iFile` (not used for a
  /// unified file).
  std::int32_t step(std::int32_t iHeader, std::int32_t iFile) const;

 private:
  bool unified_;
  std::int32_t base_;
  std::int32_t headers_ = 0;
  std::int32_t first_ = 0;
  std::int32_t last_ = 0;
  bool rising_ = true;
};

}  // namespace lumbarn
