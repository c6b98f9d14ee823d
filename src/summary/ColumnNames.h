#pragma once

#include <span>
#include <string>
#include <vector>

#include "../support/Session.h"
#include "SummaryVector.h"

namespace lumbarn {

/// A vector to show, and the name to show it by.
struct NamedVector {
  const SummaryVector* vector = nullptr;
  std::string name;
};

/// The vectors in their order. Of those with one name the first is kept, and a remark about `path` states how
/// many are not; with `keepDuplicates` all are, with "#2" and so on behind the names of the later ones. The
/// vectors must outlive the result.
std::vector<NamedVector> nameVectors(std::span<const SummaryVector> vectors, bool keepDuplicates,
                                     const std::string& path, Session& session);

}  // namespace lumbarn
