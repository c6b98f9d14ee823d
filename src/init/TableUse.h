#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "TableLayout.h"

namespace lumbarn {

/// The flags of a run that decide which tables it has.
struct TableProperties {
  bool Brine = false;
  bool CompressedVE = false;
  bool DissolvedGas = false;
  bool Polymer = false;
  bool ReversibleRockCompaction = false;
  bool RockCompaction = false;
  bool further = false;
  bool VapourisedOil = false;
  bool VerticalEquilibrium = false;
  /// False when the file has no LOGIHEAD or one that is all false, as some writers leave it: where the tables
  /// begin then decides.
  bool known = true;
};

/// A table as TABDIMS describes it.
struct TableBlock {
  std::string_view name;
  std::string_view parent;
  std::int32_t iStart = 0;            ///< in TAB, from 1
  std::vector<std::int32_t> iDimens;  ///< rows, tables, columns; with an outer index that one in front
  std::size_t count = 0;              ///< values; `tooMany` for sizes that no TAB can have
  bool allOnes = false;               ///< all its words are 1, with which some writers fill unused words
};
inline constexpr std::size_t tooMany = std::numeric_limits<std::size_t>::max();
/// The number of values of a table; `tooMany` for negative sizes and products that overflow.
LUMBARN_API std::size_t tableSize(std::span<const std::int32_t> iDimens);

/// The tables of a run that are in use, in the order of the list of tables. `words` are those of TABDIMS, and
/// `tabLength` is the length of TAB.
///
/// The description of a table that is not in use is no different from any other: it keeps its dimensions and
/// begins at word 1 of TAB. A table at word 1 that extends into one that begins elsewhere is not in use. Of
/// those that remain the longest that lies in TAB owns the position; of several of that length the one whose
/// words are not all 1.
LUMBARN_API std::vector<TableBlock> tablesInUse(std::span<const std::int32_t> words, std::int32_t nPhases,
                                                const TableProperties& properties, std::size_t tabLength);

/// The phases of a run.
struct Phases {
  bool oil = false;
  bool water = false;
  bool gas = false;
};
/// From their bits: 1 oil, 2 water, 4 gas. None for any value outside 1..7.
LUMBARN_API Phases phasesOf(std::int32_t nPhases);
/// The same; qOK False for a value outside 1..7.
LUMBARN_API void EclipseFluids(std::int32_t nPhases, bool& Oil, bool& Water, bool& Gas, bool& qOK);

}  // namespace lumbarn
