#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Selections.h"

namespace lumbarn {

/// When a row or a step is.
struct TimePoint {
  std::int32_t step = -1;  ///< report step; below 0: not known
  std::optional<LocalMoment> date;
};

/// The positions of the rows that a selection keeps, in their order. `source` names the file or run in
/// errors. Throws Error NotFound, which tells the steps or the first and last date that there are, when rows
/// exist and none is kept; BadRequest when dates are asked for and not known.
std::vector<std::size_t> chooseTimes(const TimeSelection& selection, const std::vector<TimePoint>& rows,
                                     const std::string& source);

/// The two rules of that choice, for rows that come one after the other: whether a row is within the steps
/// and dates, and whether of two consecutive ones that are only the later is kept.
bool isWithin(const TimeSelection& selection, const TimePoint& row);
bool keepsLaterOnly(const TimeSelection& selection, const TimePoint& row, const TimePoint& later);

/// Report steps as people write them: "0:3, 5"; of many the first ones and the number of the others.
std::string stepsText(const std::vector<std::int32_t>& steps);

}  // namespace lumbarn
