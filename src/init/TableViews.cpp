// The values of a table: as they are stored, as a plain table, in physical units.

#include <algorithm>
#include <utility>

#include "../support/Text.h"
#include "SimulationTables.h"

namespace lumbarn {

namespace {

/// The order of the two steps matters: the second value becomes a viscosity by the first as it still is.
template <class Number>
void invertPair(Number& first, Number& second, double null) {
  second = second == 0 ? static_cast<Number>(null) : first / second;
  first = first == 0 ? static_cast<Number>(null) : 1 / first;
}

/// Columns that hold 1/B and 1/(B mu), from 0; both 0 in a table that has none.
struct InversePair {
  std::size_t volume = 0;
  std::size_t viscosity = 0;
};
InversePair inversePair(std::span<const TableColumn> columns) {
  InversePair pair;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].raw.starts_with("1/("))
      pair.viscosity = i;
    else if (columns[i].raw.starts_with("1/"))
      pair.volume = i;
  }
  return pair;
}

/// The column, from 0, that holds the difference of compressibility and viscosibility; 0 in a table without.
std::size_t differenceColumn(std::span<const TableColumn> columns) {
  const auto found = std::ranges::find_if(
      columns, [](const TableColumn& column) { return column.raw.find('-') != std::string_view::npos; });
  return found == columns.end() ? 0 : static_cast<std::size_t>(found - columns.begin());
}
constexpr std::size_t compressibility = 2;

TableShape shapeOf(const tTableInfo& table) {
  const auto size = [&](std::size_t i) { return static_cast<std::size_t>(table.iDimens[i]); };
  const std::size_t sizes = table.iDimens.size();
  const std::size_t inner = sizes == 4 ? size(1) : 1;
  return {table.dValues.size() / size(sizes - 2) / size(sizes - 1) / inner, inner, size(sizes - 1)};
}

/// The values of one table of several, first size fastest, without the size that counts tables. In TAB the
/// rows of one value of an outer index stand together, as files show, so these two sizes change places.
template <class Number>
bool oneTable(const tTableInfo& table, std::int32_t iTable, std::vector<Number>& values) {
  const auto tables = static_cast<std::size_t>(table.count());
  if (iTable < 1 || static_cast<std::size_t>(iTable) > tables) return false;
  const TableShape shape = shapeOf(table);
  const std::size_t block = shape.rows();
  values.resize(block * shape.columns);
  for (std::size_t c = 0; c < shape.columns; ++c) {
    const auto* from = table.dValues.data() + (c * tables + static_cast<std::size_t>(iTable) - 1) * block;
    for (std::size_t i = 0; i < shape.outer; ++i) {
      for (std::size_t j = 0; j < shape.inner; ++j)
        values[c * block + j * shape.outer + i] = static_cast<Number>(from[i * shape.inner + j]);
    }
  }
  return true;
}

/// Makes the values of one row physical; single blank values, and what would follow from them, become the
/// null value.
void makePhysical(std::string_view zTable, std::span<double> row, double null) {
  const auto columns = tableColumns(zTable);
  const auto pair = inversePair(columns);
  if (pair.viscosity > 0) {
    auto& volume = row[pair.volume];
    auto& viscosity = row[pair.viscosity];
    const bool known = !isBlank(volume), bothKnown = known && !isBlank(viscosity);
    double unused = 0;
    if (known) invertPair(volume, bothKnown ? viscosity : unused, null);
    if (!bothKnown) viscosity = null;
  }
  if (const auto difference = differenceColumn(columns); difference != 0) {
    const bool bothKnown = !isBlank(row[compressibility]) && !isBlank(row[difference]);
    row[difference] = bothKnown ? row[compressibility] - row[difference] : null;
  }
  for (auto& value : row) value = isBlank(value) ? null : value;
}

}  // namespace

/// The rows of one table that exist, for every view of it.
std::vector<bool> SimulationTables::rowsOf(const tTableInfo& table, std::int32_t iTable) const {
  std::vector<double> values, keys;
  oneTable(table, iTable, values);
  if (const auto* related = find(relatedTable(table.zTable))) oneTable(*related, iTable, keys);
  const auto* layout = tableLayout(table.zTable);
  return existingRows(values, shapeOf(table), layout && layout->rowsWord != 0, keys);
}

std::optional<TableValues> SimulationTables::storedTable(std::string_view zTable, std::int32_t iTable) const {
  const auto* table = find(zTable);
  TableValues stored;
  if (!table || !oneTable(*table, iTable, stored.values)) return std::nullopt;
  stored.sizes = table->iDimens;
  stored.sizes.erase(stored.sizes.end() - 2);
  if (stored.sizes.size() <= 3)
    compressTable(stored.values, stored.sizes, shapeOf(*table), rowsOf(*table, iTable));
  return stored;
}

std::optional<TableValues> SimulationTables::plainTable(std::string_view zTable, std::int32_t iTable,
                                                        bool physicalLast) const {
  auto table = storedTable(zTable, iTable);
  if (!table) return table;
  if (table->sizes.size() > 2) return withOuterColumn(zTable, iTable, std::move(*table));
  const std::size_t difference = physicalLast ? differenceColumn(tableColumns(upper(trim(zTable)))) : 0;
  if (difference == 0 || !std::cmp_less(difference, table->sizes[1])) return table;
  const auto rows = static_cast<std::size_t>(table->sizes[0]);
  for (std::size_t i = 0; i < rows; ++i) {
    auto& value = table->values[difference * rows + i];
    value = table->values[compressibility * rows + i] - value;
  }
  return table;
}

/// The related table counts as this one's when it has one row for each outer row. Where second sizes agree
/// instead, as once was asked for, its rows are taken as far as they go.
TableValues SimulationTables::withOuterColumn(std::string_view zTable, std::int32_t iTable,
                                              TableValues stored) const {
  const auto& sizes = stored.sizes;
  if (sizes.size() != 3) return stored;
  const auto related = storedTable(relatedTable(upper(trim(zTable))), iTable);
  if (!related || related->sizes.size() != 2) return stored;
  if (related->sizes[1] != sizes[1] && related->sizes[0] != sizes[0]) return stored;
  const auto size = [](const auto& all, std::size_t i) { return static_cast<std::size_t>(all[i]); };
  const std::size_t outer = size(sizes, 0), inner = size(sizes, 1), rows = outer * inner;
  const std::size_t keys = size(related->sizes, 1), columns = keys + size(sizes, 2);
  std::vector<float> plain(rows * columns, static_cast<float>(session_->NullValue));
  for (std::size_t c = 0; c < columns; ++c) {
    for (std::size_t i = 0; i < outer; ++i) {
      auto* block = plain.data() + c * rows + i * inner;
      if (c < keys) {
        if (inner > 0 && i < size(related->sizes, 0))
          block[0] = related->values[c * size(related->sizes, 0) + i];
        continue;
      }
      for (std::size_t j = 0; j < inner; ++j) block[j] = stored.values[((c - keys) * inner + j) * outer + i];
    }
  }
  return {std::move(plain), {static_cast<std::int32_t>(rows), static_cast<std::int32_t>(columns)}};
}

std::optional<PhysicalTable> SimulationTables::physicalTable(std::string_view zTable, std::int32_t iTable,
                                                             std::int32_t iUnits) const {
  const auto* table = find(zTable);
  std::vector<double> values, keys;
  if (!table || !oneTable(*table, iTable, values)) return std::nullopt;
  const auto columns = tableColumns(table->zTable);
  if (columns.empty() || std::cmp_not_equal(columns.size(), table->iDimens.back())) return std::nullopt;
  const auto* related = find(relatedTable(table->zTable));
  if (related && !oneTable(*related, iTable, keys)) return std::nullopt;
  PhysicalTable result{.name = table->zTable, .number = iTable, .columns = {}};
  const auto addColumn = [&](const TableColumn& column) {
    if (column.name.empty()) return;
    result.columns.push_back(
        {std::string(column.name), std::string(tableUnit(column.quantity, iUnits, iProgram_)), {}});
  };
  if (related) addColumn(tableColumns(related->zTable).front());
  for (const auto& column : columns) addColumn(column);

  const TableShape shape = shapeOf(*table);
  const auto exists = rowsOf(*table, iTable);
  std::vector<double> row(columns.size());
  for (std::size_t k = 0; k < shape.rows(); ++k) {
    const std::size_t i = k / shape.inner, at = k % shape.inner * shape.outer + i;
    if (!exists[at]) continue;
    for (std::size_t c = 0; c < row.size(); ++c) row[c] = values[c * shape.rows() + at];
    makePhysical(table->zTable, row, session_->NullValue);
    auto target = result.columns.begin();
    if (related) {
      (target++)->values.push_back(i < keys.size() ? keys[i] : session_->NullValue);
    }
    for (std::size_t c = 0; c < row.size(); ++c) {
      if (!columns[c].name.empty()) (target++)->values.push_back(row[c]);
    }
  }
  return result;
}

bool invertColumns(std::int32_t iFirst, std::int32_t iSecond, std::int32_t nRows, std::span<float> values,
                   std::span<const std::int32_t> sizes, double null) {
  if (sizes.size() != 2 || sizes[0] < 0 || sizes[1] < 0) return false;
  const auto rows = static_cast<std::size_t>(sizes[0]);
  if (rows * static_cast<std::size_t>(sizes[1]) > values.size()) return false;
  if (iFirst < 1 || iSecond < 1 || iFirst > sizes[1] || iSecond > sizes[1]) return false;
  const auto first = (static_cast<std::size_t>(iFirst) - 1) * rows;
  const auto second = (static_cast<std::size_t>(iSecond) - 1) * rows;
  for (std::size_t i = 0; i < std::min(rows, static_cast<std::size_t>(std::max(nRows, 0))); ++i)
    invertPair(values[first + i], values[second + i], null);
  return true;
}

}  // namespace lumbarn
