#include "PillarCorners.h"

#include <algorithm>
#include <cmath>

namespace lumbarn {

namespace {

constexpr double flatPillar = 1e-20;
constexpr std::size_t rowItems = 24;
constexpr std::size_t rangeRows = 6;

/// First and last layer of a reservoir, from 1.
std::array<std::int32_t, 2> layersOf(std::span<const std::int32_t> iRanges, std::int32_t iRange) {
  const auto first = rangeRows * (static_cast<std::size_t>(iRange) - 1);
  return {iRanges[first], iRanges[first + 1]};
}

/// The reservoir of a layer, from 1; 0 for none.
std::int32_t rangeOf(std::int32_t k, std::span<const std::int32_t> iRanges, std::int32_t nRanges) {
  for (std::int32_t r = 1; r <= nRanges; ++r) {
    const auto layers = layersOf(iRanges, r);
    if (layers[0] <= k && k <= layers[1]) return r;
  }
  return 0;
}

double heightOf(const float* pillar) { return static_cast<double>(pillar[5]) - pillar[2]; }

bool goTogether(const CornerCall& call, const CornerCell& cell) {
  const auto& [i, j, k, iActive] = cell;
  return call.sCOORD.sound() && call.nRanges >= 1 && call.nRanges <= call.sCOORD.nRanges &&
         call.iRanges.size() >= rangeRows * static_cast<std::size_t>(call.nRanges) &&
         call.Nx == call.sCOORD.Nx && call.Ny == call.sCOORD.Ny && i >= 1 && i <= call.Nx && j >= 1 &&
         j <= call.Ny && k >= 1 && (!call.qCompressed || iActive >= 1);
}

/// `fraction(depth below the top point, pillar)` says how far down its pillar a depth is.
template <class Fraction>
std::optional<CellCornersFound> corners(const CornerCall& call, const CornerCell& cell, Fraction fraction) {
  if (!goTogether(call, cell)) return std::nullopt;
  CellCornersFound found;
  const auto& [i, j, k, iActive] = cell;
  const std::int32_t range = rangeOf(k, call.iRanges, call.nRanges);
  if (range == 0) return found;
  const auto layer = static_cast<std::int64_t>(call.Nx) * call.Ny;
  const auto cells = static_cast<std::size_t>(call.qCompressed ? iActive : k * layer);
  if (call.sZCORN.size() < 8 * cells) return std::nullopt;
  found.iRange = range;
  std::size_t running = 8 * (static_cast<std::size_t>(iActive) - 1);
  for (const auto& [di, dj, dk] : cornerWalk) {
    const auto line = static_cast<std::size_t>(2 * (j - 1) + dj) +
                      2 * static_cast<std::size_t>(call.Ny) * static_cast<std::size_t>(2 * (k - 1) + dk);
    const auto plain =
        static_cast<std::size_t>(2 * (i - 1) + di) + 2 * static_cast<std::size_t>(call.Nx) * line;
    const float depth = call.sZCORN[call.qCompressed ? running++ : plain];
    const float* pillar = call.sCOORD.pillar(i + di, j + dj, range);
    const double t = fraction(static_cast<double>(depth) - pillar[2], pillar);
    float* corner = found.corners.data() + 3 * (di + 2 * dj + 4 * dk);
    corner[0] = static_cast<float>(pillar[0] + t * (static_cast<double>(pillar[3]) - pillar[0]));
    corner[1] = static_cast<float>(pillar[1] + t * (static_cast<double>(pillar[4]) - pillar[1]));
    corner[2] = depth;
  }
  return found;
}

}  // namespace

bool COORDArray::sound() const {
  if (Nx < 1 || Ny < 1 || nRanges < 1) return false;
  const auto perLine = 6 * (static_cast<std::size_t>(Nx) + 1);
  return values.size() / perLine / (static_cast<std::size_t>(Ny) + 1) >= static_cast<std::size_t>(nRanges);
}

std::optional<CellCornersFound> cornersFromPillars(const CornerCall& call, const CornerCell& cell) {
  return corners(call, cell, [](double below, const float* pillar) {
    const double dz = heightOf(pillar);
    return std::abs(dz) > flatPillar ? below / dz : 0;
  });
}

std::optional<CellCornersFound> cornersFromPillars(const CornerCall& call, const CornerCell& cell,
                                                   std::span<const float> sGrad) {
  const auto& pillars = call.sCOORD.values;
  if (sGrad.size() < pillars.size() / 6) return std::nullopt;
  return corners(call, cell, [&](double below, const float* pillar) {
    return below * sGrad[static_cast<std::size_t>(pillar - pillars.data()) / 6];
  });
}

std::optional<std::vector<float>> pillarGradients(const COORDArray& sCOORD) {
  if (!sCOORD.sound()) return std::nullopt;
  const auto pillars = (static_cast<std::size_t>(sCOORD.Nx) + 1) * (static_cast<std::size_t>(sCOORD.Ny) + 1) *
                       static_cast<std::size_t>(sCOORD.nRanges);
  std::vector<float> gradients(pillars);
  for (std::size_t p = 0; p < pillars; ++p) {
    const double dz = heightOf(sCOORD.values.data() + 6 * p);
    gradients[p] = std::abs(dz) > flatPillar ? static_cast<float>(1 / dz) : 0.0F;
  }
  return gradients;
}

bool storeCorners(const std::optional<CellCornersFound>& found, std::span<float> sRows, std::int64_t row) {
  if (!found) return false;
  if (found->iRange == 0) return true;
  if (row < 1 || static_cast<std::uint64_t>(row) > sRows.size() / rowItems) return false;
  std::ranges::copy(found->corners, sRows.begin() + static_cast<std::ptrdiff_t>(rowItems) * (row - 1));
  return true;
}

bool reservoirCorners(const CornerCall& call, std::int32_t Nz, std::int32_t iRange,
                      std::span<const std::int32_t> iACTNUM, std::span<float> sRows) {
  if (call.iRanges.size() < rangeRows * static_cast<std::size_t>(call.nRanges) || iRange < 1 ||
      iRange > call.nRanges)
    return false;
  const auto layers = layersOf(call.iRanges, iRange);
  const std::int32_t first = std::max(layers[0], 1);
  std::size_t cell = static_cast<std::size_t>(call.Nx) * static_cast<std::size_t>(call.Ny) *
                     static_cast<std::size_t>(first - 1);
  for (std::int32_t k = first; k <= std::min(layers[1], Nz); ++k) {
    for (std::int32_t j = 1; j <= call.Ny; ++j) {
      for (std::int32_t i = 1; i <= call.Nx; ++i, ++cell) {
        const auto number = cell < iACTNUM.size() ? iACTNUM[cell] : 0;
        if (number > 0 && !storeCorners(cornersFromPillars(call, {i, j, k, number}), sRows, number))
          return false;
      }
    }
  }
  return true;
}

bool activeCorners(const CornerCall& call, std::int32_t Nz, std::span<const std::int32_t> iACTNUM,
                   std::span<float> sRows) {
  for (std::int32_t r = 1; r <= call.nRanges; ++r) {
    if (!reservoirCorners(call, Nz, r, iACTNUM, sRows)) return false;
  }
  return true;
}

}  // namespace lumbarn
