#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "../shapes/XYData.h"

namespace lumbarn {

/// One connection between cells that are no neighbours.
struct Connection {
  std::int32_t cell1 = 0;  ///< cell numbers, from 1, in natural order
  std::int32_t cell2 = 0;
  std::vector<float> values;  ///< one of each connection array
};

/// Pairs the connection arrays of an INIT file (`GetNNCData`) with the cells that they join, which only the
/// grid file tells (its NNC1 and NNC2, in the same order). qOK False, with nothing, when the lists are not of
/// one length.
std::vector<Connection> pairConnections(std::span<const std::int32_t> NNC1,
                                        std::span<const std::int32_t> NNC2, const XYData& values, bool& qOK);

}  // namespace lumbarn
