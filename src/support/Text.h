#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumbarn {

/// Texts in these files are single bytes; letters are those of ASCII, whatever the machine's locale.

/// Without blanks, tabs, line ends and characters 0 on both sides. Names and units go through here once,
/// where they are read: writers center them or pad them with either blanks or zeros.
std::string_view trim(std::string_view text);
std::string_view trimRight(std::string_view text);  ///< without blanks and characters 0 at the end
std::string_view cutAtNul(std::string_view text);   ///< up to the first character 0
constexpr char upperLetter(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr char lowerLetter(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
std::string upper(std::string_view text);
std::string lower(std::string_view text);
bool equalNoCase(std::string_view a, std::string_view b);
/// The parts between separators; a run of separators gives empty parts, an empty text one empty part.
std::vector<std::string> split(std::string_view text, char separator);
/// The words between runs of blanks; none of them empty.
std::vector<std::string> words(std::string_view text);
/// The text in UTF-8, for output and for patterns: bytes of no UTF-8 sequence are those of Latin-1, as in
/// names of wells typed on other machines. UTF-8 stays as it is.
std::string toUtf8(std::string_view text);
/// The whole text as a decimal integer, sign allowed, blanks around it allowed.
std::optional<long long> toInteger(std::string_view text);

}  // namespace lumbarn
