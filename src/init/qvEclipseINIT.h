#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../arrays/ActiveCells.h"
#include "../arrays/ArraySelection.h"
#include "../arrays/ColumnTable.h"
#include "../index/HeaderWords.h"
#include "../record/FormFlags.h"
#include "../record/RecordCursor.h"
#include "../record/cFILETYPE.h"
#include "../shapes/ByteTable.h"
#include "../shapes/SourceData.h"
#include "../shapes/XYData.h"
#include "../support/Session.h"
#include "InitGrid.h"
#include "qvEclipseDTAB.h"

namespace lumbarn {

/// One INIT file: the static arrays of the global grid and of each local grid, the model flags, the
/// connection arrays and the simulation tables. Set the members, let `CheckINITFile` look at the file, call
/// `getEclipseINITArrays`, then fetch for the grid `iGrid`.
///
/// The file is walked first, which settles what each grid keeps; then values go from the file straight into
/// their columns. Whatever is asked for and not in memory is read from the file again.
///
/// Operations never throw and set qOK False on entry. Damage ends the load; what was read before it stays and
/// can be fetched, and the session's diagnoses say where the file breaks off. A record with data of a type
/// that nobody knows ends it too, with success. After a load that was canceled there is nothing to fetch.
class qvEclipseINIT : public FormFlags {
 public:
  explicit qvEclipseINIT(Session& session = Session::process()) : xTAB(session), session_(&session) {}
  ~qvEclipseINIT();
  qvEclipseINIT(const qvEclipseINIT&) = delete;
  qvEclipseINIT& operator=(const qvEclipseINIT&) = delete;

  std::string FileName;
  std::string Origin;
  bool LoadData = true;  ///< False: note what there is and where, take no values
  bool Only = false;     ///< a selection list is in force
  bool Tables = true;    ///< read the simulation tables
  std::int32_t nVectorsMax = std::numeric_limits<std::int32_t>::max();  ///< no more than this at first
  std::int32_t iGrid = 1;                                               ///< current grid, from 1
  std::vector<std::int32_t> iHeader;                                    ///< the last INTEHEAD
  std::int32_t iDay = 0;  ///< from the first header that has a date
  std::int32_t iMonth = 0;
  std::int32_t iYear = 0;
  bool qHaveDate = false;
  bool qTABDIMS = false;
  bool qTAB = false;
  std::int32_t nSEQNUM = 0;
  bool SaveScratchFile = false;  ///< hand over the scratch file instead of reading it back

  // Beyond what hosts of old ask for.
  ArraySelection selection;    ///< patterns of array names
  bool AcceptDamaged = false;  ///< succeed with what stands before damage
  bool qDamaged = false;       ///< the last load did not come to the end of the file, or lost an array

  qvEclipseDTAB xTAB;

  // --- Loading

  /// Whether the first record is INTEHEAD or SEQNUM. Success sets FileName and its form.
  bool CheckINITFile(const std::string& zFile);
  /// Form and settings of the file; the kind code that goes with it is that of a summary, deliberately.
  void setINITFileTypeProps(cFILETYPE& cFile, bool& qOK) const;
  /// Reads the file. What an earlier call read goes.
  void getEclipseINITArrays(bool& qOK);
  /// Names of the arrays of the global grid that a load would keep, up to the first local grid; qList False
  /// counts only.
  void GetInitVectorList(std::int32_t& nVectors, std::vector<std::string>& zVectors, bool& qOK, bool qList);
  /// A capacity from the length of a file. The scale of the answer is odd, deliberately: 10, or 10,000 to
  /// 100,000.
  static std::int32_t EstimateVectorCount(std::int32_t nCells, std::uint64_t fileBytes);
  void setONLYList(const std::vector<std::string>& zOnly, bool qOnly, bool& qOK);
  void getONLYList(std::vector<std::string>& zOnly, bool& qOnly, bool& qOK) const;

  // --- Grids

  std::int32_t nGrids() const { return static_cast<std::int32_t>(tGrids_.size()); }
  /// A grid by its number, from 1. Throws Fault 9 for a number that is none.
  const GRIDINFO& grid(std::int32_t number) const;
  const GRIDINFO& grid() const { return grid(iGrid); }
  std::string GridName(std::int32_t number) const;        ///< empty for a number that is none
  std::int32_t GridNumber(std::string_view zGrid) const;  ///< 0 when there is none of that name

  // --- Arrays of the current grid

  /// nActive rows, one column for each array: moved out, so a second call reads the file again. Without
  /// LoadData one row, -1 in its first element. qOK False for a grid without arrays.
  void GetData(XYData& xyData, bool& qOK);
  void getHeaders(ByteTable& bHeaders, bool& qOK) const;
  void getFileInfo(SourceData& vSourceData, bool& qOK) const;
  /// 5 rows, one column for each array: items in the file, kind, low and high word of the position of the
  /// data (from 1), 1.
  void GetINITFODPointers(ColumnTable<std::int32_t>& iFODPointers, bool& qOK) const;
  /// What a host needs to open the file again: FORTRAN, Formatted, 4-byte marks, bytes swapped, and whether
  /// the I/O method is 8.
  void getEclipseINITFODInfo(std::array<bool, 5>& qFileTypeSettings, bool& qOK) const;
  /// Smallest and largest value of each array; a smallest above 1E10 is 1E10 and a largest below -1E10 is
  /// -1E10, as hosts know it. One -1 without LoadData.
  void GetArrayMin(std::vector<float>& sMin, bool& qOK);
  void GetArrayMax(std::vector<float>& sMax, bool& qOK);
  /// Cell numbers, from 1, of the active cells, as the pore volumes tell: nActive of them. Where fewer cells
  /// have a pore volume the last numbers are 0; see `InitActiveCells`. qOK False without pore volumes.
  void GetINITA2N(std::vector<std::int32_t>& iA2N, bool& qOK) { GetA2N(iA2N, qOK, iGrid); }
  void GetA2N(std::vector<std::int32_t>& iA2N, bool& qOK, std::int32_t iGridNumber);
  void getINITDataFromScratchFile(XYData& xyData, bool& qOK);
  std::string zScratchFile() const;  ///< of the current grid; empty when memory sufficed

  /// One array of a grid, numbers from 1: the values of active cells, or with qAllCells those of all cells in
  /// natural order, the session's null value in those that are not active. qOK False, with a diagnosis, when
  /// it is not known which cells are active.
  void GetArray(std::int32_t iGridNumber, std::int32_t iArray, bool qAllCells, std::vector<float>& sValues,
                bool& qOK);

  // --- Connections of the current grid, by kind 1, 2 or 3; see `whichNNCType`

  std::int32_t getNUMNNC(std::int32_t iType) const;
  std::int32_t getNNCTypes(std::int32_t iType) const;
  /// One row for each connection, one column for each array. Without connections xyData stays, qOK False.
  void GetNNCData(std::int32_t iType, XYData& xyData, bool& qOK);
  void getNNCHeaders(std::int32_t iType, ByteTable& bHeaders, bool& qOK) const;

  // --- Tables; see `qvEclipseDTAB`

  std::int32_t getNumberTables(std::string_view zTable) const { return xTAB.getNumberTables(zTable); }
  bool qHaveTables() const { return qHaveTables_; }

 private:
  struct Scan;

  GRIDINFO& current() { return tGrids_[static_cast<std::size_t>(iGrid) - 1]; }
  GRIDINFO* find(std::int32_t number);
  void reset();
  bool load();
  void removeScratchFiles();
  std::unique_ptr<RecordCursor> open();
  bool walk(Scan& scan);
  bool takeRecord(Scan& scan);
  void takeInteger(Scan& scan);
  void takeHeader(Scan& scan);
  void takeDouble(Scan& scan);
  void takeLogical(Scan& scan);
  void takeArray(Scan& scan);
  void keepArrays();
  bool checkINITArray(const RecordHeader& header);
  void processINTEHEAD(HeaderWords words);
  void AddLGRGrid(std::string_view zName);
  void AddINITNNCArray(const RecordHeader& header, RecordCursor& cursor);
  void AddNNCArray(const RecordHeader& header, RecordCursor& cursor, tNNC& xNNC);
  void diagnoseTwice(const RecordHeader& header) const;
  void SetDates();
  void setTableProperties();
  bool continueBehind(Scan& scan, Diagnosis diagnosis);
  bool isOfGridAfterGap(const RecordHeader& header) const;
  void checkUnchanged(const RecordCursor& cursor);
  void endAtDamage(Diagnosis diagnosis, std::string action);
  bool loadValues(RecordCursor& cursor, GRIDINFO& grid);
  bool loadThroughScratch(RecordCursor& cursor, GRIDINFO& grid);
  bool readColumns(RecordCursor& cursor, GRIDINFO& grid, XYData& columns);
  bool readArray(RecordCursor& cursor, GRIDINFO& grid, const KeptArray& array, std::span<float> column);
  void CreateINIT_A2N(RecordCursor& cursor, GRIDINFO& grid, std::span<float> porvColumn = {});
  std::optional<DecidedCells> decideWithGridFile(ActivityEvidence& evidence, const GRIDINFO& grid) const;
  const InitActiveCells* activeOf(RecordCursor& cursor, GRIDINFO& grid);
  void tellUnnumbered(const GRIDINFO& grid) const;
  void tellDropped(const KeptArray& array, const GRIDINFO& grid) const;
  void ranges(std::vector<float>& values, bool wantMin, bool& qOK);

  Session* session_;
  std::vector<GRIDINFO> tGrids_;
  bool qHaveTables_ = false;
  bool qFlagsKnown_ = false;        // some word of the global grid's LOGIHEAD is true
  bool unreadable_ = false;         // damaged in a way that fails the load
  std::optional<FileStamp> stamp_;  // of the file when it was loaded
};

}  // namespace lumbarn
