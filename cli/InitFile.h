#pragma once

#include <string>

#include "Console.h"
#include "Facts.h"
#include "files/Families.h"

namespace lumbarn::cli {

/// Phases, counts of arrays and connections, and simulation tables of an INIT file.
void addInitContent(Facts& facts, const std::string& path, Console& console);

}  // namespace lumbarn::cli
