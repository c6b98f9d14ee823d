#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../record/RecordCursor.h"
#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "StepData.h"
#include "StepOptions.h"
#include "StepViews.h"

namespace lumbarn {

class MarkerTable;

/// One report step of a restart file: its header words, its solution arrays, its wells and connections, for
/// the global grid and for each local grid. Filled once by `getEclipseSEQUENCE` and read from then on. Fetch
/// operations answer for the current grid, `iGrid`; they never throw, set qOK False on entry and True as the
/// last act, and leave their outputs as they were when they fail.
class LUMBARN_API qvEclipseSEQUENCE : public StepOptions, public StepData {
 public:
  explicit qvEclipseSEQUENCE(Session& session = Session::process()) : session_(&session) {}

  std::int32_t iMarkerMethod = 3;
  bool qByteForm = true;

  /// Reads the records of one step from the position of the cursor. In a unified file it stops before the
  /// next SEQNUM. qOK False for damage, which is reported as a diagnosis, for a cell count that overflows,
  /// and when the user cancels.
  void getEclipseSEQUENCE(RecordCursor& cFile, bool& qOK);
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
  std::int32_t Nx(std::int32_t number, bool& qOK) const { return dimension(number, &RESTARTGRID::Nx, qOK); }
  std::int32_t Ny(std::int32_t number, bool& qOK) const { return dimension(number, &RESTARTGRID::Ny, qOK); }
  std::int32_t Nz(std::int32_t number, bool& qOK) const { return dimension(number, &RESTARTGRID::Nz, qOK); }

  void GetVectorDetails(VectorDetails& details, bool& qOK) const;
  std::vector<std::string> GetVectorNames() const { return vectorNames(grid()); }
  std::vector<std::int32_t> GetVectorNumber() const { return rowOfFOD(grid(), 1); }
  std::vector<std::int32_t> GetVectorType() const { return rowOfFOD(grid(), 2); }
  std::vector<std::int32_t> GetVectorPointer() const { return rowOfFOD(grid(), 3); }
  std::vector<std::int32_t> GetVectorPointerB() const { return rowOfFOD(grid(), 4); }
  std::vector<float> GetVectorArrayMin() const { return vectorMinima(grid()); }
  std::vector<float> GetVectorArrayMax() const { return vectorMaxima(grid()); }
  std::vector<double> GetVectorTime() const { return vectorTimes(grid()); }

  // Wells. A record that does not fit gives qOK False and no table.

  void processIWEL(std::span<const std::int32_t> words, bool& qOK);
  void processSWEL(std::span<const float> words, bool& qOK);
  void processXWEL(std::span<const double> words, bool& qOK);
  void processZWEL(std::span<const std::string> words, bool& qOK);
  void processICON(std::span<const std::int32_t> words, bool& qOK);
  void processSCON(std::span<const float> words, bool& qOK);
  void processZGRP(std::span<const std::string> words, bool& qOK);
  /// Whether the words per well, per connection and per name are all at least 1.
  bool checkWellData(bool& qOK) const;
  /// PVT table number of a well by its number, from 1, or with -1 by its name. -1 and qOK False for an empty
  /// name and for a number that does not exist.
  std::int32_t getWellPVTNum(std::string_view zWell, bool& qOK, std::int32_t iWellIndex) const;
  /// Adds the saturation that follows from the others to every grid that has those. The current grid is the
  /// last one after.
  void addDerivedData(bool& qOK);

  // Markers.

  /// 1 to 6: form of the byte block and whether the extended well records are to be read.
  void setMarkerMethod(std::int32_t iMethod);
  /// Wells and connections of the current grid as rows of 55 items; nMarkers of them in use.
  void getMarkerData(MarkerTable& vMarkers, std::int32_t& nMarkers, bool& qOK) const;
  /// The same as one block of bytes.
  void getMarkerDatab(std::vector<std::byte>& bMarkers, std::int32_t& nMarkers, bool& qOK) const;
  /// Wells and connections of a grid, from 1.
  void NumMarkers(std::int32_t number, std::int32_t& nWells, std::int32_t& nPerfs, bool& qOK) const;

  // Headers, of the current grid.

  bool checkIfRESTARTArray(const RecordHeader& header) const;  ///< see `isKeptArray`
  void processINTEHEAD(const HeaderWords& words) { takeINTEHEAD(*this, words); }
  void processLOGIHEAD(std::span<const std::int16_t> words) { takeLOGIHEAD(*this, words); }
  void processDBLEHEAD(std::span<const double> words) { takeDOUBHEAD(*this, words); }
  void AddLGRGrid(std::string_view zName) { enterGrid(zName, Origin); }

 private:
  std::int32_t dimension(std::int32_t number, std::int32_t RESTARTGRID::*field, bool& qOK) const;
  bool hasMarkers() const;

  Session* session_;
};

}  // namespace lumbarn
