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
#include "TableRows.h"
#include "TableUse.h"

namespace lumbarn {

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

  std::size_t rows() const { return columns.empty() ? 0 : columns.front().values.size(); }
};

/// The saturation, PVT, rock, density and equilibration tables of an INIT file, from its records TABDIMS and
/// TAB. Table numbers, starts and words count from 1; names are compared trimmed and in upper case.
///
/// In TAB a column of a table stands whole, one table after the other, and one column of all tables after the
/// other. Where a table has an outer index, the rows of one of its values stand together: files have it so.
/// Formation volume factors and viscosities stand as reciprocals there; `getTable` gives them as they stand,
/// `physicalTable` as they are meant. An oil table with a single row is that of a PVCDO keyword, and has its
/// name and columns.
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
  void setProgram(std::int32_t iProgram) { iProgram_ = iProgram; }  ///< INTEHEAD word 95; decides units
  void setTableProperties(const TableProperties& properties) { properties_ = properties; }
  /// Builds the list of the tables in use; see `tablesInUse`. Success with nothing in it when there was no
  /// TABDIMS. A table that does not lie in TAB is not added: qOK False, and a diagnosis says which.
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
  std::int32_t word(int number) const { return words_[static_cast<std::size_t>(number) - 1]; }
  void diagnoseDims(Message message, std::string problem, std::string expected, std::string found,
                    std::string action) const;
  TableBlock asConstantCompressibility(TableBlock block) const;
  const tTableInfo* find(std::string_view zTable) const;
  template <class Number>
  bool oneTable(const tTableInfo& table, std::int32_t iTable, std::vector<Number>& values) const;
  TableShape shapeOf(const tTableInfo& table) const;
  std::vector<bool> rowsOf(const tTableInfo& table, std::int32_t iTable) const;
  void makePhysical(std::string_view zTable, std::span<double> row) const;
  bool fillHeaders(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders) const;

  Session* session_;
  std::array<std::int32_t, tableDimsWords> words_{};
  bool qTABDIMS_ = false;
  std::vector<double> dTAB_;
  std::int32_t iPhases_ = 0;
  std::int32_t iProgram_ = 0;
  TableProperties properties_;
  std::vector<tTableInfo> tables_;
  std::int32_t nSaturationTables_ = 0;
  std::int32_t nSaturationRows_ = 0;
  std::int32_t nPVTTables_ = 0;
  std::int32_t nPVTOuterRows_ = 0;
  std::int32_t nPVTRows_ = 0;
};

}  // namespace lumbarn
