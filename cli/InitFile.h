#pragma once

#include <string>

#include "Console.h"
#include "Facts.h"
#include "files/Families.h"
#include "reader/qvEclipseReader.h"

namespace lumbarn::cli {

/// Phases, counts of arrays and connections, and simulation tables of an INIT file.
void addInitContent(Facts& facts, const std::string& path, Console& console);

/// The INIT file of a run, walked and not read, in `reader`. Throws Failure when there is none or nothing of
/// it can be read.
void openInit(qvEclipseReader& reader, const RunFamily& run, bool tables, Console& console);

/// The number of the grid that an option names; empty means the global one. Throws Failure, with the grids
/// that there are.
std::int32_t gridNumber(const qvEclipseINIT& init, const std::string& name);

}  // namespace lumbarn::cli
