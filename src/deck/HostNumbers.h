#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace lumbarn {

/// Numbers as the host form reads them: as much of a number as a word begins with, so that "1,5" is 1, and 0
/// where it begins with none. Exponents begin with E or D. For numbers of a simulator's files see
/// `parseNumber`.

/// Takes the number that a text begins with, behind tabs, and gives the characters taken; 0 with value 0
/// where there is none. A number that is too large gives infinity.
std::size_t takeHostNumber(std::string_view text, float& value);
std::size_t takeHostNumber(std::string_view text, double& value);

/// The value of a word. Throws Fault 6 for a number that is too large. `whole` becomes false when the word is
/// more, or something else, than a number.
float hostSingle(std::string_view word, bool& whole);
double hostDouble(std::string_view word, bool& whole);

/// The value of a text that is a number as a whole, blanks and tabs around it allowed.
std::optional<double> hostNumber(std::string_view text);

/// To the nearest integer, halves to the even one. Throws Fault 6 for what has no place in 32 bits.
std::int32_t hostRounded(double value);

/// Without blanks at both ends. Deliberate: a tab is no blank here.
std::string_view trimBlanks(std::string_view text);

}  // namespace lumbarn
