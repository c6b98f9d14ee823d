#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lumbarn {

/// The report steps that are wanted of a set, by the limits that a host gives for a kind of file. Of a set of
/// step files all are: the list of files decides.
class WantedSteps {
 public:
  WantedSteps() = default;
  WantedSteps(std::string_view zKind, bool qUnified, std::int32_t iStart, std::int32_t iEnd);

  bool contain(std::int32_t iStep) const;
  /// Whether none follows the step.
  bool endAt(std::int32_t iStep) const;
  std::int32_t iFirst = -1;  ///< working limits: an end below the start counts as the start; -1: open
  std::int32_t iLast = -1;

 private:
  bool qUnified_ = false;
};

/// The name of the unified file of that kind beside a file; empty for a kind that has none.
std::string unifiedFileOf(const std::string& zFile, std::string_view zKind, bool qFormatted);

}  // namespace lumbarn
