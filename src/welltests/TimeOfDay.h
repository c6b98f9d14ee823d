#pragma once

#include <string>

namespace lumbarn {

/// Minutes since midnight at a time in days since some midnight, to the nearest minute. A time below 0 counts
/// back from midnight; 0 for one that is not finite.
int minuteOfDay(double dTime);

/// The text of a date with the time of day behind it, "15 JUL 2003 06:30"; the date alone at midnight, so
/// also less than half a minute from it.
std::string withTimeOfDay(std::string zDate, double dTime);

}  // namespace lumbarn
