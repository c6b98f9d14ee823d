#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "CellNumbers.h"
#include "DepthRecords.h"
#include "PillarCorners.h"

namespace lumbarn {

class Hadrick;

/// `qvGridProcessor`: plain routines that turn pillars and depths into corners, number active cells and
/// spread radial arrays, as existing hosts call them.
///
/// Arrays are flat, the first index fastest. A row of corners is 24 singles, x, y, z of each corner, I
/// fastest and K slowest, which is also the order of sCorners(1 to 3, 0 to 1, 0 to 1, 0 to 1). Indices count
/// from 1. No routine throws; qOK is False when arrays do not go with the sizes, and outputs then hold
/// nothing of use.

/// The walk order of a cell's corners, K fastest and I slowest: direction in I, J, K (0 or 1), and the same
/// plus one. A compressed ZCORN holds the depths of a cell in this order.
LUMBARN_API void GetIJKDir(DirectionTable& iDirection, DirectionTable& iOffset, bool& qOK);
/// The order of a result row: items of x, y and z of each corner, from 1, and its direction.
LUMBARN_API void GetCornerPointers(DirectionTable& iItems, DirectionTable& iDirection, bool& qOK);

/// The corners of one cell. iRanges(1 to 6, 1 to nRanges) has first and last layer of each reservoir in its
/// first two rows. A cell in no reservoir leaves sCorners and iRange as they were, with qOK True. With
/// qCompressed the depths are those of active number iActive.
LUMBARN_API void rcgetc(std::int32_t i, std::int32_t j, std::int32_t k, std::int32_t Nx, std::int32_t NxNy,
                        std::int32_t iActive, const COORDArray& sCOORD, std::span<const float> sZCORN,
                        std::span<const std::int32_t> iRanges, std::int32_t nRanges, std::int32_t& iRange,
                        bool qCompressed, CornerArray& sCorners, bool& qOK);
/// 1 / height of each pillar, sGrad(1 to Nx + 1, 1 to Ny + 1, 1 to nRanges); 0 for one without height.
LUMBARN_API void coordgrad(const COORDArray& sCOORD, std::vector<float>& sGrad, bool& qOK);
/// As rcgetc, but multiplies with sGrad, which is a single: results can differ from it in the last bits.
LUMBARN_API void getCorners(std::int32_t i, std::int32_t j, std::int32_t k, std::int32_t Nx,
                            std::int32_t NxNy, std::int32_t iActive, const COORDArray& sCOORD,
                            std::span<const float> sGrad, std::span<const float> sZCORN,
                            std::span<const std::int32_t> iRanges, std::int32_t nRanges, std::int32_t& iRange,
                            bool qCompressed, CornerArray& sCorners, bool& qOK);

/// rcgetc into the row of a cell in sRows(24, i, j, k).
LUMBARN_API void GetCellCorners(const CornerCall& call, std::int32_t i, std::int32_t j, std::int32_t k,
                                std::span<float> sRows, bool& qOK);
/// rcgetc into the row of an active number in sRows(24, active).
LUMBARN_API void GetActiveCellCorners(const CornerCall& call, std::int32_t i, std::int32_t j, std::int32_t k,
                                      std::int32_t iActive, std::span<float> sRows, bool& qOK);
/// The same by getCorners.
LUMBARN_API void GetActiveCellCornersOpt(const CornerCall& call, std::span<const float> sGrad, std::int32_t i,
                                         std::int32_t j, std::int32_t k, std::int32_t iActive,
                                         std::span<float> sRows, bool& qOK);

/// Rows of all active cells, sCorners(24, nActive), from flat arrays. iACTNUM holds active numbers as
/// processACTNUM leaves them. qOK False when the counts of values do not go with the sizes.
LUMBARN_API void processCornerPoints(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz,
                                     std::span<const float> sCOORD, std::span<const float> sZCORN,
                                     std::int32_t nRanges, std::span<const std::int32_t> iRanges,
                                     std::span<const std::int32_t> iACTNUM, std::int32_t nActive,
                                     XYData& sCorners, Session& session, bool& qOK);
/// The loop over reservoirs of processCornerPoints, and that over the layers of one of them.
LUMBARN_API void getActiveCORNERSArray(const CornerCall& call, std::int32_t Nz,
                                       std::span<const std::int32_t> iACTNUM, std::span<float> sRows,
                                       bool& qOK);
LUMBARN_API void getReservoirActiveCORNERSArray(const CornerCall& call, std::int32_t Nz, std::int32_t iRange,
                                                std::span<const std::int32_t> iACTNUM, std::span<float> sRows,
                                                bool& qOK);

/// Rows of all cells of a store's grid, sCorners(24, nCells), and of its active ones; of all reservoirs, or
/// those of one, from 1.
LUMBARN_API void getCORNERSArray_Grid(const Hadrick& grid, XYData& sCorners, Session& session, bool& qOK);
LUMBARN_API void getActiveCORNERSArray_Grid(const Hadrick& grid, XYData& sCorners, Session& session,
                                            bool& qOK);
LUMBARN_API void getReservoirCORNERSArray_Grid(const Hadrick& grid, std::int32_t iRange, XYData& sCorners,
                                               Session& session, bool& qOK);
LUMBARN_API void getReservoirActiveCORNERSArray_Grid(const Hadrick& grid, std::int32_t iRange,
                                                     XYData& sCorners, Session& session, bool& qOK);

/// Numbers active cells, those above 0, I fastest and K slowest. iACTNUM takes the numbers; inactive cells
/// keep their values. iA2G takes the cell of each number, one entry at least.
LUMBARN_API void processACTNUM(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz,
                               std::vector<std::int32_t>& iA2G, std::span<std::int32_t> iACTNUM,
                               std::int32_t& nActive, bool& qOK);
/// Spreads the values of a radial grid whose file has nThetaFile angles over nThetaFine. With nThetaFile
/// below 1 or the same, nItems values are copied. The first nItems of the result are written, or Nr *
/// nThetaFine * Nz when spread. qOK False when the file has more angles or a count that does not divide the
/// grid's. Instances: float, std::int32_t.
template <class Value>
LUMBARN_API void ProcessRADIALNUMTHETA(std::int32_t Nr, std::int32_t nThetaFine, std::int32_t Nz,
                                       std::int32_t nThetaFile, std::size_t nItems,
                                       std::span<const Value> source, std::vector<Value>& result, bool& qOK);

}  // namespace lumbarn
