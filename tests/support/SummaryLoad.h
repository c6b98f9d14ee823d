#pragma once

#include <string>
#include <vector>

#include "Host.h"

namespace lumbarn::test {

/// A host that loads one summary.
struct SummaryLoad : Host {
  explicit SummaryLoad(const std::string& specification) : Host(specification, 12) {}
  /// Loads and fetches.
  bool run() { return Host::run() && fetchSummary(); }
  /// Loads with the earlier runs; gives the times, none on failure.
  std::vector<float> chainTimes() {
    reader.NoRestart = false;
    return run() ? column(1) : std::vector<float>{};
  }
  /// The columns' names, in order.
  std::vector<std::string> names() {
    std::vector<std::string> all;
    for (const auto& vector : reader.Vectors()) all.push_back(vector.name);
    return all;
  }
};

}  // namespace lumbarn::test
