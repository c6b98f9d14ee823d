#include "Dates.h"

#include <array>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "Text.h"

namespace lumbarn {

namespace {

using namespace std::chrono;

constexpr std::array<std::string_view, 12> monthNames{"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                      "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

constexpr Moment firstMoment = sys_days{year{1} / January / 1};
constexpr Moment endOfTime = sys_days{year{10000} / January / 1};

constexpr bool isInCalendar(Moment moment) { return moment >= firstMoment && moment < endOfTime; }

/// What a moment can be a whole number of, from the fewest digits to the most.
constexpr auto roundness =
    std::to_array<microseconds>({days{1}, hours{1}, minutes{30}, minutes{10}, minutes{1}, seconds{30},
                                 seconds{10}, seconds{1}, milliseconds{100}, milliseconds{10},
                                 milliseconds{1}, microseconds{100}, microseconds{10}, microseconds{1}});

/// The start of the step of that width, counted from 1970, in which the moment lies.
Moment stepBefore(Moment moment, microseconds width) {
  const auto rest = moment.time_since_epoch() % width;
  return moment - (rest < rest.zero() ? rest + width : rest);
}

/// The clock of a run as its writer reads it: in double, then cut to a float.
struct Clock {
  Moment start;
  double microsecondsPerUnit;

  float elapsedAt(Moment moment) const {
    return static_cast<float>(static_cast<double>((moment - start).count()) / microsecondsPerUnit);
  }
};

/// The roundest moment at which the clock shows the same as at `exact`, and of several the nearest to it.
Moment roundestMoment(const Clock& clock, Moment exact, float elapsed) {
  for (const auto width : roundness) {
    Moment nearer = stepBefore(exact, width);
    Moment other = nearer + width;
    if (other - exact < exact - nearer) std::swap(nearer, other);
    if (clock.elapsedAt(nearer) == elapsed) return nearer;
    // Below a power of two floats are closer together than above it, so the farther one can be the only one.
    if (clock.elapsedAt(other) == elapsed) return other;
  }
  return exact;  // this early the float tells apart what is less than a microsecond apart
}

}  // namespace

std::string_view monthName(int month) {
  return month >= 1 && month <= 12 ? monthNames[static_cast<std::size_t>(month - 1)] : std::string_view{};
}

int monthNumber(std::string_view name) {
  const auto letters = trim(name).substr(0, 3);
  if (equalNoCase(letters, "JLY")) return 7;
  for (int month = 1; month <= 12; ++month) {
    if (equalNoCase(letters, monthName(month))) return month;
  }
  return 0;
}

std::optional<Moment> makeMoment(int year, int month, int day, int hour, int minute,
                                 std::int64_t microseconds) {
  const auto within = [](auto value, auto first, auto last) { return value >= first && value <= last; };
  if (!within(year, 1, 9999) || !within(month, 1, 12) || !within(day, 1, 31)) return std::nullopt;
  if (!within(hour, 0, 23) || !within(minute, 0, 59) || !within(microseconds, 0, 59'999'999))
    return std::nullopt;
  const auto date = std::chrono::year{year} / month / day;
  if (!date.ok()) return std::nullopt;
  return sys_days{date} + hours{hour} + minutes{minute} + std::chrono::microseconds{microseconds};
}

std::optional<Moment> momentAfter(Moment start, float elapsed, double unitsPerDay) {
  const Clock clock{start, static_cast<double>(microseconds{days{1}}.count()) / unitsPerDay};
  const double count = std::nearbyint(static_cast<double>(elapsed) * clock.microsecondsPerUnit);
  constexpr auto longest = static_cast<double>((endOfTime - firstMoment).count());
  // Written so that what is not a number fails too.
  if (!isInCalendar(start) || !(unitsPerDay > 0) || !(std::abs(count) <= longest)) return std::nullopt;

  const Moment exact = start + microseconds{static_cast<std::int64_t>(count)};
  const Moment moment = roundestMoment(clock, exact, elapsed);
  return isInCalendar(moment) ? std::optional(moment) : std::nullopt;
}

std::string isoText(Moment moment, bool dateOnly) {
  const auto midnight = floor<days>(moment);
  const year_month_day date{midnight};
  auto text = fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                          static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  if (dateOnly && moment == midnight) return text;
  const hh_mm_ss time{moment - midnight};
  // Not format_to: with a string to append to it compiles the whole of fmt anew.
  text +=
      fmt::format("T{:02}:{:02}:{:02}", time.hours().count(), time.minutes().count(), time.seconds().count());
  if (time.subseconds() != microseconds::zero()) {
    text += fmt::format(".{:06}", time.subseconds().count());
    text.erase(text.find_last_not_of('0') + 1);
  }
  return text;
}

std::string dayMonthYear(Moment moment) {
  const year_month_day date{floor<days>(moment)};
  return fmt::format("{} {} {:04}", static_cast<unsigned>(date.day()),
                     monthName(static_cast<int>(static_cast<unsigned>(date.month()))),
                     static_cast<int>(date.year()));
}

}  // namespace lumbarn
