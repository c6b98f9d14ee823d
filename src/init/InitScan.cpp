// The walk over an INIT file: which arrays each grid keeps, and where they stand.

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../arrays/ArrayUnits.h"
#include "../index/ActiveCount.h"
#include "../index/RestartIndex.h"
#include "../index/SectionTracker.h"
#include "../record/ByteSource.h"
#include "../record/LoadedFiles.h"
#include "../shapes/OnlyList.h"
#include "../support/Dates.h"
#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Text.h"
#include "InitFile.h"

namespace lumbarn {

namespace {

constexpr std::string_view firstKeywords[] = {"INTEHEAD", "SEQNUM"};

/// A diagnosis of the record that a cursor is at.
Diagnosis ofRecord(Message message, const RecordCursor& cursor) {
  return {.message = message,
          .path = cursor.path(),
          .keyword = cursor.header().keyword,
          .occurrence = cursor.occurrence(),
          .offset = cursor.header().headerAt};
}

}  // namespace

/// One walk.
struct InitFile::Scan {
  RecordCursor& cursor;
  bool untilLocalGrid = false;  ///< end at the first LGR
  SectionTracker sections;
  bool afterGap = false;  ///< damage may hide where another grid begins
};

std::int32_t whichNNCType(std::string_view zName) {
  constexpr std::int32_t noConnections = 4;
  for (const auto* quantity : {"DIFF", "TRAN", "HEAT"}) {
    if (!zName.starts_with(quantity)) continue;
    const auto between = zName.substr(4);
    if (between == "NNC") return 1;
    if (between == "GL") return 2;
    if (between == "LL") return 3;
  }
  return noConnections;
}

bool InitFile::check(const std::string& path) {
  std::string why;
  const auto source = FileSource::open(path, why);
  const auto detected = source ? detectForm(*source, firstKeywords, *session_) : std::nullopt;
  if (!detected) return false;
  setFlags({});
  setForm(detected->form);
  FileName = path;
  return true;
}

/// Null, with a diagnosis, when the file cannot be opened. Throws BadRecord when it is no longer the file
/// that was loaded.
std::unique_ptr<RecordCursor> InitFile::open() {
  std::string why;
  std::shared_ptr<const ByteSource> source = FileSource::open(FileName, why);
  if (!source) {
    session_->diagnose({.message = Message::FileOpen, .path = FileName, .problem = std::move(why)});
    return nullptr;
  }
  if (stamp_) {
    if (auto change = changedSince(*stamp_, FileName)) throw BadRecord(std::move(*change));
  } else {
    stamp_ = source->stamp();
  }
  auto cursor = std::make_unique<RecordCursor>(std::move(source), form(), FileName);
  cursor->attach(*session_, RecordFile::Init);
  return cursor;
}

void InitFile::endAtDamage(Diagnosis diagnosis, std::string action) {
  diagnosis.path = FileName;
  diagnosis.action = std::move(action);
  session_->diagnose(std::move(diagnosis));
  qDamaged = unreadable_ = true;
}

void InitFile::checkUnchanged(const RecordCursor& cursor) {
  try {
    cursor.checkUnchanged();
  } catch (BadRecord& change) {
    endAtDamage(std::move(change.diagnosis()), "kept the arrays that were read");
  }
}

/// Takes record after record until the file, or what is wanted of it, ends. False when it was cancelled.
bool InitFile::walk(Scan& scan) {
  for (bool more = true; more;) {
    try {
      while ((more = scan.cursor.next() && takeRecord(scan))) {
        if (session_->yield()) return false;
      }
    } catch (BadRecord& damage) {
      more = continueBehind(scan, std::move(damage.diagnosis()));
    }
  }
  return !session_->cancelled();
}

/// False when no record follows the damage.
bool InitFile::continueBehind(Scan& scan, Diagnosis diagnosis) {
  const auto gap = passDamage(scan.cursor, diagnosis, *session_);
  scan.afterGap = true;
  std::string action = gap ? diagnosis.action : "kept the arrays before";
  endAtDamage(std::move(diagnosis), std::move(action));
  return gap.has_value();
}

/// Whether a record behind damage is of the current grid whatever the damage hides: only the global grid has
/// tables, and arrays have the length of their grid.
bool InitFile::isOfGridAfterGap(const RecordHeader& header) const {
  if (header.keyword == "TABDIMS" || header.keyword == "TAB") return true;
  const auto& grid = tGrids_[static_cast<std::size_t>(iGrid) - 1];
  return header.count > 0 && (header.count == grid.nCells || header.count == grid.nActive);
}

/// False when the walk is to end.
bool InitFile::takeRecord(Scan& scan) {
  const auto& header = scan.cursor.header();
  switch (scan.sections.take(scan.cursor)) {
    case SectionMark::Step:
      return ++nSEQNUM < 2;  // the second is another step's
    case SectionMark::LocalGrid:
      if (scan.untilLocalGrid) return false;
      scan.afterGap = false;
      AddLGRGrid(scan.sections.grid());
      return true;
    case SectionMark::GlobalGrid:
      scan.afterGap = false;
      iGrid = 1;
      return true;
    default:
      break;
  }
  if (scan.afterGap && !isOfGridAfterGap(header)) return true;
  switch (header.type) {
    case ElementType::Integer:
      takeInteger(scan);
      return true;
    case ElementType::Single:
      takeArray(scan);
      return true;
    case ElementType::Double:
      takeDouble(scan);
      return true;
    case ElementType::Text:
      return true;
    case ElementType::Logical:
      takeLogical(scan);
      return true;
    default:
      break;
  }
  if (header.count <= 0) return true;
  Diagnosis diagnosis = ofRecord(Message::InitRecordType, scan.cursor);
  diagnosis.found = header.typeWord;
  diagnosis.action = "stopped; kept the arrays before";
  session_->diagnose(std::move(diagnosis));
  qDamaged = true;  // deliberate: it ends the load, which is no failure
  return false;
}

void InitFile::takeInteger(Scan& scan) {
  const auto& keyword = scan.cursor.header().keyword;
  if (keyword == "INTEHEAD") {
    takeHeader(scan);
  } else if (keyword == "TABDIMS") {
    tables.FileName = FileName;
    tables.offset = scan.cursor.header().headerAt;
    if (Tables) tables.setWords(scan.cursor.integers());
    qTABDIMS = qTABDIMS || Tables;
  } else {
    takeArray(scan);
  }
}

/// A grid of too many cells is a fault; with AcceptDamaged it is damage like any other.
void InitFile::takeHeader(Scan& scan) {
  try {
    processINTEHEAD(HeaderWords(scan.cursor.integers()));
  } catch (const Fault& fault) {
    Diagnosis diagnosis = ofRecord(Message::InitCellCount, scan.cursor);
    diagnosis.expected = "a product below 2^63";
    diagnosis.found = fmt::format("{} x {} x {}", current().Nx, current().Ny, current().Nz);
    if (AcceptDamaged) throw BadRecord(std::move(diagnosis));
    diagnosis.action = fault.what();
    session_->diagnose(std::move(diagnosis));
    keepArrays();
    throw;
  }
}

void InitFile::takeDouble(Scan& scan) {
  if (scan.cursor.header().keyword != "TAB") return;
  if (Tables) tables.setValues(scan.cursor.doubles());
  qTAB = true;
}

void InitFile::takeLogical(Scan& scan) {
  if (scan.cursor.header().keyword != "LOGIHEAD") return;
  std::vector<std::int16_t> words(static_cast<std::size_t>(scan.cursor.header().count));
  scan.cursor.readLogicals(words);
  takeLogicalHeader(words, current().iProgram, current().flags);
  if (iGrid == 1) qFlagsKnown_ = std::ranges::any_of(words, [](std::int16_t word) { return word != 0; });
  if (iGrid != 1) current().flags.DualPorosity = tGrids_.front().flags.DualPorosity;
}

void InitFile::processINTEHEAD(HeaderWords words) {
  constexpr std::int32_t frontSim = 5000;
  auto& grid = current();
  words.take(95, grid.iProgram);
  grid.qE100 = !words.isE300();
  grid.qFrontSim = words(95) == frontSim;
  grid.Nx = words(9);
  grid.Ny = words(10);
  grid.Nz = words(11);
  grid.nCells = cellCount(grid.Nx, grid.Ny, grid.Nz);
  const StatedActive stated = statedActiveCells(words, true);
  grid.nActive = static_cast<std::int32_t>(stated.active);
  grid.nOtherActive = static_cast<std::int32_t>(stated.other);
  grid.nPhases = words(15);
  const Phases phases = phasesOf(grid.nPhases);
  grid.flags.Oil = phases.oil;
  grid.flags.Water = phases.water;
  grid.flags.Gas = phases.gas;
  if (iGrid == 1) {
    tables.setPhases(grid.nPhases);
    tables.setProgram(grid.iProgram);
  }
  if (!qHaveDate && words(65) > 0 && words(66) > 0 && words(67) > 0) {
    qHaveDate = true;
    iDay = words(65);
    iMonth = words(66);
    iYear = words(67);
  }
  grid.iUnits = grid.qFrontSim ? words(3) - frontSim : words(3);
  iHeader = words.words();
}

void InitFile::AddLGRGrid(std::string_view zName) {
  iGrid = GridNumber(zName);
  if (iGrid != 0) return;
  tGrids_.emplace_back();
  tGrids_.back().GridName = zName;
  iGrid = nGrids();
}

bool InitFile::checkINITArray(const RecordHeader& header) {
  const auto& grid = current();
  const std::string name = upper(header.keyword);
  if (name.empty() || header.count == 0) return false;
  if (name != "PORV" && header.count != grid.nActive && header.count != grid.nCells) return false;
  if (!checkEclipseONLYList(*session_, name)) return false;
  return selection.chooses(name);
}

/// Connection arrays have a place of their own, whatever their length and the selection; all other arrays
/// must be as long as the grid, which is known when all of them are.
void InitFile::takeArray(Scan& scan) {
  constexpr std::int32_t noConnections = 4;
  const auto& header = scan.cursor.header();
  const bool single = header.type == ElementType::Single;
  const std::string name = upper(header.keyword);
  if (whichNNCType(name) != noConnections) {
    if (single) AddINITNNCArray(header, scan.cursor);
    return;
  }
  auto& grid = current();
  if (single && name == "PORV") {
    grid.PORV = header;
    grid.active.reset();
  }
  if (header.count > 0) grid.candidates.push_back(header);
}

/// The arrays that are as long as their grids and selected.
void InitFile::keepArrays() {
  for (iGrid = 1; iGrid <= nGrids(); ++iGrid) {
    auto& grid = current();
    ArrayLengths lengths;
    for (const RecordHeader& header : grid.candidates) {
      if (mayBeCellArray(header.type, header.keyword)) lengths.add(header.count);
    }
    const GridCells cells{.cells = grid.nCells, .active = grid.nActive, .otherActive = grid.nOtherActive};
    grid.nActive = static_cast<std::int32_t>(lengths.decideActive(cells));
    for (RecordHeader& header : grid.candidates) {
      if (!checkINITArray(header)) continue;
      const bool longer = header.count > grid.nActive && LoadData;
      const auto kind = header.type == ElementType::Integer ? ArrayKind::Integer
                        : longer                            ? ArrayKind::Compressed
                                                            : ArrayKind::Single;
      // The name as it is shown; the header keeps that of the file.
      std::string name = upper(header.keyword);
      if (std::ranges::find(grid.arrays, name, &KeptArray::name) != grid.arrays.end()) diagnoseTwice(header);
      const auto unit = arrayUnit(name, grid.iUnits);
      grid.arrays.push_back({std::move(name), std::string(unit), kind, std::move(header)});
    }
    grid.candidates.clear();
    grid.nVectorsMax = std::max(grid.nVectorsMax, grid.nVectors());
  }
  iGrid = 1;
}

/// Each of them has its own column; only a request by name cannot tell them apart.
void InitFile::diagnoseTwice(const RecordHeader& header) const {
  session_->diagnose({.message = Message::InitArrayTwice,
                      .path = FileName,
                      .keyword = header.keyword,
                      .offset = header.headerAt,
                      .action = "kept all of them; a request by name gets the first"});
}

void InitFile::SetDates() {
  if (!qHaveDate) return;
  for (auto& grid : tGrids_) {
    grid.iDay = iDay;
    grid.iMonth = iMonth;
    grid.iYear = iYear;
    grid.zDate = fmt::format("{} {} {}", iDay, monthName(iMonth), iYear);
  }
}

void InitFile::setTableProperties() {
  const auto& flags = tGrids_.front().flags;
  tables.setTableProperties({.Brine = flags.Brine,
                             .CompressedVE = flags.CompressedVE,
                             .DissolvedGas = flags.DissolvedGas,
                             .Polymer = flags.Polymer,
                             .ReversibleRockCompaction = flags.ReversibleRockCompaction,
                             .RockCompaction = flags.RockCompaction,
                             .further = false,
                             .VapourisedOil = flags.VapourisedOil,
                             .VerticalEquilibrium = flags.VerticalEquilibrium,
                             .known = qFlagsKnown_});
}

void InitFile::reset() {
  tGrids_.clear();
  tGrids_.emplace_back();
  iGrid = 1;
  iHeader.clear();
  qHaveDate = qTABDIMS = qTAB = qHaveTables_ = qFlagsKnown_ = qDamaged = unreadable_ = false;
  nSEQNUM = 0;
  stamp_.reset();
  tables.clear();
}

bool InitFile::load() {
  try {
    reset();
    const bool loaded = readFile() && (!unreadable_ || AcceptDamaged);
    if (session_->cancelled()) dropAll();
    return loaded;
  } catch (...) {
    // After damage, what was read before it can be asked for; after a load that was canceled, nothing.
    if (session_->cancelled()) dropAll();
    throw;
  }
}

void InitFile::dropAll() {
  removeScratchFiles();
  reset();
}

/// False when the load was canceled, or the file cannot be opened.
bool InitFile::readFile() {
  const auto cursor = open();
  if (!cursor) return false;
  if (stamp_) session_->part<LoadedFiles>().stamps[FileName] = *stamp_;
  Scan scan{*cursor};
  if (!walk(scan)) return false;
  keepArrays();
  SetDates();
  setTableProperties();
  if (qTAB || !unreadable_) tables.build();  // without TAB the damage is all there is to report
  qHaveTables_ = tables.nTables() > 0;       // also when one of them does not lie in TAB
  for (auto& grid : tGrids_) {
    if (LoadData && !loadValues(*cursor, grid)) return false;
    if (!grid.arrays.empty()) grid.nVectorsMax = grid.nVectors();
  }
  checkUnchanged(*cursor);
  iGrid = 1;
  return true;
}

std::optional<InitFile::ArrayNames> InitFile::listArrays() const {
  InitFile probe(*session_);
  probe.FileName = FileName;
  probe.setFlags(*this);
  probe.selection = selection;
  probe.LoadData = probe.Tables = false;
  probe.reset();
  const auto cursor = probe.open();
  if (!cursor) return std::nullopt;
  Scan scan{*cursor, true};
  if (!probe.walk(scan)) return std::nullopt;
  probe.keepArrays();
  ArrayNames found{.complete = !probe.unreadable_ || AcceptDamaged};
  for (const auto& array : probe.grid(1).arrays) found.names.push_back(array.name);
  return found;
}

}  // namespace lumbarn
