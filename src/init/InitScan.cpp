// The walk over an INIT file: which arrays each grid keeps, and where they stand.

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../arrays/ArrayUnits.h"
#include "../index/ActiveCount.h"
#include "../index/RestartIndex.h"
#include "../record/ByteSource.h"
#include "../shapes/OnlyList.h"
#include "../support/Dates.h"
#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "qvEclipseINIT.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseINIT";

constexpr std::string_view firstKeywords[] = {"INTEHEAD", "SEQNUM"};

Diagnosis unreadable(const std::string& path, std::string problem) {
  Diagnosis diagnosis;
  diagnosis.path = path;
  diagnosis.problem = std::move(problem);
  return diagnosis;
}

}  // namespace

/// One walk.
struct qvEclipseINIT::Scan {
  RecordCursor& cursor;
  bool untilLocalGrid = false;  ///< end at the first LGR
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

bool qvEclipseINIT::CheckINITFile(const std::string& zFile) {
  std::string why;
  const auto source = FileSource::open(zFile, why);
  const auto detected = source ? detectForm(*source, firstKeywords, *session_) : std::nullopt;
  if (!detected) return false;
  setFlags({});
  setForm(detected->form);
  FileName = zFile;
  return true;
}

void qvEclipseINIT::setINITFileTypeProps(cFILETYPE& cFile, bool& qOK) const {
  constexpr std::int32_t fileKindCode = 13;  // deliberate: that of a summary
  cFile.setFlags(*this);
  cFile.IOMethod = session_->IOMethod;
  cFile.UseBufferedInput = usesBufferedInput(fileKindCode);
  qOK = true;
}

/// Null, with a diagnosis, when the file cannot be opened.
std::unique_ptr<RecordCursor> qvEclipseINIT::open() const {
  std::string why;
  std::shared_ptr<const ByteSource> source = FileSource::open(FileName, why);
  if (!source) {
    session_->diagnose(unreadable(FileName, why));
    return nullptr;
  }
  cFILETYPE cFile(*session_);
  bool qSet = false;
  setINITFileTypeProps(cFile, qSet);
  return std::make_unique<RecordCursor>(std::move(source), cFile.form(), FileName);
}

void qvEclipseINIT::endAtDamage(Diagnosis diagnosis, std::string action) {
  diagnosis.path = FileName;
  diagnosis.action = std::move(action);
  session_->diagnose(std::move(diagnosis));
  qDamaged = unreadable_ = true;
}

/// Takes record after record until the file, or what is wanted of it, ends. False when it was cancelled.
bool qvEclipseINIT::walk(Scan& scan) {
  try {
    while (scan.cursor.next() && takeRecord(scan)) {
      if (session_->yield()) return false;
    }
  } catch (BadRecord& damage) {
    endAtDamage(std::move(damage.diagnosis()), "kept the arrays before");
  }
  return !session_->cancelled();
}

/// False when the walk is to end.
bool qvEclipseINIT::takeRecord(Scan& scan) {
  const auto& header = scan.cursor.header();
  // Seen with and without data, and of several types; it goes by its name alone.
  if (header.keyword == "LGRSGONE") {
    iGrid = 1;
    return true;
  }
  if (header.keyword == "ENDLGR") return true;
  switch (header.type) {
    case ElementType::Integer:
      return takeInteger(scan);
    case ElementType::Single:
      takeArray(scan);
      return true;
    case ElementType::Double:
      takeDouble(scan);
      return true;
    case ElementType::Text:
      if (header.keyword == "LGR" && scan.untilLocalGrid) return false;
      takeText(scan);
      return true;
    case ElementType::Logical:
      takeLogical(scan);
      return true;
    default:
      break;
  }
  if (header.count <= 0) return true;
  auto diagnosis = unreadable(FileName, "record of an unknown type");
  diagnosis.keyword = header.keyword;
  diagnosis.offset = header.headerAt;
  diagnosis.found = header.typeWord;
  diagnosis.action = "stopped; kept the arrays before";
  session_->diagnose(std::move(diagnosis));
  qDamaged = true;  // deliberate: it ends the load, which is no failure
  return false;
}

bool qvEclipseINIT::takeInteger(Scan& scan) {
  const auto& keyword = scan.cursor.header().keyword;
  if (keyword == "SEQNUM") return ++nSEQNUM < 2;  // the second is another step's
  if (keyword == "INTEHEAD") {
    takeHeader(scan);
  } else if (keyword == "TABDIMS") {
    bool qTaken = false;
    xTAB.FileName = FileName;
    xTAB.offset = scan.cursor.header().headerAt;
    if (Tables) xTAB.processTABDIMS(scan.cursor.integers(), qTaken);
    qTABDIMS = qTABDIMS || Tables;
  } else {
    takeArray(scan);
  }
  return true;
}

/// A grid of too many cells is a fault; with AcceptDamaged it is damage like any other.
void qvEclipseINIT::takeHeader(Scan& scan) {
  try {
    processINTEHEAD(HeaderWords(scan.cursor.integers()));
  } catch (const Fault& fault) {
    const auto& header = scan.cursor.header();
    auto diagnosis = unreadable(FileName, "cell count cannot be");
    diagnosis.keyword = header.keyword;
    diagnosis.offset = header.headerAt;
    diagnosis.expected = "a product below 2^63";
    diagnosis.found = fmt::format("{} x {} x {}", current().Nx, current().Ny, current().Nz);
    if (AcceptDamaged) throw BadRecord(std::move(diagnosis));
    diagnosis.action = fault.what();
    session_->diagnose(std::move(diagnosis));
    keepArrays();
    throw;
  }
}

void qvEclipseINIT::takeDouble(Scan& scan) {
  if (scan.cursor.header().keyword != "TAB") return;
  bool qTaken = false;
  if (Tables) xTAB.addDTAB(scan.cursor.doubles(), qTaken);
  qTAB = true;
}

void qvEclipseINIT::takeText(Scan& scan) {
  if (scan.cursor.header().keyword != "LGR") return;
  const auto names = scan.cursor.texts();
  AddLGRGrid(names.empty() ? std::string_view() : trim(names.front()));
}

void qvEclipseINIT::takeLogical(Scan& scan) {
  if (scan.cursor.header().keyword != "LOGIHEAD") return;
  std::vector<std::int16_t> words(static_cast<std::size_t>(scan.cursor.header().count));
  scan.cursor.readLogicals(words);
  takeLogicalHeader(words, current().iProgram, current().flags);
  if (iGrid != 1) current().flags.DualPorosity = tGrids_.front().flags.DualPorosity;
}

void qvEclipseINIT::processINTEHEAD(HeaderWords words) {
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
  auto& flags = grid.flags;
  bool qPhases = false;
  EclipseFluids(grid.nPhases, flags.Oil, flags.Water, flags.Gas, qPhases);
  if (iGrid == 1) xTAB.setPhases(grid.nPhases);
  if (!qHaveDate && words(65) > 0 && words(66) > 0 && words(67) > 0) {
    qHaveDate = true;
    iDay = words(65);
    iMonth = words(66);
    iYear = words(67);
  }
  grid.iUnits = grid.qFrontSim ? words(3) - frontSim : words(3);
  iHeader = words.words();
}

void qvEclipseINIT::AddLGRGrid(std::string_view zName) {
  iGrid = GridNumber(zName);
  if (iGrid != 0) return;
  tGrids_.emplace_back();
  tGrids_.back().GridName = zName;
  iGrid = nGrids();
}

bool qvEclipseINIT::checkINITArray(const RecordHeader& header) {
  const auto& grid = current();
  const auto& name = header.keyword;
  if (name.empty() || header.count == 0) return false;
  if (name != "PORV" && header.count != grid.nActive && header.count != grid.nCells) return false;
  if (!checkEclipseONLYList(*session_, name)) return false;
  return selection.chooses(name);
}

/// Connection arrays have a place of their own, whatever their length and the selection; all other arrays
/// must be as long as the grid, which is known when all of them are.
void qvEclipseINIT::takeArray(Scan& scan) {
  constexpr std::int32_t noConnections = 4;
  const auto& header = scan.cursor.header();
  const bool single = header.type == ElementType::Single;
  if (whichNNCType(header.keyword) != noConnections) {
    if (single) AddINITNNCArray(header, scan.cursor);
    return;
  }
  auto& grid = current();
  if (single && header.keyword == "PORV") {
    grid.PORV = header;
    grid.active.reset();
  }
  if (header.count > 0) grid.candidates.push_back(header);
}

/// The arrays that are as long as their grids and selected.
void qvEclipseINIT::keepArrays() {
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
      const auto unit = arrayUnit(header.keyword, grid.iUnits);
      grid.arrays.push_back({header.keyword, std::string(unit), kind, std::move(header)});
    }
    grid.candidates.clear();
    grid.nVectorsMax = std::max(grid.nVectorsMax, grid.nVectors());
  }
  iGrid = 1;
}

void qvEclipseINIT::SetDates() {
  if (!qHaveDate) return;
  for (auto& grid : tGrids_) {
    grid.iDay = iDay;
    grid.iMonth = iMonth;
    grid.iYear = iYear;
    grid.zDate = fmt::format("{} {} {}", iDay, monthName(iMonth), iYear);
  }
}

void qvEclipseINIT::setTableProperties() {
  const auto& flags = tGrids_.front().flags;
  xTAB.setTableProperties({.Brine = flags.Brine,
                           .CompressedVE = flags.CompressedVE,
                           .DissolvedGas = flags.DissolvedGas,
                           .Polymer = flags.Polymer,
                           .ReversibleRockCompaction = flags.ReversibleRockCompaction,
                           .RockCompaction = flags.RockCompaction,
                           .further = false,
                           .VapourisedOil = flags.VapourisedOil,
                           .VerticalEquilibrium = flags.VerticalEquilibrium});
}

void qvEclipseINIT::reset() {
  tGrids_.clear();
  tGrids_.emplace_back();
  iGrid = 1;
  iHeader.clear();
  qHaveDate = qTABDIMS = qTAB = qHaveTables_ = qDamaged = unreadable_ = false;
  nSEQNUM = 0;
  xTAB.clear();
}

void qvEclipseINIT::getEclipseINITArrays(bool& qOK) {
  guarded(*session_, qOK, className, "getEclipseINITArrays", [&] {
    reset();
    const auto cursor = open();
    if (!cursor) return false;
    Scan scan{*cursor};
    if (!walk(scan)) return false;
    keepArrays();
    SetDates();
    setTableProperties();
    bool qTables = false;
    xTAB.processTables(qTables);
    qHaveTables_ = qTables && xTAB.nTables() > 0;
    for (auto& grid : tGrids_) {
      if (LoadData && !loadValues(*cursor, grid)) return false;
      if (!grid.arrays.empty()) grid.nVectorsMax = grid.nVectors();
    }
    iGrid = 1;
    return !unreadable_ || AcceptDamaged;
  });
}

void qvEclipseINIT::GetInitVectorList(std::int32_t& nVectors, std::vector<std::string>& zVectors, bool& qOK,
                                      bool qList) {
  guarded(*session_, qOK, className, "GetInitVectorList", [&] {
    qvEclipseINIT probe(*session_);
    probe.FileName = FileName;
    probe.setFlags(*this);
    probe.selection = selection;
    probe.LoadData = probe.Tables = false;
    probe.reset();
    const auto cursor = probe.open();
    if (!cursor) return false;
    Scan scan{*cursor, true};
    if (!probe.walk(scan)) return false;
    probe.keepArrays();
    nVectors = probe.grid(1).nVectors();
    zVectors.clear();
    if (qList) {
      for (const auto& array : probe.grid(1).arrays) zVectors.push_back(array.name);
    }
    return !probe.unreadable_ || AcceptDamaged;
  });
}

std::int32_t qvEclipseINIT::EstimateVectorCount(std::int32_t nCells, std::uint64_t fileBytes) {
  constexpr std::int32_t usual = 10;
  constexpr std::uint64_t least = 10'000, most = 100'000;
  if (nCells < 1) return usual;
  // Four decimals of the length over 10,000 are the length itself, so the quotient in ten-thousandths is the
  // count of values of the file for each cell. Deliberate: it is taken as it is, not over 10,000.
  const std::uint64_t quotient = (fileBytes + 2) / 4 / static_cast<std::uint64_t>(nCells);
  return quotient < least || quotient > most ? usual : static_cast<std::int32_t>(quotient);
}

void qvEclipseINIT::setONLYList(const std::vector<std::string>& zOnly, bool qOnly, bool& qOK) {
  guarded(*session_, qOK, className, "setONLYList", [&] {
    setEclipseONLYList(*session_, zOnly, qOnly);
    Only = !zOnly.empty();
  });
}

void qvEclipseINIT::getONLYList(std::vector<std::string>& zOnly, bool& qOnly, bool& qOK) const {
  guarded(*session_, qOK, className, "getONLYList", [&] { getEclipseONLYList(*session_, zOnly, qOnly); });
}

}  // namespace lumbarn
