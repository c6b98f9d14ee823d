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

/// Connections between cells that are no neighbours, of one grid.
struct NncSelection {
  std::vector<std::string> arrays{};  ///< patterns; empty: all
  std::string grid{};                 ///< empty or ROOT: the global one
};

/// The form in which a file of records is written, and what of it.
struct Conversion {
  bool formatted = false;
  bool littleEndian = false;          ///< of a file that is not formatted
  TimeSelection time{};               ///< steps of a restart file
  std::vector<std::string> arrays{};  ///< patterns; arrays of cells that match none are left out
};

/// What to compare, and what counts as a difference: numbers that are farther apart than both tolerances.
struct Comparison {
  std::vector<std::string> keywords{};  ///< of records, patterns; empty: all
  double absolute = 0;
  double relative = 0;   ///< of the larger number of the two
  std::size_t top = 20;  ///< how many of the largest differences are given
};

/// Elements of records of one file.
struct RecordSelection {
  std::string file{};
  std::vector<std::string> keywords{};  ///< patterns
  std::int64_t occurrence = 0;          ///< of each keyword, from 1; 0: all
  std::int64_t first = 1;               ///< element, from 1
  std::int64_t last = -1;               ///< -1: to the end
};

}  // namespace lumbarn
