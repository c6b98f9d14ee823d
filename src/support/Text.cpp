#include "Text.h"

#include <algorithm>
#include <charconv>

namespace lumbarn {

namespace {

constexpr std::string_view blanks = " \t\r\n";

/// A search in `blanks` would call the library for every letter; tens of thousands of names are trimmed in a
/// load.
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\0'; }

/// The length of the UTF-8 sequence of several bytes at the start of a text, 0 if there is none. Overlong
/// forms, surrogates and what is beyond Unicode are none.
std::size_t sequenceLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
  const unsigned first = byte(0);
  const std::size_t length = first >= 0xC2 && first < 0xE0   ? 2
                             : first >= 0xE0 && first < 0xF0 ? 3
                             : first >= 0xF0 && first < 0xF5 ? 4
                                                             : 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return 0;
  }
  const unsigned least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  const unsigned most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
  return length > 0 && byte(1) >= least && byte(1) <= most ? length : 0;
}

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

std::string toUtf8(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto byte = static_cast<unsigned char>(text.front());
    const std::size_t length = byte < 0x80 ? 1 : sequenceLength(text);
    if (length > 0) {
      result += text.substr(0, length);
    } else {  // Latin-1 is the first 256 characters of Unicode
      result += static_cast<char>(0xC0U | byte >> 6U);
      result += static_cast<char>(0x80U | (byte & 0x3FU));
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return result;
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
