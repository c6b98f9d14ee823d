#include "TestRecords.h"

#include <cmath>

#include "../support/Fault.h"

namespace lumbarn {

std::int32_t rounded(float value) {
  const float whole = std::nearbyint(value);
  constexpr float beyond = 2147483648.0F;
  if (!(whole >= -beyond && whole < beyond)) throw Fault(FaultNumber::Overflow);
  return static_cast<std::int32_t>(whole);
}

}  // namespace lumbarn
