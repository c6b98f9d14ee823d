#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../arrays/ArraySelection.h"
#include "../record/FormFlags.h"
#include "../shapes/ByteTable.h"
#include "../shapes/SourceData.h"
#include "../shapes/XYData.h"
#include "../support/Session.h"
#include "qvEclipseSEQUENCE.h"

namespace lumbarn {

/// The settings that a host needs to open the file again the same way: FORTRAN, Formatted, 4-byte marks,
/// bytes swapped, and whether the I/O method is 8.
using FileTypeSettings = std::array<bool, 5>;

/// Number and date of a step. `iSeqnum` is the number of the report step; operations that fetch a step take a
/// parameter of that name which is a position in the list of steps, from 1. A number may occur more than
/// once, which a remark reports; a position is unique.
struct RestartStep {
  std::int32_t iSeqnum = 0;  ///< report step number, see `stepNumber`
  double dTime = 0;          ///< days
  std::int32_t iDay = -1;
  std::int32_t iMonth = -1;
  std::int32_t iYear = -1;
  std::string zDate;  ///< with the time of day when there is one: "15 JUL 2003 6:30"
  std::int32_t nGrids = 1;
  std::string FileName;
};

/// One restart file set of a run: one unified file, or one file for each report step. Set the members, let
/// `CheckRESTARTFile` look at the file, call `getSOLUTIONData`, then fetch the steps that were kept by their
/// place, from 1.
///
/// Operations never throw and set qOK False on entry. Damage gives qOK False; the steps that could be read
/// stay and can be fetched. A step that is not complete, as a running simulation leaves it, is skipped and
/// reported as a diagnosis, and is not an error.
class qvEclipseSOLUTION : public FormFlags {
 public:
  explicit qvEclipseSOLUTION(Session& session = Session::process())
      : FormFlags{.byteSwap = false}, session_(&session) {}

  std::string FileName;
  std::string Origin;
  bool Unified = false;
  bool LongFileNames = false;  ///< carried; names follow the extension of FileName
  std::int32_t iStart = 0;     ///< report step limits; negative: open
  std::int32_t iEnd = 0;
  bool Only = false;            ///< a selection list is in force
  bool ReadOnlyHeader = false;  ///< keep no arrays
  bool LoadData = true;         ///< keep values in memory; False: places only
  std::int32_t nMultList = 0;
  std::vector<std::string> zMultList{std::string()};
  std::vector<std::int32_t> iRestartList{-1};  ///< report steps picked; the first -1: all
  std::int32_t iGridNumber = 0;            ///< grid that fetches answer for; 1, and 0 too, is the global one
  std::int32_t nGrids = 0;                 ///< of the last step read
  std::vector<std::int32_t> iFirstHeader;  ///< INTEHEAD of the first step that had one
  std::int32_t iLastStep = -1;             ///< number of the last step read
  bool qMarkers = false;                   ///< the extended well records are wanted
  std::int32_t iMarkerMethod = 3;

  // Not used by existing hosts.
  ArraySelection selection;    ///< patterns of array names
  bool AcceptDamaged = false;  ///< succeed with the steps before damage
  bool qDamaged = false;       ///< something was damaged, or a step was not complete

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

  std::int32_t NumSequences() const { return nSequences_; }
  /// A step that was kept, from 1. Throws Fault 9 outside.
  qvEclipseSEQUENCE& step(std::int32_t iSeqnum);
  const qvEclipseSEQUENCE& step(std::int32_t iSeqnum) const;

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
  void getRESTARTDate(std::int32_t& iDay, std::int32_t& iMonth, std::int32_t& iYear) const;

  /// The steps kept, in the order read.
  std::vector<RestartStep> steps() const;

 private:
  struct Load;

  bool prepare(Load& load);
  bool applyStepList();
  bool readEntries(Load& load);
  bool readFile(Load& load, std::size_t entry);
  bool readOneStep(Load& load, RecordCursor& cursor, std::size_t entry);
  bool keepStep(Load& load, const RecordCursor& cursor, std::unique_ptr<qvEclipseSEQUENCE> step);
  void reportRepeats(Load& load, const qvEclipseSEQUENCE& step) const;
  void addSEQUENCE(std::unique_ptr<qvEclipseSEQUENCE> step);
  std::size_t firstCapacity(const Load& load, const RecordCursor& cursor) const;
  bool checkComplete(const Load& load, const qvEclipseSEQUENCE& step, const RecordCursor& cursor, bool last);
  void reportDamage(Load& load, std::size_t entry, Diagnosis diagnosis);
  qvEclipseSEQUENCE& select(std::int32_t iSeqnum);
  bool fetchStep(const qvEclipseSEQUENCE& from, XYData& xyData, ByteTable& bHeaders,
                 SourceData& vSourceData) const;
  void takePlaces(const qvEclipseSEQUENCE& from, ColumnTable<std::int32_t>& iFOD, bool& qFOD) const;
  void takeMarkers(const qvEclipseSEQUENCE& from, MarkerTable& vMarkers, std::int32_t& nMarkers,
                   SourceData& vSourceData) const;
  void takeMarkers(qvEclipseSEQUENCE& from, std::vector<std::byte>& bMarkers, std::int32_t& nMarkers,
                   SourceData& vSourceData) const;
  void fillSourceData(const qvEclipseSEQUENCE& from, SourceData& vSourceData) const;
  void fillExtended(const qvEclipseSEQUENCE& from, SourceData& vSourceData) const;

  Session* session_;
  bool checkedUnified_ = false;  // CheckRESTARTFile found a unified file
  std::vector<std::unique_ptr<qvEclipseSEQUENCE>> xSEQ_;
  std::int32_t nSequences_ = 0;
  std::size_t nSequencesMax_ = 1;
  std::int32_t iDay_ = -1;
  std::int32_t iMonth_ = -1;
  std::int32_t iYear_ = -1;
};

}  // namespace lumbarn
