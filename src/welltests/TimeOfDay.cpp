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

}  // namespace lumbarn
