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

/// Whether a grid has markers: its IWEL was read, and its header states what they are made of.
bool hasMarkers(const RESTARTGRID& grid);
/// All rows of a grid that has markers. Throws Fault 9 for connections that are missing from their table,
/// 7 when the table would be too large.
MarkerTable markerTable(const RESTARTGRID& grid, bool qMarkers, const Session& session);

/// Wells of a grid, and connections of all of them.
struct WellCounts {
  std::int32_t nWells = 0;
  std::int32_t nPerfs = 0;
};
/// Throws Fault 6 for more connections than 32 bits count.
WellCounts wellCounts(const RESTARTGRID& grid);

}  // namespace lumbarn
