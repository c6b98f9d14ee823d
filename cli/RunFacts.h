#pragma once

#include <cstdint>
#include <string_view>

#include "Console.h"
#include "Facts.h"
#include "files/Families.h"

namespace lumbarn::cli {

/// What the files of one kind of a run tell without their data being read. Damage is told by the console; the
/// facts are then those in front of it.
Facts summaryFacts(const RunFamily& run, Console& console);
Facts restartFacts(const RunFamily& run, Console& console);
Facts initFacts(const RunFamily& run, Console& console);
/// Of an index of either kind, and whether it is that of the run's files.
Facts indexFacts(const RunFamily& run, FileKind kind, Console& console);
Facts gridFacts(const RunFamily& run, FileKind kind, Console& console);
Facts saveFacts(const RunFamily& run, Console& console);
Facts testFacts(const RunFamily& run, Console& console);
/// Of a text of tests all is read.
Facts userTestFacts(const RunMember& file, Console& console);

}  // namespace lumbarn::cli
