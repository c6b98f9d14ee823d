#include "TestRecords.h"

#include <cmath>

#include "../support/Fault.h"
#include "../support/Text.h"

namespace lumbarn {

std::string_view TextArray::at(std::size_t i) const {
  if (i < 1 || i > size()) throw Fault(FaultNumber::Subscript);
  return trim(std::string_view(bytes).substr((i - 1) * width, width));
}

std::string_view TextArray::textOf(std::size_t i) const {
  return i >= 1 && i <= size() ? at(i) : std::string_view{};
}

std::int32_t rounded(float value) {
  const float whole = std::nearbyint(value);
  constexpr float beyond = 2147483648.0F;
  if (!(whole >= -beyond && whole < beyond)) throw Fault(FaultNumber::Overflow);
  return static_cast<std::int32_t>(whole);
}

}  // namespace lumbarn
