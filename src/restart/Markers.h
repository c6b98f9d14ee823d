#pragma once

#include <cstddef>
#include <cstdint>

#include "../support/Session.h"
#include "MarkerBlock.h"
#include "MarkerTable.h"

namespace lumbarn {

/// What a marker method asks for. Methods 1, 2, 3 are the byte forms; 4, 5, 6 the same in the long form; any
/// other number is method 1 (and long from 4 on). Form 2 needs the extended well records.
struct MarkerMethod {
  std::int32_t iForm = 3;
  bool qLong = true;

  explicit MarkerMethod(std::int32_t iMethod);
};

/// All rows of a grid whose IWEL was read. Throws Fault 9 for connections that are missing from their table,
/// 7 when the table would be too large.
MarkerTable markerTable(const RESTARTGRID& grid, bool qMarkers, const Session& session);

}  // namespace lumbarn
