#pragma once

#include <cstdint>
#include <string_view>

namespace lumbarn {

/// Reads one number at the start of a text, as simulators write them: `0.1E+01`, `0.1D+01`, `0.1234-101` (a
/// three-digit exponent without its letter), fields that touch (`0.5-0.25`), `****` for a number too wide for
/// its field (not a number). Gives the characters taken, 0 when there is no number, or it does not fit the
/// type. Rounded to nearest.
std::size_t parseNumber(std::string_view text, float& value);
std::size_t parseNumber(std::string_view text, double& value);
std::size_t parseNumber(std::string_view text, std::int32_t& value);

}  // namespace lumbarn
