#include "MarkerRows.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Markers.h"

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

MarkerCounts::MarkerCounts(const RESTARTGRID& grid) : wells(grid.iWELL.rows()) {
  for (std::size_t iWell = 1; iWell <= wells; ++iWell) perfs += ConnectionRows(grid, iWell).count();
  if (rows() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
    throw Fault(FaultNumber::Overflow);
}

MarkerMethod::MarkerMethod(std::int32_t iMethod) : iForm(1), qLong(iMethod >= 4) {
  if (iMethod == 2 || iMethod == 3) iForm = iMethod;
  if (iMethod == 5 || iMethod == 6) iForm = iMethod - 3;
}

MarkerTable markerTable(const RESTARTGRID& grid, bool qMarkers, const Session& session) {
  const std::size_t used = MarkerCounts(grid).rows();
  session.checkMemory(used * MarkerTable::nItems * sizeof(Variant));
  MarkerTable table(used, roomFor(grid));
  TableFiller filler(table);
  MarkerRows(grid, qMarkers, filler).visit();
  return table;
}

}  // namespace lumbarn
