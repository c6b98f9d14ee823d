#pragma once

#include <cstdint>
#include <string_view>

namespace lumbarn {

/// Unit systems by number: 1 metric, 2 field, 3 laboratory. Words may be blank padded and in any case.

/// From the word of a deck, "METRIC", "FIELD" or "LAB"; 2 for any other.
std::int32_t UnitSystem(std::string_view zName);
/// From a unit of length: "METRES", "FEET" or "CENTIMETRES", the first and the last also in their spelling
/// with "ERS"; -1 for any other.
std::int32_t WhichUnitSystem(std::string_view zName);

}  // namespace lumbarn
