#include "StepViews.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include <fmt/format.h>

#include "../shapes/HeaderLayout.h"
#include "../support/Fault.h"
#include "../support/Text.h"
#include "../vocabulary/Mnemonics.h"

namespace lumbarn {

namespace {

constexpr float noValue = -999;

/// Smallest and largest value that is one.
std::pair<float, float> range(std::span<const float> values) {
  float least = noValue;
  float most = noValue;
  for (const float value : values) {
    if (value == noValue || std::isnan(value)) continue;
    if (least == noValue || value < least) least = value;
    if (most == noValue || value > most) most = value;
  }
  return {least, most};
}

/// One end of the range of each array.
template <float std::pair<float, float>::*end>
std::vector<float> ends(const ArrayTable& arrays) {
  if (!arrays.hasValues()) return {-1.0F};
  std::vector<float> all;
  for (std::int32_t i = 1; i <= arrays.nVectors(); ++i) all.push_back(range(arrays.column(i)).*end);
  return all;
}

}  // namespace

VectorDetails vectorDetails(const RESTARTGRID& grid) {
  return {vectorNames(grid), rowOfFOD(grid, 1), rowOfFOD(grid, 2),  rowOfFOD(grid, 3),
          rowOfFOD(grid, 4), vectorTimes(grid), vectorMinima(grid), vectorMaxima(grid)};
}

std::vector<std::string> vectorNames(const RESTARTGRID& grid) {
  std::vector<std::string> names;
  for (const KeptArray& array : grid.arrays.arrays()) names.push_back(array.name);
  return names;
}

std::vector<std::int32_t> rowOfFOD(const RESTARTGRID& grid, std::size_t iRow) {
  const auto table = grid.arrays.iFOD();
  std::vector<std::int32_t> row;
  for (std::size_t i = 1; i <= table.columns(); ++i) row.push_back(table(iRow, i));
  return row;
}

std::vector<float> vectorMinima(const RESTARTGRID& grid) {
  return ends<&std::pair<float, float>::first>(grid.arrays);
}

std::vector<float> vectorMaxima(const RESTARTGRID& grid) {
  return ends<&std::pair<float, float>::second>(grid.arrays);
}

std::vector<double> vectorTimes(const RESTARTGRID& grid) {
  return std::vector<double>(grid.arrays.arrays().size(), grid.dTime);
}

XYData vectorTable(const RESTARTGRID& grid, Session& session) {
  const auto columns = static_cast<std::size_t>(grid.arrays.nVectors());
  if (!grid.arrays.hasValues()) {
    XYData none(1, columns, session);
    std::ranges::fill(none.values(), 0.0F);
    none(1, 1) = -1;
    return none;
  }
  const auto rows = static_cast<std::size_t>(std::max(grid.nActive, 0));
  // Deliberate, as hosts know it: the table has one row for each active cell and takes its values from the
  // start of the block, so arrays of all cells run on from column to column. `ArrayTable::column` has each
  // array as it is.
  const auto all = grid.arrays.values();
  if (rows * columns > all.size()) throw Fault(FaultNumber::Subscript);
  XYData copy(rows, columns, session);
  std::ranges::copy(all.first(rows * columns), copy.values().begin());
  return copy;
}

ByteTable vectorHeaders(const StepData& step) {
  const RESTARTGRID& from = step.grid();
  ByteTable headers(headerWidth, from.arrays.arrays().size());
  std::size_t i = 0;
  for (const KeptArray& array : from.arrays.arrays()) {
    ++i;
    setAttribute(attributeDataKind, headers, i, "SOLUTION");
    setAttribute(attributeSource, headers, i, trim(from.Origin));
    setAttribute(attributeIndex, headers, i, fmt::format("{}", step.iSeqnum));
    if (step.nGrids > 1) setAttribute(attributeLGRName, headers, i, from.GridName);
    setAttribute(attributeUnits, headers, i, array.unit);
    setAttribute(attributeVariable, headers, i, array.name);
    std::string number;
    setAttribute(attributeVerbose, headers, i, getEclipseLongDescription("SOLUTION", array.name, number));
  }
  return headers;
}

}  // namespace lumbarn
