#include "SectionTracker.h"

#include <algorithm>

#include <fmt/format.h>

#include "../support/Session.h"
#include "RestartIndex.h"
#include "RestartIndexHeads.h"

namespace lumbarn {

void SectionTracker::beginStep(bool numbered) {
  *this = {};
  numbered_ = numbered;
}

SectionMark SectionTracker::take(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  if (marksStep(header)) {
    std::optional<std::int32_t> number;
    if (header.type == ElementType::Integer) number = firstInteger(cursor);
    beginStep(true);
    seqnum_ = number;
  }
  if (!started_) start_ = header.headerAt;
  started_ = true;
  if (lost_) return SectionMark::None;
  if (marksStep(header)) return SectionMark::Step;
  if (header.is("INTEHEAD", ElementType::Integer)) {
    if (gridHeader_) repeated();
    gridHeader_ = true;
    parts_.header = parts_.header || !inLocalGrid();
    return SectionMark::None;
  }
  if (header.is("LGR", ElementType::Text) && header.count > 0) {
    grid_ = firstText(cursor);
    gridHeader_ = false;
    ++parts_.localGrids;
    return SectionMark::LocalGrid;
  }
  // The others go by their names alone: writers give them no data or one word, and several types.
  if (header.keyword == "ENDLGR" || header.keyword == "LGRSGONE") {
    grid_.clear();
    gridHeader_ = parts_.header;
    return SectionMark::GlobalGrid;
  }
  if (header.keyword == "STARTSOL") {
    ++parts_.solutions;
    return SectionMark::Solution;
  }
  if (header.keyword == "ENDSOL") {
    ++parts_.solutionEnds;
    return SectionMark::SolutionEnd;
  }
  const bool numbers = header.type == ElementType::Integer || header.type == ElementType::Single;
  if (!parts_.arrays && numbers && header.count > 0) parts_.arrays = !isRefusedArrayName(header.keyword);
  return SectionMark::None;
}

/// A gap no longer than the damaged record is in one step. Of a gap without a readable header, a repeated
/// record shows that it hides the start of a step, unless it is as long as a complete step may be.
void SectionTracker::passGap(const RecordHeader& damaged, const Gap& gap) {
  constexpr std::uint64_t mostBytes = 32;  // of an element in any form
  constexpr std::uint64_t ofHeader = 64;
  gap_ = true;
  const std::uint64_t length = gap.to - gap.from;
  const auto count = static_cast<std::uint64_t>(std::max<std::int64_t>(damaged.count, 0));
  const bool oneRecord =
      !damaged.keyword.empty() && (length < ofHeader || (length - ofHeader) / mostBytes <= count);
  lost_ = lost_ || (!oneRecord && (!started_ || length > gap.from - start_));
}

std::optional<Gap> passDamage(RecordCursor& cursor, Diagnosis& diagnosis, Session& session) {
  if (diagnosis.message == Message::FileRead || diagnosis.message == Message::FileChanged)
    return std::nullopt;
  try {
    const Gap gap = cursor.skipDamage();
    if (gap.to >= cursor.fileSize()) return std::nullopt;
    if (diagnosis.cutOff)
      diagnosis.message = Message::RecordDamaged;  // a wrong count: the file does not end here
    diagnosis.cutOff = false;
    diagnosis.action = fmt::format("skipped bytes {} to {}", gap.from, gap.to);
    return gap;
  } catch (BadRecord& failure) {
    failure.diagnosis().action = "stopped searching for records after the damage";
    session.diagnose(std::move(failure.diagnosis()));
    return std::nullopt;
  }
}

}  // namespace lumbarn
