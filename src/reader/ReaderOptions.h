#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "../record/cFILETYPE.h"
#include "../shapes/OnlyList.h"

namespace lumbarn {

/// The options of `qvEclipseReader`, each with its default, in two groups: those in effect and those that are
/// carried only.
struct ReaderOptions {
  // --- In effect: the readers act on these, or set them.

  std::string FileName;  ///< the file, or the root name or folder of a run
  /// File kind code: 11 and 16 restart, 12 and 13 summary, 14 GRID, 15 INIT, 18 RFT, 23 EGRID, 25 deck, 76
  /// and 77 user RFT and PLT.
  std::int32_t whichtype = 0;
  bool Silent = false;   ///< no dialog
  std::string zOrigin;   ///< case label; when empty, taken from the file name
  bool LoadData = true;  ///< load data after reading the header part
  bool FullWellInfo = false;
  std::int32_t MarkerMethod = 3;
  std::string zOnly;       ///< vectors to load, by full name or pattern, commas between; empty: all
  std::string zExcept;     ///< vectors to skip, likewise
  std::int32_t nOnly = 0;  ///< set by `ECLReadData`: vectors counted by a selection by class or name
  bool Formatted = true;   ///< form of the file; set by recognition, as the next two
  bool UNIX = false;
  bool byteSwap = false;
  /// One file for all steps. True makes a summary load read the unified file; otherwise it is set to what is
  /// found. A restart load sets it always.
  bool Unified = false;
  bool NoRestart = true;       ///< do not follow the restart chain of a summary
  bool AllData = true;         ///< set to False by a load with `iStart`
  bool CompressOnLoad = true;  ///< keep geometry of active cells only; unformatted files
  bool Coarsened = true;       ///< make blocks of coarsened cells one cell
  bool NoInactive = false;     ///< all cells of a GRID file count as active
  /// Steps to read, by report step number. Both -1: all steps. Unified file: `iStart` alone reads that one
  /// step, `iEnd` alone the steps up to it (of a summary from 1). Step files: `iStart` alone reads that
  /// step's file or the next one, `iEnd` alone has no effect.
  std::int32_t iStart = -1;
  std::int32_t iEnd = -1;
  PositionWords ReadPosition64;   ///< resume position of a unified summary, counted from 1
  std::int32_t iGridNumber = 1;   ///< grid of a fetch: 1 the global one
  bool InitTables = true;         ///< read the simulation tables of an INIT file
  bool HorizWell = false;         ///< build along-well profiles after a summary load
  bool MiniSteps = false;         ///< profiles at every row, not only at the last of each report step
  bool InFlow = false;            ///< profiles accumulated along the well
  bool Connect = false;           ///< profiles by connection
  bool SaveScratchFiles = false;  ///< return the scratch file of a table that memory cannot hold
  bool LoadHPGridFiles = false;   ///< take grids from the cache in HPGFolder, when it is that of the file
  bool SaveHPGridFiles = false;   ///< keep grids that were read there
  std::string HPGFolder;          ///< folder for cached grid geometry; empty: none is read or written
  std::string HPGFileName;    ///< the cache file of a grid; empty: in HPGFolder, by the name of the grid file
  std::string HPGChosenFile;  ///< set: the cache file that the last grid load took its data from, or empty
  ByteTable bOnly = emptyOnlyList();  ///< selection by class and member, 56 bytes an entry
  bool qOnly = false;                 ///< bOnly says what to load; False: what to skip

  bool RUNSPECOnly = false;         ///< read no more of a deck than its RUNSPEC
  bool ProcessCorners = true;       ///< read COORD and ZCORN of a deck
  bool ProcessAll = false;          ///< follow INCLUDE in GRID, EDIT and REGIONS of a deck
  bool OffSet = false;              ///< take an offset off the coordinates of a deck's grid, see `getOffSet`
  bool RecordScheduleDeck = false;  ///< keep the lines of SUMMARY and SCHEDULE of a deck
  bool RecordReportStepKeywords = false;  ///< keep the lines of the keywords of a report step

  // Additions to the options that existing hosts know.
  std::vector<std::string> VectorPatterns;  ///< as zOnly, one list each; both apply together
  std::vector<std::string> ExceptPatterns;  ///< as zExcept
  std::string
      IndexFolder;  ///< folder for index files of restart sets and INIT files loaded; empty: none written
  bool AcceptDamaged = false;  ///< succeed with what was read before damage; see `Damaged`

  // --- Carried only: kept for the host, without effect on what is read.

  std::int32_t FaceVisibility = 3;
  bool NoSat = true;
  bool NoPVT = true;
  bool NNC = false;
  bool WellSeg = false;
  bool GridPrompts = false;
  bool EclipseNames = true;
  bool MergeRows = true;
  std::int32_t RowVariable = 1;
  std::int32_t RowUnits = 2;
  std::int32_t RowMember = 3;
  std::int32_t RowIndex = 4;
  std::int32_t RowData = 5;
  std::int32_t RowVerbose = 0;
  std::int32_t RowLGR = 0;
  std::string RowDateFormat;
  std::int32_t FixedLength = 0;
  std::int32_t ReadPosition = -1;  ///< see ReadPosition64
  std::int32_t nMnemonics = 0;     ///< this and the next six: for the host's own use
  std::int32_t nScale = 0;
  std::int32_t nWells = 0;
  std::int32_t nLgrs = 0;
  std::int32_t nLocalCells = 0;
  std::int32_t nData = 0;
  std::int32_t nUnits = 0;
  std::int32_t LoadEvery = 1;
  bool ImportSLN = false;
  bool ImportALLOC = false;
  bool LoadAllALLOC = false;
  bool AllocationsOnly = false;
  bool ProcessPLT = true;  ///< this and the next two: stored with the tests
  bool SortedPLT = true;
  bool ScaledPLT = true;
  bool PrepareBaseRun = false;
  bool RecordComments = false;
  bool AppendSchedule = false;
  bool IPRCurve = false;
  bool HPGAllowed = false;
  std::string GILFFileName;
};

}  // namespace lumbarn
