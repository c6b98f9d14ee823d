#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "../support/Dates.h"

namespace lumbarn {

/// Minutes since midnight at a time in days since some midnight, to the nearest minute. A time below 0 counts
/// back from midnight; 0 for one that is not finite.
int minuteOfDay(double dTime);

/// The text of a date with the time of day behind it, "15 JUL 2003 06:30"; the date alone at midnight, so
/// also less than half a minute from it.
std::string withTimeOfDay(std::string zDate, double dTime);

/// The day of a test's DATE with the time of day of its TIME, which counts from the start of the run with
/// `perDay` units in a day. Nothing when there is no such day.
std::optional<Moment> testMoment(std::int32_t day, std::int32_t month, std::int32_t year, float time,
                                 double perDay);

}  // namespace lumbarn
