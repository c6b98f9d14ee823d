#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "CellGeometry.h"
#include "Hadrick.h"

namespace lumbarn {

enum class CellChoice { Active, All };

/// The volumes of consecutive cells from a number on, from 1, which must be there (Fault 9). Signed as
/// `cellVolume` has it; 0 for a cell without corners. Of a grid with pillars and depths they are worked out
/// in double, so that large map coordinates cost no digits, as they do in corners that are rounded to
/// singles.
void cellVolumes(const Hadrick& grid, std::int32_t iFirstCell, std::span<double> volumes);

/// The box round all cells, those with coordinates that are not finite left aside; empty when there is none.
Box gridExtent(const Hadrick& grid, CellChoice choice = CellChoice::Active);

/// Calls `visit` with the number, from 1, and the corners of each cell in order.
template <class Visit>
void forEachCell(const Hadrick& grid, CellChoice choice, Visit visit) {
  constexpr std::int32_t together = 256;  // rows that stay in the nearest cache
  const bool active = choice == CellChoice::Active;
  const std::int32_t count = active ? grid.nActive() : grid.nCells();
  std::vector<float> rows(Hadrick::rowItems * together);
  for (std::int32_t first = 0; first < count; first += together) {
    const auto here = static_cast<std::size_t>(std::min(together, count - first));
    const auto part = std::span(rows).first(Hadrick::rowItems * here);
    active ? grid.activeCorners(first + 1, part) : grid.cellCorners(first + 1, part);
    for (std::size_t i = 0; i < here; ++i) {
      const std::int32_t number = first + 1 + static_cast<std::int32_t>(i);
      visit(active ? grid.cellOf(number) : number,
            CellCorners(part.data() + Hadrick::rowItems * i, Hadrick::rowItems));
    }
  }
}

}  // namespace lumbarn
