#include "qvGridProcessor.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "CornerRows.h"
#include "Hadrick.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvGridProcessor";
constexpr double flatPillar = 1e-20;
constexpr std::size_t rowItems = 24;
constexpr std::size_t rangeRows = 6;
/// Small enough to stay in the processor's cache; whole blocks, so that none is read twice for its marks.
constexpr std::size_t pieceItems = 100'000;

constexpr DirectionTable walk{
    {{0, 0, 0}, {0, 0, 1}, {0, 1, 0}, {0, 1, 1}, {1, 0, 0}, {1, 0, 1}, {1, 1, 0}, {1, 1, 1}}};

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

/// What both ways to a cell's corners share; `fraction(depth, pillar number)` tells how far down its pillar a
/// depth lies.
template <class Fraction>
bool cellCorners(std::int32_t i, std::int32_t j, std::int32_t k, std::int32_t Nx, std::int32_t NxNy,
                 std::int32_t iActive, const COORDArray& sCOORD, std::span<const float> sZCORN,
                 std::span<const std::int32_t> iRanges, std::int32_t nRanges, std::int32_t& iRange,
                 bool qCompressed, CornerArray& sCorners, Fraction fraction) {
  if (!sCOORD.sound() || nRanges < 1 || nRanges > sCOORD.nRanges ||
      iRanges.size() < rangeRows * static_cast<std::size_t>(nRanges) || Nx != sCOORD.Nx ||
      NxNy != static_cast<std::int64_t>(Nx) * sCOORD.Ny || i < 1 || i > Nx || j < 1 || j > sCOORD.Ny ||
      k < 1 || (qCompressed && iActive < 1)) {
    return false;
  }
  const std::int32_t range = rangeOf(k, iRanges, nRanges);
  if (range == 0) return true;
  const auto cells = static_cast<std::size_t>(qCompressed ? iActive : k * static_cast<std::int64_t>(NxNy));
  if (sZCORN.size() < 8 * cells) return false;
  iRange = range;
  std::size_t running = 8 * (static_cast<std::size_t>(iActive) - 1);
  for (const auto& [di, dj, dk] : walk) {
    const auto line = static_cast<std::size_t>(2 * (j - 1) + dj) +
                      2 * static_cast<std::size_t>(sCOORD.Ny) * static_cast<std::size_t>(2 * (k - 1) + dk);
    const auto plain = static_cast<std::size_t>(2 * (i - 1) + di) + 2 * static_cast<std::size_t>(Nx) * line;
    const float depth = sZCORN[qCompressed ? running++ : plain];
    const float* pillar = sCOORD.pillar(i + di, j + dj, range);
    const double t = fraction(static_cast<double>(depth) - pillar[2], pillar);
    float* corner = sCorners.data() + 3 * (di + 2 * dj + 4 * dk);
    corner[0] = static_cast<float>(pillar[0] + t * (static_cast<double>(pillar[3]) - pillar[0]));
    corner[1] = static_cast<float>(pillar[1] + t * (static_cast<double>(pillar[4]) - pillar[1]));
    corner[2] = depth;
  }
  return true;
}

double heightOf(const float* pillar) { return static_cast<double>(pillar[5]) - pillar[2]; }

/// A row of an array of rows, from 1; empty when it is not there.
std::span<float> rowAt(std::span<float> sRows, std::int64_t number) {
  if (number < 1 || static_cast<std::uint64_t>(number) > sRows.size() / rowItems) return {};
  return sRows.subspan(rowItems * (static_cast<std::size_t>(number) - 1), rowItems);
}

void storeRow(const CornerArray& corners, std::span<float> row, bool& qOK) {
  if (row.empty()) qOK = false;
  if (qOK) std::ranges::copy(corners, row.begin());
}

}  // namespace

bool COORDArray::sound() const {
  if (Nx < 1 || Ny < 1 || nRanges < 1) return false;
  const auto perLine = 6 * (static_cast<std::size_t>(Nx) + 1);
  return values.size() / perLine / (static_cast<std::size_t>(Ny) + 1) >= static_cast<std::size_t>(nRanges);
}

void GetIJKDir(DirectionTable& iDirection, DirectionTable& iOffset, bool& qOK) {
  iDirection = walk;
  iOffset = walk;
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
  qOK = cellCorners(i, j, k, Nx, NxNy, iActive, sCOORD, sZCORN, iRanges, nRanges, iRange, qCompressed,
                    sCorners, [](double below, const float* pillar) {
                      const double dz = heightOf(pillar);
                      return std::abs(dz) > flatPillar ? below / dz : 0;
                    });
}

void coordgrad(const COORDArray& sCOORD, std::vector<float>& sGrad, bool& qOK) {
  qOK = sCOORD.sound();
  if (!qOK) return;
  const auto pillars = (static_cast<std::size_t>(sCOORD.Nx) + 1) * (static_cast<std::size_t>(sCOORD.Ny) + 1) *
                       static_cast<std::size_t>(sCOORD.nRanges);
  sGrad.resize(pillars);
  for (std::size_t p = 0; p < pillars; ++p) {
    const double dz = heightOf(sCOORD.values.data() + 6 * p);
    sGrad[p] = std::abs(dz) > flatPillar ? static_cast<float>(1 / dz) : 0.0F;
  }
}

void getCorners(std::int32_t i, std::int32_t j, std::int32_t k, std::int32_t Nx, std::int32_t NxNy,
                std::int32_t iActive, const COORDArray& sCOORD, std::span<const float> sGrad,
                std::span<const float> sZCORN, std::span<const std::int32_t> iRanges, std::int32_t nRanges,
                std::int32_t& iRange, bool qCompressed, CornerArray& sCorners, bool& qOK) {
  qOK = sGrad.size() >= sCOORD.values.size() / 6 &&
        cellCorners(i, j, k, Nx, NxNy, iActive, sCOORD, sZCORN, iRanges, nRanges, iRange, qCompressed,
                    sCorners, [&](double below, const float* pillar) {
                      return below * sGrad[static_cast<std::size_t>(pillar - sCOORD.values.data()) / 6];
                    });
}

void GetCellCorners(const CornerCall& call, std::int32_t i, std::int32_t j, std::int32_t k,
                    std::span<float> sRows, bool& qOK) {
  CornerArray corners{};
  std::int32_t iRange = 0;
  const std::int32_t NxNy = call.Nx * call.Ny;
  rcgetc(i, j, k, call.Nx, NxNy, 0, call.sCOORD, call.sZCORN, call.iRanges, call.nRanges, iRange, false,
         corners, qOK);
  if (qOK && iRange == 0) return;
  storeRow(corners,
           rowAt(sRows, i + static_cast<std::int64_t>(call.Nx) * (j - 1) +
                            static_cast<std::int64_t>(NxNy) * (k - 1)),
           qOK);
}

void GetActiveCellCorners(const CornerCall& call, std::int32_t i, std::int32_t j, std::int32_t k,
                          std::int32_t iActive, std::span<float> sRows, bool& qOK) {
  CornerArray corners{};
  std::int32_t iRange = 0;
  rcgetc(i, j, k, call.Nx, call.Nx * call.Ny, iActive, call.sCOORD, call.sZCORN, call.iRanges, call.nRanges,
         iRange, call.qCompressed, corners, qOK);
  if (!qOK || iRange > 0) storeRow(corners, rowAt(sRows, iActive), qOK);
}

void GetActiveCellCornersOpt(const CornerCall& call, std::span<const float> sGrad, std::int32_t i,
                             std::int32_t j, std::int32_t k, std::int32_t iActive, std::span<float> sRows,
                             bool& qOK) {
  CornerArray corners{};
  std::int32_t iRange = 0;
  getCorners(i, j, k, call.Nx, call.Nx * call.Ny, iActive, call.sCOORD, sGrad, call.sZCORN, call.iRanges,
             call.nRanges, iRange, call.qCompressed, corners, qOK);
  if (!qOK || iRange > 0) storeRow(corners, rowAt(sRows, iActive), qOK);
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
    bool qFilled = false;
    getActiveCORNERSArray({Nx, Ny, pillars, sZCORN, iRanges, nRanges, false}, Nz, iACTNUM, rows.values(),
                          qFilled);
    sCorners = std::move(rows);
    return qFilled;
  });
}

void getActiveCORNERSArray(const CornerCall& call, std::int32_t Nz, std::span<const std::int32_t> iACTNUM,
                           std::span<float> sRows, bool& qOK) {
  qOK = true;
  for (std::int32_t r = 1; qOK && r <= call.nRanges; ++r) {
    getReservoirActiveCORNERSArray(call, Nz, r, iACTNUM, sRows, qOK);
  }
}

void getReservoirActiveCORNERSArray(const CornerCall& call, std::int32_t Nz, std::int32_t iRange,
                                    std::span<const std::int32_t> iACTNUM, std::span<float> sRows,
                                    bool& qOK) {
  qOK = false;
  if (call.iRanges.size() < rangeRows * static_cast<std::size_t>(call.nRanges) || iRange < 1 ||
      iRange > call.nRanges)
    return;
  const auto layers = layersOf(call.iRanges, iRange);
  const auto nx = static_cast<std::size_t>(call.Nx);
  std::size_t cell =
      nx * static_cast<std::size_t>(call.Ny) * static_cast<std::size_t>(std::max(layers[0], 1) - 1);
  qOK = true;
  for (std::int32_t k = std::max(layers[0], 1); k <= std::min(layers[1], Nz); ++k) {
    for (std::int32_t j = 1; j <= call.Ny; ++j) {
      for (std::int32_t i = 1; i <= call.Nx; ++i, ++cell) {
        const auto number = cell < iACTNUM.size() ? iACTNUM[cell] : 0;
        if (number > 0) GetActiveCellCorners(call, i, j, k, number, sRows, qOK);
        if (!qOK) return;
      }
    }
  }
}

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

namespace {

/// Rows of the cells of layers [first, last], from 1.
void layerRows(const Hadrick& grid, std::int32_t first, std::int32_t last, bool activeOnly, XYData& sCorners,
               Session& session, const char* routine, bool& qOK) {
  guarded(session, qOK, className, routine, [&] {
    first = std::max(first, 1);
    last = std::min(last, grid.Nz());
    if (!grid.hasGeometry()) return false;
    const std::int32_t perLayer = grid.Nx() * grid.Ny();
    std::int32_t from = perLayer * (first - 1);
    std::int32_t to = first <= last ? perLayer * last : from;
    if (activeOnly) {
      // Numbers of active cells grow with those of the cells, so that those of the layers lie together.
      const auto activeBefore = [&](std::int32_t cells) {
        while (cells > 0 && grid.activeOf(cells) == 0) --cells;
        return cells > 0 ? grid.activeOf(cells) : 0;
      };
      from = activeBefore(from);
      to = activeBefore(to);
    }
    XYData rows(rowItems, static_cast<std::size_t>(to - from), session);
    if (!rows.empty() && activeOnly) grid.activeCorners(from + 1, rows.values());
    if (!rows.empty() && !activeOnly) grid.cellCorners(from + 1, rows.values());
    sCorners = std::move(rows);
    return true;
  });
}

void reservoirRows(const Hadrick& grid, std::int32_t iRange, bool activeOnly, XYData& sCorners,
                   Session& session, const char* routine, bool& qOK) {
  qOK = false;
  if (iRange < 1 || static_cast<std::size_t>(iRange) > grid.reservoirs().size()) return;
  const auto layers = grid.reservoirs()[static_cast<std::size_t>(iRange) - 1];
  layerRows(grid, layers[0], layers[1], activeOnly, sCorners, session, routine, qOK);
}

}  // namespace

void getCORNERSArray_Grid(const Hadrick& grid, XYData& sCorners, Session& session, bool& qOK) {
  layerRows(grid, 1, grid.Nz(), false, sCorners, session, "getCORNERSArray_Grid", qOK);
}

void getActiveCORNERSArray_Grid(const Hadrick& grid, XYData& sCorners, Session& session, bool& qOK) {
  layerRows(grid, 1, grid.Nz(), true, sCorners, session, "getActiveCORNERSArray_Grid", qOK);
}

void getReservoirCORNERSArray_Grid(const Hadrick& grid, std::int32_t iRange, XYData& sCorners,
                                   Session& session, bool& qOK) {
  reservoirRows(grid, iRange, false, sCorners, session, "getReservoirCORNERSArray_Grid", qOK);
}

void getReservoirActiveCORNERSArray_Grid(const Hadrick& grid, std::int32_t iRange, XYData& sCorners,
                                         Session& session, bool& qOK) {
  reservoirRows(grid, iRange, true, sCorners, session, "getReservoirActiveCORNERSArray_Grid", qOK);
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

void processACTNUM(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz, std::vector<std::int32_t>& iA2G,
                   std::span<std::int32_t> iACTNUM, std::int32_t& nActive, bool& qOK) {
  qOK = false;
  nActive = 0;
  const auto cells =
      static_cast<std::size_t>(Nx) * static_cast<std::size_t>(Ny) * static_cast<std::size_t>(Nz);
  if (Nx < 1 || Ny < 1 || Nz < 1 || iACTNUM.size() < cells) return;
  iACTNUM = iACTNUM.first(cells);
  nActive = static_cast<std::int32_t>(std::ranges::count_if(iACTNUM, [](std::int32_t v) { return v > 0; }));
  iA2G.assign(static_cast<std::size_t>(std::max(nActive, 1)), 0);
  std::int32_t n = 0;
  for (std::size_t cell = 0; cell < cells; ++cell) {
    if (iACTNUM[cell] <= 0) continue;
    iA2G[static_cast<std::size_t>(n)] = static_cast<std::int32_t>(cell) + 1;
    iACTNUM[cell] = ++n;
  }
  qOK = true;
}

template <class Value>
void ProcessRADIALNUMTHETA(std::int32_t Nr, std::int32_t nThetaFine, std::int32_t Nz, std::int32_t nThetaFile,
                           std::size_t nItems, std::span<const Value> source, std::vector<Value>& result,
                           bool& qOK) {
  qOK = false;
  if (nThetaFile > nThetaFine) return;
  if (nThetaFile < 1 || nThetaFile == nThetaFine) {
    if (source.size() < nItems) return;
    if (result.size() < nItems) result.resize(nItems);
    std::ranges::copy(source.first(nItems), result.begin());
    qOK = true;
    return;
  }
  if (Nr < 1 || Nz < 1 || nThetaFine % nThetaFile != 0) return;
  const auto nr = static_cast<std::size_t>(Nr);
  const auto sectors = static_cast<std::size_t>(nThetaFile) * static_cast<std::size_t>(Nz);
  const auto ratio = static_cast<std::size_t>(nThetaFine / nThetaFile);
  if (source.size() < nr * sectors) return;
  result.resize(nr * sectors * ratio);
  auto* out = result.data();
  // A layer's sectors follow each other in both arrays, so that layers need no loop of their own.
  for (std::size_t sector = 0; sector < sectors; ++sector) {
    for (std::size_t m = 0; m < ratio; ++m) out = std::copy_n(source.data() + sector * nr, nr, out);
  }
  qOK = true;
}
template void ProcessRADIALNUMTHETA(std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::size_t,
                                    std::span<const float>, std::vector<float>&, bool&);
template void ProcessRADIALNUMTHETA(std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::size_t,
                                    std::span<const std::int32_t>, std::vector<std::int32_t>&, bool&);

}  // namespace lumbarn
