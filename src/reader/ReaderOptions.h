#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "../record/cFILETYPE.h"
#include "../shapes/OnlyList.h"

namespace lumbarn {

/// The options of `qvEclipseReader`, each with its default. Options of file kinds that are not read yet are
/// carried and have no effect. Step and file ranges count from 1 for summaries; -1 leaves an end open.
struct ReaderOptions {
  bool LoadData = true;  ///< load data after reading the header part
  bool FullWellInfo = false;
  std::int32_t MarkerMethod = 3;
  std::int32_t FaceVisibility = 3;
  std::string FileName;  ///< the file; for a summary its specification
  std::string zOrigin;   ///< case label; when empty, taken from the file name
  std::string zOnly;     ///< vectors to load, by full name or pattern, commas between; empty: all
  std::string zExcept;   ///< vectors to leave out, likewise
  std::int32_t nOnly = 0;
  /// File kind code: 11 and 16 restart, 12 and 13 summary, 14 GRID, 15 INIT, 18 RFT, 23 EGRID, 76 and 77 user
  /// RFT and PLT.
  std::int32_t whichtype = 0;
  bool Silent = false;    ///< no dialog
  bool Formatted = true;  ///< form of the file; replaced by what recognition finds, as the next two
  bool UNIX = false;
  bool byteSwap = false;
  bool Unified = false;   ///< one file for all steps; found out when no multiple files are there
  bool NoRestart = true;  ///< do not follow the restart chain of a summary
  bool NoSat = true;
  bool NoPVT = true;
  bool NNC = false;
  bool CompressOnLoad = true;  ///< keep geometry of active cells only; unformatted files
  bool Coarsened = true;       ///< make blocks of coarsened cells one cell
  bool WellSeg = false;
  bool AllData = true;      ///< all steps wanted
  bool NoInactive = false;  ///< all cells of a GRID file count as active
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
  std::int32_t iStart = -1;  ///< step or file range; -1 is open
  std::int32_t iEnd = -1;
  std::int32_t ReadPosition = -1;  ///< resume position of a unified summary, low word, counted from 1
  PositionWords ReadPosition64;    ///< the same, both words; this is the one that is used
  std::int32_t nMnemonics = 0;     ///< this and the next six: for the host's own use
  std::int32_t nScale = 0;
  std::int32_t nWells = 0;
  std::int32_t nLgrs = 0;
  std::int32_t nLocalCells = 0;
  std::int32_t nData = 0;
  std::int32_t nUnits = 0;
  std::int32_t iGridNumber = 1;
  std::int32_t LoadEvery = 1;
  bool ImportSLN = false;
  bool ImportALLOC = false;
  bool LoadAllALLOC = false;
  bool AllocationsOnly = false;
  bool InitTables = true;  ///< read the simulation tables of an INIT file
  bool RUNSPECOnly = false;
  bool ProcessCorners = true;
  bool ProcessAll = false;
  bool ProcessPLT = true;  ///< this and the next two: kept with the tests and without effect on them
  bool SortedPLT = true;
  bool ScaledPLT = true;
  bool HorizWell = false;  ///< build along-well profiles after a summary load
  bool MiniSteps = false;  ///< profiles at every row, not only at the last of each report step
  bool InFlow = false;     ///< profiles accumulated along the well
  bool Connect = false;    ///< profiles by connection
  bool RecordScheduleDeck = false;
  bool RecordReportStepKeywords = false;
  bool PrepareBaseRun = false;
  bool RecordComments = false;
  bool AppendSchedule = false;
  bool IPRCurve = false;
  bool SaveScratchFiles = false;  ///< hand over the scratch file of a table that memory cannot hold
  bool LoadHPGridFiles = false;   ///< take grids from the cache in HPGFolder, when it is that of the file
  bool SaveHPGridFiles = false;   ///< keep grids that were read there
  bool HPGAllowed = false;
  std::string HPGFolder;      ///< folder for cached grid geometry; empty: none is read or written
  std::string HPGFileName;    ///< the cache file of a grid; empty: in HPGFolder, by the name of the grid file
  std::string GILFFileName;   ///< carried for the host
  std::string HPGChosenFile;  ///< the cache file that the last grid load took its data from; empty: none
  ByteTable bOnly = emptyOnlyList();  ///< selection by class and member, 56 bytes an entry
  bool qOnly = false;                 ///< bOnly says what to load; False: what to leave out

  // Additions to the options that hosts know of old.
  std::vector<std::string> VectorPatterns;  ///< as zOnly, one list each; both are taken together
  std::vector<std::string> ExceptPatterns;  ///< as zExcept
  std::string
      IndexFolder;  ///< folder for index files of what is loaded (restart sets, INIT); empty: none is written
  bool AcceptDamaged = false;  ///< succeed with what was read before damage; see `Damaged`
};

}  // namespace lumbarn
