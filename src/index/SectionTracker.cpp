#include "SectionTracker.h"

#include "RestartIndexHeads.h"

namespace lumbarn {

void SectionTracker::beginStep() {
  grid_.clear();
  seqnum_.reset();
  parts_ = {};
}

SectionMark SectionTracker::take(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  if (header.is("INTEHEAD", ElementType::Integer)) {
    parts_.header = parts_.header || !inLocalGrid();
    return SectionMark::None;
  }
  if (marksStep(header)) {
    beginStep();
    if (header.type == ElementType::Integer) seqnum_ = firstInteger(cursor);
    return SectionMark::Step;
  }
  if (header.is("LGR", ElementType::Text) && header.count > 0) {
    grid_ = firstText(cursor);
    ++parts_.localGrids;
    return SectionMark::LocalGrid;
  }
  // The others go by their names alone: writers give them no data or one word, and several types.
  if (header.keyword == "ENDLGR" || header.keyword == "LGRSGONE") {
    grid_.clear();
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
  return SectionMark::None;
}

}  // namespace lumbarn
