#include "CornerRows.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lumbarn {

namespace {

#if defined(__x86_64__) && defined(__GNUC__)
#define LUMBARN_WIDE __attribute__((target("avx2")))
bool hasWide() { return __builtin_cpu_supports("avx2") != 0; }
#else
#define LUMBARN_WIDE
bool hasWide() { return false; }
#endif

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

/// The depths of one row of cells: of all, by the four lines of the file that hold them.
struct PlainDepths {
  const float* line[4];  // (J, K) = (0,0), (1,0), (0,1), (1,1)

  PlainDepths(const CornerSource& source, std::size_t j, std::size_t k) {
    const auto nx = static_cast<std::size_t>(source.Nx);
    const auto plane = 4 * nx * static_cast<std::size_t>(source.Ny);
    line[0] = source.zcorn.data() + 2 * k * plane + 4 * j * nx;
    line[1] = line[0] + 2 * nx;
    line[2] = line[0] + plane;
    line[3] = line[1] + plane;
  }
  void operator()(std::size_t i, std::size_t, float (&z)[8]) const {
    for (std::size_t n = 0; n < 4; ++n) {
      z[2 * n] = line[n][2 * i];
      z[2 * n + 1] = line[n][2 * i + 1];
    }
  }
};

/// Of active cells only, each with its eight in walk order, K fastest and I slowest.
struct PackedDepths {
  const float* zcorn;

  PackedDepths(const CornerSource& source, std::size_t, std::size_t) : zcorn(source.zcorn.data()) {}
  void operator()(std::size_t, std::size_t active, float (&z)[8]) const {
    const float* from = zcorn + 8 * active;
    for (std::size_t n = 0; n < 8; ++n) z[n] = from[4 * (n & 1) + (n & 2) + (n >> 2)];
  }
};

struct Place {
  std::size_t j = 0, k = 0, iFirst = 0, iEnd = 0;
};

template <class Depths>
[[gnu::always_inline]] inline void writeRow(const CornerSource& source, const RowRange& range,
                                            const Place& place, const Column* columns, float* rows) {
  const auto nx = static_cast<std::size_t>(source.Nx);
  const auto firstCell = (place.k * static_cast<std::size_t>(source.Ny) + place.j) * nx;
  const std::int32_t* numbers = source.numbers.empty() ? nullptr : source.numbers.data() + firstCell;
  const Depths depths(source, place.j, place.k);
  for (std::size_t i = place.iFirst; i < place.iEnd; ++i) {
    std::size_t row = firstCell + i;
    std::size_t active = row;
    if (numbers) {
      if (numbers[i] <= 0 && (range.activeOnly || source.compressed)) {
        if (!range.activeOnly) std::fill_n(rows + rowItems * (row - range.first), rowItems, 0.0F);
        continue;
      }
      active = static_cast<std::size_t>(numbers[i]) - 1;
      if (range.activeOnly) row = active;
    }
    float z[8];
    depths(i, active, z);
    const Column& column = columns[i];
    float x[8];
    float y[8];
    for (std::size_t n = 0; n < 8; ++n) {
      const std::size_t p = n & 3;
      const double below = z[n] - column.z[p];
      const double t = column.dz[p] != 0 ? below / column.dz[p] : 0;
      x[n] = static_cast<float>(column.x[p] + t * column.dx[p]);
      y[n] = static_cast<float>(column.y[p] + t * column.dy[p]);
    }
    float* out = rows + rowItems * (row - range.first);
    for (std::size_t n = 0; n < 8; ++n) {
      out[3 * n] = x[n];
      out[3 * n + 1] = y[n];
      out[3 * n + 2] = z[n];
    }
  }
}

using RowWriter = void (*)(const CornerSource&, const RowRange&, const Place&, const Column*, float*);

// The same twice: compiled for any machine, and for those with wide registers.
template <class Depths>
void writePlain(const CornerSource& source, const RowRange& range, const Place& place, const Column* columns,
                float* rows) {
  writeRow<Depths>(source, range, place, columns, rows);
}
template <class Depths>
LUMBARN_WIDE void writeWide(const CornerSource& source, const RowRange& range, const Place& place,
                            const Column* columns, float* rows) {
  writeRow<Depths>(source, range, place, columns, rows);
}

RowWriter rowWriter(bool compressed) {
  if (compressed) return hasWide() ? &writeWide<PackedDepths> : &writePlain<PackedDepths>;
  return hasWide() ? &writeWide<PlainDepths> : &writePlain<PlainDepths>;
}

void makeColumns(const CornerSource& source, std::size_t j, std::size_t reservoir,
                 const MapTransform* transform, std::span<Column> columns) {
  const auto line = 6 * (static_cast<std::size_t>(source.Nx) + 1);
  const float* first =
      source.coord.data() + line * ((static_cast<std::size_t>(source.Ny) + 1) * reservoir + j);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    for (std::size_t p = 0; p < 4; ++p) {
      setPillar(columns[i], p, first + (p >> 1) * line + 6 * (i + (p & 1)), transform);
    }
  }
}

/// Rows of cells in a layer of no reservoir.
void writeZeros(const CornerSource& source, const RowRange& range, const Place& place, float* rows) {
  const auto line =
      (place.k * static_cast<std::size_t>(source.Ny) + place.j) * static_cast<std::size_t>(source.Nx);
  for (std::size_t cell = line + place.iFirst; cell < line + place.iEnd; ++cell) {
    std::size_t row = cell;
    if (range.activeOnly && !source.numbers.empty()) {
      if (source.numbers[cell] <= 0) continue;
      row = static_cast<std::size_t>(source.numbers[cell]) - 1;
    }
    std::fill_n(rows + rowItems * (row - range.first), rowItems, 0.0F);
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
  const auto write = rowWriter(source.compressed);
  std::vector<Column> columns(nx);
  const std::size_t lastLayer = range.lastCell / (nx * ny);
  for (std::size_t k = range.firstCell / (nx * ny); k <= lastLayer;) {
    // Layers of one reservoir share their pillars.
    const std::int32_t reservoir = source.reservoirOfLayer[k];
    std::size_t end = k + 1;
    while (end <= lastLayer && end - k < layersAtOnce && source.reservoirOfLayer[end] == reservoir) ++end;
    for (std::size_t j = 0; j < ny; ++j) {
      bool made = false;
      for (std::size_t layer = k; layer < end; ++layer) {
        const Place place = placeIn(range, j, layer, ny, nx);
        if (place.iFirst >= place.iEnd) continue;
        if (reservoir >= 0 && !made) {
          makeColumns(source, j, static_cast<std::size_t>(reservoir), transform, columns);
          made = true;
        }
        if (reservoir >= 0) {
          write(source, range, place, columns.data(), rows);
        } else {
          writeZeros(source, range, place, rows);
        }
      }
    }
    k = end;
  }
}

}  // namespace lumbarn
