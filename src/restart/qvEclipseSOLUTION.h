#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "../record/FormFlags.h"
#include "../shapes/ByteTable.h"
#include "../shapes/SourceData.h"
#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "RestartSet.h"

namespace lumbarn {

/// The settings that a host needs to open the file again the same way: FORTRAN, Formatted, 4-byte marks,
/// bytes swapped, and whether the I/O method is 8.
using FileTypeSettings = std::array<bool, 5>;

/// One restart file set of a run: one unified file, or one file for each report step. Set the members, let
/// `CheckRESTARTFile` look at the file, call `getSOLUTIONData`, then fetch the steps that were kept by their
/// place, from 1.
///
/// Operations never throw and set qOK False on entry. Damage gives qOK False; the steps that could be read
/// stay and can be fetched. A step that is not complete, as a running simulation leaves it, is skipped and
/// reported as a diagnosis, and is not an error.
class LUMBARN_API qvEclipseSOLUTION : public FormFlags, public RestartSetOptions, public RestartSet {
 public:
  explicit qvEclipseSOLUTION(Session& session = Session::process())
      : FormFlags{.byteSwap = false}, session_(&session) {}

  bool LongFileNames = false;    ///< carried; names follow the extension of FileName
  bool Only = false;             ///< a selection list is in force
  std::int32_t iGridNumber = 0;  ///< grid that fetches answer for; 1, and 0 too, is the global one
  std::int32_t iMarkerMethod = 3;

  /// Whether a file is a restart file: its first record is INTEHEAD or SEQNUM, or what follows shows it. Sets
  /// Formatted, UNIX, byteSwap, Unified and FileName.
  bool CheckRESTARTFile(const std::string& zFile);
  void SetMultList(std::int32_t n, const std::vector<std::string>& files, bool& qOK);
  /// Reads the set.
  void getSOLUTIONData(bool& qOK);

  void setONLYList(const std::vector<std::string>& zOnly, bool qOnly, bool& qOK);
  void getONLYList(std::vector<std::string>& zOnly, bool& qOnly, bool& qOK) const;
  /// Names are bytes 1 to 16 of each entry.
  void setbONLYList(const ByteTable& bOnly, bool qOnly, bool& qOK);
  void getbONLYList(ByteTable& bOnly, bool& qOnly, bool& qOK) const;
  /// 2 and 5 ask for the extended well records.
  void setMarkerMethod(std::int32_t iMethod);

  // Fetches of one step, by its position from 1, for the grid `iGridNumber`. A position or grid that does not
  // exist is reported as a fault, and a grid without arrays gives qOK False.
  void GetSingleSEQUENCE(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData,
                         MarkerTable& vMarkers, std::int32_t& nMarkers, bool& qOK);
  void GetSingleSEQUENCEb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData,
                          std::vector<std::byte>& bMarkers, std::int32_t& nMarkers, bool& qOK);
  void GetSingleSEQUENCEFOD(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                            SourceData& vSourceData, MarkerTable& vMarkers, std::int32_t& nMarkers,
                            ColumnTable<std::int32_t>& iFOD, bool& qFOD, bool& qOK);
  void GetSingleSEQUENCEFODb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                             SourceData& vSourceData, std::vector<std::byte>& bMarkers,
                             std::int32_t& nMarkers, ColumnTable<std::int32_t>& iFOD, bool& qFOD, bool& qOK);
  void getSingleSEQUENCEFODInfo(std::int32_t iSeqnum, ColumnTable<std::int32_t>& iFOD, bool& qOK);
  void getEclipseSOLFODInfo(FileTypeSettings& qFileTypeSettings, bool& qOK) const;
  /// Slots 1, 2, 3 take the size of the step's global grid; -1 in all and qOK False if there is no such step.
  void getNxNyNzInfo(std::int32_t iSeqnum, SourceData& vSourceData, bool& qOK) const;
  /// Numbers and times, in days, of the steps kept. With none one row of -32768 and nSteps 0.
  void GetRestartRecordTimesAndSteps(std::vector<std::int32_t>& iSteps, std::vector<double>& dTimes,
                                     std::int32_t& nSteps, bool& qOK) const;
  /// See `qvEclipseSEQUENCE::getWellPVTNum`; of the last step kept.
  std::int32_t getWellPVTNum(std::string_view zWell, bool& qOK, std::int32_t iWellIndex);
  /// Drops the array data of one step, of the grid `iGridNumber`, and keeps the step.
  void DeleteSingleSEQUENCE(std::int32_t iSeqnum, bool& qOK);
  /// Date of the last step read.
  void getRESTARTDate(std::int32_t& day, std::int32_t& month, std::int32_t& year) const;

 private:
  qvEclipseSEQUENCE& select(std::int32_t iSeqnum);
  SourceData sourceDataOf(const qvEclipseSEQUENCE& from) const;
  bool takeArrays(const qvEclipseSEQUENCE& from, XYData& xyData, ByteTable& bHeaders) const;
  std::int32_t takeMarkers(const qvEclipseSEQUENCE& from, MarkerTable& vMarkers) const;
  std::int32_t takeMarkers(qvEclipseSEQUENCE& from, std::vector<std::byte>& bMarkers) const;
  template <class Rest>
  void fetch(const char* routine, std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
             SourceData& vSourceData, bool& qOK, Rest rest);

  Session* session_;
  bool checkedUnified_ = false;  // CheckRESTARTFile found a unified file
};

}  // namespace lumbarn
