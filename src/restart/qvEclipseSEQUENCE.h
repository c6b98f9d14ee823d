#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../arrays/ArraySelection.h"
#include "../index/HeaderWords.h"
#include "../index/SectionTracker.h"
#include "../record/RecordCursor.h"
#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Diagnosis.h"
#include "../support/Session.h"
#include "RestartGrid.h"

namespace lumbarn {

class MarkerTable;

/// What is known of the arrays of one grid without their values. All have one element for each array, but
/// that without values in memory sMin and sMax are a single -1.
struct VectorDetails {
  std::vector<std::string> zVectors;
  std::vector<std::int32_t> nNumber;    ///< items
  std::vector<std::int32_t> iType;      ///< kind, see `ArrayKind`
  std::vector<std::int32_t> iPointer;   ///< position of the data, from 1, low word
  std::vector<std::int32_t> iPointerB;  ///< high word
  std::vector<double> dTime;            ///< days
  std::vector<float> sMin;              ///< values of -999 do not count; -999 when there are no others
  std::vector<float> sMax;
};

/// One report step of a restart file: its header words, its solution arrays, its wells and connections, for
/// the global grid and for each local grid. Filled once by `getEclipseSEQUENCE` and read from then on. Fetch
/// operations answer for the current grid, `iGrid`; they never throw, set qOK False on entry and True as the
/// last act, and leave their outputs as they were when they fail.
class qvEclipseSEQUENCE {
 public:
  explicit qvEclipseSEQUENCE(Session& session = Session::process()) : session_(&session) {}

  bool LoadData = true;  ///< keep values in memory; False: places only
  std::string FileName;
  std::string Origin;           ///< label for all grids
  bool Unified = false;         ///< the file holds several steps
  bool ReadOnlyHeader = false;  ///< keep no arrays
  std::int32_t iSeqnum = -1;    ///< report step; before reading, the number in the name of the file
  std::int32_t iStart = -1;     ///< limits of the file set; negative: open
  std::int32_t iEnd = -1;
  std::int32_t iDay = -1;
  std::int32_t iMonth = -1;
  std::int32_t iYear = -1;
  double dTime = 0;     ///< days
  float sFraction = 0;  ///< of a day
  std::int32_t nGrids = 1;
  std::int32_t iGrid = 1;             ///< current grid: 1 is the global one
  std::int32_t nVectorEstimate = 10;  ///< first capacity of the array tables
  std::vector<RESTARTGRID> tGrids{1};
  std::vector<std::int32_t> iHeader;  ///< copy of the last INTEHEAD
  bool qHaveWells = false;
  bool qHaveGroups = false;
  bool qHaveHeader = false;  ///< an INTEHEAD was read
  bool qMarkers = false;     ///< the extended well records are wanted
  bool qPastEnd = false;     ///< the step lies behind iEnd
  std::int32_t iMarkerMethod = 3;
  bool qByteForm = true;

  // Not used by existing hosts.
  ArraySelection* selection = nullptr;  ///< patterns of array names; not owned, null: all
  bool qAnyRecord = false;              ///< the step has records at all
  bool qAtEnd = false;                  ///< reading ended at the end of the file
  bool qDamaged = false;                ///< records of the step were damaged; the others were read
  bool qHeadersOnly = false;            ///< reading ended behind the headers, as nothing else was wanted

  const StepParts* partsBefore = nullptr;  ///< of the step before; not owned, null: none
  std::optional<Diagnosis> damageBehind;   ///< the step is complete, but what follows it cannot be read
  /// What the step consists of, for `missingPart`.
  const StepParts& parts() const { return sections_.parts(); }

  /// Reads the records of one step from the position of the cursor. In a unified file it stops before the
  /// next SEQNUM. qOK False for damage, which is reported as a diagnosis, for a cell count that overflows,
  /// and when the user cancels.
  void getEclipseSEQUENCE(RecordCursor& cFile, bool& qOK);
  /// The same for the file set: throws what is wrong, BadRecord or Fault. False when the user cancels.
  bool readStep(RecordCursor& cFile);
  /// Counts and lists the arrays of the global grid that would be kept, from the position of the cursor to
  /// the end of the grid; the position is restored. qList False leaves zVectors unchanged.
  void GetINITVectorList(RecordCursor& cFile, std::int32_t& nVectors, std::vector<std::string>& zVectors,
                         bool& qOK, bool qList);

  /// Values of the current grid, nActive rows by arrays: a copy. Without values in memory a table of one row
  /// with -1 in the first column. qOK False, and xyData as it was, when there are no arrays.
  void getSEQUENCEData(XYData& xyData, bool& qOK) const;
  /// One 233-byte record for each array.
  void getSEQUENCEHeaders(ByteTable& bHeaders, bool& qOK) const;
  /// The fetch-on-demand table, 5 rows; see `ArrayTable::iFOD`.
  void getSEQUENCEFODInfo(ColumnTable<std::int32_t>& iFOD, bool& qOK) const;
  /// Drops values, names and wells of the current grid. Dates and dimensions stay.
  void DeleteSEQUENCEData(bool& qOK);
  void GetINTEHEAD(std::vector<std::int32_t>& words, bool& qOK) const;
  void getRESTARTDate(std::int32_t& day, std::int32_t& month, std::int32_t& year) const;
  /// Dimensions of a grid, from 1; -1 and qOK False when there is no such grid.
  std::int32_t Nx(std::int32_t grid, bool& qOK) const;
  std::int32_t Ny(std::int32_t grid, bool& qOK) const;
  std::int32_t Nz(std::int32_t grid, bool& qOK) const;

  void GetVectorDetails(VectorDetails& details, bool& qOK) const;
  std::vector<std::string> GetVectorNames() const;
  std::vector<std::int32_t> GetVectorNumber() const { return rowOfFOD(1); }
  std::vector<std::int32_t> GetVectorType() const { return rowOfFOD(2); }
  std::vector<std::int32_t> GetVectorPointer() const { return rowOfFOD(3); }
  std::vector<std::int32_t> GetVectorPointerB() const { return rowOfFOD(4); }
  std::vector<float> GetVectorArrayMin() const;
  std::vector<float> GetVectorArrayMax() const;
  std::vector<double> GetVectorTime() const;

  // --- Wells: StepWells.cpp. A record that does not fit gives qOK False and no table.

  void processIWEL(std::span<const std::int32_t> words, bool& qOK);
  void processSWEL(std::span<const float> words, bool& qOK);
  void processXWEL(std::span<const double> words, bool& qOK);
  void processZWEL(std::span<const std::string> words, bool& qOK);
  void processICON(std::span<const std::int32_t> words, bool& qOK);
  void processSCON(std::span<const float> words, bool& qOK);
  void processZGRP(std::span<const std::string> words, bool& qOK);
  /// Takes the current record to the current grid when it is the header of a grid or one of these records.
  /// Gives what is wrong with one that does not fit.
  std::optional<Diagnosis> takeWellRecord(RecordCursor& cFile);
  /// Whether the words per well, per connection and per name are all at least 1.
  bool checkWellData(bool& qOK) const;
  /// PVT table number of a well by its number, from 1, or with -1 by its name. -1 and qOK False for an empty
  /// name and for a number that does not exist.
  std::int32_t getWellPVTNum(std::string_view zWell, bool& qOK, std::int32_t iWellIndex) const;
  /// Adds the saturation that follows from the others to every grid that has those. The current grid is the
  /// last one after.
  void addDerivedData(bool& qOK);

  // --- Markers: Markers.cpp

  /// 1 to 6: form of the byte block and whether the extended well records are to be read.
  void setMarkerMethod(std::int32_t iMethod);
  /// Wells and connections of the current grid as rows of 55 items; nMarkers of them in use.
  void getMarkerData(MarkerTable& vMarkers, std::int32_t& nMarkers, bool& qOK) const;
  /// The same as one block of bytes.
  void getMarkerDatab(std::vector<std::byte>& bMarkers, std::int32_t& nMarkers, bool& qOK) const;
  /// Wells and connections of a grid, from 1.
  void NumMarkers(std::int32_t grid, std::int32_t& nWells, std::int32_t& nPerfs, bool& qOK) const;

  /// The current grid. Throws Fault 9 if there is no grid iGrid.
  RESTARTGRID& grid() { return grid(iGrid); }
  const RESTARTGRID& grid() const { return grid(iGrid); }
  /// A grid by its number, from 1. Throws Fault 9 if there is no such grid.
  RESTARTGRID& grid(std::int32_t number);
  const RESTARTGRID& grid(std::int32_t number) const;

  // --- Records, for the walk and for INIT files

  /// Whether an array is to be kept: of integers or singles, as long as the current grid's cells or active
  /// cells, none of the records that only look like arrays, and on the selection list.
  bool checkIfRESTARTArray(const RecordHeader& header) const;
  void processINTEHEAD(const HeaderWords& words);
  void processLOGIHEAD(std::span<const std::int16_t> words);
  void processDBLEHEAD(std::span<const double> words);
  void AddLGRGrid(std::string_view zName);

 private:
  struct Walk;

  std::vector<RecordHeader> lookAhead(RecordCursor& cFile, bool& qUsual) const;
  void decideActive(std::span<const RecordHeader> candidates);
  void takeRecord(RecordCursor& cFile, Walk& walk);
  void takeInteger(RecordCursor& cFile, Walk& walk);
  void takeSingle(RecordCursor& cFile, Walk& walk);
  void takeDouble(RecordCursor& cFile, Walk& walk);
  void takeText(RecordCursor& cFile);
  void takeLogicals(RecordCursor& cFile);
  void takeMark(SectionMark mark, Walk& walk);
  void takeHeader(RecordCursor& cFile, Walk& walk);
  void takeArray(RecordCursor& cFile, Walk& walk);
  void stopBehindHeaders(Walk& walk);
  bool takeNext(RecordCursor& cFile, Walk& walk);
  void dropLastGrid();
  void takeWells(RecordCursor& cFile);
  void deriveSaturation();
  std::vector<std::int32_t> rowOfFOD(std::size_t iRow) const;
  std::int32_t dimension(std::int32_t number, std::int32_t RESTARTGRID::*field, bool& qOK) const;

  Session* session_;
  SectionTracker sections_;
  std::int32_t iFileNumber_ = -1;  // step number that iSeqnum was set to before reading
  std::map<std::string, std::int32_t, std::less<>> gridOf_{{"ROOT", 1}};
};

}  // namespace lumbarn
