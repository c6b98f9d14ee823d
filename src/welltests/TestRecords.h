#pragma once

#include <cstdint>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

/// To the nearest integer, ties to even. Throws Fault 6 for a value that no 32-bit integer can stand for.
LUMBARN_API std::int32_t rounded(float value);

/// A branch of a multi-segment well.
struct BranchRecord {
  std::int32_t iNumber = 0;  ///< does not change when device branches are removed from the list
  std::int32_t iFirst = 0;   ///< segments, from 1
  std::int32_t iLast = 0;
  std::int32_t nSegments = 0;  ///< last - first + 1
  bool qICD = false;
};

/// A segment of a multi-segment well. Singles that no array gives hold the null value, integers -1.
struct SegmentRecord {
  explicit SegmentRecord(float null = 0)
      : MD(null),
        DEPTH(null),
        LENST(null),
        LENEN(null),
        LENTH(null),
        XCORD(null),
        YCORD(null),
        PRES(null),
        ORAT(null),
        WRAT(null),
        ORATS(null),
        WRATS(null),
        GRATS(null),
        GRAT(null),
        OVEL(null),
        WVEL(null),
        GVEL(null),
        OHF(null),
        WHF(null),
        GHF(null),
        CORAT(null),
        CWRAT(null),
        CGRAT(null),
        CORTS(null),
        CWRTS(null),
        CGRTS(null),
        WCUT(null),
        GOR(null) {}

  float MD;
  float DEPTH, LENST, LENEN, LENTH;
  float XCORD, YCORD, PRES;
  float ORAT, WRAT, ORATS, WRATS, GRATS, GRAT;
  float OVEL, WVEL, GVEL, OHF, WHF, GHF;
  std::int32_t BRNO = -1;
  std::int32_t NXT = -1;  ///< the segment that this one flows into
  float CORAT, CWRAT, CGRAT, CORTS, CWRTS, CGRTS;
  float WCUT, GOR;  ///< 0 without flow
  bool ICD = false;
};

/// All inflow control devices that empty into one branch of the tubing. No branch of the file.
struct ICDBranchRecord {
  std::vector<std::int32_t> iSegments;  ///< the device segments
  std::vector<std::int32_t> iTubing;    ///< for each, the first segment down its flow that is no device
  std::int32_t iTubingBranch = 0;
};

}  // namespace lumbarn
