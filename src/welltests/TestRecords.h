#pragma once

#include <cstdint>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

namespace lumbarn {

/// Texts of one width in one block, as a record holds them. Texts count from 1.
struct TextArray {
  std::pmr::string bytes;
  std::size_t width = 8;

  std::size_t size() const { return width == 0 ? 0 : bytes.size() / width; }
  /// Trimmed. Throws Fault 9 for a text that is not there.
  std::string_view at(std::size_t i) const;
  /// Trimmed; empty for a text that is not there.
  std::string_view textOf(std::size_t i) const;
};

/// Places of texts in WELLETC, from 1.
enum WelletcPlace : std::size_t {
  welletcTime = 1,
  welletcWell = 2,
  welletcGrid = 3,
  welletcLength = 4,
  welletcPressure = 5,
  welletcType = 7,
  welletcLiquidRate = 8,
  welletcGasRate = 9,
  welletcReservoirRate = 10,
  welletcVelocity = 11,
};

/// To the nearest integer, ties to even. Throws Fault 6 for a value that no 32-bit integer can stand for.
std::int32_t rounded(float value);

/// A branch of a multi-segment well.
struct BranchRecord {
  std::int32_t iNumber = 0;  ///< stays when device branches are taken out of the list
  std::int32_t iFirst = 0;   ///< segments, from 1
  std::int32_t iLast = 0;
  std::int32_t nSegments = 0;  ///< last - first + 1
  bool qICD = false;
  std::string zName;
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
