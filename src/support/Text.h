#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Export.h"

namespace lumbarn {

/// Texts in these files are single bytes; letters are those of ASCII, whatever the machine's locale.

/// Without blanks, tabs, line ends and characters 0 on both sides. Names and units go through here once,
/// where they are read: writers center them or pad them with either blanks or zeros.
LUMBARN_API std::string_view trim(std::string_view text);
LUMBARN_API std::string_view trimRight(
    std::string_view text);                                    ///< without blanks and characters 0 at the end
LUMBARN_API std::string_view cutAtNul(std::string_view text);  ///< up to the first character 0
constexpr char upperLetter(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr char lowerLetter(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
LUMBARN_API std::string upper(std::string_view text);
LUMBARN_API std::string lower(std::string_view text);
LUMBARN_API bool equalNoCase(std::string_view a, std::string_view b);
/// The parts between separators; a run of separators gives empty parts, an empty text one empty part.
LUMBARN_API std::vector<std::string> split(std::string_view text, char separator);
/// The words between runs of blanks; none of them empty.
LUMBARN_API std::vector<std::string> words(std::string_view text);
/// The text in UTF-8, for output and for patterns: bytes of no UTF-8 sequence are those of Latin-1, as in
/// names of wells typed on other machines. UTF-8 stays as it is.
LUMBARN_API std::string toUtf8(std::string_view text);
/// The whole text as a decimal integer, sign allowed, blanks around it allowed.
LUMBARN_API std::optional<long long> toInteger(std::string_view text);

}  // namespace lumbarn
