#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace lumbarn {

/// Positions, from 1, of the values in the order of increasing value. Equal values keep the order in which
/// they are given, -0 and 0 being equal; values that are not numbers come last, in their given order.
/// Throws Fault 6 for more values than a 32-bit position can tell apart.
std::vector<std::int32_t> sortPositions(std::span<const float> values);

}  // namespace lumbarn
