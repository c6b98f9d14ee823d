#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "Hadrick.h"

namespace lumbarn {

/// The cells of the parent, sorted, that a local grid replaces: its host cells or, where the file does not
/// give them, the box of its position in the parent. Empty when the file gives neither.
std::vector<std::int32_t> hostsOf(const Hadrick& parent, const Hadrick& local);

/// Which cells of grid iGrid, from 1, a local grid of the file replaces: 1 for such a cell, 0 for others;
/// empty when there are none. They are active in their grid, and occupy the same space as the cells that
/// refine them.
std::vector<std::uint8_t> refinedCells(std::span<const std::shared_ptr<Hadrick>> grids, std::int32_t iGrid);

/// The number of active cells among them.
std::int32_t countRefined(const Hadrick& grid, std::span<const std::uint8_t> refined);

/// The porosity system of a cell: 1 for matrix, and for all cells of a grid with one system; 2 for fracture,
/// the lower half of the layers of a grid with two.
inline std::int32_t systemOf(const Hadrick& grid, std::int32_t iCell) {
  return grid.iDualPorosity >= 1 && iCell > grid.nCells() / 2 ? 2 : 1;
}

}  // namespace lumbarn
