#pragma once

#include <cstdint>
#include <string_view>

namespace lumbarn {

/// Unit text of an array of a restart or INIT file by its name, upper case, and the file's unit system: 1
/// metric, 2 field, 3 laboratory. Empty for other systems and for names that have no unit text.
std::string_view arrayUnit(std::string_view zName, std::int32_t iUnits);

}  // namespace lumbarn
