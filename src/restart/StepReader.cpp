#include "StepReader.h"

#include <algorithm>
#include <array>
#include <utility>

#include <fmt/format.h>

#include "../arrays/ArrayUnits.h"
#include "../index/RestartIndex.h"
#include "../support/Fault.h"
#include "StepArrays.h"
#include "StepWells.h"

namespace lumbarn {

namespace {

bool hasData(const RecordHeader& header) { return header.count > 0; }

Diagnosis ofRecord(const RecordCursor& cursor, Message message, std::string expected, std::string found,
                   std::string action) {
  return {.message = message,
          .path = cursor.path(),
          .keyword = cursor.header().keyword,
          .occurrence = cursor.occurrence(),
          .offset = cursor.header().headerAt,
          .expected = std::move(expected),
          .found = std::move(found),
          .action = std::move(action)};
}

}  // namespace

StepEnd StepReader::read(RecordCursor& cursor) {
  keep_ = !options_.ReadOnlyHeader;
  step_.iFileNumber = step_.iSeqnum;
  step_.grid().Origin = options_.Origin;
  step_.grid().iSeqnum = step_.iSeqnum;
  bool more = true;
  while (!stop_ && more) {
    more = takeNext(cursor);
    if (session_.cancelled()) return {.cancelled = true};
  }
  end_.atEnd = !more || cursor.nextPosition() >= cursor.fileSize();
  // Deliberate: only at the end of the file, so a local grid without arrays stays in all steps but the last.
  const bool endsLocal = !more && step_.nGrids > 1 && lastLocalGrid_ == step_.nGrids;
  if (endsLocal && step_.tGrids.back().arrays.nVectors() == 0) step_.dropLastGrid();
  step_.grid().arrays.TidyVectors();
  end_.parts = sections_.parts();
  return std::move(end_);
}

/// Reads the next record. False at the end of the file. Of damage only what it hides is lost, as long as it
/// is known which step the records behind it belong to.
bool StepReader::takeNext(RecordCursor& cursor) {
  try {
    if (!cursor.next() || cursor.header().keyword.empty()) return false;
    end_.anyRecord = true;
    takeRecord(cursor);
    return true;
  } catch (BadRecord& damage) {
    const RecordHeader damaged = cursor.header();
    const bool complete = isCompleteBeforeDamage(sections_.parts(), damaged.keyword, options_.partsBefore);
    const auto gap = passDamage(cursor, damage.diagnosis(), session_);
    if (!gap && !complete) throw;
    if (!gap || sections_.beginsAnother(damaged)) {
      end_.damageBehind = std::move(damage.diagnosis());
      stop_ = gap.has_value();
      return stop_;
    }
    end_.anyRecord = end_.damaged = true;
    sections_.passGap(damaged, *gap);
    session_.diagnose(std::move(damage.diagnosis()));
    return true;
  }
}

void StepReader::takeRecord(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  if (sections_.beginsAnother(header)) {
    cursor.unread();
    stop_ = true;
    return;
  }
  takeMark(sections_.take(cursor));
  if (sections_.afterGap() && step_.grid().arrays.find(header.keyword) > 0) sections_.repeated();
  if (sections_.lost()) return;
  if (!isUsualRecord(header)) {
    throw BadRecord(
        ofRecord(cursor, Message::RestartRecordType, "INTE, REAL, DOUB, CHAR or LOGI", header.typeWord, {}));
  }
  switch (header.type) {
    case ElementType::Integer:
      return takeInteger(cursor);
    case ElementType::Single:
      return takeSingle(cursor);
    case ElementType::Double:
      return takeDouble(cursor);
    case ElementType::Text:
      if (header.keyword == "ZWEL" || header.keyword == "ZGRP") takeWells(cursor);
      return;
    case ElementType::Logical:
      if (header.keyword == "LOGIHEAD") takeLogicals(cursor);
      return;
    default:
      return;
  }
}

void StepReader::takeMark(SectionMark mark) {
  switch (mark) {
    case SectionMark::Step:
      keep_ = !options_.ReadOnlyHeader;
      step_.seqnum = sections_.seqnum();
      step_.iSeqnum = step_.grid().iSeqnum = stepNumber(step_.seqnum, step_.iFileNumber, {});
      return;
    case SectionMark::LocalGrid:
      step_.grid().arrays.TidyVectors();
      step_.enterGrid(sections_.grid(), options_.Origin);
      lastLocalGrid_ = step_.iGrid;
      return;
    case SectionMark::GlobalGrid:
      step_.grid().arrays.TidyVectors();
      step_.iGrid = 1;
      return;
    default:
      return;
  }
}

void StepReader::takeInteger(RecordCursor& cursor) {
  const std::string& name = cursor.header().keyword;
  if (SectionTracker::marksStep(cursor.header())) return;
  if (name == "INTEHEAD") return takeHeader(cursor);
  // A step of a multiple set is held even when it lies outside of the limits, and answers for its wells.
  if (name == "ICON" && !keep_ && (options_.Unified || options_.ReadOnlyHeader)) return;
  if (name == "IWEL" || name == "ICON") return takeWells(cursor);
  if (keep_ && name != "IGRP") takeArray(cursor);
}

void StepReader::takeSingle(RecordCursor& cursor) {
  if (!keep_) return;
  const std::string& name = cursor.header().keyword;
  if (name != "SCON" && name != "SWEL") return takeArray(cursor);
  if (options_.qMarkers) takeWells(cursor);
}

void StepReader::takeDouble(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  if (header.keyword == "DOUBHEAD") {
    double time = 0;
    const std::span<double> words(&time, hasData(header) ? 1 : 0);
    cursor.read(words);
    takeDOUBHEAD(step_, words);
    seenTime_ = true;
    stopBehindHeaders();
  } else if (header.keyword == "XWEL" && keep_ && options_.qMarkers) {
    takeWells(cursor);
  }
}

void StepReader::takeLogicals(RecordCursor& cursor) {
  std::array<std::int16_t, 15> words{};
  const auto count = std::min<std::int64_t>(cursor.header().count, words.size());
  const auto first = std::span(words).first(static_cast<std::size_t>(count));
  cursor.readLogicals(first);
  takeLOGIHEAD(step_, first);
}

void StepReader::takeWells(RecordCursor& cursor) {
  if (auto misfit = takeWellRecord(cursor, step_.grid(), options_, session_))
    session_.diagnose(std::move(*misfit));
}

void StepReader::takeHeader(RecordCursor& cursor) {
  step_.iHeader = cursor.integers();
  step_.qHaveHeader = seenHeader_ = true;
  try {
    takeINTEHEAD(step_, HeaderWords(step_.iHeader));
  } catch (const Fault& fault) {
    const RESTARTGRID& grid = step_.grid();
    session_.diagnose(ofRecord(cursor, Message::CellCount, "a product below 2^63",
                               fmt::format("{} x {} x {}", grid.Nx, grid.Ny, grid.Nz), fault.what()));
    throw;
  }
  if (options_.iStart >= 0 && step_.iSeqnum < options_.iStart) keep_ = false;
  if (options_.iEnd >= 0 && step_.iSeqnum > options_.iEnd) {
    step_.qPastEnd = true;
    keep_ = false;
  }
  stopBehindHeaders();
  if (keep_ && !std::exchange(arraysCounted_, true)) countArrays(cursor);
}

/// Looks ahead, so that the arrays of the step's first grid find their room.
void StepReader::countArrays(RecordCursor& cursor) {
  const auto candidates = arraysAhead(cursor).candidates;
  decideActiveCells(step_, candidates);
  lengthsOf_ = step_.iGrid;
  const auto kept = keptNames(candidates, step_.grid(), options_.selection, session_);
  if (!kept.empty()) step_.nVectorEstimate = static_cast<std::int32_t>(kept.size());
}

void StepReader::stopBehindHeaders() {
  if (options_.ReadOnlyHeader && !options_.Unified && seenHeader_ && seenTime_)
    stop_ = end_.headersOnly = true;
}

void StepReader::takeArray(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  RESTARTGRID& to = step_.grid();
  const bool mayBeLength = hasData(header) && header.count != to.nActive && header.count < to.nCells;
  if (mayBeLength && lengthsOf_ != step_.iGrid && to.arrays.nVectors() == 0 &&
      mayBeCellArray(header.type, header.keyword)) {
    lengthsOf_ = step_.iGrid;
    const RecordHeader here = header;
    auto candidates = arraysAhead(cursor).candidates;
    candidates.push_back(here);
    decideActiveCells(step_, candidates);
    cursor.setCurrent(here);
  }
  if (!isKeptArray(header, to, options_.selection, session_)) return;
  // An array whose length differs from that of the first is skipped without a diagnosis, as hosts expect.
  to.arrays.add(cursor, arrayUnit(header.keyword, to.iUnits), {options_.LoadData, step_.nVectorEstimate},
                session_);
}

}  // namespace lumbarn
