#pragma once

#include <cstdint>

namespace lumbarn {

/// The phase of a well from words 7 (type) and 9 (control) of its IWEL block: 1 oil, 2 water, 3 gas, 4 the
/// fourth control of a producer; -1 for other words.
std::int32_t EclipseWellPhase(std::int32_t iType, std::int32_t iControl);

/// The host's number of a well type: producer 4, oil injector 6, water injector 2, gas injector 1; -1 for any
/// other word 7.
std::int32_t EclipseToQVWellType(std::int32_t iType);

}  // namespace lumbarn
