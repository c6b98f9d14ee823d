#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "../support/Session.h"
#include "SummaryVector.h"

namespace lumbarn {

/// Vectors to be matched, and how long a name each may have: older writers truncate names to 8 characters.
struct NamedVectors {
  std::span<const SummaryVector> vectors;
  std::span<const std::int32_t> widths;  ///< one for each vector, or one for all of them
};

/// Texts by which the vectors of two tables match: equal ones are the same vector.
struct KeyPairs {
  std::vector<std::string> main;
  std::vector<std::string> old;
};

/// Makes the texts from all parts of the vectors' names. A name that fills its width also matches a longer
/// one that begins with it, provided that no other name of either table does; a remark states this for
/// `path`, the run with the `old` vectors.
KeyPairs matchingKeys(Session& session, const NamedVectors& main, const std::string& path,
                      const NamedVectors& old);

}  // namespace lumbarn
