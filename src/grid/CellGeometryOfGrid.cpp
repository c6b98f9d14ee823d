#include "CellGeometryOfGrid.h"

#include <array>

namespace lumbarn {

void cellVolumes(const Hadrick& grid, std::int32_t iFirstCell, std::span<double> volumes) {
  constexpr std::size_t together = 256;  // rows that stay in the nearest cache
  std::array<float, Hadrick::rowItems * together> rows;
  for (std::size_t done = 0; done < volumes.size(); done += together) {
    const std::size_t count = std::min(together, volumes.size() - done);
    const auto part = std::span(rows).first(Hadrick::rowItems * count);
    grid.cellCorners(iFirstCell + static_cast<std::int32_t>(done), part);
    cellVolumes(part, volumes.subspan(done, count));
  }
}

Box gridExtent(const Hadrick& grid, CellChoice choice) {
  Box all;
  forEachCell(grid, choice, [&](std::int32_t, CellCorners corners) { all.add(cellBox(corners)); });
  return all;
}

}  // namespace lumbarn
