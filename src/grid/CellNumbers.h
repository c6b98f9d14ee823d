#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

/// The active cells of a grid, from 1.
struct CellNumbers {
  std::vector<std::int32_t> cells;  ///< the cell of each active number; one entry at least
  std::int32_t count = 0;
};
/// Numbers active cells, those above 0, I fastest and K slowest. `activity` takes the numbers; inactive cells
/// keep their values. Nothing when there are fewer values than cells.
LUMBARN_API std::optional<CellNumbers> numberActiveCells(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz,
                                                         std::span<std::int32_t> activity);

/// Spreads the values of a radial grid whose file has nThetaFile angles over nThetaFine. With nThetaFile
/// below 1 or the same, nItems values are copied. The first nItems of the result are written, or Nr *
/// nThetaFine * Nz when spread. False when the file has more angles or a count that does not divide the
/// grid's. Instances: float, std::int32_t.
template <class Value>
LUMBARN_API bool spreadOverAngles(std::int32_t Nr, std::int32_t nThetaFine, std::int32_t Nz,
                                  std::int32_t nThetaFile, std::size_t nItems, std::span<const Value> source,
                                  std::vector<Value>& result);

}  // namespace lumbarn
