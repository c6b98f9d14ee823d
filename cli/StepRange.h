#pragma once

#include <cstdint>
#include <string_view>

namespace lumbarn::cli {

/// Report steps, both ends included; as `iStart` and `iEnd` of the reader.
struct StepRange {
  std::int32_t first = -1;
  std::int32_t last = -1;
};

/// "3:7", "3:" (to the end), ":7" (from the first) or "3" (that one). Throws Failure for anything else.
StepRange parseSteps(std::string_view text);

}  // namespace lumbarn::cli
