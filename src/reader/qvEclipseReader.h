#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../files/Recogniser.h"
#include "../grid/qvGRIDReader.h"
#include "../shapes/AttributeStore.h"
#include "../shapes/ByteTable.h"
#include "../shapes/SourceData.h"
#include "../shapes/XYData.h"
#include "../summary/SummaryVector.h"
#include "../summary/qvEclipseSUMMARYFile.h"
#include "../support/Dates.h"
#include "../support/Session.h"
#include "LoadDialog.h"
#include "ReaderOptions.h"

namespace lumbarn {

/// A file as a host describes it to `CheckifEclipse`, which fills in its kind.
struct FileDescriptor {
  std::string zFile;
  std::int32_t iType = 0;  ///< file kind code, 0 when not known
};

/// The public object: options, a file, load operations, and fetch operations for what was loaded. Set the
/// options (they are plain members), call `ECLReadData` or a `ReadXxxFile`, then fetch.
///
/// Operations never throw. Those with qOK set it False on entry and True as their last act; results are then
/// whole. After a failure the outputs hold nothing of use unless told otherwise, and the session's diagnoses
/// say why: path, record and byte. All results are the caller's; a table is moved out, so it can be fetched
/// once for each load.
///
/// One object serves one load at a time. Objects that share a session must not load at the same time; give
/// each its own to load in parallel.
class qvEclipseReader : public ReaderOptions {
 public:
  explicit qvEclipseReader(Session& session = Session::process());

  // Options that all readers of a session share.
  std::int32_t& IOMethod;      ///< carried, not interpreted
  double& NullValue;           ///< stands for "no value" in results
  std::int32_t& UseNullValue;  ///< told to the host in the source data

  /// Sets every option to its default, those that are shared among them, and resets the selection of the
  /// session. What was loaded stays.
  void InitEclipseReader();
  Session& session() { return *session_; }
  /// Not owned; null takes the silent path always.
  void setLoadDialog(LoadDialog* dialog) { dialog_ = dialog; }

  // --- Load

  /// Reads `FileName` as what `whichtype` says. Codes with no reader leave qOK False and change nothing.
  void ECLReadData(bool& qOK);
  /// Reads a summary: `FileName` is its specification. The data files, unified or multiple, and with
  /// `NoRestart` False the earlier runs of the chain are found from it. A last record that is not whole, as a
  /// running simulation leaves it, is told as a diagnosis and no failure.
  void ReadSummaryFile(bool& qOK);

  /// Reads the grids of `FileName`: of a GRID file with 14, of an EGRID file with 23. Damage ends the load
  /// with qOK False (True with `AcceptDamaged` when a grid was whole); the grids before it can be had. With
  /// `LoadHPGridFiles` or `SaveHPGridFiles`, and a folder in `HPGFolder`, geometry is taken from or kept in a
  /// cache file there; one that is stale or damaged is told and not used.
  void ReadGridOrEGridFile(std::int32_t iGridType, bool& qOK);
  void ReadGridFile(bool& qOK) { ReadGridOrEGridFile(14, qOK); }
  void ReadEGridFile(bool& qOK) { ReadGridOrEGridFile(23, qOK); }

  // --- Recognition

  /// Tells a file's kind by its content and sets `whichtype` to it. False, and nothing set, for a file of no
  /// known kind.
  bool CheckifEclipse(FileDescriptor& uFileDesc);
  /// Whether a file is of the kind of a code.
  bool CheckECLIPSEFileType(const std::string& zFileName, std::int32_t iFileType);
  /// Whether data of a kind are held. Code 12 answers False, as 13 is the code of summary data.
  bool IsInitialised(std::int32_t iType) const;
  /// Releases what is held of a kind; always True. Code 12 releases nothing, 13 the summary.
  bool DeleteObject(std::int32_t iType);

  // --- Summary results

  /// The table, rows by vectors: singles as in the file, in its units. One 233-byte header for each vector,
  /// the source information, and the selection used. Works for `whichtype` 12 only: for any other it answers
  /// True and gives nothing, as hosts know it.
  void GetSUMMARYData(XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData, ByteTable& bOnlyUsed,
                      bool& qOK);
  /// The same with headers as 24 bytes of string numbers each into 14 stores.
  void GetStoreSUMMARYData(XYData& xyData, AttributeStores& xStore, ByteTable& bPointers,
                           SourceData& vSourceData, ByteTable& bOnlyUsed, bool& qOK);
  /// One step, from 1 among those kept, of the profiles along wells that a load with `HorizWell` built:
  /// accumulated with qInflow, else by connection. Row 1 holds the lengths, each other row one quantity:
  /// xyData(iColumn, iRow). Without `HorizWell` it answers True and gives nothing.
  void getSUMMARYHorizontalData(std::int32_t iStep, bool qInflow, XYData& xyData, ByteTable& bHeaders,
                                SourceData& vSourceData, bool& qOK);
  /// All keys of the loaded summary wanted.
  void InitSummaryKeys(bool& qOK);
  void GetbOnly(ByteTable& only, bool& qSense, bool& qOK) const;
  void SetbOnly(const ByteTable& only, bool qSense, bool& qOK);
  /// Step limits for a record loop over `FileName`'s set, from `iStart` and `iEnd`.
  void setEclipseSequenceLimits_M(std::string_view zKind, std::int32_t& iFirst, std::int32_t& iLast,
                                  bool& qOK) const;
  /// Vectors in the table that was last loaded or fetched.
  std::int32_t Count() const;
  /// Rows of it.
  std::int32_t NumberTimeSteps() const;
  /// The scratch file handed over with `SaveScratchFiles`; empty when memory sufficed. The caller deletes it.
  std::string SummaryScratchFileName() const;

  // --- Grid results

  std::int32_t NumberGrids() const { return grid_ ? grid_->nGrids : 0; }
  /// The store object of a grid, from 1: the global one, then the local ones. It is shared with this reader,
  /// and lives as long as either needs it. qOK False for a number that there is not.
  void GetGRIDData(std::int32_t iGrid, std::shared_ptr<Hadrick>& cGridData, bool& qOK);
  /// The corners of all active cells of a grid: sCorners(24, nActive), a row of x, y, z of corner 1 to 8 for
  /// each, I fastest, in the frame and units of the file; zeros for a cell in no reservoir. An array that has
  /// the right size is filled, any other is made anew.
  void getCorners(std::int32_t iGrid, XYData& sCorners, std::int32_t& nActive, bool& qOK);
  /// Whether corners of a grid can be had. They are made when they are asked for, so nothing is done here.
  void CreateCorners(std::int32_t iGrid, bool& qOK);
  /// Replaces the activity of a grid: entries below 1 are inactive. A list with not one entry for each cell
  /// changes nothing and succeeds. Cells whose geometry was not kept on loading stay inactive, which is told.
  void SetACTNUM(std::int32_t iGrid, const std::vector<std::int32_t>& iACTNUM, bool& qOK);
  /// Whether there is a cache file for `FileName` that can be used. Sets `HPGFileName` when it is empty.
  bool HPGFileTest();

  // --- Summary, beyond what hosts of old ask for

  /// The vectors of a specification, dummies left out, without reading data. `FileName` is the specification.
  std::vector<SummaryVector> ListSummaryVectors(bool& qOK);
  /// The vectors of the table that was fetched last, one for each column, in order; `column` is the column.
  /// Names are whole here, also where they are too long for the fields of a header.
  const std::vector<SummaryVector>& Vectors() const;
  /// The rows of the table that was loaded or fetched last: run, file and report step of each.
  const std::vector<SummaryRow>& Rows() const;
  /// The moment of each row of a fetched table, from the start date with its time of day and the time in its
  /// first column. Empty when the file has no start date or the table no TIME.
  std::vector<Moment> RowDates(const XYData& xyData) const;
  /// Start of the run, with its time of day.
  std::optional<Moment> StartDate() const;
  /// Patterns of the last load that no vector matched.
  std::vector<std::string> UnmatchedPatterns() const;
  /// Whether the last load met damage or a record that is not whole. What is fetched lies before it.
  bool Damaged() const;

 private:
  struct SummaryLoad;

  bool readSummary();
  bool chooseSilently(SummaryLoad& load);
  bool chooseByDialog(SummaryLoad& load);
  bool loadSummary(SummaryLoad& load);
  void tellNoSpecification();
  void takePatterns(qvEclipseSUMMARYFile& file) const;
  void SetOriginFromFileName();
  bool readGrids(std::int32_t iGridType);
  void SetFileProps();
  Hadrick* gridAt(std::int32_t iGrid) const;
  template <class Fetch>
  void fetchSummary(const char* routine, Fetch fetch, SourceData& vSourceData, ByteTable& bOnlyUsed,
                    bool& qOK);
  void fillSourceData(const qvEclipseSUMMARYFile& file, SourceData& vSourceData, bool& qOK) const;

  Session* session_;
  LoadDialog* dialog_ = nullptr;
  std::unique_ptr<qvEclipseSUMMARYFile> summary_;
  std::unique_ptr<qvGRIDReader> grid_;
};

}  // namespace lumbarn
