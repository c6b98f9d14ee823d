#include "TimeOfDay.h"

#include <cmath>
#include <iterator>

#include <fmt/format.h>

namespace lumbarn {

int minuteOfDay(double dTime) {
  constexpr int minutesPerDay = 1440;
  if (!std::isfinite(dTime)) return 0;
  const auto minutes = static_cast<int>(std::nearbyint((dTime - std::trunc(dTime)) * minutesPerDay));
  return (minutes + minutesPerDay) % minutesPerDay;
}

std::string withTimeOfDay(std::string zDate, double dTime) {
  const int minutes = minuteOfDay(dTime);
  if (minutes != 0) fmt::format_to(std::back_inserter(zDate), " {:02}:{:02}", minutes / 60, minutes % 60);
  return zDate;
}

/// TIME is a 32-bit float of days or hours since the start, so the start is computed first and the moment is
/// the plainest one that has this float.
std::optional<Moment> testMoment(std::int32_t day, std::int32_t month, std::int32_t year, float time,
                                 double perDay) {
  constexpr double mostDays = 9999 * 366.0;
  const auto date = makeMoment(year, month, day);
  const double days = static_cast<double>(time) / perDay;
  if (!date || !(std::fabs(days) < mostDays)) return date;
  const Moment start = *date - std::chrono::days(static_cast<std::int64_t>(std::floor(days)));
  const auto moment = momentAfter(start, time, perDay);
  return moment ? moment : date;
}

}  // namespace lumbarn
