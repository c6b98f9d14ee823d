#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../arrays/ActiveCells.h"
#include "../arrays/ArraySelection.h"
#include "../index/HeaderWords.h"
#include "../record/FormFlags.h"
#include "../record/RecordCursor.h"
#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "InitGrid.h"
#include "SimulationTables.h"

namespace lumbarn {

/// One INIT file: the static arrays of the global grid and of each local grid, the model flags, the
/// connection arrays and the simulation tables. Set the members, let `check` look at the file, call `load`,
/// then ask.
///
/// The file is walked first, which determines what each grid keeps; then values are decoded directly into
/// their columns. Whatever is asked for and not in memory is read from the file again.
///
/// Functions throw BadRecord for damage and Fault. Damage ends the load; what was read before it is kept and
/// can be asked for, and the session's diagnoses say where the file breaks off. A record with data of an
/// unknown type ends the load too, with success. After a load that was canceled there is nothing to ask for.
class LUMBARN_API InitFile : public FormFlags {
 public:
  explicit InitFile(Session& session) : tables(session), session_(&session) {}
  ~InitFile();
  InitFile(const InitFile&) = delete;
  InitFile& operator=(const InitFile&) = delete;

  std::string FileName;
  std::string Origin;
  bool LoadData = true;               ///< False: note what there is and where, read no values
  bool Tables = true;                 ///< read the simulation tables
  std::int32_t iGrid = 1;             ///< current grid, from 1
  std::vector<std::int32_t> iHeader;  ///< the last INTEHEAD
  std::int32_t iDay = 0;              ///< from the first header that has a date
  std::int32_t iMonth = 0;
  std::int32_t iYear = 0;
  bool qHaveDate = false;
  bool qTABDIMS = false;
  bool qTAB = false;
  std::int32_t nSEQNUM = 0;
  bool SaveScratchFile = false;  ///< hand over the scratch file instead of reading it back
  ArraySelection selection;      ///< patterns of array names
  bool AcceptDamaged = false;    ///< succeed with what precedes damage
  bool qDamaged = false;         ///< the last load did not reach the end of the file, or lost an array

  SimulationTables tables;

  /// Whether the first record is INTEHEAD or SEQNUM. Success sets FileName and its form.
  bool check(const std::string& path);
  /// Reads the file; what an earlier call read is dropped. False when it cannot be opened, is damaged (unless
  /// AcceptDamaged) or the load is canceled.
  bool load();

  /// Names of the arrays of the global grid that a load would keep, up to the first local grid.
  struct ArrayNames {
    std::vector<std::string> names;
    bool complete = true;  ///< the file was read without damage, or AcceptDamaged is set
  };
  /// Nothing when the file cannot be opened or the walk is canceled.
  std::optional<ArrayNames> listArrays() const;

  std::int32_t nGrids() const { return static_cast<std::int32_t>(tGrids_.size()); }
  /// A grid by its number, from 1. Throws Fault 9 for a number that is none.
  const GRIDINFO& grid(std::int32_t number) const;
  const GRIDINFO& grid() const { return grid(iGrid); }
  std::string GridName(std::int32_t number) const;        ///< empty for a number that is none
  std::int32_t GridNumber(std::string_view zGrid) const;  ///< 0 when there is none of that name

  // --- Values; all return nothing when there are none

  /// Of the current grid: nActive rows, one column for each array, moved out, so that a second call reads the
  /// file again. Without LoadData one row, -1 in its first element. Not for a grid with a scratch file.
  std::optional<XYData> takeValues();
  /// The same of a grid whose values went through a scratch file, which is removed.
  std::optional<XYData> takeScratchValues();
  /// One array of a grid, both numbers from 1: the values of active cells, or those of all cells in natural
  /// order, the session's null value in cells that are not active. Nothing, with a diagnosis, when the active
  /// cells are not known.
  std::optional<std::vector<float>> arrayValues(std::int32_t number, std::int32_t iArray, bool allCells);
  /// The active cells of a grid; null without pore volumes. Where fewer cells have a pore volume than are
  /// active, the last numbers are 0; see `InitActiveCells`.
  const std::vector<std::int32_t>* activeCells(std::int32_t number);
  /// The connection arrays of the current grid of type 1, 2 or 3, see `whichNNCType`: one row for each
  /// connection, one column for each array.
  std::optional<XYData> connectionValues(std::int32_t iType);
  /// The record of a type of the current grid; null for a type or a grid that is none.
  const tNNC* connections(std::int32_t iType) const;

  bool qHaveTables() const { return qHaveTables_; }

 protected:
  Session& session() const { return *session_; }
  /// Null for a number that is none.
  GRIDINFO* find(std::int32_t number);

 private:
  struct Scan;

  GRIDINFO& current() { return tGrids_[static_cast<std::size_t>(iGrid) - 1]; }
  void reset();
  bool readFile();
  void dropAll();
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

  Session* session_;
  std::vector<GRIDINFO> tGrids_;
  bool qHaveTables_ = false;
  bool qFlagsKnown_ = false;        // some word of the global grid's LOGIHEAD is true
  bool unreadable_ = false;         // damaged in a way that fails the load
  std::optional<FileStamp> stamp_;  // of the file when it was loaded
};

}  // namespace lumbarn
