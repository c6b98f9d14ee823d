// What hosts and people get of a table: as it stands, as a plain table, in physical values.

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../shapes/HeaderLayout.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "qvEclipseDTAB.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseDTAB";

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

}  // namespace

TableShape qvEclipseDTAB::shapeOf(const tTableInfo& table) const {
  const auto size = [&](std::size_t i) { return static_cast<std::size_t>(table.iDimens[i]); };
  const std::size_t sizes = table.iDimens.size();
  const std::size_t inner = sizes == 4 ? size(1) : 1;
  return {table.dValues.size() / size(sizes - 2) / size(sizes - 1) / inner, inner, size(sizes - 1)};
}

/// The values of one table of several, first size fastest, without the size that counts tables. In TAB the
/// rows of one value of an outer index stand together, as files show, so these two sizes change places.
template <class Number>
bool qvEclipseDTAB::oneTable(const tTableInfo& table, std::int32_t iTable,
                             std::vector<Number>& values) const {
  const auto tables = static_cast<std::size_t>(table.iDimens[table.iDimens.size() - 2]);
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

/// The rows of one table that exist, for every view of it.
std::vector<bool> qvEclipseDTAB::rowsOf(const tTableInfo& table, std::int32_t iTable) const {
  std::vector<double> values, keys;
  oneTable(table, iTable, values);
  if (const auto* related = find(relatedTable(table.zTable))) oneTable(*related, iTable, keys);
  const auto* layout = tableLayout(table.zTable);
  return existingRows(values, shapeOf(table), layout && layout->rowsWord != 0, keys);
}

void qvEclipseDTAB::getTable(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                             std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK,
                             [[maybe_unused]] bool qDefault) const {
  guarded(*session_, qOK, className, "getTable", [&] {
    const auto* table = find(zTable);
    if (!table || !oneTable(*table, iTable, dTable)) return false;
    iDimens = table->iDimens;
    iDimens.erase(iDimens.end() - 2);
    nDims = static_cast<std::int32_t>(iDimens.size());
    if (iDimens.size() > 3) return false;
    compressTable(dTable, iDimens, shapeOf(*table), rowsOf(*table, iTable));
    return true;
  });
}

void qvEclipseDTAB::getTable2d(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                               std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK,
                               bool qDefault) const {
  guarded(*session_, qOK, className, "getTable2d", [&] {
    bool qGot = false;
    getTable(zTable, iTable, dTable, iDimens, nDims, qGot, qDefault);
    if (!qGot) return false;
    const std::string name = upper(trim(zTable));
    if (nDims > 2) {
      if (!relatedTable(name).empty()) Produce2DTable(name, iTable, dTable, iDimens, nDims, qGot);
      return qGot;
    }
    const std::size_t difference = qDefault ? 0 : differenceColumn(tableColumns(name));
    if (difference != 0 && std::cmp_less(difference, iDimens[1])) {
      const auto rows = static_cast<std::size_t>(iDimens[0]);
      for (std::size_t i = 0; i < rows; ++i) {
        auto& value = dTable[difference * rows + i];
        value = dTable[compressibility * rows + i] - value;
      }
    }
    return qGot;
  });
}

/// The related table counts as this one's when it has one row for each outer row. Where second sizes agree
/// instead, as once was asked for, its rows are taken as far as they go.
void qvEclipseDTAB::Produce2DTable(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                                   std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK) const {
  guarded(*session_, qOK, className, "Produce2DTable", [&] {
    std::vector<std::string> zList;
    std::int32_t nList = 0, nRelated = 0;
    bool qDone = false;
    GetRelatedTables(zTable, zList, nList, qDone);
    if (nList != 1 || nDims != 3) return true;
    std::vector<float> related;
    std::vector<std::int32_t> iRelated;
    getTable(zList.front(), iTable, related, iRelated, nRelated, qDone);
    if (!qDone || nRelated != 2) return true;
    if (iRelated[1] != iDimens[1] && iRelated[0] != iDimens[0]) return true;
    const auto size = [](const auto& sizes, std::size_t i) { return static_cast<std::size_t>(sizes[i]); };
    const std::size_t outer = size(iDimens, 0), inner = size(iDimens, 1), rows = outer * inner;
    const std::size_t keys = size(iRelated, 1), columns = keys + size(iDimens, 2);
    std::vector<float> plain(rows * columns, static_cast<float>(session_->NullValue));
    for (std::size_t c = 0; c < columns; ++c) {
      for (std::size_t i = 0; i < outer; ++i) {
        auto* block = plain.data() + c * rows + i * inner;
        if (c < keys) {
          if (inner > 0 && i < size(iRelated, 0)) block[0] = related[c * size(iRelated, 0) + i];
          continue;
        }
        for (std::size_t j = 0; j < inner; ++j) block[j] = dTable[((c - keys) * inner + j) * outer + i];
      }
    }
    dTable = std::move(plain);
    iDimens = {static_cast<std::int32_t>(rows), static_cast<std::int32_t>(columns)};
    nDims = 2;
    return true;
  });
}

bool qvEclipseDTAB::fillHeaders(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders) const {
  const std::string name = upper(trim(zTable));
  const auto columns = tableColumns(name);
  const std::size_t before = bHeaders.entries();
  bHeaders.resize(before + columns.size());
  for (std::size_t i = 1; i <= columns.size(); ++i) {
    const auto& column = columns[i - 1];
    const auto label = !column.raw.empty()    ? std::string(column.raw)
                       : !column.name.empty() ? std::string(column.name)
                                              : fmt::format("COLUMN{}", i);
    setAttribute(attributeDataKind, bHeaders, before + i, "INIT");
    setAttribute(attributeMember, bHeaders, before + i, name);
    setAttribute(attributeVariable, bHeaders, before + i, label);
    // The units known here are those of the physical value.
    if (column.raw.empty())
      setAttribute(attributeUnits, bHeaders, before + i, tableUnit(column.quantity, iUnits, iProgram_));
  }
  return !columns.empty();
}

void qvEclipseDTAB::getTableHeaders(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders,
                                    bool& qOK) const {
  guarded(*session_, qOK, className, "getTableHeaders", [&] {
    bHeaders = ByteTable(headerWidth, 0);
    return find(zTable) && fillHeaders(zTable, iUnits, bHeaders);
  });
}

void qvEclipseDTAB::Produce2DHeaders(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders,
                                     bool& qOK) const {
  guarded(*session_, qOK, className, "Produce2DHeaders", [&] {
    const auto related = relatedTable(upper(trim(zTable)));
    bHeaders = ByteTable(headerWidth, 0);
    if (!related.empty() && find(related)) fillHeaders(related, iUnits, bHeaders);
    return find(zTable) && fillHeaders(zTable, iUnits, bHeaders);
  });
}

void qvEclipseDTAB::getTableHeaders2D(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders,
                                      bool& qOK) const {
  Produce2DHeaders(zTable, iUnits, bHeaders, qOK);
}

void qvEclipseDTAB::InvertColumns(std::int32_t iFirst, std::int32_t iSecond, std::int32_t nRows,
                                  std::vector<float>& sTable, std::span<const std::int32_t> iDimens,
                                  bool& qOK) const {
  qOK = false;
  if (iDimens.size() != 2 || iDimens[0] < 0 || iDimens[1] < 0) return;
  const auto rows = static_cast<std::size_t>(iDimens[0]);
  if (rows * static_cast<std::size_t>(iDimens[1]) > sTable.size()) return;
  if (iFirst < 1 || iSecond < 1 || iFirst > iDimens[1] || iSecond > iDimens[1]) return;
  const auto first = (static_cast<std::size_t>(iFirst) - 1) * rows;
  const auto second = (static_cast<std::size_t>(iSecond) - 1) * rows;
  for (std::size_t i = 0; i < std::min(rows, static_cast<std::size_t>(std::max(nRows, 0))); ++i)
    invertPair(sTable[first + i], sTable[second + i], session_->NullValue);
  qOK = true;
}

/// Makes the values of one row physical; single blank values, and what would follow from them, become the
/// null value.
void qvEclipseDTAB::makePhysical(std::string_view zTable, std::span<double> row) const {
  const double null = session_->NullValue;
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

PhysicalTable qvEclipseDTAB::physicalTable(std::string_view zTable, std::int32_t iTable, std::int32_t iUnits,
                                           bool& qOK) const {
  PhysicalTable result;
  guarded(*session_, qOK, className, "physicalTable", [&] {
    const auto* table = find(zTable);
    std::vector<double> values, keys;
    if (!table || !oneTable(*table, iTable, values)) return false;
    const auto columns = tableColumns(table->zTable);
    if (columns.empty() || std::cmp_not_equal(columns.size(), table->iDimens.back())) return false;
    const auto* related = find(relatedTable(table->zTable));
    if (related && !oneTable(*related, iTable, keys)) return false;
    result.name = table->zTable;
    result.number = iTable;
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
      makePhysical(table->zTable, row);
      auto target = result.columns.begin();
      if (related) {
        (target++)->values.push_back(i < keys.size() ? keys[i] : session_->NullValue);
      }
      for (std::size_t c = 0; c < row.size(); ++c) {
        if (!columns[c].name.empty()) (target++)->values.push_back(row[c]);
      }
    }
    return true;
  });
  return result;
}

}  // namespace lumbarn
