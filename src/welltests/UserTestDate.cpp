#include "UserTestDate.h"

#include <string>
#include <utility>
#include <vector>

#include "../support/Text.h"

namespace lumbarn {

namespace {

void removeAll(std::string& text, std::string_view part) {
  for (auto at = text.find(part); at != text.npos; at = text.find(part, at)) text.erase(at, part.size());
}

/// Day, month and year as words, in this order; nothing when there are not three.
std::vector<std::string> partsOf(std::string_view date, std::string_view format) {
  std::string text(date);
  for (const char* part : {"TH", "RD", "ND", "ST", ","}) removeAll(text, part);
  for (char& c : text) {
    if (c == '/' || c == '-') c = ' ';
  }
  auto parts = words(text);
  if (parts.size() != 3) return {};
  if (equalNoCase(format.substr(0, 2), "MM")) std::swap(parts[0], parts[1]);
  if (equalNoCase(format.substr(0, 2), "YY")) std::swap(parts[0], parts[2]);
  return parts;
}

int numberOf(std::string_view text) {
  constexpr long long beyondAnyDate = 10000;
  const auto number = toInteger(text).value_or(-1);
  return number >= 0 && number < beyondAnyDate ? static_cast<int>(number) : -1;
}

int yearOf(std::string_view text) {
  const int year = numberOf(text);
  if (text.size() > 2 || year < 0) return year;
  return year < 30 ? 2000 + year : 1900 + year;
}

}  // namespace

std::optional<Moment> parseUserTestDate(std::string_view text, std::string_view format) {
  const auto parts = partsOf(text, format);
  if (parts.empty()) return std::nullopt;
  const int month = toInteger(parts[1]) ? numberOf(parts[1]) : monthNumber(parts[1]);
  return makeMoment(yearOf(parts[2]), month, numberOf(parts[0]));
}

}  // namespace lumbarn
