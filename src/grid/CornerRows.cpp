#include "CornerRows.h"

#include <algorithm>
#include <cmath>
#include <vector>

#if defined(__x86_64__) && defined(__GNUC__)
#define LUMBARN_X86
#include <immintrin.h>
#endif

namespace lumbarn {

namespace {

constexpr std::size_t rowItems = 24;
constexpr double flatPillar = 1e-20;  // height up to which a pillar has no direction
/// Layers that share the pillars worked out for one row of columns; few, so that rows are still written
/// nearly in order of memory.
constexpr std::size_t layersAtOnce = 4;

/// The four pillars of a column of cells, in the order of a cell's corners.
struct Column {
  double x[4], y[4], z[4];     // top points
  double dx[4], dy[4], dz[4];  // from there to the bottom points; dz 0 for a pillar without height
};

void setPillar(Column& column, std::size_t p, const float* pillar, const MapTransform* transform) {
  double top[2] = {pillar[0], pillar[1]};
  double bottom[2] = {pillar[3], pillar[4]};
  if (transform) {
    const auto mapTop = (*transform)(top[0], top[1]);
    const auto mapBottom = (*transform)(bottom[0], bottom[1]);
    std::copy(mapTop.begin(), mapTop.end(), top);
    std::copy(mapBottom.begin(), mapBottom.end(), bottom);
  }
  const double dz = static_cast<double>(pillar[5]) - pillar[2];
  column.x[p] = top[0];
  column.y[p] = top[1];
  column.z[p] = pillar[2];
  column.dx[p] = bottom[0] - top[0];
  column.dy[p] = bottom[1] - top[1];
  column.dz[p] = std::abs(dz) > flatPillar ? dz : 0;
}

/// Cells [iFirst, iEnd) of a line along I.
struct Place {
  std::size_t j = 0, k = 0, iFirst = 0, iEnd = 0;
};

/// One line of cells: where its depths are and where the rows of its cells go.
class Line {
 public:
  Line(const CornerSource& source, const RowRange& range, const Place& place, float* rows)
      : range_(range), rows_(rows), compressed_(source.compressed) {
    const auto nx = static_cast<std::size_t>(source.Nx);
    const auto plane = 4 * nx * static_cast<std::size_t>(source.Ny);
    first_ = (place.k * static_cast<std::size_t>(source.Ny) + place.j) * nx;
    numbers_ = source.numbers.empty() ? nullptr : source.numbers.data() + first_;
    depths[0] = source.zcorn.data();
    if (compressed_) return;
    depths[0] += 2 * place.k * plane + 4 * place.j * nx;
    depths[1] = depths[0] + 2 * nx;
    depths[2] = depths[0] + plane;
    depths[3] = depths[1] + plane;
  }

  /// The row of a cell, and the cell's place in a compressed ZCORN. Null when it is not wanted; a cell
  /// without corners gets zeros.
  float* row(std::size_t i, std::size_t& active) const {
    std::size_t row = first_ + i;
    active = row;
    if (numbers_) {
      if (numbers_[i] <= 0 && (range_.activeOnly || compressed_)) {
        if (!range_.activeOnly) std::fill_n(rows_ + rowItems * (row - range_.first), rowItems, 0.0F);
        return nullptr;
      }
      active = static_cast<std::size_t>(numbers_[i]) - 1;
      if (range_.activeOnly) row = active;
    }
    return rows_ + rowItems * (row - range_.first);
  }

  /// Lines of depths in the file, (J, K) = (0,0), (1,0), (0,1), (1,1); of a compressed ZCORN its start alone.
  const float* depths[4] = {};

 private:
  const RowRange& range_;
  float* rows_;
  bool compressed_;
  std::size_t first_ = 0;
  const std::int32_t* numbers_ = nullptr;
};

/// The depths of a cell in the order of a row: from the lines of the file, or, compressed, from its own eight
/// in walk order, K fastest and I slowest.
template <bool compressed>
void readDepths(const Line& line, std::size_t i, std::size_t active, float (&z)[8]) {
  const float* own = line.depths[0] + 8 * active;
  for (std::size_t n = 0; n < 8; ++n) {
    z[n] = compressed ? own[4 * (n & 1) + (n & 2) + (n >> 2)] : line.depths[n >> 1][2 * i + (n & 1)];
  }
}

template <bool compressed>
void writePlain(const Line& line, const Place& place, const Column* columns) {
  for (std::size_t i = place.iFirst; i < place.iEnd; ++i) {
    std::size_t active = 0;
    float* out = line.row(i, active);
    if (!out) continue;
    const Column& column = columns[i - place.iFirst];
    float z[8];
    readDepths<compressed>(line, i, active, z);
    for (std::size_t n = 0; n < 8; ++n) {
      const std::size_t p = n & 3;
      const double t = column.dz[p] != 0 ? (z[n] - column.z[p]) / column.dz[p] : 0;
      out[3 * n] = static_cast<float>(column.x[p] + t * column.dx[p]);
      out[3 * n + 1] = static_cast<float>(column.y[p] + t * column.dy[p]);
      out[3 * n + 2] = z[n];
    }
  }
}

#ifdef LUMBARN_X86
bool hasWide() { return __builtin_cpu_supports("avx2") != 0; }

__attribute__((target("avx2"))) inline __m128 twoPairs(const float* low, const float* high) {
  const __m128d pair = _mm_load_sd(reinterpret_cast<const double*>(low));
  return _mm_castpd_ps(_mm_loadh_pd(pair, reinterpret_cast<const double*>(high)));
}

/// Four corners at once: the same arithmetic as above, value for value.
__attribute__((target("avx2"))) inline void writeHalf(const Column& column, __m128 z, float* out) {
  const __m256d dz = _mm256_loadu_pd(column.dz);
  const __m256d below = _mm256_sub_pd(_mm256_cvtps_pd(z), _mm256_loadu_pd(column.z));
  const __m256d tall = _mm256_cmp_pd(dz, _mm256_setzero_pd(), _CMP_NEQ_UQ);
  const __m256d t = _mm256_and_pd(_mm256_div_pd(below, dz), tall);
  const __m128 x =
      _mm256_cvtpd_ps(_mm256_add_pd(_mm256_loadu_pd(column.x), _mm256_mul_pd(t, _mm256_loadu_pd(column.dx))));
  const __m128 y =
      _mm256_cvtpd_ps(_mm256_add_pd(_mm256_loadu_pd(column.y), _mm256_mul_pd(t, _mm256_loadu_pd(column.dy))));
  const __m128 front = _mm_unpacklo_ps(x, y);
  const __m128 back = _mm_unpackhi_ps(x, y);
  _mm_storeu_ps(out, _mm_shuffle_ps(front, _mm_shuffle_ps(z, x, 0x50), 0x84));
  _mm_storeu_ps(out + 4, _mm_shuffle_ps(_mm_shuffle_ps(y, z, 0x55), back, 0x48));
  _mm_storeu_ps(out + 8, _mm_shuffle_ps(_mm_shuffle_ps(z, x, 0xFA), _mm_shuffle_ps(y, z, 0xFF), 0x88));
}

template <bool compressed>
__attribute__((target("avx2"))) void writeWide(const Line& line, const Place& place, const Column* columns) {
  for (std::size_t i = place.iFirst; i < place.iEnd; ++i) {
    std::size_t active = 0;
    float* out = line.row(i, active);
    if (!out) continue;
    __m128 top;
    __m128 bottom;
    if constexpr (compressed) {
      const __m128 left = _mm_loadu_ps(line.depths[0] + 8 * active);
      const __m128 right = _mm_loadu_ps(line.depths[0] + 8 * active + 4);
      const __m128 tops = _mm_shuffle_ps(left, right, 0x88);
      const __m128 bottoms = _mm_shuffle_ps(left, right, 0xDD);
      top = _mm_shuffle_ps(tops, tops, 0xD8);
      bottom = _mm_shuffle_ps(bottoms, bottoms, 0xD8);
    } else {
      top = twoPairs(line.depths[0] + 2 * i, line.depths[1] + 2 * i);
      bottom = twoPairs(line.depths[2] + 2 * i, line.depths[3] + 2 * i);
    }
    writeHalf(columns[i - place.iFirst], top, out);
    writeHalf(columns[i - place.iFirst], bottom, out + 12);
  }
}
#else
bool hasWide() { return false; }
template <bool compressed>
void writeWide(const Line&, const Place&, const Column*) {}
#endif

using LineWriter = void (*)(const Line&, const Place&, const Column*);

LineWriter lineWriter(bool compressed) {
  if (compressed) return hasWide() ? &writeWide<true> : &writePlain<true>;
  return hasWide() ? &writeWide<false> : &writePlain<false>;
}

/// Those from number iFirst along I.
void makeColumns(const CornerSource& source, std::size_t j, std::size_t iFirst, std::size_t reservoir,
                 const MapTransform* transform, std::span<Column> columns) {
  const auto line = 6 * (static_cast<std::size_t>(source.Nx) + 1);
  const float* first =
      source.coord.data() + line * ((static_cast<std::size_t>(source.Ny) + 1) * reservoir + j);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    for (std::size_t p = 0; p < 4; ++p) {
      setPillar(columns[i], p, first + (p >> 1) * line + 6 * (iFirst + i + (p & 1)), transform);
    }
  }
}

/// Rows of cells in a layer of no reservoir.
void writeZeros(const Line& line, const Place& place) {
  for (std::size_t i = place.iFirst; i < place.iEnd; ++i) {
    std::size_t active = 0;
    if (float* out = line.row(i, active)) std::fill_n(out, rowItems, 0.0F);
  }
}

/// Cells [first, end) of a line along I that lie in the range, as numbers along I.
Place placeIn(const RowRange& range, std::size_t j, std::size_t k, std::size_t ny, std::size_t nx) {
  const auto line = (k * ny + j) * nx;
  Place place{j, k, 0, 0};
  if (range.lastCell < line || range.firstCell >= line + nx) return place;
  place.iFirst = range.firstCell > line ? range.firstCell - line : 0;
  place.iEnd = std::min(nx, range.lastCell - line + 1);
  return place;
}

}  // namespace

std::optional<MapTransform> mapTransform(const std::array<double, 6>& mapAxes, double gridUnit) {
  const double yx = mapAxes[0] - mapAxes[2];
  const double yy = mapAxes[1] - mapAxes[3];
  const double xx = mapAxes[4] - mapAxes[2];
  const double xy = mapAxes[5] - mapAxes[3];
  const double lengthX = std::hypot(xx, xy);
  const double lengthY = std::hypot(yx, yy);
  if (!(lengthX > 0) || !(lengthY > 0) || !std::isfinite(lengthX) || !std::isfinite(lengthY)) return {};
  if (xx * yy == xy * yx) return {};
  return MapTransform{mapAxes[2],
                      mapAxes[3],
                      gridUnit * xx / lengthX,
                      gridUnit * xy / lengthX,
                      gridUnit * yx / lengthY,
                      gridUnit * yy / lengthY};
}

void writeCornerRows(const CornerSource& source, const RowRange& range, const MapTransform* transform,
                     float* rows) {
  if (range.count == 0) return;
  const auto nx = static_cast<std::size_t>(source.Nx);
  const auto ny = static_cast<std::size_t>(source.Ny);
  const auto write = lineWriter(source.compressed);
  // Some cells of one line, or lines of one layer, need not cost what all of the grid do.
  const std::size_t firstLine = range.firstCell / nx, lastLine = range.lastCell / nx;
  const bool oneLine = firstLine == lastLine;
  const std::size_t iFirst = oneLine ? range.firstCell % nx : 0;
  const std::size_t iEnd = oneLine ? range.lastCell % nx + 1 : nx;
  const std::size_t lastLayer = lastLine / ny;
  const bool oneLayer = firstLine / ny == lastLayer;
  const std::size_t jFirst = oneLayer ? firstLine % ny : 0;
  const std::size_t jEnd = oneLayer ? lastLine % ny + 1 : ny;
  std::vector<Column> columns(iEnd - iFirst);
  for (std::size_t k = firstLine / ny; k <= lastLayer;) {
    // Layers of one reservoir share their pillars.
    const std::int32_t reservoir = source.reservoirOfLayer[k];
    std::size_t end = k + 1;
    while (end <= lastLayer && end - k < layersAtOnce && source.reservoirOfLayer[end] == reservoir) ++end;
    for (std::size_t j = jFirst; j < jEnd; ++j) {
      bool made = false;
      for (std::size_t layer = k; layer < end; ++layer) {
        const Place place = placeIn(range, j, layer, ny, nx);
        if (place.iFirst >= place.iEnd) continue;
        if (reservoir >= 0 && !made) {
          makeColumns(source, j, iFirst, static_cast<std::size_t>(reservoir), transform, columns);
          made = true;
        }
        const Line line(source, range, place, rows);
        if (reservoir >= 0) {
          write(line, place, &columns[place.iFirst - iFirst]);
        } else {
          writeZeros(line, place);
        }
      }
    }
    k = end;
  }
}

}  // namespace lumbarn
