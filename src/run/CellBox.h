#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "Selections.h"

namespace lumbarn {

/// Throws Error BadRequest, with the path and the name of the grid, unless all cells of a box are in a grid
/// of this size.
void requireInside(const CellBox& box, const std::array<std::int32_t, 3>& size, const std::string& path,
                   const std::string& grid);

}  // namespace lumbarn
