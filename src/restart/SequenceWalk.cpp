#include <algorithm>
#include <array>
#include <utility>

#include <fmt/format.h>

#include "../arrays/ArrayUnits.h"
#include "../index/ActiveCount.h"
#include "../index/RestartIndex.h"
#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "qvEclipseSEQUENCE.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSEQUENCE";

Diagnosis recordDiagnosis(const RecordCursor& cFile, Message message, std::string expected, std::string found,
                          std::string action) {
  const RecordHeader& header = cFile.header();
  return {.message = message,
          .path = cFile.path(),
          .keyword = header.keyword,
          .occurrence = cFile.occurrence(),
          .offset = header.headerAt,
          .expected = std::move(expected),
          .found = std::move(found),
          .action = std::move(action)};
}

bool hasData(const RecordHeader& header) { return header.count > 0; }

/// Types that restart files are made of; a record of another type without data is ignored.
bool isUsual(const RecordHeader& header) {
  switch (header.type) {
    case ElementType::Integer:
    case ElementType::Single:
    case ElementType::Double:
    case ElementType::Text:
    case ElementType::Logical:
      return true;
    default:
      return !hasData(header);
  }
}

}  // namespace

/// What the walk over the records of one step knows.
struct qvEclipseSEQUENCE::Walk {
  bool keep = true;  ///< arrays of this step are wanted
  bool seenHeader = false;
  bool seenTime = false;
  bool firstTime = true;
  bool stop = false;
  std::int32_t lastLocalGrid = 0;
  std::int32_t lengthsOf = 0;  ///< the grid whose active cells were decided by the lengths of its arrays
};

void qvEclipseSEQUENCE::getEclipseSEQUENCE(RecordCursor& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "getEclipseSEQUENCE", [&] { return readStep(cFile); });
}

bool qvEclipseSEQUENCE::readStep(RecordCursor& cFile) {
  Walk walk;
  walk.keep = !ReadOnlyHeader;
  iFileNumber_ = iSeqnum;
  grid().Origin = Origin;
  grid().iSeqnum = iSeqnum;
  bool qMore = true;
  while (!walk.stop && qMore) {
    qMore = takeNext(cFile, walk);
    if (session_->cancelled()) return false;
  }
  qAtEnd = !qMore || cFile.nextPosition() >= cFile.fileSize();
  // Deliberate: only at the end of the file, so a local grid without arrays stays in all steps but the last.
  const bool endsLocal = !qMore && nGrids > 1 && walk.lastLocalGrid == nGrids;
  if (endsLocal && tGrids.back().arrays.nVectors() == 0) dropLastGrid();
  grid().arrays.TidyVectors();
  return true;
}

/// Reads the next record. False at the end of the file. Of damage only what it hides is lost, as long as it
/// is known which step the records behind it belong to.
bool qvEclipseSEQUENCE::takeNext(RecordCursor& cFile, Walk& walk) {
  try {
    if (!cFile.next() || cFile.header().keyword.empty()) return false;
    qAnyRecord = true;
    takeRecord(cFile, walk);
    return true;
  } catch (BadRecord& damage) {
    const RecordHeader damaged = cFile.header();
    const bool complete = isCompleteBeforeDamage(parts(), damaged.keyword, partsBefore);
    const auto gap = passDamage(cFile, damage.diagnosis(), *session_);
    if (!gap && !complete) throw;
    if (!gap || sections_.beginsAnother(damaged)) {
      damageBehind = std::move(damage.diagnosis());
      walk.stop = gap.has_value();
      return walk.stop;
    }
    qAnyRecord = qDamaged = true;
    sections_.passGap(damaged, *gap);
    session_->diagnose(std::move(damage.diagnosis()));
    return true;
  }
}

void qvEclipseSEQUENCE::dropLastGrid() {
  gridOf_.erase(tGrids.back().GridName);
  tGrids.pop_back();
  --nGrids;
  iGrid = std::min(iGrid, nGrids);
}

void qvEclipseSEQUENCE::takeRecord(RecordCursor& cFile, Walk& walk) {
  const RecordHeader& header = cFile.header();
  if (sections_.beginsAnother(header)) {
    cFile.unread();
    walk.stop = true;
    return;
  }
  takeMark(sections_.take(cFile), walk);
  if (sections_.afterGap() && grid().arrays.find(header.keyword) > 0) sections_.repeated();
  if (sections_.lost()) return;
  if (!isUsual(header)) {
    throw BadRecord(recordDiagnosis(cFile, Message::RestartRecordType, "INTE, REAL, DOUB, CHAR or LOGI",
                                    header.typeWord, {}));
  }
  switch (header.type) {
    case ElementType::Integer:
      return takeInteger(cFile, walk);
    case ElementType::Single:
      return takeSingle(cFile, walk);
    case ElementType::Double:
      return takeDouble(cFile, walk);
    case ElementType::Text:
      return takeText(cFile);
    case ElementType::Logical:
      if (header.keyword != "LOGIHEAD") return;
      return takeLogicals(cFile);
    default:
      return;
  }
}

void qvEclipseSEQUENCE::takeMark(SectionMark mark, Walk& walk) {
  switch (mark) {
    case SectionMark::Step:
      walk.keep = !ReadOnlyHeader;
      iSeqnum = grid().iSeqnum = stepNumber(sections_.seqnum(), iFileNumber_, {});
      return;
    case SectionMark::LocalGrid:
      grid().arrays.TidyVectors();
      AddLGRGrid(sections_.grid());
      walk.lastLocalGrid = iGrid;
      return;
    case SectionMark::GlobalGrid:
      grid().arrays.TidyVectors();
      iGrid = 1;
      return;
    default:
      return;
  }
}

void qvEclipseSEQUENCE::takeInteger(RecordCursor& cFile, Walk& walk) {
  const std::string& name = cFile.header().keyword;
  if (SectionTracker::marksStep(cFile.header())) return;
  if (name == "INTEHEAD") return takeHeader(cFile, walk);
  // A step of a multiple set is held even when it lies outside of the limits, and answers for its wells.
  if (name == "ICON" && !walk.keep && (Unified || ReadOnlyHeader)) return;
  if (name == "IWEL" || name == "ICON") return takeWells(cFile);
  if (walk.keep && name != "IGRP") takeArray(cFile, walk);
}

void qvEclipseSEQUENCE::takeSingle(RecordCursor& cFile, Walk& walk) {
  if (!walk.keep) return;
  const std::string& name = cFile.header().keyword;
  if (name != "SCON" && name != "SWEL") return takeArray(cFile, walk);
  if (qMarkers) takeWells(cFile);
}

void qvEclipseSEQUENCE::takeDouble(RecordCursor& cFile, Walk& walk) {
  const RecordHeader& header = cFile.header();
  if (header.keyword == "DOUBHEAD") {
    double time = 0;
    const std::span<double> words(&time, hasData(header) ? 1 : 0);
    cFile.read(words);
    processDBLEHEAD(words);
    walk.seenTime = true;
    stopBehindHeaders(walk);
  } else if (header.keyword == "XWEL" && walk.keep && qMarkers) {
    takeWells(cFile);
  }
}

void qvEclipseSEQUENCE::takeText(RecordCursor& cFile) {
  const std::string& name = cFile.header().keyword;
  if (name == "ZWEL" || name == "ZGRP") takeWells(cFile);
}

void qvEclipseSEQUENCE::takeWells(RecordCursor& cFile) {
  if (auto misfit = takeWellRecord(cFile)) session_->diagnose(std::move(*misfit));
}

std::optional<Diagnosis> qvEclipseSEQUENCE::takeWellRecord(RecordCursor& cFile) {
  const RecordHeader& header = cFile.header();
  bool qKept = true;
  if (header.is("INTEHEAD", ElementType::Integer)) {
    processINTEHEAD(HeaderWords(cFile.integers()));
  } else if (header.is("IWEL", ElementType::Integer)) {
    processIWEL(cFile.integers(), qKept);
  } else if (header.is("ICON", ElementType::Integer)) {
    processICON(cFile.integers(), qKept);
  } else if (header.is("SWEL", ElementType::Single)) {
    processSWEL(cFile.singles(), qKept);
  } else if (header.is("SCON", ElementType::Single)) {
    processSCON(cFile.singles(), qKept);
  } else if (header.is("XWEL", ElementType::Double)) {
    processXWEL(cFile.doubles(), qKept);
  } else if (header.is("ZWEL", ElementType::Text)) {
    processZWEL(cFile.texts(), qKept);
  } else if (header.is("ZGRP", ElementType::Text)) {
    processZGRP(cFile.texts(), qKept);
  }
  if (qKept) return std::nullopt;
  return recordDiagnosis(
      cFile, Message::WellRecordLength,
      fmt::format("complete blocks for {} wells of up to {} connections", grid().nWells, grid().nCWMAX),
      fmt::format("{} words", header.count), "skipped the record");
}

void qvEclipseSEQUENCE::takeLogicals(RecordCursor& cFile) {
  std::array<std::int16_t, 15> words{};
  const auto count = std::min<std::int64_t>(cFile.header().count, words.size());
  const auto first = std::span(words).first(static_cast<std::size_t>(count));
  cFile.readLogicals(first);
  processLOGIHEAD(first);
}

void qvEclipseSEQUENCE::takeHeader(RecordCursor& cFile, Walk& walk) {
  iHeader = cFile.integers();
  qHaveHeader = walk.seenHeader = true;
  try {
    processINTEHEAD(HeaderWords(iHeader));
  } catch (const Fault& fault) {
    session_->diagnose(recordDiagnosis(cFile, Message::CellCount, "a product below 2^63",
                                       fmt::format("{} x {} x {}", grid().Nx, grid().Ny, grid().Nz),
                                       fault.what()));
    throw;
  }
  if (iStart >= 0 && iSeqnum < iStart) walk.keep = false;
  if (iEnd >= 0 && iSeqnum > iEnd) {
    qPastEnd = true;
    walk.keep = false;
  }
  stopBehindHeaders(walk);
  if (!walk.keep || !walk.firstTime) return;
  walk.firstTime = false;
  bool qUsual = false;
  const auto candidates = lookAhead(cFile, qUsual);
  decideActive(candidates);
  walk.lengthsOf = iGrid;
  const auto isKept = [&](const RecordHeader& header) { return checkIfRESTARTArray(header); };
  const auto nVectors = static_cast<std::int32_t>(std::ranges::count_if(candidates, isKept));
  if (nVectors > 0) nVectorEstimate = nVectors;
}

void qvEclipseSEQUENCE::stopBehindHeaders(Walk& walk) {
  if (ReadOnlyHeader && !Unified && walk.seenHeader && walk.seenTime) walk.stop = qHeadersOnly = true;
}

void qvEclipseSEQUENCE::takeArray(RecordCursor& cFile, Walk& walk) {
  const RecordHeader& header = cFile.header();
  const RESTARTGRID& to = grid();
  const bool mayBeLength = hasData(header) && header.count != to.nActive && header.count < to.nCells;
  if (mayBeLength && walk.lengthsOf != iGrid && to.arrays.nVectors() == 0 &&
      mayBeCellArray(header.type, header.keyword)) {
    walk.lengthsOf = iGrid;
    bool qUsual = false;
    const RecordHeader here = header;
    auto candidates = lookAhead(cFile, qUsual);
    candidates.push_back(here);
    decideActive(candidates);
    cFile.setCurrent(here);
  }
  if (!checkIfRESTARTArray(header)) return;
  // An array whose length differs from that of the first is skipped without a diagnosis, as hosts expect.
  grid().arrays.add(cFile, arrayUnit(header.keyword, grid().iUnits), {LoadData, nVectorEstimate}, *session_);
}

/// Headers of records behind the current one that may be arrays of its grid.
std::vector<RecordHeader> qvEclipseSEQUENCE::lookAhead(RecordCursor& cFile, bool& qUsual) const {
  constexpr std::string_view nextSection[] = {"", "SEQNUM", "LGR", "ENDLGR", "LGRSGONE"};
  const auto start = cFile.mark();
  std::vector<RecordHeader> candidates;
  qUsual = true;
  try {
    while (qUsual && cFile.next()) {
      const RecordHeader& header = cFile.header();
      if (std::ranges::find(nextSection, header.keyword) != std::end(nextSection)) break;
      qUsual = isUsual(header);
      if (hasData(header) && mayBeCellArray(header.type, header.keyword)) candidates.push_back(header);
    }
  } catch (const BadRecord& damage) {
    if (damage.diagnosis().message == Message::FileRead) throw;
    qUsual = false;  // the walk reports it if it is in this step
  }
  cFile.goBack(start);
  return candidates;
}

/// Once for each grid, before its first array is kept: all arrays of a grid have the same length.
void qvEclipseSEQUENCE::decideActive(std::span<const RecordHeader> candidates) {
  ArrayLengths lengths;
  for (const RecordHeader& header : candidates) lengths.add(header.count);
  GridCells cells = gridCells(iHeader, false);
  cells.cells = grid().nCells;
  cells.active = grid().nActive;
  grid().nActive = static_cast<std::int32_t>(lengths.decideActive(cells));
}

void qvEclipseSEQUENCE::GetINITVectorList(RecordCursor& cFile, std::int32_t& nVectors,
                                          std::vector<std::string>& zVectors, bool& qOK, bool qList) {
  guarded(*session_, qOK, className, "GetINITVectorList", [&] {
    bool qUsual = false;
    std::vector<std::string> names;
    for (const RecordHeader& header : lookAhead(cFile, qUsual)) {
      if (checkIfRESTARTArray(header)) names.push_back(header.keyword);
    }
    nVectors = static_cast<std::int32_t>(names.size());
    if (qList) zVectors = std::move(names);
    return qUsual;
  });
}

}  // namespace lumbarn
