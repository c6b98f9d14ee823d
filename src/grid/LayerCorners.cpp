#include "LayerCorners.h"

#include <algorithm>

#include "Hadrick.h"

namespace lumbarn {

std::optional<XYData> cornersOfLayers(const Hadrick& grid, std::int32_t first, std::int32_t last,
                                      bool activeOnly, Session& session) {
  first = std::max(first, 1);
  last = std::min(last, grid.Nz());
  if (!grid.hasGeometry()) return std::nullopt;
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
  XYData rows(Hadrick::rowItems, static_cast<std::size_t>(to - from), session);
  if (!rows.empty() && activeOnly) grid.activeCorners(from + 1, rows.values());
  if (!rows.empty() && !activeOnly) grid.cellCorners(from + 1, rows.values());
  return rows;
}

std::optional<XYData> cornersOfReservoir(const Hadrick& grid, std::int32_t iRange, bool activeOnly,
                                         Session& session) {
  if (iRange < 1 || static_cast<std::size_t>(iRange) > grid.reservoirs().size()) return std::nullopt;
  const auto layers = grid.reservoirs()[static_cast<std::size_t>(iRange) - 1];
  return cornersOfLayers(grid, layers[0], layers[1], activeOnly, session);
}

}  // namespace lumbarn
