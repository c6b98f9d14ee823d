#include "MarkerRows.h"

#include <limits>

namespace lumbarn {

MarkerCounts::MarkerCounts(const RESTARTGRID& grid) : wells(grid.iWELL.rows()) {
  for (std::size_t iWell = 1; iWell <= wells; ++iWell) perfs += ConnectionRows(grid, iWell).count();
  if (rows() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
    throw Fault(FaultNumber::Overflow);
}

}  // namespace lumbarn
