#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumbarn {

/// The simulator fills what it does not use of a table with values of this size and beyond, of either sign.
constexpr double blankLimit = 1e20;
template <class Number>
bool isBlank(Number value) {
  return std::abs(static_cast<double>(value)) >= blankLimit;
}

/// Drops the rows of a table in which every value is blank; a row that has one value stays whole. The values
/// stand with the first size fastest, the last size is that of the columns, and iDimens takes the new sizes.
/// In a table of three sizes, a value of the first or the second size goes when all that it holds is blank.
/// qOK False, with nothing changed, when the values are not as many as the sizes say.
void compressTable(std::vector<float>& dTable, std::vector<std::int32_t>& iDimens, bool& qOK);
/// The same for a plain table with limits of the caller: a value is blank at or above sHigh and at or below
/// sLow.
void compressTableCheckAllLines(std::vector<float>& dTable, std::vector<std::int32_t>& iDimens, double sHigh,
                                double sLow, bool& qOK);

}  // namespace lumbarn
