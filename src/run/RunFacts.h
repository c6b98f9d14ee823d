#pragma once

#include "../frame/Stream.h"
#include "FactList.h"
#include "RunState.h"

namespace lumbarn {

// Facts of the files of one type, from the functions that answer the other questions to a run, so that both
// agree. Damage is reported, and the facts before it are kept. Each may throw what these functions throw.

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
