#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../shapes/ByteTable.h"
#include "../support/Session.h"
#include "TableLayout.h"

namespace lumbarn {

/// Phases of a run from their bits: 1 oil, 2 water, 4 gas. Any value outside 1..7 sets none: qOK False.
void EclipseFluids(std::int32_t nPhases, bool& Oil, bool& Water, bool& Gas, bool& qOK);

/// One table of TAB: all its numbers in one block.
struct tTableInfo {
  std::string zTable;
  std::int32_t iStart = 0;  ///< in TAB, from 1
  std::string zParent;
  std::vector<std::int32_t> iDimens;  ///< rows, tables, columns; with an outer index that one in front
  std::int32_t nDims = 0;
  std::vector<double> dValues;  ///< as they stand in TAB
};

/// A table as a person knows it: named columns in the units of the run, physical values, rows that the
/// simulator left blank dropped, single blank values as the session's null value.
struct PhysicalTable {
  struct Column {
    std::string name;   ///< "BO"
    std::string units;  ///< "RB/STB"; empty for a number without dimension
    std::vector<double> values;
  };
  std::string name;
  std::int32_t number = 0;  ///< from 1
  std::vector<Column> columns;
  /// The table whose place in TAB this one shares, when the words that say so are likely not in use: the
  /// values are then that table's, not this one's.
  std::string overlaps;

  std::size_t rows() const { return columns.empty() ? 0 : columns.front().values.size(); }
};

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
};

/// The saturation, PVT, rock, density and equilibration tables of an INIT file, from its records TABDIMS and
/// TAB. Table numbers, starts and words count from 1; names are compared trimmed and in upper case.
///
/// In TAB a column of a table stands whole, one table after the other, and one column of all tables after the
/// other. Where a table has an outer index, the rows of one of its values stand together: files have it so.
/// Formation volume factors and viscosities stand as reciprocals there; `getTable` gives them as they stand,
/// `physicalTable` as they are meant.
class qvEclipseDTAB {
 public:
  explicit qvEclipseDTAB(Session& session = Session::process()) : session_(&session) {}

  std::string FileName;                 ///< goes into diagnoses
  std::optional<std::uint64_t> offset;  ///< of TABDIMS in the file, likewise

  // --- Building

  /// Takes the words. Those behind the end of a record that is shorter than 48 words are 0, and qOK is False:
  /// the tables that the words before describe can be had all the same.
  void processTABDIMS(std::span<const std::int32_t> iTABDIMS, bool& qOK);
  void addDTAB(std::vector<double> dTAB, bool& qOK);
  void setPhases(std::int32_t nPhases) { iPhases_ = nPhases; }
  void setTableProperties(const TableProperties& properties) { properties_ = properties; }
  const TableProperties& tableProperties() const { return properties_; }
  /// Builds the list. Success with nothing in it when there was no TABDIMS. A table that does not lie in TAB
  /// ends the building: qOK False, a diagnosis says which, and the tables taken before stay.
  void processTables(bool& qOK);
  /// Takes one table; iDimens are its sizes as in `tTableInfo`. A start below 1 adds nothing, which is no
  /// failure.
  void addTable(std::string_view zTable, std::int32_t iStart, std::string_view zParent,
                std::span<const std::int32_t> iDimens, bool& qOK);
  void GetTABDIMS(std::vector<std::int32_t>& iTABDIMS) const;
  /// Forgets all tables and words.
  void clear();

  // --- Asking

  bool qTABDIMS() const { return qTABDIMS_; }
  std::int32_t nTables() const { return static_cast<std::int32_t>(tables_.size()); }
  const std::vector<tTableInfo>& tables() const { return tables_; }
  void getTableNames(std::vector<std::string>& zTables, std::int32_t& nTables) const;
  std::int32_t getTableIndex(std::string_view zTable) const;  ///< 0 when it is not there
  std::int32_t getNumberTables(std::string_view zTable) const;
  /// Sizes as in `tTableInfo`.
  void getTableProperties(std::string_view zTable, std::vector<std::int32_t>& iDimens, std::int32_t& nDims,
                          bool& qOK) const;
  void getAllTableProperties(std::vector<std::string>& zTables, std::vector<std::string>& zParents,
                             std::vector<std::int32_t>& nEach, bool& qOK) const;
  /// Largest counts met in TABDIMS.
  std::int32_t nSaturationTables() const { return nSaturationTables_; }
  std::int32_t nSaturationRows() const { return nSaturationRows_; }
  std::int32_t nPVTTables() const { return nPVTTables_; }
  std::int32_t nPVTOuterRows() const { return nPVTOuterRows_; }
  std::int32_t nPVTRows() const { return nPVTRows_; }
  /// The table in whose place a table stands whose words in TABDIMS are all 1, as some writers fill words
  /// that are not in use; empty for every other table.
  std::string overlaps(std::string_view zTable) const;

  // --- Fetching

  /// One table as TAB has it, blank rows dropped: iDimens (and nDims of them) is rows and columns, with an
  /// outer index outer rows, rows and columns; dTable has the first size fastest. qDefault has no effect
  /// here.
  void getTable(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK,
                bool qDefault = true) const;
  /// The same as a plain table: one with an outer index and a table that holds its values gets a row for each
  /// outer and inner row, and the value of the outer index in a column in front, in the first row of each
  /// block; the null value stands in its other rows. Without qDefault the fifth column of "PVTW" is made
  /// physical.
  void getTable2d(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                  std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK,
                  bool qDefault = true) const;
  void Produce2DTable(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                      std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK) const;
  /// One header of 233 bytes for each column: "INIT", the table as member, the column, its unit.
  void getTableHeaders(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders, bool& qOK) const;
  void getTableHeaders2D(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders, bool& qOK) const;
  /// Adds the headers of the columns that `Produce2DTable` adds.
  void Produce2DHeaders(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders, bool& qOK) const;
  void GetRelatedTables(std::string_view zTable, std::vector<std::string>& zList, std::int32_t& nList,
                        bool& qOK) const;
  /// Turns the columns 1/B and 1/(B mu) of a plain table into B and mu, in its first nRows rows, of which it
  /// has iDimens[0]; where a value is exactly 0 the session's null value stands. Does nothing, qOK False, for
  /// column numbers outside the table.
  void InvertColumns(std::int32_t iFirst, std::int32_t iSecond, std::int32_t nRows,
                     std::vector<float>& sTable, std::span<const std::int32_t> iDimens, bool& qOK) const;

  /// One table with names, units and physical values. A table with an outer index has it as its first column,
  /// in every row. qOK False for a table or a number that is not there.
  PhysicalTable physicalTable(std::string_view zTable, std::int32_t iTable, std::int32_t iUnits,
                              bool& qOK) const;

 private:
  std::int32_t word(int number) const {
    return number < 1 ? 1 : words_[static_cast<std::size_t>(number) - 1];
  }
  bool addByLayout(std::string_view zTable);
  bool placeInTab(std::string_view zTable, std::int32_t iStart, std::span<const std::int32_t> iDimens,
                  std::size_t& count) const;
  void tellOverlaps() const;
  const tTableInfo* find(std::string_view zTable) const;
  template <class Number>
  bool oneTable(const tTableInfo& table, std::int32_t iTable, std::vector<Number>& values) const;
  void makePhysical(std::string_view zTable, std::span<double> row) const;
  bool fillHeaders(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders) const;

  Session* session_;
  std::array<std::int32_t, tableDimsWords> words_{};
  bool qTABDIMS_ = false;
  std::vector<double> dTAB_;
  std::int32_t iPhases_ = 0;
  TableProperties properties_;
  std::vector<tTableInfo> tables_;
  std::int32_t nSaturationTables_ = 0;
  std::int32_t nSaturationRows_ = 0;
  std::int32_t nPVTTables_ = 0;
  std::int32_t nPVTOuterRows_ = 0;
  std::int32_t nPVTRows_ = 0;
};

}  // namespace lumbarn
