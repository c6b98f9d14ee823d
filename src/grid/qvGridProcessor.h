#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "../record/RecordCursor.h"
#include "../shapes/XYData.h"
#include "../support/Session.h"

namespace lumbarn {

class Hadrick;

/// `qvGridProcessor`: plain routines that turn pillars and depths into corners, number active cells and
/// spread radial arrays. Readers of all kinds of grid share them.
///
/// Arrays are flat, the first index fastest. A row of corners is 24 singles, x, y, z of each corner, I
/// fastest and K slowest, which is also the order of sCorners(1 to 3, 0 to 1, 0 to 1, 0 to 1). Indices count
/// from 1. No routine throws; qOK is False when arrays do not go with the sizes, and outputs then hold
/// nothing of use.

/// sCOORD(1 to 6, 1 to Nx + 1, 1 to Ny + 1, 1 to nRanges): x, y, z of a pillar's top point, then of its
/// bottom point.
struct COORDArray {
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

/// The walk order of a cell's corners, K fastest and I slowest: direction in I, J, K (0 or 1), and the same
/// plus one. A compressed ZCORN holds the depths of a cell in this order.
void GetIJKDir(DirectionTable& iDirection, DirectionTable& iOffset, bool& qOK);
/// The order of a result row: items of x, y and z of each corner, from 1, and its direction.
void GetCornerPointers(DirectionTable& iItems, DirectionTable& iDirection, bool& qOK);

/// The corners of one cell. iRanges(1 to 6, 1 to nRanges) has first and last layer of each reservoir in its
/// first two rows. A cell in no reservoir leaves sCorners and iRange as they were, with qOK True. With
/// qCompressed the depths are those of active number iActive.
void rcgetc(std::int32_t i, std::int32_t j, std::int32_t k, std::int32_t Nx, std::int32_t NxNy,
            std::int32_t iActive, const COORDArray& sCOORD, std::span<const float> sZCORN,
            std::span<const std::int32_t> iRanges, std::int32_t nRanges, std::int32_t& iRange,
            bool qCompressed, CornerArray& sCorners, bool& qOK);
/// 1 / height of each pillar, sGrad(1 to Nx + 1, 1 to Ny + 1, 1 to nRanges); 0 for one without height.
void coordgrad(const COORDArray& sCOORD, std::vector<float>& sGrad, bool& qOK);
/// As rcgetc, but multiplies with sGrad, which is a single: results can differ from it in the last bits.
void getCorners(std::int32_t i, std::int32_t j, std::int32_t k, std::int32_t Nx, std::int32_t NxNy,
                std::int32_t iActive, const COORDArray& sCOORD, std::span<const float> sGrad,
                std::span<const float> sZCORN, std::span<const std::int32_t> iRanges, std::int32_t nRanges,
                std::int32_t& iRange, bool qCompressed, CornerArray& sCorners, bool& qOK);

/// What the three below have in common.
struct CornerCall {
  std::int32_t Nx = 0, Ny = 0;
  COORDArray sCOORD;
  std::span<const float> sZCORN;
  std::span<const std::int32_t> iRanges;
  std::int32_t nRanges = 1;
  bool qCompressed = false;
};
/// rcgetc into the row of a cell in sRows(24, i, j, k).
void GetCellCorners(const CornerCall& call, std::int32_t i, std::int32_t j, std::int32_t k,
                    std::span<float> sRows, bool& qOK);
/// rcgetc into the row of an active number in sRows(24, active).
void GetActiveCellCorners(const CornerCall& call, std::int32_t i, std::int32_t j, std::int32_t k,
                          std::int32_t iActive, std::span<float> sRows, bool& qOK);
/// The same by getCorners.
void GetActiveCellCornersOpt(const CornerCall& call, std::span<const float> sGrad, std::int32_t i,
                             std::int32_t j, std::int32_t k, std::int32_t iActive, std::span<float> sRows,
                             bool& qOK);

/// Rows of all active cells, sCorners(24, nActive), from flat arrays. iACTNUM holds active numbers as
/// processACTNUM leaves them. qOK False when the counts of values do not go with the sizes.
void processCornerPoints(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz, std::span<const float> sCOORD,
                         std::span<const float> sZCORN, std::int32_t nRanges,
                         std::span<const std::int32_t> iRanges, std::span<const std::int32_t> iACTNUM,
                         std::int32_t nActive, XYData& sCorners, Session& session, bool& qOK);
/// The loop over reservoirs of processCornerPoints, and that over the layers of one of them.
void getActiveCORNERSArray(const CornerCall& call, std::int32_t Nz, std::span<const std::int32_t> iACTNUM,
                           std::span<float> sRows, bool& qOK);
void getReservoirActiveCORNERSArray(const CornerCall& call, std::int32_t Nz, std::int32_t iRange,
                                    std::span<const std::int32_t> iACTNUM, std::span<float> sRows, bool& qOK);

/// Completes a grid of the store, whose sizes, activity and pillars are set, with its depths: those given, or
/// with none the ones of the cursor's current record. False when the load is cancelled, with nothing set. May
/// throw what the cursor throws. A record of half the layers is that of the first porosity system, and the
/// second has the same. nNotFinite counts values that are no numbers among those read.
bool processCornerPoints_Grid(RecordCursor& cursor, XYData sZCORN, Hadrick& grid, Session& session,
                              std::size_t& nNotFinite);
/// The same, keeping active cells only: ZCORN never stands in memory as a whole.
bool processActiveCornerPoints_Grid(RecordCursor& cursor, Hadrick& grid, Session& session,
                                    std::size_t& nNotFinite);

/// Values that are not finite.
std::size_t countNotFinite(std::span<const float> values);

/// Rows of all cells of a store's grid, sCorners(24, nCells), and of its active ones; of all reservoirs, or
/// those of one, from 1.
void getCORNERSArray_Grid(const Hadrick& grid, XYData& sCorners, Session& session, bool& qOK);
void getActiveCORNERSArray_Grid(const Hadrick& grid, XYData& sCorners, Session& session, bool& qOK);
void getReservoirCORNERSArray_Grid(const Hadrick& grid, std::int32_t iRange, XYData& sCorners,
                                   Session& session, bool& qOK);
void getReservoirActiveCORNERSArray_Grid(const Hadrick& grid, std::int32_t iRange, XYData& sCorners,
                                         Session& session, bool& qOK);

/// Hands out a ZCORN record two planes (one layer of cells) at a time. The buffer holds whole blocks of the
/// record.
class LayerBuffer {
 public:
  /// The cursor's current record, which must have 8 values for each cell of whole layers.
  LayerBuffer(RecordCursor& cursor, std::size_t layerItems);
  /// The depths of layer k, from 0; behind the last layer of the record the first follows again.
  std::span<const float> layer(std::size_t k);
  std::size_t notFinite() const { return notFinite_; }

 private:
  RecordCursor* cursor_;
  std::size_t layerItems_;
  std::size_t total_;
  std::vector<float> buffer_;
  std::size_t start_ = 0;   // item of the record at the front of the buffer
  std::size_t filled_ = 0;  // items in the buffer
  std::size_t notFinite_ = 0;
};
/// The depths of layer k, from 1: 8 * Nx * Ny values as in the file.
void GetLayerZCORN(LayerBuffer& buffer, std::int32_t k, std::span<const float>& sLayer);
/// Eight depths of each active cell in walk order, from the cursor's current record. iACTNUM holds active
/// numbers. False when cancelled.
bool GetActiveZCORN(RecordCursor& cursor, std::int32_t Nx, std::int32_t Ny, std::int32_t Nz,
                    std::span<const std::int32_t> iACTNUM, std::span<float> sPacked, Session& session,
                    std::size_t& nNotFinite);

/// Numbers active cells, those above 0, I fastest and K slowest. iACTNUM takes the numbers; inactive cells
/// keep their values. iA2G takes the cell of each number, one entry at least.
void processACTNUM(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz, std::vector<std::int32_t>& iA2G,
                   std::span<std::int32_t> iACTNUM, std::int32_t& nActive, bool& qOK);
/// Spreads the values of a radial grid whose file has nThetaFile angles over nThetaFine. With nThetaFile
/// below 1 or the same, nItems values are copied. The first nItems of the result are written, or Nr *
/// nThetaFine * Nz when spread. qOK False when the file has more angles or a count that does not divide the
/// grid's. Instances: float, std::int32_t.
template <class Value>
void ProcessRADIALNUMTHETA(std::int32_t Nr, std::int32_t nThetaFine, std::int32_t Nz, std::int32_t nThetaFile,
                           std::size_t nItems, std::span<const Value> source, std::vector<Value>& result,
                           bool& qOK);

}  // namespace lumbarn
