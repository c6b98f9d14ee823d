#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

/// The simulator fills what it does not use of a table with a multiple of 1E20, of either sign.
constexpr double blankLimit = 1e20;
template <class Number>
bool isBlank(Number value) {
  return std::abs(static_cast<double>(value)) >= blankLimit;
}

/// The values of one table: outer rows fastest, then inner rows (one where there is no outer index), then
/// columns.
struct TableShape {
  std::size_t outer = 0;
  std::size_t inner = 1;
  std::size_t columns = 0;
  std::size_t rows() const { return outer * inner; }
};

/// Which rows of a table exist. Writers leave the rows that they do not use with a blank in the first column
/// only, while the other columns repeat the last value of the table, so the first column decides: a row
/// without a saturation or pressure is not a row. `keyed` False is for a table that has one row of its own
/// for each region, as PVTW or DENSITY: any of its values may be missing, and the row with it only if all
/// are. `outerKeys` are the values of an outer index, if it has one: a blank there takes the rows with it.
LUMBARN_API std::vector<bool> existingRows(std::span<const double> values, const TableShape& shape,
                                           bool keyed, std::span<const double> outerKeys);

/// Drops the rows that do not exist; iDimens (rows and columns, or outer rows, rows and columns) takes the
/// new sizes. In a table with an outer index an outer or inner row goes when nothing of it exists.
LUMBARN_API void compressTable(std::vector<float>& dTable, std::vector<std::int32_t>& iDimens,
                               const TableShape& shape, const std::vector<bool>& exists);

}  // namespace lumbarn
