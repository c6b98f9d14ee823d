#pragma once

#include <cstddef>
#include <string_view>

#include "../support/Export.h"

namespace lumbarn {

/// What counts in one line of a deck. A comment begins at the first "--" outside quotes and is gone before
/// the line is searched for anything else; text after the "/" that ends a record is comment too.
struct LUMBARN_API DeckLine {
  std::string_view code;   ///< without the line end, the comment, and blanks at both ends
  std::size_t codeAt = 0;  ///< position of `code` in the line
  bool slash = false;      ///< `code` ends in the "/" of a record
  bool openQuote = false;  ///< a quote is not closed on the line
  bool comment = false;    ///< the line has a comment, or text behind the "/"
};

/// Blanks of a deck: everything up to the blank itself, so that tabs, line ends and characters 0 are some.
constexpr bool isDeckBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }
constexpr bool isDeckQuote(char c) { return c == '\'' || c == '"'; }
constexpr bool isDeckLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
constexpr bool isDeckDigit(char c) { return c >= '0' && c <= '9'; }

/// Parses a line of the file, with or without its line end.
LUMBARN_API DeckLine deckLine(std::string_view line);
/// The same for texts in which a "/" may be an operator: the last one of the line, if nothing but blanks or a
/// comment follows it, ends the record.
LUMBARN_API DeckLine deckTextLine(std::string_view line);

/// The first word of a line's code: up to a blank, a comma or a slash.
LUMBARN_API std::string_view firstWord(std::string_view code);
/// Whether a word has the form of a keyword: it begins with a letter and has letters, digits, "+", "-", "_"
/// and the like.
LUMBARN_API bool isKeywordWord(std::string_view word);

}  // namespace lumbarn
