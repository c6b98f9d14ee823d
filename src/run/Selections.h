#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../frame/Column.h"

namespace lumbarn {

// What a question asks for. Selections are aggregates, to be written as {.vectors = {"FOPR"}}: every member
// has a default, and new ones are added at the end.

/// The last row of each period.
enum class Every : std::uint8_t { Row, ReportStep, Day, Month, Quarter, Year };
/// Units of the answer; File: as the file has them.
enum class Units : std::uint8_t { File, Metric, Field, Lab, SI };
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

/// Vectors of a summary, by full names or patterns ("WOPR:*", "BPR:10,4,3"), several in one text separated by
/// commas.
struct SummarySelection {
  std::vector<std::string> vectors{};  ///< in the order of the columns; empty: all
  std::vector<std::string> except{};   ///< omitted; TIME is a column unless it is one of these
  TimeSelection time{};
  bool chain = false;           ///< with the rows of the runs that this one restarted from
  bool keepDuplicates = false;  ///< vectors whose name occurs before too, as "FOPR#2"
  bool dates = false;           ///< a column DATE in front
  /// `step`, `date` and `days` in front, in place of DATE and TIME. TIME is then a column only if it is one
  /// of `vectors` by name.
  bool keys = false;
};

}  // namespace lumbarn
