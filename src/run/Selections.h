#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../frame/Column.h"
#include "../frame/Transforms.h"

namespace lumbarn {

// What a question asks for. Selections are aggregates, to be written as {.vectors = {"FOPR"}}: every member
// has a default, and new ones are added at the end.

/// Wide: a column for each vector or array. Long: a row for each value.
enum class Layout : std::uint8_t { Wide, Long };

/// Report steps, both ends included.
struct StepRange {
  std::int32_t first = 0;
  std::int32_t last = std::numeric_limits<std::int32_t>::max();
};

/// Which rows or steps are wanted. Rows are selected, never made. A row must pass all members that are set.
struct TimeSelection {
  std::vector<StepRange> steps{};     ///< empty: all
  bool last = false;                  ///< the last one only
  std::optional<LocalMoment> from{};  ///< both ends included
  std::optional<LocalMoment> to{};
  std::optional<LocalMoment> at{};  ///< the last row at or before
  Every every = Every::Row;

  /// From "3:7,9", "3:", ":7", "5" or "last". Throws Error BadRequest for anything else.
  static TimeSelection parse(std::string_view steps);
};

/// A date as "2001-08-01" or "2001-08-01T06:30:00". A date without a time is midnight, or with `endOfDay` the
/// last microsecond of the day. Throws Error BadRequest.
LocalMoment parseMoment(std::string_view text, bool endOfDay = false);

/// Cells of a grid, numbered from 1, both ends included.
struct CellBox {
  std::array<std::int32_t, 3> from{};
  std::array<std::int32_t, 3> to{};
};

}  // namespace lumbarn
