#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "../frame/Column.h"
#include "../support/Export.h"

namespace lumbarn {

class Sink;

/// Values of an array of cells in place: those of a grid or a box of it.
struct Dense {
  Type type{};                          ///< Int32, Float32 or Float64
  std::array<std::int64_t, 3> shape{};  ///< {nk, nj, ni}, i runs fastest
  std::shared_ptr<const void> data;     ///< values() of them, all components of a cell together
  std::shared_ptr<const std::uint8_t>
      active;  ///< a bit for each cell, the lowest first; null: all are active
  std::string unit;
  std::int32_t components = 1;  ///< values of each cell: 3 of a point, 24 of the corners

  std::int64_t cells() const { return shape[0] * shape[1] * shape[2]; }
  std::int64_t values() const { return cells() * components; }
};

/// Writes an array of cells as a keyword of a data deck, equal values in a row as `n*v`, 0 for cells that are
/// not active. Throws Error BadRequest for an array of several components.
LUMBARN_API void writeGrdecl(const Dense& array, std::string_view name, Sink& sink);

}  // namespace lumbarn
