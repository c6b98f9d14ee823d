#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "../support/Export.h"
#include "../vocabulary/Units.h"

namespace lumbarn {

constexpr int tableDimsWords = 48;  ///< words of TABDIMS that have a meaning here

/// Which words of TABDIMS, from 1, tell where a table stands in TAB and how large it is. 0: the table has no
/// such word; it then has one row.
struct TableLayout {
  std::string_view name;
  std::string_view parent;  ///< the table whose outer index this one holds
  int startWord = 0;
  int outerWord = 0;  ///< values of the outer index
  int rowsWord = 0;
  int tablesWord = 0;
};
LUMBARN_API std::span<const TableLayout> tableLayouts();
LUMBARN_API const TableLayout* tableLayout(std::string_view zTable);

/// Columns that are taken of a table. TAB may hold more behind them: slopes of the columns before.
LUMBARN_API std::int32_t GRAFTableColumns(std::string_view zTable);

/// One column as TAB holds it and as a person knows it.
struct TableColumn {
  std::string_view name;  ///< "BO"; empty for a column that is not shown
  std::string_view raw;   ///< what TAB holds, when that is something else: "1/BO"
  Quantity quantity = Quantity::None;
};
/// The simulator with this code (INTEHEAD word 95) stores pressures and solution gas-oil ratios of TAB in
/// metric units whatever the units of the run.
inline constexpr std::int32_t simulatorOfMetricTables = -1;
/// The unit of a column in a file of this unit system and simulator code.
LUMBARN_API std::string_view tableUnit(Quantity quantity, std::int32_t iUnits, std::int32_t iProgram);

/// The columns of a table, `GRAFTableColumns` of them.
LUMBARN_API std::span<const TableColumn> tableColumns(std::string_view zTable);

/// "PVTG" names "PGAS", "PVTO" and "PVCO" name "RS": the table that holds the values of the outer index.
/// Empty for others.
LUMBARN_API std::string_view relatedTable(std::string_view zTable);

}  // namespace lumbarn
