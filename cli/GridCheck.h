#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "record/RecordCursor.h"

namespace lumbarn::cli {

/// Checks, record by record, that the arrays of an EGRID file go with the sizes of their grid.
class GridCheck {
 public:
  struct Finding {
    std::string expected;
    std::string found;
  };
  /// To be called on each record of the file; gives what is wrong with it.
  std::optional<Finding> check(RecordCursor& cursor);

 private:
  std::optional<std::array<std::int64_t, 4>> sizes_;  // NX, NY, NZ and the count of reservoirs
};

}  // namespace lumbarn::cli
