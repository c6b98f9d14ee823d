#include "RestartIndexHeads.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "../support/Text.h"

namespace lumbarn {
namespace {

// Words of INTEHEAD, from 0.
constexpr std::size_t dayWord = 64;
constexpr std::size_t stepWord = 68;
constexpr std::size_t hourWord = 206;
constexpr std::size_t microsecondsWord = 410;
constexpr std::int64_t knownWords = 411;

/// To the millisecond, as 6:30 is not exact as a fraction of a day.
std::chrono::milliseconds sinceStart(double days) {
  constexpr double perDay = 86400.0 * 1000;
  constexpr double most = 1e8;  // days; beyond any calendar
  return std::chrono::milliseconds(std::llround(std::clamp(days, -most, most) * perDay));
}

}  // namespace

std::vector<std::int32_t> headWords(RecordCursor& cursor) {
  std::vector<std::int32_t> words(
      static_cast<std::size_t>(std::min<std::int64_t>(cursor.header().count, knownWords)));
  cursor.read(std::span(words));
  return words;
}

std::int32_t firstInteger(RecordCursor& cursor) {
  std::int32_t value = 0;
  cursor.read(std::span(&value, 1));
  return value;
}

std::string firstText(RecordCursor& cursor) {
  std::string text(static_cast<std::size_t>(cursor.header().width), ' ');
  cursor.readText(text);
  return std::string(trim(trimRight(text)));
}

std::int32_t stepOfHead(std::span<const std::int32_t> intehead) {
  return intehead.size() > stepWord ? intehead[stepWord] : -1;
}

std::optional<Moment> dateOfHead(std::span<const std::int32_t> intehead, double days) {
  if (intehead.size() < dayWord + 3) return std::nullopt;
  const auto* word = intehead.data() + dayWord;
  if (intehead.size() > hourWord + 1) {
    const auto microseconds = intehead.size() > microsecondsWord ? intehead[microsecondsWord] : 0;
    const auto date =
        makeMoment(word[2], word[1], word[0], intehead[hourWord], intehead[hourWord + 1], microseconds);
    if (date) return date;
  }
  const auto day = makeMoment(word[2], word[1], word[0]);
  return day ? std::optional(dateOfReport(std::nullopt, *day, days)) : std::nullopt;
}

std::optional<Moment> startOfRun(std::span<const std::int32_t> intehead, std::optional<Moment> date,
                                 double days) {
  if (!date || intehead.size() <= hourWord + 1 || !std::isfinite(days)) return std::nullopt;
  return *date - sinceStart(days);
}

Moment dateOfReport(std::optional<Moment> start, Moment day, double days) {
  if (start && std::isfinite(days)) return *start + sinceStart(days);
  const double fraction = days - std::floor(days);
  if (!(fraction > 0)) return day;
  constexpr double minutesPerDay = 24 * 60;
  constexpr double rounding = 1e-4;  // a time of 6.5 hours may be a little below 390 minutes
  const auto minute = static_cast<int>(std::min(fraction * minutesPerDay + rounding, minutesPerDay - 1));
  return day + std::chrono::minutes(minute);
}

}  // namespace lumbarn
