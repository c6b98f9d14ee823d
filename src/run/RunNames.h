#pragma once

#include <span>
#include <string>
#include <vector>

#include "Run.h"

namespace lumbarn {

/// The names by which several runs are told apart: base names, with their folder where two are equal. A run
/// that is named twice has "#2" behind its name.
std::vector<std::string> distinctNames(std::span<const Run> runs);

}  // namespace lumbarn
