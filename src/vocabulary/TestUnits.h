#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "../support/Export.h"

namespace lumbarn {

/// Positions of texts in the WELLETC record of a well test, from 1.
enum class WelletcText : std::uint8_t {
  None = 0,
  Time = 1,
  Well = 2,
  Grid = 3,
  Length = 4,
  Pressure = 5,
  WellType = 7,
  LiquidRate = 8,
  GasRate = 9,
  ReservoirRate = 10,
  Velocity = 11,
  Viscosity = 13,
};

/// A vector of a well test, and which texts of WELLETC have its unit.
struct TestVector {
  std::string_view name;
  WelletcText unit = WelletcText::None;
  WelletcText perUnit = WelletcText::None;  ///< of rates per length
};

/// The vectors of a segment, in the order of the columns of a segment table.
LUMBARN_API extern const std::array<TestVector, 31> segmentVectors;

/// The vector of a connection or segment with this name; null for any other name.
LUMBARN_API const TestVector* testVector(std::string_view name);

/// Unit of a vector, from the texts of WELLETC: `text(i)` returns the trimmed text at a position, empty for
/// one that the record does not have. Rates per length have both units with "/" between. Empty for a vector
/// without unit, and where WELLETC lacks a text.
template <class Text>
std::string unitText(const TestVector& vector, Text text) {
  std::string unit(text(vector.unit));
  if (vector.perUnit == WelletcText::None) return unit;
  const std::string_view per = text(vector.perUnit);
  if (unit.empty() || per.empty()) return {};
  return unit.append("/").append(per);
}

}  // namespace lumbarn
