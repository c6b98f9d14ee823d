#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "../arrays/ColumnTable.h"
#include "../record/cFILETYPE.h"
#include "../shapes/ByteTable.h"
#include "../shapes/SourceData.h"
#include "../support/Export.h"
#include "InitFile.h"
#include "qvEclipseDTAB.h"

namespace lumbarn {

/// An INIT file as existing hosts ask for it. Set the members, let `CheckINITFile` look at the file, call
/// `getEclipseINITArrays`, then fetch for the grid `iGrid`.
///
/// Operations never throw and set qOK False on entry. After damage, what was read before it can be fetched;
/// see `InitFile`.
class LUMBARN_API qvEclipseINIT : public InitFile {
 public:
  explicit qvEclipseINIT(Session& session = Session::process()) : InitFile(session), xTAB(session) {}

  bool Only = false;                                                    ///< a selection list is in force
  std::int32_t nVectorsMax = std::numeric_limits<std::int32_t>::max();  ///< no more than this at first
  qvEclipseDTAB xTAB;  ///< the tables of the file, once it was read

  // --- Loading

  /// Whether the first record is INTEHEAD or SEQNUM. Success sets FileName and its form.
  bool CheckINITFile(const std::string& zFile) { return check(zFile); }
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

  /// See `arrayValues`.
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

 private:
  void ranges(std::vector<float>& values, bool wantMin, bool& qOK);
};

}  // namespace lumbarn
