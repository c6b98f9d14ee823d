#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace lumbarn {

/// Names and units of the 31 vectors of a segment, in the order of the columns of a segment table. zUnits is
/// the array of texts that a well test was written with, from which units are taken by their place and
/// trimmed: the 4th is length, the 5th pressure, the 8th liquid rate, the 9th gas rate, the 11th velocity.
/// Rates scaled by length have both with "/" between. A vector without a unit, or with one that a shorter
/// array does not have, has an empty text. "SEGGOR" has none here: the unit of a test's gas-oil ratio is
/// worked out by the test.
struct SegmentHeaders {
  std::vector<std::string> zNames;
  std::vector<std::string> zUnits;
};
SegmentHeaders segmentHeaders(std::span<const std::string> zUnits);
/// Calling form of the same. The names do not depend on the units, so qOK is True.
void setSEGHeaders(std::span<const std::string> zUnits, std::vector<std::string>& zNames,
                   std::vector<std::string>& zUnitsOut, std::int32_t& nNames, bool& qOK);

}  // namespace lumbarn
