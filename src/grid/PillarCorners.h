#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

// Corners of single cells and of all active ones from pillars and depths in flat arrays, the first index
// fastest. A row of corners is 24 singles, x, y, z of each corner, I fastest and K slowest. Indices count
// from 1.

/// sCOORD(1 to 6, 1 to Nx + 1, 1 to Ny + 1, 1 to nRanges): x, y, z of a pillar's top point, then of its
/// bottom point.
struct LUMBARN_API COORDArray {
  std::span<const float> values;
  std::int32_t Nx = 0;
  std::int32_t Ny = 0;
  std::int32_t nRanges = 1;

  /// The six values of a pillar; all three indices from 1 and inside.
  const float* pillar(std::int32_t i, std::int32_t j, std::int32_t r) const {
    const auto perLine = static_cast<std::size_t>(Nx) + 1;
    const auto line = (static_cast<std::size_t>(r) - 1) * (static_cast<std::size_t>(Ny) + 1) +
                      static_cast<std::size_t>(j) - 1;
    return values.data() + 6 * (line * perLine + static_cast<std::size_t>(i) - 1);
  }
  bool sound() const;
};
using CornerArray = std::array<float, 24>;
using DirectionTable = std::array<std::array<std::int32_t, 3>, 8>;

/// The walk order of a cell's corners, K fastest and I slowest: direction in I, J, K (0 or 1). A compressed
/// ZCORN holds the depths of a cell in this order.
inline constexpr DirectionTable cornerWalk{
    {{0, 0, 0}, {0, 0, 1}, {0, 1, 0}, {0, 1, 1}, {1, 0, 0}, {1, 0, 1}, {1, 1, 0}, {1, 1, 1}}};

/// The cells and arrays that corners are made of.
struct CornerCall {
  std::int32_t Nx = 0, Ny = 0;
  COORDArray sCOORD;
  std::span<const float> sZCORN;
  std::span<const std::int32_t> iRanges;  ///< 6 for each reservoir: first and last layer, and four others
  std::int32_t nRanges = 1;
  bool qCompressed = false;  ///< sZCORN has the depths of active cells, in walk order
};

/// Where a cell is: i, j, k, and its active number, which matters for compressed depths only.
struct CornerCell {
  std::int32_t i = 0, j = 0, k = 0, iActive = 0;
};

/// 1 / height of each pillar, for all reservoirs; 0 for one without height. Nothing when the array does not
/// go with the sizes.
LUMBARN_API std::optional<std::vector<float>> pillarGradients(const COORDArray& sCOORD);

/// Corners of one cell, and the reservoir that its layer belongs to, 0 (with zeros) for none. Nothing when
/// arrays do not go with the sizes. With gradients it multiplies with them, which are singles: results can
/// differ in the last bits.
struct CellCornersFound {
  CornerArray corners{};
  std::int32_t iRange = 0;
};
LUMBARN_API std::optional<CellCornersFound> cornersFromPillars(const CornerCall& call,
                                                               const CornerCell& cell);
LUMBARN_API std::optional<CellCornersFound> cornersFromPillars(const CornerCall& call, const CornerCell& cell,
                                                               std::span<const float> sGrad);

/// Writes the corners into a row, from 1, of rows that follow each other. A cell in no reservoir leaves its
/// row as it is. False for nothing, and for a row that is not there.
LUMBARN_API bool storeCorners(const std::optional<CellCornersFound>& found, std::span<float> sRows,
                              std::int64_t row);

/// Rows of all active cells of one reservoir. iACTNUM holds active numbers as `numberActiveCells` leaves
/// them. False when arrays do not go with the sizes.
LUMBARN_API bool reservoirCorners(const CornerCall& call, std::int32_t Nz, std::int32_t iRange,
                                  std::span<const std::int32_t> iACTNUM, std::span<float> sRows);
/// The same of all reservoirs.
LUMBARN_API bool activeCorners(const CornerCall& call, std::int32_t Nz, std::span<const std::int32_t> iACTNUM,
                               std::span<float> sRows);

}  // namespace lumbarn
