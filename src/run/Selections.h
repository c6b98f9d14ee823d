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
#include "../support/Export.h"
#include "../welltests/TestPart.h"

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
struct LUMBARN_API TimeSelection {
  std::vector<StepRange> steps{};     ///< empty: all
  bool last = false;                  ///< the last one only
  std::optional<LocalMoment> from{};  ///< both ends included
  std::optional<LocalMoment> to{};
  std::optional<LocalMoment> at{};  ///< the last row at or before
  Every every = Every::Row;

  bool isAll() const { return steps.empty() && !last && !from && !to && !at && every == Every::Row; }
  /// From "3:7,9", "3:", ":7", "5" or "last". Throws Error BadRequest for anything else.
  static TimeSelection parse(std::string_view steps);
};

/// A date as "2001-08-01" or "2001-08-01T06:30:00". A date without a time is midnight, or with `endOfDay` the
/// last microsecond of the day. Throws Error BadRequest.
LUMBARN_API LocalMoment parseMoment(std::string_view text, bool endOfDay = false);

/// Corners of the active cells of a grid.
struct CornerSelection {
  std::string grid{};  ///< empty or ROOT: the global one
  bool map = false;    ///< x and y in the axes and units of the map, where the file has such
  bool zUp = false;    ///< heights in place of depths
};

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
  bool formatted = false;             ///< it is also when the name of the target says so
  bool littleEndian = false;          ///< of a file that is not formatted
  TimeSelection time{};               ///< steps of a restart file
  std::vector<std::string> arrays{};  ///< patterns; arrays of cells that match none are left out
};

/// What to compare, and what counts as a difference: numbers that are farther apart than both tolerances.
struct Comparison {
  std::vector<std::string> keywords{};  ///< of records or arrays, patterns; empty: all records, no arrays
  double absolute = 0;
  double relative = 0;                 ///< of the larger number of the two
  std::size_t top = 20;                ///< how many of the largest differences are given
  std::vector<std::string> vectors{};  ///< of runs, patterns; empty: all, unless there are `keywords`
  TimeSelection time{};                ///< of runs
  bool interpolate = false;            ///< vectors of the second run are taken at the dates of the first
};

/// Elements of records of one file.
struct RecordSelection {
  std::string file{};
  std::vector<std::string> keywords{};  ///< patterns
  std::int64_t occurrence = 0;          ///< of each keyword, from 1; 0: all
  std::int64_t first = 1;               ///< element, from 1
  std::int64_t last = -1;               ///< -1: to the end
};

/// A cell or a box as "12,8,4" or "1:16,8,1:5". Throws Error BadRequest.
LUMBARN_API CellBox parseCells(std::string_view text);

/// Cells by the numbers of an array of regions, which is taken from the INIT file, or from the restart files
/// if only these have it.
struct RegionFilter {
  std::string array{};
  std::vector<std::int32_t> numbers{};  ///< a cell must have one of them
};

/// Regions as "FIPNUM=1,2". Throws Error BadRequest.
LUMBARN_API RegionFilter parseRegion(std::string_view text);

/// Which arrays are listed.
struct ArrayListSelection {
  bool init = false;   ///< those of the INIT file, not of the restart files
  std::string grid{};  ///< empty: all grids
  TimeSelection time{};
};

/// Which values of arrays of cells are wanted.
struct CellSelection {
  /// Names, or patterns for the arrays that `Run::arrays` lists; each text may be several with commas
  /// between.
  std::vector<std::string> arrays{};
  std::string grid = "ROOT";
  TimeSelection time{};
  std::vector<CellBox> cells{};  ///< empty: the active cells
  bool init = false;             ///< arrays of the INIT file only, which have no time
  bool inactive = false;         ///< all cells, where `cells` is empty
  bool ijk = false;              ///< the columns i, j, k, which a list of cells has in any case
  bool valuesOnly = false;       ///< without step, date, days, grid, and i, j, k unless `ijk` asks for them
  std::optional<std::int32_t>
      nth{};  ///< of steps with one number that at this position, from 1; else the last
  std::vector<RegionFilter> regions{};  ///< only cells that are in all of these
};

/// Which arrays are summarized, over which cells.
struct StatisticsSelection {
  CellSelection cells{};
  std::vector<std::string> by{};  ///< arrays of whole numbers; each combination of them is a region
  std::string weight{};           ///< array by which means are weighted; empty: none
  /// From 0 to 100, each a column "p10", "p2.5". They do not depend on the weight, and cost memory for the
  /// values of the arrays at one step.
  std::vector<double> percentiles{};
};

/// Which wells of the restart files.
struct WellSelection {
  std::vector<std::string> wells{};  ///< patterns of names; empty: all
  std::string grid{};                ///< pattern of the names of grids; empty: the global one
  TimeSelection time{};
  bool connections = false;  ///< of `Run::wells`: a row for each connection, with the columns of both
};

/// Which well tests, and what of them.
struct TestSelection {
  std::vector<std::string> wells{};     ///< patterns of names; empty: all
  TimeSelection time{};                 ///< `last`, `at` and `every` choose among the tests of each well
  std::vector<std::int32_t> numbers{};  ///< in the file, from 1; empty: all
  TestPart part = TestPart::Rft;
  std::int32_t branch = 0;  ///< from 1, of the parts that are of one branch
  bool plain = false;       ///< without the columns that tell which test a row is of; for one number only
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
