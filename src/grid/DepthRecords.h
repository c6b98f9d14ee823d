#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "../record/RecordCursor.h"
#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"

namespace lumbarn {

class Hadrick;

/// Completes a grid of the store, whose sizes, activity and pillars are set, with its depths: those given, or
/// with none the ones of the cursor's current record. False when the load is cancelled, with nothing set. May
/// throw what the cursor throws. A record of half the layers is that of the first porosity system, and the
/// second has the same. nNotFinite counts values that are no numbers among those read.
LUMBARN_API bool processCornerPoints_Grid(RecordCursor& cursor, XYData sZCORN, Hadrick& grid,
                                          Session& session, std::size_t& nNotFinite);
/// The same, keeping active cells only: ZCORN never stands in memory as a whole.
LUMBARN_API bool processActiveCornerPoints_Grid(RecordCursor& cursor, Hadrick& grid, Session& session,
                                                std::size_t& nNotFinite);

/// Values that are not finite.
LUMBARN_API std::size_t countNotFinite(std::span<const float> values);

/// Hands out a ZCORN record two planes (one layer of cells) at a time. The buffer holds whole blocks of the
/// record.
class LUMBARN_API LayerBuffer {
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
LUMBARN_API void GetLayerZCORN(LayerBuffer& buffer, std::int32_t k, std::span<const float>& sLayer);
/// Eight depths of each active cell in walk order, from the cursor's current record. iACTNUM holds active
/// numbers. False when cancelled.
LUMBARN_API bool GetActiveZCORN(RecordCursor& cursor, std::int32_t Nx, std::int32_t Ny, std::int32_t Nz,
                                std::span<const std::int32_t> iACTNUM, std::span<float> sPacked,
                                Session& session, std::size_t& nNotFinite);

}  // namespace lumbarn
