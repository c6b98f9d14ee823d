#include "qvGridProcessor.h"

#include <algorithm>
#include <utility>

#include "../support/Guarded.h"
#include "Hadrick.h"
#include "LayerCorners.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvGridProcessor";
constexpr std::size_t rowItems = 24;

/// A cell in no reservoir leaves the outputs as they were, which is no failure.
void give(const std::optional<CellCornersFound>& found, std::int32_t& iRange, CornerArray& sCorners,
          bool& qOK) {
  qOK = found.has_value();
  if (!found || found->iRange == 0) return;
  iRange = found->iRange;
  sCorners = found->corners;
}

bool isSize(const COORDArray& sCOORD, std::int32_t NxNy) {
  return NxNy == static_cast<std::int64_t>(sCOORD.Nx) * sCOORD.Ny;
}

bool give(std::optional<XYData> from, XYData& to) {
  if (from) to = std::move(*from);
  return from.has_value();
}

}  // namespace

void GetIJKDir(DirectionTable& iDirection, DirectionTable& iOffset, bool& qOK) {
  iDirection = cornerWalk;
  iOffset = cornerWalk;
  for (auto& offsets : iOffset) {
    for (auto& offset : offsets) ++offset;
  }
  qOK = true;
}

void GetCornerPointers(DirectionTable& iItems, DirectionTable& iDirection, bool& qOK) {
  for (std::int32_t n = 0; n < 8; ++n) {
    iItems[static_cast<std::size_t>(n)] = {3 * n + 1, 3 * n + 2, 3 * n + 3};
    iDirection[static_cast<std::size_t>(n)] = {n & 1, n >> 1 & 1, n >> 2};
  }
  qOK = true;
}

void rcgetc(std::int32_t i, std::int32_t j, std::int32_t k, std::int32_t Nx, std::int32_t NxNy,
            std::int32_t iActive, const COORDArray& sCOORD, std::span<const float> sZCORN,
            std::span<const std::int32_t> iRanges, std::int32_t nRanges, std::int32_t& iRange,
            bool qCompressed, CornerArray& sCorners, bool& qOK) {
  const CornerCall call{Nx, sCOORD.Ny, sCOORD, sZCORN, iRanges, nRanges, qCompressed};
  qOK = isSize(sCOORD, NxNy);
  if (qOK) give(cornersFromPillars(call, {i, j, k, iActive}), iRange, sCorners, qOK);
}

void coordgrad(const COORDArray& sCOORD, std::vector<float>& sGrad, bool& qOK) {
  auto gradients = pillarGradients(sCOORD);
  qOK = gradients.has_value();
  if (qOK) sGrad = std::move(*gradients);
}

void getCorners(std::int32_t i, std::int32_t j, std::int32_t k, std::int32_t Nx, std::int32_t NxNy,
                std::int32_t iActive, const COORDArray& sCOORD, std::span<const float> sGrad,
                std::span<const float> sZCORN, std::span<const std::int32_t> iRanges, std::int32_t nRanges,
                std::int32_t& iRange, bool qCompressed, CornerArray& sCorners, bool& qOK) {
  const CornerCall call{Nx, sCOORD.Ny, sCOORD, sZCORN, iRanges, nRanges, qCompressed};
  qOK = isSize(sCOORD, NxNy);
  if (qOK) give(cornersFromPillars(call, {i, j, k, iActive}, sGrad), iRange, sCorners, qOK);
}

void GetCellCorners(const CornerCall& call, std::int32_t i, std::int32_t j, std::int32_t k,
                    std::span<float> sRows, bool& qOK) {
  CornerCall plain = call;
  plain.qCompressed = false;
  const auto row = i + call.Nx * (j - 1 + static_cast<std::int64_t>(call.Ny) * (k - 1));
  qOK = storeCorners(cornersFromPillars(plain, {i, j, k}), sRows, row);
}

void GetActiveCellCorners(const CornerCall& call, std::int32_t i, std::int32_t j, std::int32_t k,
                          std::int32_t iActive, std::span<float> sRows, bool& qOK) {
  qOK = storeCorners(cornersFromPillars(call, {i, j, k, iActive}), sRows, iActive);
}

void GetActiveCellCornersOpt(const CornerCall& call, std::span<const float> sGrad, std::int32_t i,
                             std::int32_t j, std::int32_t k, std::int32_t iActive, std::span<float> sRows,
                             bool& qOK) {
  qOK = storeCorners(cornersFromPillars(call, {i, j, k, iActive}, sGrad), sRows, iActive);
}

void processCornerPoints(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz, std::span<const float> sCOORD,
                         std::span<const float> sZCORN, std::int32_t nRanges,
                         std::span<const std::int32_t> iRanges, std::span<const std::int32_t> iACTNUM,
                         std::int32_t nActive, XYData& sCorners, Session& session, bool& qOK) {
  guarded(session, qOK, className, "processCornerPoints", [&] {
    const COORDArray pillars{sCOORD, Nx, Ny, nRanges};
    if (!pillars.sound() || Nz < 1 || nActive < 0) return false;
    const auto cells =
        static_cast<std::size_t>(Nx) * static_cast<std::size_t>(Ny) * static_cast<std::size_t>(Nz);
    const auto perRange = 6 * (static_cast<std::size_t>(Nx) + 1) * (static_cast<std::size_t>(Ny) + 1);
    if (sCOORD.size() != perRange * static_cast<std::size_t>(nRanges) || sZCORN.size() != 8 * cells)
      return false;
    XYData rows(rowItems, static_cast<std::size_t>(nActive), session);
    std::ranges::fill(rows.values(), 0.0F);
    const bool filled =
        activeCorners({Nx, Ny, pillars, sZCORN, iRanges, nRanges, false}, Nz, iACTNUM, rows.values());
    sCorners = std::move(rows);
    return filled;
  });
}

void getActiveCORNERSArray(const CornerCall& call, std::int32_t Nz, std::span<const std::int32_t> iACTNUM,
                           std::span<float> sRows, bool& qOK) {
  qOK = activeCorners(call, Nz, iACTNUM, sRows);
}

void getReservoirActiveCORNERSArray(const CornerCall& call, std::int32_t Nz, std::int32_t iRange,
                                    std::span<const std::int32_t> iACTNUM, std::span<float> sRows,
                                    bool& qOK) {
  qOK = reservoirCorners(call, Nz, iRange, iACTNUM, sRows);
}

void getCORNERSArray_Grid(const Hadrick& grid, XYData& sCorners, Session& session, bool& qOK) {
  guarded(session, qOK, className, "getCORNERSArray_Grid",
          [&] { return give(cornersOfLayers(grid, 1, grid.Nz(), false, session), sCorners); });
}

void getActiveCORNERSArray_Grid(const Hadrick& grid, XYData& sCorners, Session& session, bool& qOK) {
  guarded(session, qOK, className, "getActiveCORNERSArray_Grid",
          [&] { return give(cornersOfLayers(grid, 1, grid.Nz(), true, session), sCorners); });
}

void getReservoirCORNERSArray_Grid(const Hadrick& grid, std::int32_t iRange, XYData& sCorners,
                                   Session& session, bool& qOK) {
  guarded(session, qOK, className, "getReservoirCORNERSArray_Grid",
          [&] { return give(cornersOfReservoir(grid, iRange, false, session), sCorners); });
}

void getReservoirActiveCORNERSArray_Grid(const Hadrick& grid, std::int32_t iRange, XYData& sCorners,
                                         Session& session, bool& qOK) {
  guarded(session, qOK, className, "getReservoirActiveCORNERSArray_Grid",
          [&] { return give(cornersOfReservoir(grid, iRange, true, session), sCorners); });
}

void processACTNUM(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz, std::vector<std::int32_t>& iA2G,
                   std::span<std::int32_t> iACTNUM, std::int32_t& nActive, bool& qOK) {
  auto numbers = numberActiveCells(Nx, Ny, Nz, iACTNUM);
  qOK = numbers.has_value();
  nActive = qOK ? numbers->count : 0;
  if (qOK) iA2G = std::move(numbers->cells);
}

template <class Value>
void ProcessRADIALNUMTHETA(std::int32_t Nr, std::int32_t nThetaFine, std::int32_t Nz, std::int32_t nThetaFile,
                           std::size_t nItems, std::span<const Value> source, std::vector<Value>& result,
                           bool& qOK) {
  qOK = spreadOverAngles(Nr, nThetaFine, Nz, nThetaFile, nItems, source, result);
}
template void ProcessRADIALNUMTHETA(std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::size_t,
                                    std::span<const float>, std::vector<float>&, bool&);
template void ProcessRADIALNUMTHETA(std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::size_t,
                                    std::span<const std::int32_t>, std::vector<std::int32_t>&, bool&);

}  // namespace lumbarn
