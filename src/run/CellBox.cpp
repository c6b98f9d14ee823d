#include "CellBox.h"

#include <fmt/format.h>

#include "../support/Text.h"
#include "RunState.h"

namespace lumbarn {

CellBox parseCells(std::string_view text) {
  const auto number = [&](std::string_view part) {
    const auto value = toInteger(trim(part));
    if (value && *value >= 1 && *value <= std::numeric_limits<std::int32_t>::max())
      return static_cast<std::int32_t>(*value);
    throwRefused({}, fmt::format("a cell is given as 12,8,4 and a box as 1:16,8,1:5, not \"{}\"", text));
  };
  const auto parts = split(text, ',');
  if (parts.size() != 3) number({});
  CellBox box;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::string_view part = parts[axis];
    const auto colon = part.find(':');
    box.from[axis] = number(part.substr(0, colon));
    box.to[axis] = colon == part.npos ? box.from[axis] : number(part.substr(colon + 1));
    if (box.to[axis] < box.from[axis]) number({});
  }
  return box;
}

void requireInside(const CellBox& box, const std::array<std::int32_t, 3>& size, const std::string& path,
                   const std::string& grid) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (box.from[axis] >= 1 && box.to[axis] >= box.from[axis] && box.to[axis] <= size[axis]) continue;
    const auto& [i, j, k] = box.to[axis] > size[axis] ? box.to : box.from;
    throwRefused(path, fmt::format("cell {},{},{} is not in grid {}, which has {} x {} x {} cells", i, j, k,
                                   grid, size[0], size[1], size[2]));
  }
}

}  // namespace lumbarn
