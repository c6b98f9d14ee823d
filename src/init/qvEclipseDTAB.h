#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../shapes/ByteTable.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "SimulationTables.h"

namespace lumbarn {

/// The tables of an INIT file as existing hosts ask for them. No operation throws; qOK is False on entry.
class LUMBARN_API qvEclipseDTAB : public SimulationTables {
 public:
  explicit qvEclipseDTAB(Session& session = Session::process()) : SimulationTables(session) {}

  /// The tables of a file that was read.
  void take(SimulationTables tables) { static_cast<SimulationTables&>(*this) = std::move(tables); }

  // --- Building

  /// See `setWords`, `setValues`, `build` and `add`.
  void processTABDIMS(std::span<const std::int32_t> iTABDIMS, bool& qOK);
  void addDTAB(std::vector<double> dTAB, bool& qOK);
  void processTables(bool& qOK);
  void addTable(std::string_view zTable, std::int32_t iStart, std::string_view zParent,
                std::span<const std::int32_t> iDimens, bool& qOK);
  void GetTABDIMS(std::vector<std::int32_t>& iTABDIMS) const;

  // --- Asking

  void getTableNames(std::vector<std::string>& zTables, std::int32_t& nTables) const;
  /// Sizes as in `tTableInfo`.
  void getTableProperties(std::string_view zTable, std::vector<std::int32_t>& iDimens, std::int32_t& nDims,
                          bool& qOK) const;
  void getAllTableProperties(std::vector<std::string>& zTables, std::vector<std::string>& zParents,
                             std::vector<std::int32_t>& nEach, bool& qOK) const;

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

  /// See `SimulationTables::physicalTable`; qOK False for a table or a number that is not there.
  PhysicalTable physicalTable(std::string_view zTable, std::int32_t iTable, std::int32_t iUnits,
                              bool& qOK) const;
  using SimulationTables::physicalTable;

 private:
  bool addHeaders(std::string_view zTable, std::int32_t iUnits, ByteTable& bHeaders) const;
};

}  // namespace lumbarn
