#include "DepthRecords.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "../support/Fault.h"
#include "Hadrick.h"

namespace lumbarn {

namespace {

/// Small enough to stay in the processor's cache; whole blocks, so that none is read twice for its marks.
constexpr std::size_t pieceItems = 100'000;

}  // namespace

bool processCornerPoints_Grid(RecordCursor& cursor, XYData sZCORN, Hadrick& grid, Session& session,
                              std::size_t& nNotFinite) {
  nNotFinite = 0;
  if (sZCORN.empty()) {
    sZCORN = XYData(8, static_cast<std::size_t>(grid.nCells()), session);
    const auto all = sZCORN.values();
    const auto inFile = std::min(static_cast<std::size_t>(cursor.header().count), all.size());
    // In pieces that are still in the processor's cache when their values are looked at.
    const std::size_t piece = cursor.form().formatted() ? inFile : pieceItems;
    for (std::size_t at = 0; at < inFile; at += piece) {
      const auto part = all.subspan(at, std::min(piece, inFile - at));
      cursor.read(part, static_cast<std::int64_t>(at));
      nNotFinite += countNotFinite(part);
    }
    if (inFile < all.size()) std::ranges::copy(all.first(all.size() - inFile), all.subspan(inFile).begin());
  }
  if (session.cancelled()) return false;
  grid.setDepths(std::move(sZCORN), false);
  return true;
}

bool processActiveCornerPoints_Grid(RecordCursor& cursor, Hadrick& grid, Session& session,
                                    std::size_t& nNotFinite) {
  // With all cells active both forms are of one size, and the file's own needs no work.
  if (grid.allActive()) return processCornerPoints_Grid(cursor, {}, grid, session, nNotFinite);
  XYData packed(8, static_cast<std::size_t>(grid.nActive()), session);
  if (!GetActiveZCORN(cursor, grid.Nx(), grid.Ny(), grid.Nz(), grid.activeNumbers(), packed.values(), session,
                      nNotFinite)) {
    return false;
  }
  grid.setDepths(std::move(packed), true);
  return true;
}

std::size_t countNotFinite(std::span<const float> values) {
  constexpr std::uint32_t exponent = 0x7F800000;
  std::size_t total = 0;
  for (std::size_t at = 0; at < values.size(); at += pieceItems) {
    std::uint32_t count = 0;  // 32 bits, as the values are, keep the loop wide
    for (const float value : values.subspan(at, std::min(pieceItems, values.size() - at))) {
      count += (std::bit_cast<std::uint32_t>(value) & exponent) == exponent ? 1U : 0U;
    }
    total += count;
  }
  return total;
}

LayerBuffer::LayerBuffer(RecordCursor& cursor, std::size_t layerItems)
    : cursor_(&cursor), layerItems_(layerItems), total_(static_cast<std::size_t>(cursor.header().count)) {
  const auto block = static_cast<std::size_t>(elementsPerBlock(cursor.header().type));
  std::size_t items = pieceItems;
  if (layerItems > items) items = (layerItems / block + 1) * block;
  // Text has no constant-time way to a place inside a record whose lines are not as usual.
  if (cursor.form().formatted()) items = total_;
  buffer_.resize(std::min(items, total_));
}

std::span<const float> LayerBuffer::layer(std::size_t k) {
  const std::size_t first = k % std::max(total_ / layerItems_, std::size_t{1}) * layerItems_;
  if (first + layerItems_ > start_ + filled_ || first < start_) {
    if (first + layerItems_ > total_) throw Fault(FaultNumber::Subscript);
    // What is left of the last read moves to the front; one read fills the rest.
    const std::size_t left = first >= start_ && first < start_ + filled_ ? start_ + filled_ - first : 0;
    std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(filled_ - left), left, buffer_.begin());
    start_ = first;
    filled_ = std::min(buffer_.size(), total_ - first);
    const auto fresh = std::span(buffer_).subspan(left, filled_ - left);
    cursor_->read(fresh, static_cast<std::int64_t>(first + left));
    notFinite_ += countNotFinite(fresh);
  }
  return std::span<const float>(buffer_).subspan(first - start_, layerItems_);
}

void GetLayerZCORN(LayerBuffer& buffer, std::int32_t k, std::span<const float>& sLayer) {
  sLayer = buffer.layer(static_cast<std::size_t>(k) - 1);
}

bool GetActiveZCORN(RecordCursor& cursor, std::int32_t Nx, std::int32_t Ny, std::int32_t Nz,
                    std::span<const std::int32_t> iACTNUM, std::span<float> sPacked, Session& session,
                    std::size_t& nNotFinite) {
  const auto nx = static_cast<std::size_t>(Nx);
  const auto plane = 4 * nx * static_cast<std::size_t>(Ny);
  LayerBuffer buffer(cursor, 2 * plane);
  float* out = sPacked.data();
  const std::int32_t* number = iACTNUM.data();
  for (std::int32_t k = 1; k <= Nz; ++k) {
    if (session.cancelled()) return false;
    std::span<const float> layer;
    GetLayerZCORN(buffer, k, layer);
    for (std::size_t j = 0; j < static_cast<std::size_t>(Ny); ++j) {
      const float* line = layer.data() + 4 * j * nx;
      for (std::size_t i = 0; i < nx; ++i, line += 2) {
        if (*number++ <= 0) continue;
        const float* const row[] = {line, line + 2 * nx};
        for (const std::size_t di : {0U, 1U}) {
          for (const auto* side : row) {
            *out++ = side[di];
            *out++ = side[di + plane];
          }
        }
      }
    }
  }
  nNotFinite = buffer.notFinite();
  return true;
}

}  // namespace lumbarn
