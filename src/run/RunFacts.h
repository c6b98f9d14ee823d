#pragma once

#include "../frame/Stream.h"
#include "FactList.h"
#include "RunState.h"

namespace lumbarn {

// What the files of one kind of a run tell without their data being read, by the functions that answer the
// other questions to a run. Damage is reported; the facts are then those in front of it. All may throw as
// these questions do.

void addSummaryFacts(FactList& facts, const RunState& run, StreamContext& context);
void addRestartFacts(FactList& facts, const RunState& run, StreamContext& context);
void addInitFacts(FactList& facts, const RunState& run, StreamContext& context);
void addGridFacts(FactList& facts, const RunState& run, StreamContext& context);
void addTestFacts(FactList& facts, const RunState& run, StreamContext& context);
/// Of the deck and all files that it includes.
void addDeckFacts(FactList& facts, const RunState& run, StreamContext& context);
void addSaveFacts(FactList& facts, const RunState& run, StreamContext& context);
/// Of an index file, and whether it is that of the run's files.
void addRestartIndexFacts(FactList& facts, const RunState& run, StreamContext& context);
void addInitIndexFacts(FactList& facts, const RunState& run, StreamContext& context);

}  // namespace lumbarn
