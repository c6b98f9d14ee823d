#pragma once

#include <cstddef>
#include <string>

#include "../frame/Stream.h"
#include "Run.h"
#include "Selections.h"

namespace lumbarn {

/// In what two files or runs differ.
struct Differences {
  /// One row for each name that was compared: `kind`, `name`, `count` of the values, `different` of them,
  /// `max` and `mean` of their absolute differences; of vectors also the `integral` of a - b over time, in
  /// days, to which a value counts from the row before.
  Batch overview;
  /// The largest differences, the largest first: `kind`, `name`, `step`, `date`, `place`, `a`, `b`, `abs`,
  /// `rel`. `a` and `b` are numbers, or texts if a text is among them.
  Batch largest;
  bool equal = true;  ///< nothing differs by more than the tolerance, and nothing is missing on either side
};

/// Compares two files of records record by record: those of one keyword in their order. What only one of them
/// has and records of different size are reported as remarks, and make them unequal. Throws Error NotFound,
/// Damaged when one cannot be read, BadRequest for files of different types or without anything to compare.
Differences compareFiles(const std::string& a, const std::string& b, const Comparison& comparison = {},
                         const ReadOptions& options = {});

/// Compares two runs: vectors of their summaries at rows of the same date, and arrays of their restart files
/// in the same cells of steps of the same date. Dates are the same within half a unit in the last place of
/// TIME. Units of b are converted to those of a. What only one of them has, and grids of different size, are
/// reported as remarks and make them unequal; rows and steps at dates of one alone are counted in a remark
/// and do not. Throws Error as `Run::summary` and `Run::cells`.
Differences compare(const Run& a, const Run& b, const Comparison& comparison = {},
                    const ReadOptions& options = {});

/// Compares what two paths mean: two files record by record, unless vectors or a time are asked for, and
/// otherwise the runs.
Differences compare(const std::string& a, const std::string& b, const Comparison& comparison = {},
                    const ReadOptions& options = {});

}  // namespace lumbarn
