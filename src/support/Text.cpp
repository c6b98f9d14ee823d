#include "Text.h"

#include <algorithm>
#include <charconv>

namespace lumbarn {

namespace {

constexpr std::string_view blanks = " \t\r\n";

/// A search in `blanks` would call the library for every letter; tens of thousands of names are trimmed in a
/// load.
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

std::string_view trim(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view trimRight(std::string_view text) {
  while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) text.remove_suffix(1);
  return text;
}

std::string_view cutAtNul(std::string_view text) { return text.substr(0, text.find('\0')); }

std::string upper(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), upperLetter);
  return result;
}

std::string lower(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), lowerLetter);
  return result;
}

bool equalNoCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return upperLetter(x) == upperLetter(y); });
}

std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  while (true) {
    const auto end = text.find(separator);
    parts.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

std::vector<std::string> words(std::string_view text) {
  std::vector<std::string> found;
  while (true) {
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return found;
    text.remove_prefix(first);
    const auto end = std::min(text.find_first_of(blanks), text.size());
    found.emplace_back(text.substr(0, end));
    text.remove_prefix(end);
  }
}

std::optional<long long> toInteger(std::string_view text) {
  text = trim(text);
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  long long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace lumbarn
