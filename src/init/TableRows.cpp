#include "TableRows.h"

#include <algorithm>

namespace lumbarn {

std::vector<bool> existingRows(std::span<const double> values, const TableShape& shape, bool keyed,
                               std::span<const double> outerKeys) {
  std::vector<bool> exists(shape.rows());
  const std::size_t deciding = keyed ? std::min<std::size_t>(shape.columns, 1) : shape.columns;
  for (std::size_t row = 0; row < exists.size(); ++row) {
    const std::size_t outer = row % shape.outer;
    if (outer < outerKeys.size() && isBlank(outerKeys[outer])) continue;
    for (std::size_t c = 0; c < deciding; ++c) {
      if (!isBlank(values[c * shape.rows() + row])) exists[row] = true;
    }
  }
  return exists;
}

void compressTable(std::vector<float>& dTable, std::vector<std::int32_t>& iDimens, const TableShape& shape,
                   const std::vector<bool>& exists) {
  std::vector<bool> keepOuter(shape.outer), keepInner(shape.inner);
  for (std::size_t row = 0; row < exists.size(); ++row) {
    if (exists[row]) keepOuter[row % shape.outer] = keepInner[row / shape.outer] = true;
  }
  std::size_t kept = 0;
  for (std::size_t at = 0; at < dTable.size(); ++at) {
    if (keepOuter[at % shape.outer] && keepInner[at / shape.outer % shape.inner]) dTable[kept++] = dTable[at];
  }
  dTable.resize(kept);
  iDimens[0] = static_cast<std::int32_t>(std::ranges::count(keepOuter, true));
  if (iDimens.size() > 2) iDimens[1] = static_cast<std::int32_t>(std::ranges::count(keepInner, true));
}

}  // namespace lumbarn
