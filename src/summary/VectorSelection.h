#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "SummaryVector.h"

namespace lumbarn {

/// The patterns of a list, blanks around each removed, empty ones left out. A comma separates two patterns
/// unless it stands inside the numbers of a cell: behind a ":", three items in a row that are made of digits,
/// `*` and `?` only are one cell. So "BPR:10,4,3,FOPR" is "BPR:10,4,3" and "FOPR".
std::vector<std::string> splitPatterns(std::string_view list);

/// What patterns choose out of vectors.
struct VectorSelection {
  std::vector<bool> mask;              ///< one entry per vector
  std::vector<std::string> unmatched;  ///< patterns that fit no vector, as given, those to keep first
};

/// Chooses vectors by full name, without regard to case; `*` stands for any characters and `?` for one. Each
/// text of `only` and `except` is a list as `splitPatterns` takes it. Keeps what fits a pattern of `only`, or
/// everything when that is empty, less what fits one of `except`. A text that is the full name of a vector
/// letter by letter means that vector, whatever commas or wildcards the name holds.
VectorSelection selectVectors(std::span<const SummaryVector> vectors, std::span<const std::string> only,
                              std::span<const std::string> except);

}  // namespace lumbarn
