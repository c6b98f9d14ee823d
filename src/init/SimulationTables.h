#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
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
  std::vector<double> dValues;  ///< as they are in TAB

  /// How many tables of the name there are.
  std::int32_t count() const { return iDimens[iDimens.size() - 2]; }
};

/// The values of one of the tables of a name, first size fastest: rows and columns, or outer rows, rows and
/// columns.
struct TableValues {
  std::vector<float> values;
  std::vector<std::int32_t> sizes;
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
/// In TAB the values of a column are contiguous, one table after the other, and one column of all tables
/// after the other. Where a table has an outer index, the rows of one of its values are contiguous.
/// Formation volume factors and viscosities are stored as reciprocals; `storedTable` gives them as they are
/// stored, `physicalTable` as they are meant. An oil table with a single row is that of a PVCDO keyword, and
/// has its name and columns.
class LUMBARN_API SimulationTables {
 public:
  explicit SimulationTables(Session& session) : session_(&session) {}

  std::string FileName;                 ///< for diagnoses
  std::optional<std::uint64_t> offset;  ///< of TABDIMS in the file, likewise

  // --- Building

  /// Takes the words of TABDIMS, of which those behind the end of a record that is shorter than 48 words are
  /// 0. False, with a diagnosis, for such a record: the tables that its words describe can be had all the
  /// same.
  bool setWords(std::span<const std::int32_t> iTABDIMS);
  void setValues(std::vector<double> dTAB) { dTAB_ = std::move(dTAB); }
  void setPhases(std::int32_t nPhases) { iPhases_ = nPhases; }
  void setProgram(std::int32_t iProgram) { iProgram_ = iProgram; }  ///< INTEHEAD word 95; decides units
  void setTableProperties(const TableProperties& properties) { properties_ = properties; }
  /// Builds the list of the tables in use; see `tablesInUse`. A table that is not within TAB is not added:
  /// False, and a diagnosis says which.
  bool build();
  /// Adds one table; iDimens are its sizes as in `tTableInfo`. A start below 1 adds nothing, which is not an
  /// error.
  bool add(std::string_view zTable, std::int32_t iStart, std::string_view zParent,
           std::span<const std::int32_t> iDimens);
  /// Forgets all tables and words.
  void clear();

  // --- Asking

  std::span<const std::int32_t> words() const { return words_; }
  bool qTABDIMS() const { return qTABDIMS_; }
  std::int32_t nTables() const { return static_cast<std::int32_t>(tables_.size()); }
  const std::vector<tTableInfo>& tables() const { return tables_; }
  const tTableInfo* find(std::string_view zTable) const;
  std::vector<std::string> names() const;
  std::int32_t getTableIndex(std::string_view zTable) const;  ///< 0 when it is not there
  std::int32_t getNumberTables(std::string_view zTable) const;
  /// Largest counts met in TABDIMS.
  std::int32_t nSaturationTables() const { return nSaturationTables_; }
  std::int32_t nSaturationRows() const { return nSaturationRows_; }
  std::int32_t nPVTTables() const { return nPVTTables_; }
  std::int32_t nPVTOuterRows() const { return nPVTOuterRows_; }
  std::int32_t nPVTRows() const { return nPVTRows_; }

  // --- Values; nothing for a table or a number that is not there

  /// One table as TAB has it, blank rows dropped. Of a table with more than three sizes, which no simulator
  /// writes, blank rows are kept.
  std::optional<TableValues> storedTable(std::string_view zTable, std::int32_t iTable) const;
  /// The same as rows and columns: `withOuterColumn` of a table with an outer index. With `physicalLast` the
  /// column that is stored as a difference of compressibilities is made physical.
  std::optional<TableValues> plainTable(std::string_view zTable, std::int32_t iTable,
                                        bool physicalLast) const;
  /// A table with an outer index as a plain one: a row for each outer and inner row, and the value of the
  /// outer index in a column in front, in the first row of each block; the null value in its other rows. The
  /// table itself where no other one has the values of its outer index.
  TableValues withOuterColumn(std::string_view zTable, std::int32_t iTable, TableValues stored) const;
  /// With names, units and physical values. A table with an outer index has it as its first column, in every
  /// row.
  std::optional<PhysicalTable> physicalTable(std::string_view zTable, std::int32_t iTable,
                                             std::int32_t iUnits) const;

 protected:
  Session& session() const { return *session_; }
  std::int32_t program() const { return iProgram_; }

 private:
  std::int32_t word(int number) const { return words_[static_cast<std::size_t>(number) - 1]; }
  void diagnoseDims(Message message, std::string problem, std::string expected, std::string found,
                    std::string action) const;
  TableBlock asConstantCompressibility(TableBlock block) const;
  std::vector<bool> rowsOf(const tTableInfo& table, std::int32_t iTable) const;

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

/// Turns the columns 1/B and 1/(B mu) of a plain table into B and mu, in its first nRows rows; the null value
/// where a value is exactly 0. False, with nothing done, for column numbers outside the table.
LUMBARN_API bool invertColumns(std::int32_t iFirst, std::int32_t iSecond, std::int32_t nRows,
                               std::span<float> values, std::span<const std::int32_t> sizes, double null);

}  // namespace lumbarn
