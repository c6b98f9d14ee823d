#pragma once

#include <span>
#include <string>
#include <vector>

#include "Console.h"
#include "summary/SummaryVector.h"

namespace lumbarn::cli {

/// A vector to show, and the name to show it by.
struct NamedVector {
  const SummaryVector* vector = nullptr;
  std::string name;
};

/// The vectors in their order. Of those with one name the first is shown, and a message tells of the others;
/// with `keepDuplicates` all are, with "#2" and so on behind the names of the later ones. The vectors must
/// outlive the result.
std::vector<NamedVector> nameVectors(std::span<const SummaryVector> vectors, bool keepDuplicates,
                                     Console& console);

}  // namespace lumbarn::cli
