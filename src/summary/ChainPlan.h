#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "../shapes/XYData.h"
#include "../support/Export.h"

namespace lumbarn {

/// Where a column of the table of a restart chain gets its values in one run.
struct ChainSource {
  std::int32_t column = 0;  ///< of the run's table, from 1; 0: the run has no values for the column
  double factor = 1;        ///< from the units of the run to those of the table
  double offset = 0;        ///< added to the result

  bool converts() const { return factor != 1 || offset != 0; }
  float converted(float value) const { return static_cast<float>(value * factor + offset); }
};

/// What one run contributes to the table of a chain.
struct ChainPart {
  std::size_t rows = 0;              ///< its first rows
  std::vector<ChainSource> sources;  ///< by column of the table; the run has no values for further columns
};

/// Rows and columns of the table of a restart chain: the rows of each earlier run precede those of the later
/// ones, and a column has the values of every run that has the vector. The plan does not contain values, so
/// it can be made before any are read. Runs are numbered from 0, newest first; columns count from 1, rows
/// from 0.
class LUMBARN_API ChainPlan {
 public:
  /// Starts with all rows and columns of the newest run.
  void addNewest(std::size_t rows, std::size_t columns);
  /// Adds an earlier run.
  void add(ChainPart part);

  std::size_t rows() const { return rows_; }
  std::size_t columns() const { return columns_; }
  const std::vector<ChainPart>& parts() const { return parts_; }
  /// Values of the column in a run; `column` 0 for none.
  ChainSource source(std::size_t run, std::size_t column) const;
  /// Whether each row of the table has a value of the column.
  std::vector<bool> rowsWithValues(std::size_t column) const;
  /// The columns that some rows have no value of.
  std::vector<std::size_t> columnsWithGaps() const;

  /// Writes one column of the table from those of the runs, 0 where there is no value; all of `out` is
  /// written. Throws Fault 9 for a source that is not there.
  void fill(std::size_t column, std::span<const XYData* const> tables, std::span<float> out) const;

 private:
  std::vector<ChainPart> parts_;
  std::size_t rows_ = 0;
  std::size_t columns_ = 0;
};

/// Rows of an earlier run that are used: those up to the first one that is not before the table, as later
/// ones were computed anew. `scale` makes times of the table of `times`; without a first time all rows are
/// used.
LUMBARN_API std::size_t rowsBefore(std::span<const float> times, const ChainSource& scale,
                                   std::optional<float> firstTime);

}  // namespace lumbarn
