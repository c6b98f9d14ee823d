#include "Markers.h"

#include <algorithm>
#include <string>
#include <utility>

#include "MarkerRows.h"
#include "StepWells.h"

namespace lumbarn {
namespace {

class TableFiller {
 public:
  explicit TableFiller(MarkerTable& table) : table_(table) {}

  void row(MarkerKind kind) {
    ++row_;
    table_(row_, 12) = std::string(nameOf(kind));
  }
  void integer(std::size_t item, std::int32_t value) { table_(row_, item) = value; }
  void single(std::size_t item, float value) { table_(row_, item) = double{value}; }
  void text(std::size_t item, std::string value) { table_(row_, item) = std::move(value); }

 private:
  MarkerTable& table_;
  std::size_t row_ = 0;
};

std::size_t roomFor(const RESTARTGRID& grid) {
  const auto slots = static_cast<std::size_t>(std::max(grid.nCWMAX, 0)) + 1;
  return slots * grid.iWELL.rows();
}

}  // namespace

MarkerMethod::MarkerMethod(std::int32_t iMethod) : iForm(1), qLong(iMethod >= 4) {
  if (iMethod == 2 || iMethod == 3) iForm = iMethod;
  if (iMethod == 5 || iMethod == 6) iForm = iMethod - 3;
}

bool hasMarkers(const RESTARTGRID& grid) { return hasWellData(grid) && grid.qIWEL; }

MarkerTable markerTable(const RESTARTGRID& grid, bool qMarkers, const Session& session) {
  const std::size_t used = MarkerCounts(grid).rows();
  session.checkMemory(used * MarkerTable::nItems * sizeof(Variant));
  MarkerTable table(used, roomFor(grid));
  TableFiller filler(table);
  MarkerRows(grid, qMarkers, filler).visit();
  return table;
}

WellCounts wellCounts(const RESTARTGRID& grid) {
  std::int64_t perfs = grid.nConnections;
  if (perfs < 1) {
    perfs = 0;
    for (std::size_t i = 1; i <= grid.iWELL.rows(); ++i) perfs += grid.iWELL(i, 5);
  }
  if (!std::in_range<std::int32_t>(perfs)) throw Fault(FaultNumber::Overflow);
  return {grid.nWells, static_cast<std::int32_t>(perfs)};
}

}  // namespace lumbarn
