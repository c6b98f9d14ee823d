#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "../shapes/XYData.h"
#include "../support/Export.h"

namespace lumbarn {

/// One connection between cells that are no neighbours.
struct Connection {
  std::int32_t cell1 = 0;  ///< cell numbers, from 1, in natural order
  std::int32_t cell2 = 0;
  std::vector<float> values;  ///< one of each connection array
};

/// Pairs the connection arrays of an INIT file with the cells that they join, which only the grid file states
/// (its NNC1 and NNC2, in the same order). Nothing when the lists differ in length.
LUMBARN_API std::optional<std::vector<Connection>> pairConnections(std::span<const std::int32_t> NNC1,
                                                                   std::span<const std::int32_t> NNC2,
                                                                   const XYData& values);
/// The same; qOK False, with nothing, when the lists differ in length.
inline std::vector<Connection> pairConnections(std::span<const std::int32_t> NNC1,
                                               std::span<const std::int32_t> NNC2, const XYData& values,
                                               bool& qOK) {
  auto pairs = pairConnections(NNC1, NNC2, values);
  qOK = pairs.has_value();
  return std::move(pairs).value_or(std::vector<Connection>());
}

}  // namespace lumbarn
