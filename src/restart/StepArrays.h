#pragma once

#include <span>
#include <string>
#include <vector>

#include "../record/RecordCursor.h"
#include "../support/Session.h"
#include "StepData.h"
#include "StepOptions.h"

namespace lumbarn {

/// Whether an array is to be kept: of integers or singles, as long as the grid's cells or active cells, none
/// of the records that only look like arrays, and on the selection list.
bool isKeptArray(const RecordHeader& header, const RESTARTGRID& grid, ArraySelection* selection,
                 Session& session);

/// The names of those that are.
std::vector<std::string> keptNames(std::span<const RecordHeader> headers, const RESTARTGRID& grid,
                                   ArraySelection* selection, Session& session);

/// Whether a restart file may have such a record: one of the usual types, or without data.
bool isUsualRecord(const RecordHeader& header);

/// What follows a record, up to the next grid or step.
struct ArraysAhead {
  std::vector<RecordHeader> candidates;  ///< records that may be arrays of the current grid
  bool usual = true;                     ///< neither damage nor a record of an unusual type ended the search
};
/// The position of the cursor is restored. Throws BadRecord when the file cannot be read.
ArraysAhead arraysAhead(RecordCursor& cursor);

/// Decides the active cells of the current grid, before its first array is kept: all arrays of a grid have
/// the same length.
void decideActiveCells(StepData& step, std::span<const RecordHeader> candidates);

/// Adds the saturation that follows from the others to every grid that has those. The current grid is the
/// last one after.
void addDerivedSaturations(StepData& step, const StepOptions& options, Session& session);

}  // namespace lumbarn
