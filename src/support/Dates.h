#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Export.h"

namespace lumbarn {

/// A moment of simulated time, to the microsecond, in the proleptic Gregorian calendar and without time zone.
using Moment = std::chrono::sys_time<std::chrono::microseconds>;

/// "JAN" to "DEC" for 1 to 12; empty for other numbers.
LUMBARN_API std::string_view monthName(int month);
/// 1 to 12 from the first three letters, in any case; decks write July as "JLY" too. 0 for no month.
LUMBARN_API int monthNumber(std::string_view name);

/// Microseconds count from the minute, so that seconds are part of them. Nothing when there is no such day or
/// time of day, or the year is outside 1..9999.
LUMBARN_API std::optional<Moment> makeMoment(int year, int month, int day, int hour = 0, int minute = 0,
                                             std::int64_t microseconds = 0);

/// The moment a number of days after a start, for a number that a 32-bit float holds: of all moments that
/// have the same float, the one with the fewest digits (a whole day before a whole hour, half hour, ten
/// minutes, minute, half minute, ten seconds, second, and so on to the microsecond; of several alike the one
/// nearest to the number), so that a step at 06:30 is shown as 06:30. Later numbers never give earlier
/// moments. `unitsPerDay` is 1 for days, 24 for hours. Nothing when the value is not finite, `unitsPerDay` is
/// not above 0, or the start or the result is outside years 1..9999.
LUMBARN_API std::optional<Moment> momentAfter(Moment start, float elapsed, double unitsPerDay = 1);

/// "2003-07-15T06:30:00", with a fraction only when there is one; "2003-07-15" when it is midnight and
/// `dateOnly`.
LUMBARN_API std::string isoText(Moment moment, bool dateOnly = false);
/// "15 JUL 2003": day, month name and four-digit year.
LUMBARN_API std::string dayMonthYear(Moment moment);

}  // namespace lumbarn
