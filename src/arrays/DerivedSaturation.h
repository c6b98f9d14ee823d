#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

#include "../index/RestartIndex.h"

namespace lumbarn {

/// The saturation that a restart step does not store: 1 less the others, as simulators omit one of them.
struct DerivedSaturation {
  std::string_view name;
  bool water = false;  ///< less SWAT
  bool gas = false;    ///< less SGAS

  static float remaining(float one, float other = 0) { return std::clamp(1.0F - one - other, 0.0F, 1.0F); }
};

/// By the phases of the run (INTEHEAD word 15) and the saturations that are stored; nothing when none is
/// missing or it does not follow from the others.
std::optional<DerivedSaturation> derivedSaturation(std::int32_t iPhases, bool hasOil, bool hasWater,
                                                   bool hasGas);

/// SWAT or SGAS of a step, if it is that of a phase of the run; null when there is none.
const IndexEntry* storedSaturation(const IndexStep& step, std::string_view grid, std::string_view name);

/// The array of a grid in a step that is derived, as an entry without a position in the file.
std::optional<IndexEntry> derivedArray(const IndexStep& step, std::string_view grid);

}  // namespace lumbarn
