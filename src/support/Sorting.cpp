#include "Sorting.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "Fault.h"

namespace lumbarn {

namespace {

/// An unsigned number that has the order of the value.
std::uint32_t rankOf(float value) {
  constexpr std::uint32_t sign = 0x80000000;
  if (std::isnan(value)) return std::numeric_limits<std::uint32_t>::max();
  const auto bits = std::bit_cast<std::uint32_t>(value == 0 ? 0.0F : value);
  return bits & sign ? ~bits : bits | sign;
}

}  // namespace

std::vector<std::int32_t> sortPositions(std::span<const float> values) {
  if (values.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
    throw Fault(FaultNumber::Overflow);
  // With the position below the rank no two keys are equal, so that a plain sort keeps the given order.
  std::vector<std::uint64_t> keys(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) keys[i] = std::uint64_t{rankOf(values[i])} << 32 | (i + 1);
  std::ranges::sort(keys);
  std::vector<std::int32_t> positions(keys.size());
  std::ranges::transform(keys, positions.begin(), [](std::uint64_t key) {
    return static_cast<std::int32_t>(key & std::numeric_limits<std::uint32_t>::max());
  });
  return positions;
}

}  // namespace lumbarn
