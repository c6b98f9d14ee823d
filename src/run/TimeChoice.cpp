#include "TimeChoice.h"

#include <algorithm>
#include <charconv>
#include <chrono>

#include <fmt/format.h>

#include "../frame/Error.h"
#include "../frame/Write.h"
#include "../support/Dates.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

using std::chrono::days;
using std::chrono::floor;

[[noreturn]] void refuse(std::string problem) {
  throw Error(Error::Kind::BadRequest, {.message = Message::RequestRefused, .problem = std::move(problem)});
}

/// A number that orders periods: equal for the moments of one period.
std::int64_t periodOf(LocalMoment moment, Every every) {
  const auto day = floor<days>(moment);
  const std::chrono::year_month_day date(day);
  const std::int64_t month = 12 * std::int64_t{int{date.year()}} + unsigned{date.month()} - 1;
  switch (every) {
    case Every::Day:
      return day.time_since_epoch().count();
    case Every::Month:
      return month;
    case Every::Quarter:
      return month / 3;
    default:
      return int{date.year()};
  }
}

bool inSteps(const TimeSelection& selection, std::int32_t step) {
  return selection.steps.empty() || std::ranges::any_of(selection.steps, [&](const StepRange& range) {
           return step >= range.first && step <= range.last;
         });
}

bool needsDates(const TimeSelection& selection) {
  return selection.from || selection.to || selection.at || selection.every > Every::ReportStep;
}

void requireDates(const TimeSelection& selection, const std::vector<TimePoint>& rows,
                  const std::string& source) {
  const auto dated = [](const TimePoint& row) { return row.date.has_value(); };
  if (!needsDates(selection) || std::ranges::all_of(rows, dated)) return;
  throw Error(Error::Kind::BadRequest,
              {.message = Message::RequestRefused,
               .path = source,
               .problem = "dates are not known, so nothing can be selected by them"});
}

[[noreturn]] void nothingFound(const TimeSelection& selection, const std::vector<TimePoint>& rows,
                               const std::string& source) {
  std::string has;
  if (!selection.steps.empty()) {
    std::vector<std::int32_t> steps;
    for (const TimePoint& row : rows) {
      if (steps.empty() || steps.back() != row.step) steps.push_back(row.step);
    }
    has = "none of the report steps asked for; it has " + stepsText(steps);
  }
  const auto dated = [](const TimePoint& row) { return row.date.has_value(); };
  const auto first = std::ranges::find_if(rows, dated);
  if (first != rows.end() && (has.empty() || selection.from || selection.to || selection.at)) {
    const auto last = std::find_if(rows.rbegin(), rows.rend(), dated);
    if (has.empty()) has = "nothing at the dates asked for";
    has += fmt::format("{}from {} to {}", has.ends_with("for") ? "; it goes " : ", ", isoText(*first->date),
                       isoText(*last->date));
  }
  throw Error(Error::Kind::NotFound,
              {.message = Message::RequestMissing, .path = source, .problem = "has " + has});
}

std::int32_t stepNumberFrom(std::string_view part, std::string_view whole) {
  const auto value = toInteger(part);
  if (!value || *value < 0 || *value > std::numeric_limits<std::int32_t>::max()) {
    refuse(fmt::format("steps are given as 3:7, 3:, :7, 3, 3:7,9 or last, not \"{}\"", whole));
  }
  return static_cast<std::int32_t>(*value);
}

}  // namespace

TimeSelection TimeSelection::parse(std::string_view steps) {
  TimeSelection selection;
  if (equalNoCase(trim(steps), "last")) {
    selection.last = true;
    return selection;
  }
  for (const std::string& item : split(steps, ',')) {
    const auto range = trim(item);
    const auto colon = range.find(':');
    StepRange parsed;
    if (colon == range.npos) {
      parsed.first = parsed.last = stepNumberFrom(range, steps);
    } else {
      const auto first = trim(range.substr(0, colon));
      const auto last = trim(range.substr(colon + 1));
      if (first.empty() && last.empty()) stepNumberFrom(first, steps);
      if (!first.empty()) parsed.first = stepNumberFrom(first, steps);
      if (!last.empty()) parsed.last = stepNumberFrom(last, steps);
      if (parsed.last < parsed.first) refuse(fmt::format("steps {} end before they begin", range));
    }
    selection.steps.push_back(parsed);
  }
  return selection;
}

LocalMoment parseMoment(std::string_view text, bool endOfDay) {
  const std::string_view all = trim(text);
  const auto fail = [&] {
    refuse(fmt::format("a date is given as 2001-08-01 or 2001-08-01T06:30:00, not \"{}\"", text));
  };
  std::string_view rest = all;
  const auto number = [&](std::size_t digits) {
    int value = 0;
    const auto part = rest.substr(0, digits);
    const auto parsed = std::from_chars(part.data(), part.data() + part.size(), value);
    if (part.size() != digits || parsed.ptr != part.data() + digits || part.front() == '-') fail();
    rest.remove_prefix(digits);
    return value;
  };
  const auto mark = [&](std::string_view marks) {
    if (rest.empty() || marks.find(rest.front()) == marks.npos) fail();
    rest.remove_prefix(1);
  };
  const int year = number(4);
  mark("-");
  const int month = number(2);
  mark("-");
  const int day = number(2);
  int hour = 0;
  int minute = 0;
  std::int64_t microseconds = 0;
  const bool dateOnly = rest.empty();
  if (!dateOnly) {
    mark("T ");
    hour = number(2);
    mark(":");
    minute = number(2);
    if (!rest.empty()) {
      mark(":");
      microseconds = std::int64_t{number(2)} * 1000000;
    }
    if (!rest.empty()) {
      mark(".");
      if (rest.empty() || rest.size() > 6) fail();
      std::int64_t unit = 1000000;
      for (const char digit : rest) {
        if (digit < '0' || digit > '9') fail();
        microseconds += (digit - '0') * (unit /= 10);
      }
    }
  }
  const auto moment = makeMoment(year, month, day, hour, minute, microseconds);
  if (!moment) fail();
  const LocalMoment local(moment->time_since_epoch());
  return dateOnly && endOfDay ? local + days(1) - std::chrono::microseconds(1) : local;
}

bool isWithin(const TimeSelection& selection, const TimePoint& row) {
  if (!inSteps(selection, row.step)) return false;
  if (!needsDates(selection)) return true;
  return row.date && (!selection.from || *row.date >= *selection.from) &&
         (!selection.to || *row.date <= *selection.to) && (!selection.at || *row.date <= *selection.at);
}

bool keepsLaterOnly(const TimeSelection& selection, const TimePoint& row, const TimePoint& later) {
  if (selection.last || selection.at) return true;
  if (selection.every == Every::Row) return false;
  if (selection.every == Every::ReportStep) return row.step == later.step;
  return periodOf(*row.date, selection.every) == periodOf(*later.date, selection.every);
}

std::vector<std::size_t> chooseTimes(const TimeSelection& selection, const std::vector<TimePoint>& rows,
                                     const std::string& source) {
  std::vector<std::size_t> kept;
  if (rows.empty()) return kept;
  requireDates(selection, rows, source);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!isWithin(selection, rows[i])) continue;
    if (!kept.empty() && keepsLaterOnly(selection, rows[kept.back()], rows[i])) kept.pop_back();
    kept.push_back(i);
  }
  if (kept.empty()) nothingFound(selection, rows, source);
  return kept;
}

std::string stepsText(const std::vector<std::int32_t>& steps) {
  constexpr std::size_t shown = 12;
  std::string text;
  std::size_t ranges = 0;
  std::size_t i = 0;
  for (; i < steps.size() && ranges < shown; ++ranges) {
    std::size_t last = i;
    while (last + 1 < steps.size() && steps[last + 1] == steps[last] + 1) ++last;
    if (!text.empty()) text += ", ";
    text += last > i ? fmt::format("{}{}{}", steps[i], last > i + 1 ? ":" : ", ", steps[last])
                     : fmt::format("{}", steps[i]);
    i = last + 1;
  }
  if (i < steps.size()) text += fmt::format(" and {} others", steps.size() - i);
  return text.empty() ? "none" : text;
}

}  // namespace lumbarn
