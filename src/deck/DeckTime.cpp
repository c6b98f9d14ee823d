#include "DeckTime.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string_view>

#include "../support/Text.h"
#include "../vocabulary/Units.h"

namespace lumbarn {

namespace {

constexpr std::int64_t mostSteps = 10'000'000;  // "9999999999*1" asks for more than any run has

/// "06:30:15.5" as a time of day.
std::optional<std::chrono::microseconds> timeOfDay(std::string_view text) {
  double seconds = 0;
  double unit = 3600;
  for (const std::string& part : split(text, ':')) {
    const auto number = deckNumber(part);
    if (!number || *number < 0 || unit < 1) return std::nullopt;
    seconds += *number * unit;
    unit /= 60;
  }
  if (seconds >= 86400) return std::nullopt;
  return std::chrono::microseconds(std::llround(seconds * 1e6));
}

double daysBetween(Moment from, Moment to) {
  return std::chrono::duration<double, std::ratio<86400>>(to - from).count();
}

}  // namespace

std::optional<Moment> dateOf(const DeckRecord& record, std::int64_t item) {
  const auto number = [&](std::int64_t place) {
    const auto value = deckNumber(trim(record[place].value_or("")));
    return value && *value == std::floor(*value) && std::abs(*value) < 1e5 ? static_cast<int>(*value) : 0;
  };
  const auto date =
      makeMoment(number(item + 2), monthNumber(trim(record[item + 1].value_or(""))), number(item));
  const auto time = record[item + 3];
  if (!date || !time) return date;
  const auto within = timeOfDay(trim(*time));
  return within ? std::optional(*date + *within) : std::nullopt;
}

Moment startOf(const Deck& deck) {
  std::optional<Moment> start;
  for (const DeckKeyword& keyword : deck.keywords()) {
    if (keyword.name != "START" || keyword.section > 1) continue;
    DeckRecords records(deck.files(), keyword);
    DeckRecord record;
    if (records.next(record)) start = dateOf(record);
  }
  return start.value_or(*makeMoment(1983, 1, 1));
}

DeckCalendar calendarOf(const Deck& deck) {
  DeckCalendar calendar{.start = startOf(deck)};
  const double perDay = unitsPerDay(deck.unitSystem());
  double now = 0;
  const auto reach = [&](const DeckStep& at, double days) {
    DeckStep step = at;
    step.days = days;
    const bool later = days > now && static_cast<std::int64_t>(calendar.steps.size()) < mostSteps;
    (later ? calendar.steps : calendar.wrong).push_back(step);
    if (later) now = days;
    return later;
  };
  for (std::size_t place = 0; place < deck.keywords().size(); ++place) {
    const DeckKeyword& keyword = deck.keywords()[place];
    const bool dates = keyword.name == "DATES";
    if (keyword.section != 8 || (!dates && keyword.name != "TSTEP")) continue;
    DeckRecords records(deck.files(), keyword);
    DeckRecord record;
    while (records.next(record)) {
      const DeckStep at{place, record.line, record.file, now};
      if (dates) {
        const auto date = dateOf(record);
        reach(at, date ? daysBetween(calendar.start, *date) : now);
        continue;
      }
      for (const DeckItem& item : record.items) {
        const auto length = item.given ? deckNumber(record.value(item)) : std::nullopt;
        bool good = true;
        for (std::int64_t i = 0; good && i < item.count; ++i)
          good = reach(at, now + length.value_or(0) / perDay);
      }
    }
  }
  return calendar;
}

}  // namespace lumbarn
