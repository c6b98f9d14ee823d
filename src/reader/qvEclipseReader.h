#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../arrays/ColumnTable.h"
#include "../deck/DeckScalar.h"
#include "../init/Connections.h"
#include "../init/ModelFlags.h"
#include "../restart/MarkerTable.h"
#include "../restart/WellRecords.h"
#include "../shapes/AttributeStore.h"
#include "../shapes/ByteTable.h"
#include "../shapes/SourceData.h"
#include "../shapes/XYData.h"
#include "../summary/SummaryVector.h"
#include "../support/Dates.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "../welltests/UserTest.h"
#include "../welltests/WellTest.h"
#include "ReaderOptions.h"

namespace lumbarn {

// A host that uses one of these includes its header: deck/qvEclipseDat.h, grid/Hadrick.h,
// reader/LoadDialog.h, init/qvEclipseDTAB.h, init/qvEclipseINIT.h, index/qvEclipseRSSPEC.h,
// restart/RestartGrid.h, restart/qvEclipseSOLUTION.h, summary/qvEclipseSUMMARYFile.h.
class Hadrick;
class LoadDialog;
struct PhysicalTable;
class qvEclipseDat;
class qvEclipseINIT;
class qvEclipseRSSPEC;
struct RESTARTGRID;
struct RestartStep;
struct SummaryRow;

class ReaderPart;
struct ReaderParts;

/// A file as a host describes it to `CheckifEclipse`, which fills in its kind.
struct FileDescriptor {
  std::string zFile;
  std::int32_t iType = 0;  ///< file kind code, 0 when not known
};

/// The public object: options, a file, load operations, and fetch operations for what was loaded. Set the
/// options (they are plain members), call `ECLReadData` or a `ReadXxxFile`, then fetch.
///
/// Operations with qOK do not throw: they set it False on entry and True as their last act. The others return
/// values or references and throw only std::bad_alloc; access to an element of a table beyond its bounds
/// throws Fault 9. After a failure the outputs are unspecified unless stated otherwise, and the session's
/// diagnoses say why: path, record and byte. All results are the caller's. A summary or INIT table is moved
/// out: a summary can be fetched once for each load, an INIT file is read again.
///
/// One object serves one load at a time. Objects that share a session must not load at the same time; give
/// each its own to load in parallel.
class LUMBARN_API qvEclipseReader : public ReaderOptions {
 public:
  explicit qvEclipseReader(Session& session = Session::process());
  /// What was loaded moves too; the other object can only be destroyed then.
  qvEclipseReader(qvEclipseReader&& other) noexcept;
  ~qvEclipseReader();

  // Options that all readers of a session share.
  std::int32_t& IOMethod;      ///< carried, not interpreted
  double& NullValue;           ///< stands for "no value" in results
  std::int32_t& UseNullValue;  ///< told to the host in the source data

  /// Sets every option to its default, those that are shared among them, and resets the selection of the
  /// session. What was loaded stays.
  void InitEclipseReader();
  Session& session() { return *session_; }
  /// Not owned; null takes the silent path always.
  void setLoadDialog(LoadDialog* dialog);

  // --- Load

  /// Reads `FileName` as what `whichtype` says: a file, or the root name or folder of a run, whose file of
  /// that type is read then. Codes with no reader leave qOK False, with a diagnosis, and read nothing.
  ///
  /// A load replaces what was held of its type, also when it fails. It sets the options Formatted, UNIX and
  /// byteSwap, and where the host left them at their defaults Unified, zOrigin, HPGFileName and AllData. The
  /// next load sets these four back first, unless the host changed them in between, so that nothing of one
  /// file applies to another.
  void ECLReadData(bool& qOK);
  /// Reads a summary: `FileName` is its specification, its root name, or its data file, which is then the one
  /// that is read. The data files, unified or multiple (see `chooseFiles`), and with `NoRestart` False the
  /// earlier runs of the chain are found from it. A truncated last record, as a running simulation
  /// leaves it, is reported as a diagnosis, and the load succeeds.
  void ReadSummaryFile(bool& qOK);
  /// Reads the well tests of a simulator's RFT file. Damage ends the reading and is told as a diagnosis; what
  /// stands before it is there, and that is no failure unless it is nothing.
  void ReadRFTFile(bool& qOK);
  /// Reads a text file of measured tests, RFT or PLT. Both are kept in one place, the later load. A row with
  /// too few numbers ends its test with a report, which is no failure.
  void ReadUserRFTFile(bool& qOK);
  void ReadUserPLTFile(bool& qOK);

  /// Reads the grids of `FileName`: of a GRID file with 14, of an EGRID file with 23. Damage ends the load
  /// with qOK False (True with `AcceptDamaged` when a grid was whole); the grids before it can be had. With
  /// `LoadHPGridFiles` or `SaveHPGridFiles`, and a folder in `HPGFolder`, geometry is taken from or kept in a
  /// cache file there; one that is stale or damaged is told and not used.
  void ReadGridOrEGridFile(std::int32_t iGridType, bool& qOK);
  void ReadGridFile(bool& qOK) { ReadGridOrEGridFile(14, qOK); }
  void ReadEGridFile(bool& qOK) { ReadGridOrEGridFile(23, qOK); }

  /// Reads a restart set: `FileName` is its unified file, any of its multiple files, which then all count, or
  /// its index. Steps and arrays are those of `iStart`, `iEnd`, `bOnly`, `zOnly`, `zExcept` and the pattern
  /// lists, which hold names of arrays here. With `LoadData` False no values are read, only their places.
  /// A last step that is not whole is left out, told as a diagnosis, and no failure; damage is one unless
  /// `AcceptDamaged`, and the steps before it can be fetched.
  void ReadSolutionFile(bool& qOK);

  /// Reads an INIT file, or the one that goes with an index named by `FileName`: the static arrays of every
  /// grid that `bOnly`, `zOnly`, `zExcept` and the pattern lists choose, and with `InitTables` the simulation
  /// tables. With `LoadData` False no values are read, only their places. Damage is a failure unless
  /// `AcceptDamaged`; what stands before it can be fetched either way.
  void ReadINITFile(bool& qOK);

  /// Reads a data deck once from top to bottom. What is read and kept is told by `RUNSPECOnly`,
  /// `ProcessCorners`, `ProcessAll`, `RecordScheduleDeck`, `RecordReportStepKeywords` and, with one of the
  /// last two, the files set by `setIncFileExcludes`. What cannot be understood is skipped. A file that hosts
  /// do not take for a deck is refused; `Deck` reads some of these.
  void ReadDATFile(bool& qOK);

  // --- Recognition

  /// Tells a file's kind by its content and sets `whichtype` to it. False, and nothing set, for a file of no
  /// known kind.
  bool CheckifEclipse(FileDescriptor& uFileDesc);
  /// Whether a file is of the kind of a code.
  bool CheckECLIPSEFileType(const std::string& zFileName, std::int32_t iFileType);
  /// Whether data of a kind are held. Code 12 answers False, as 13 is the code of summary data, and 77 does,
  /// as 76 is the code of user tests of both kinds.
  bool IsInitialised(std::int32_t iType) const;
  /// Releases what is held of a kind; always True. Codes 12 and 77 release nothing, 13 the summary and 76 the
  /// user tests.
  bool DeleteObject(std::int32_t iType);

  /// Whether the deck reader knows a word as a keyword of a section, 1 RUNSPEC to 8 SCHEDULE, or with 0 of
  /// any. Upper case.
  bool EclipseKeyword(std::string_view zKeyword, std::int32_t iSection = 0) const;

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

  std::int32_t NumberGrids() const;
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

  // --- Deck results. Grid operations above answer for a deck's grids too, when no grid file is held or
  // `whichtype` is 25: after `CreateCorners`, `getCorners` gives all cells of a grid, and nActive counts
  // them.

  /// The deck itself; null when none is held. Holds until the next load or release.
  qvEclipseDat* Deck();
  const qvEclipseDat* Deck() const;
  /// The arguments, with their defaults, of a keyword that is kept as text (WELLDIMS, TABDIMS, REGDIMS,
  /// EQLDIMS, VFPPDIMS, VFPIDIMS, SCDPDIMS, PARTTRAC, MISCIBLE: section 1; ROCKOPTS, ROCKCOMP: 4), in a
  /// section or with -1 in any. qOK False when the deck has it not.
  void GetEclipseDAT(std::int32_t iSection, std::string_view zKeyWord, std::vector<std::string>& zArguments,
                     std::int32_t& nArguments, bool& qOK) const;
  /// The words of the record of EQUIL for a region, from 1; -32768 for those that are not given.
  void GetEclipseEQUIL(std::int32_t iRegion, std::vector<float>& sValues, bool& qOK) const;
  /// One scalar, see `qvEclipseDat::getKeywordArgument`; False without a deck.
  DeckScalar GetEclipseKeyWordArgument(std::string_view zKeyWord) const;
  /// One property by its number, see `qvEclipseDat::getModelProperty`; False without a deck.
  DeckScalar getModelProperty(std::int32_t iProperty) const;
  /// One record of PINCH, from 1: thickness, gap option, largest gap, transmissibility and multiplier option.
  void getPINCH(std::int32_t iPinch, float& sThreshold, std::string& zGap, double& dMaxGap,
                std::string& zTransmissibility, std::string& zMultiplier, bool& qOK) const;
  std::int32_t NumberPINCH() const;  ///< records of it in force; 0 without
  bool PinchXY() const;
  /// The thresholds along X and Y; qOK False without PINCHXY.
  void getPINCHXY(float& sX, float& sY, bool& qOK) const;
  /// X1, Y1, X2, Y2, X3, Y3 as in the deck; qOK False without MAPAXES.
  void getMAPAXES(std::array<double, 6>& dMapAxes, bool& qOK) const;
  /// What `CreateCorners` took off all x and y; 0 without the option `OffSet`.
  void getOffSet(double& dX, double& dY, bool& qOK) const;
  /// Names of faults, how many segments each has, and the most that one has.
  void getFAULTS(std::vector<std::string>& zNames, std::int32_t& nFaults,
                 std::vector<std::int32_t>& nSegments, std::vector<float>& sMultipliers, std::int32_t& nMax,
                 bool& qOK) const;
  /// The segments of one fault, from 1.
  void GetFaultConnections(std::int32_t iFault, std::vector<std::int32_t>& iI1,
                           std::vector<std::int32_t>& iI2, std::vector<std::int32_t>& iJ1,
                           std::vector<std::int32_t>& iJ2, std::vector<std::int32_t>& iK1,
                           std::vector<std::int32_t>& iK2, std::vector<std::string>& zFaces, bool& qOK) const;
  /// All lines of EDIT; one empty line, with nLines 0, when there are none.
  void getEDITLines(std::vector<std::string>& zLines, std::int32_t& nLines, bool& qOK) const;
  /// Lines of SUMMARY and SCHEDULE with `RecordScheduleDeck`; one empty line, with nSchedule 0, without.
  void GetScheduleLines(std::vector<std::string>& zSchedule, std::int32_t& nSchedule, bool& qOK) const;
  /// The same, and for each section and END how many lines there are up to it.
  void GetScheduleLinesWithPointers(std::vector<std::string>& zSchedule, std::int32_t& nSchedule,
                                    std::vector<std::int32_t>& iPointers, std::int32_t& nPointers,
                                    bool& qOK) const;
  /// Files that INCLUDE names and that were not read, because they are excluded or their paths absolute.
  void getIncludeFiles(std::vector<std::string>& zFiles, std::int32_t& nFiles, bool& qOK) const;
  std::int32_t NumIncludeFiles() const;
  /// Patterns of names of files that loads to come leave out, when they keep lines.
  void getIncFileExcludes(std::vector<std::string>& zFiles, std::int32_t& nFiles, bool& qOK) const;
  void setIncFileExcludes(const std::vector<std::string>& zFiles, bool& qOK);
  std::int32_t NumIncFileSpecsToExclude() const;
  bool FMTOUT() const;      ///< deliberate: False without a schedule store, whatever the deck says
  bool UNIFOUTRST() const;  ///< restart output of the deck is unified

  // --- Restart results. Steps count from 1 in the order read; `iGridNumber` is the grid, 1 the global one.

  /// One step: values of the active cells, nActive by arrays, in the file's units, a 233-byte header for each
  /// array, source information, and a row of 55 items for each well and connection; nMarkers is the number of
  /// rows. Without values (`LoadData` False) xyData is one row. qOK False for a grid without arrays. Results
  /// are copies, so a step can be fetched again; `RestartValues` copies nothing.
  void GetRESTARTSEQUENCE(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData,
                          MarkerTable& vMarkers, std::int32_t& nMarkers, bool& qOK);
  /// The same with the markers as one block of bytes.
  void GetRESTARTSEQUENCEb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData,
                           std::vector<std::byte>& bMarkers, std::int32_t& nMarkers, bool& qOK);
  /// The same with the places of the arrays, 5 rows by arrays (see `ArrayTable::iFOD`); qFOD True when the
  /// values are to be fetched from there.
  void GetRESTARTSEQUENCEFOD(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                             SourceData& vSourceData, MarkerTable& vMarkers, std::int32_t& nMarkers,
                             ColumnTable<std::int32_t>& iFOD, bool& qFOD, bool& qOK);
  void GetRESTARTSEQUENCEFODb(std::int32_t iSeqnum, XYData& xyData, ByteTable& bHeaders,
                              SourceData& vSourceData, std::vector<std::byte>& bMarkers,
                              std::int32_t& nMarkers, ColumnTable<std::int32_t>& iFOD, bool& qFOD, bool& qOK);
  /// Drops the arrays and wells of one step; its date and size stay.
  void DeleteRESTARTSEQUENCE(std::int32_t iSeqnum, bool& qOK);
  /// Slots 1, 2, 3 of vSourceData take the size of the step's global grid; -1 and qOK False without the step.
  void GetRESTARTSEQUENCENxNyNz(std::int32_t iSeqnum, SourceData& vSourceData, bool& qOK);
  /// What a host needs to open the file for the places above.
  void getEclipseFODInfo(std::array<bool, 5>& qFileTypeSettings, bool& qOK);
  /// PVT table number of a well of the last step, by its number from 1, or with -1 by its name; an unknown
  /// name means the last well. -1 and qOK False when there is none.
  std::int32_t getWellPVTNum(std::string_view zWell, bool& qOK, std::int32_t iWellIndex = -1);

  // --- Restart, beyond what hosts of old ask for

  /// What the index says, after a load by the name of one; null else. It is held under code 28, also when
  /// the files that it is the index of cannot be read.
  const qvEclipseRSSPEC* RestartIndexFile() const;
  /// The steps held: number, days, date, grids, file.
  std::vector<RestartStep> RestartSteps() const;
  /// One grid of a step, with its arrays' names, units and places, and its wells; null when there is none.
  /// Holds until the next load or release.
  const RESTARTGRID* RestartGrid(std::int32_t iSeqnum, std::int32_t iGrid) const;
  /// The values of one array where they lie, by its place from 1 or by its name; empty when there is none or
  /// no values are held. Holds as long as the grid.
  std::span<const float> RestartValues(std::int32_t iSeqnum, std::int32_t iGrid, std::int32_t iVector) const;
  std::span<const float> RestartValues(std::int32_t iSeqnum, std::int32_t iGrid,
                                       std::string_view zName) const;
  /// The wells of one grid of a step with their connections, as records in the order of the file; none when
  /// the grid has no wells. Rates and numbers of connections are there after a load with `FullWellInfo` only.
  /// qOK False when there is no such grid.
  std::vector<WellRecord> RestartWells(std::int32_t iSeqnum, std::int32_t iGrid, bool& qOK) const;

  // --- INIT results, of the grid `iGridNumber`, 1 the global one

  /// The arrays: values of the active cells, nActive by arrays, in the file's units, a 233-byte header for
  /// each, source information (slots 64 to 66: size of the grid), and the selection used. The table is moved
  /// out; a second call reads the file again. Without values (`LoadData` False) xyData is one row. qOK False
  /// for a grid without arrays.
  void GetINITData(XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData, ByteTable& bOnlyUsed,
                   bool& qOK);
  /// The same with the places of the arrays (see `qvEclipseINIT::GetINITFODPointers`) and what a host needs
  /// to open the file for them; qFOD True when the values are to be fetched from there.
  void getINITDataFOD(XYData& xyData, ByteTable& bHeaders, SourceData& vSourceData, ByteTable& bOnlyUsed,
                      ColumnTable<std::int32_t>& iFOD, std::array<bool, 5>& qFileTypeSettings, bool& qFOD,
                      bool& qOK);
  /// Connection arrays of a kind: 1 within the grid, 2 between a local grid and the global one, 3 between
  /// local grids. Connections by arrays; qOK False, with the outputs as they were, when there are none.
  void GetINITNNCData(std::int32_t iType, XYData& xyData, ByteTable& bHeaders, bool& qOK);
  /// -1 each and qOK False for a grid that is none.
  void GetINITNxNyNz(std::int32_t& Nx, std::int32_t& Ny, std::int32_t& Nz, bool& qOK);
  /// Cell number, from 1, of each active cell, as the pore volumes tell; 0 for the last ones where fewer
  /// cells have a pore volume. qOK False without pore volumes.
  void GetINITA2N(std::vector<std::int32_t>& iA2N, bool& qOK);
  /// One simulation table as a plain table of singles, rows by columns, with a header for each column: as it
  /// stands in the file, reciprocals and all. `GetINITPhysicalTable` gives it as it is meant.
  void GetINITTableData(std::string_view zTable, std::int32_t iTable, XYData& xyData, ByteTable& bHeaders,
                        SourceData& vSourceData, bool& qOK);
  /// See `qvEclipseDTAB::getTable`.
  void getTable(std::string_view zTable, std::int32_t iTable, std::vector<float>& dTable,
                std::vector<std::int32_t>& iDimens, std::int32_t& nDims, bool& qOK, bool qDefault = true);
  void GetTableTypes(std::vector<std::string>& zTables, std::int32_t& nTables, bool& qOK) const;
  /// Tables of a name; 0 for one that is not there.
  std::int32_t NumberTables(std::string_view zTable) const;
  /// Whether the INIT file has simulation tables and all of them could be taken.
  bool IsINITTableData() const;
  void DeleteInitData(bool& qOK);
  /// The connection arrays of a kind paired with the cells that they join, which the grid file tells: both
  /// must be loaded. Of the grid `iGridNumber`, in the order of the file. qOK False when one is missing, or
  /// when the grid has other connections than the INIT file has values.
  std::vector<Connection> InitConnections(std::int32_t iType, bool& qOK);
  /// The scratch file handed over with `SaveScratchFiles`; empty when memory sufficed. The caller deletes it.
  std::string InitScratchFileName() const;

  // --- Model flags, of the INIT file that is held, or of the deck: see above; False and 0 without one.
  // A deck gives the phases, DUALPORO, DUALPERM, MISCIBLE and ROCKCOMP; all others are False, as is Polymer

  bool Oil() const { return modelFlag(&ModelFlags::Oil); }
  bool Water() const { return modelFlag(&ModelFlags::Water); }
  bool Gas() const { return modelFlag(&ModelFlags::Gas); }
  bool DissolvedGas() const { return modelFlag(&ModelFlags::DissolvedGas); }
  bool VapourisedOil() const { return modelFlag(&ModelFlags::VapourisedOil); }
  bool Brine() const { return modelFlag(&ModelFlags::Brine); }
  bool Polymer() const { return modelFlag(&ModelFlags::Polymer); }
  bool Solvent() const { return modelFlag(&ModelFlags::Solvent); }
  bool Surfactant() const { return modelFlag(&ModelFlags::Surfactant); }
  bool Foam() const { return modelFlag(&ModelFlags::Foam); }
  bool Temperature() const { return modelFlag(&ModelFlags::Temperature); }
  bool DualPorosity() const { return modelFlag(&ModelFlags::DualPorosity); }
  bool DualPermeability() const { return modelFlag(&ModelFlags::DualPermeability); }
  bool Miscible() const { return modelFlag(&ModelFlags::Miscible); }
  bool Hysteresis() const { return modelFlag(&ModelFlags::Hysteresis); }
  bool EndPointScaling() const { return modelFlag(&ModelFlags::EndPointScaling); }
  bool DirectionalEndScale() const { return modelFlag(&ModelFlags::DirectionalEndScale); }
  bool ReversibleEndScale() const { return modelFlag(&ModelFlags::ReversibleEndScale); }
  bool AlternativeEndScale() const { return modelFlag(&ModelFlags::AlternativeEndScale); }
  bool DirectionalKR() const { return modelFlag(&ModelFlags::DirectionalKR); }
  bool ReversibleKR() const { return modelFlag(&ModelFlags::ReversibleKR); }
  bool RockCompaction() const { return modelFlag(&ModelFlags::RockCompaction); }
  bool ReversibleRockCompaction() const { return modelFlag(&ModelFlags::ReversibleRockCompaction); }
  bool Stone() const { return modelFlag(&ModelFlags::Stone); }
  bool Sudation() const { return modelFlag(&ModelFlags::Sudation); }
  bool CoalBedMethane() const { return modelFlag(&ModelFlags::CoalBedMethane); }
  bool CompressedVE() const { return modelFlag(&ModelFlags::CompressedVE); }
  bool VerticalEquilibrium() const { return modelFlag(&ModelFlags::VerticalEquilibrium); }
  bool NewTransmissibility() const { return modelFlag(&ModelFlags::NewTransmissibility); }
  bool APITracking() const { return modelFlag(&ModelFlags::APITracking); }
  std::int32_t NumberPhases() const;
  std::int32_t Units() const;  ///< 1 metric, 2 field, 3 laboratory, 4 metric with atmospheres

  // --- INIT, beyond what hosts of old ask for

  /// The file itself, with all its grids; null when none is held. Holds until the next load or release.
  qvEclipseINIT* Init();
  const qvEclipseINIT* Init() const;
  /// One array by its name, without regard to case: the values of active cells, or with qAllCells those of
  /// all cells in natural order, `NullValue` in those that are not active.
  void GetINITArray(std::string_view zName, bool qAllCells, std::vector<float>& sValues, bool& qOK);
  /// One simulation table with named columns, units and physical values.
  PhysicalTable GetINITPhysicalTable(std::string_view zTable, std::int32_t iTable, bool& qOK) const;

  // --- Summary, beyond what hosts of old ask for

  /// The vectors of a specification, dummies left out, without reading data. `FileName` is the specification.
  std::vector<SummaryVector> ListSummaryVectors(bool& qOK);
  /// The vectors of the table that was fetched last, one for each column, in order; `column` is the column.
  /// Names are whole here, also where they are too long for the fields of a header.
  const std::vector<SummaryVector>& Vectors() const;
  /// The rows of the table that was loaded or fetched last: run, file and report step of each.
  const std::vector<SummaryRow>& Rows() const;
  /// Whether each row has a value of a vector, from 1 in the table that was fetched: rows of a run of the
  /// chain that does not have the vector contain 0. Empty for a number that is none.
  std::vector<bool> RowsWithValues(std::int32_t iVector) const;
  /// The moment of each row of a fetched table, from the start date with its time of day and the time in its
  /// first column. Empty when the file has no start date or the table no TIME.
  std::vector<Moment> RowDates(const XYData& xyData) const;
  /// Start of the run, with its time of day.
  std::optional<Moment> StartDate() const;
  /// Patterns of the last load that no vector or array matched, whatever `whichtype` is now.
  std::vector<std::string> UnmatchedPatterns() const;
  /// Whether the last load met damage or an incomplete record, whatever `whichtype` is now. What is fetched
  /// was read before it.
  bool Damaged() const;

  // --- RFT and PLT results
  //
  // Tests count from 1, in the order of the file; a number out of range, and any call before a load, is a
  // failure. Tables have a row for each connection or segment and a header for each column: class word, units
  // as in the file, well, number of the test within the well, and name. After qOK False outputs are as they
  // were before, but for tables of segments.

  /// Which kinds of data a test of the simulator holds; all three can be True.
  void getRFTTestInfo(std::int32_t iTest, bool& qRFT, bool& qPLT, bool& qSEG, bool& qOK);
  /// Pressures and saturations, the depth in front. zDate is "15 JUL 2003", with " 06:30" behind it for a
  /// test that is not at midnight; zGrid is empty for the main grid, and so is zTestOrigin always.
  void GetRFTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iRFTtest,
                  std::string& zDate, std::string& zWell, std::string& zGrid, std::string& zTestOrigin,
                  bool& qOK);
  /// Rates and pressures by connection, then the columns of the RFT table in the same order of rows.
  void GetPLTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iPLTtest,
                  std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK);
  /// The same of one branch, from 1.
  void GetPLTBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iPLTtest,
                        std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK,
                        std::int32_t iBranch = 0);
  /// The segments of one branch, from 1; zDate without a time of day.
  void GetBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iSEGtest,
                     std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK,
                     std::int32_t iBranch = 0);
  /// The inflow control devices that empty into one branch of the tubing, by their own numbers, from 1; zDate
  /// without a time of day.
  void GetICDBRANCHtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iSEGtest,
                        std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK,
                        std::int32_t iBranch = 0);
  /// The name of the grid of each connection and a blank behind it, "ROOT " for the main grid.
  void getRFTtestGrid(std::int32_t iTest, std::vector<char>& bGrids, bool& qOK);
  // Branches of a test, 0 for a test that is not there.
  std::int32_t NumberPLTBranches(std::int32_t iTest) const;
  std::int32_t NumberBranches(std::int32_t iTest) const;
  std::int32_t NumberICDBranches(std::int32_t iTest) const;
  /// One test of a user's file, its depth column in front; zDate as in `GetRFTtest`, zOrigin as the file
  /// says. The table is empty when the file was read as one of the other kind.
  void getUserRFTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iRFTtest,
                      std::string& zDate, std::string& zWell, std::string& zGrid, std::string& zTestOrigin,
                      bool& qOK);
  void getUserPLTtest(std::int32_t iTest, XYData& xyData, ByteTable& bHeaders, std::int32_t& iPLTtest,
                      std::string& zDate, std::string& zWell, std::string& zGrid, bool& qOK);

  // --- RFT and PLT, beyond what hosts of old ask for

  /// Tests held of the simulator's file and of the user's.
  std::int32_t NumberRFTTests() const;
  std::int32_t NumberUserTests() const;
  /// The tests of the simulator's RFT file `FileName` as data, all arrays as they stand in it and nothing
  /// worked out; needs no load. Tests before damage are given, the one that it stands in too.
  std::vector<WellTest> ListRFTTests(bool& qOK) const;
  /// The tests of the user's file that was loaded, as data.
  std::vector<UserTest> ListUserTests() const;

 private:
  void readByCode(bool& qOK);
  bool isOfType(const std::string& zFileName, std::int32_t iFileType) const;
  void requireHeld(const ReaderPart& part) const;
  bool modelFlag(bool ModelFlags::*flag) const;

  template <class Body>
  void perform(const char* routine, bool& qOK, Body body) const;
  template <class Read>
  void load(ReaderPart& part, const char* routine, bool& qOK, Read read);
  template <class Part, class Ask>
  void fetch(Part& part, const char* routine, bool& qOK, Ask ask) const;
  template <class Fetch>
  void fetchSummary(const char* routine, SourceData& vSourceData, ByteTable& bOnlyUsed, bool& qOK,
                    Fetch fetchTable);

  Session* session_;
  std::unique_ptr<ReaderParts> parts_;
};

}  // namespace lumbarn
