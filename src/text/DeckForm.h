#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "../support/Export.h"

namespace lumbarn {

/// How the data behind a keyword end.
enum class DeckForm : std::uint8_t {
  None,      ///< there are none
  Records,   ///< after a number of records, each closed by "/"
  List,      ///< after an empty record, a "/" alone
  Text,      ///< the same, and a "/" within a line is an operator
  Tables,    ///< records of numbers up to the next keyword; an empty one repeats the one before
  Branches,  ///< the same with an empty record behind each table, PVTO; that behind the last one is none
  Array,     ///< one record of numbers, for cells
  Words,     ///< one record, whose words may be those of keywords: RPTSCHED
  Line,      ///< one line, unchanged
  Open,      ///< not known: records up to the next word that has the form of a keyword
};

struct LUMBARN_API DeckKeywordForm {
  DeckForm form = DeckForm::Open;
  std::int32_t records = 0;  ///< of `Records`
};

/// Sections of a deck by number, as `sectionOfDeck` gives them; 0 means before the first section.
inline constexpr std::string_view deckSections[] = {"",        "RUNSPEC",  "GRID",    "EDIT",    "PROPS",
                                                    "REGIONS", "SOLUTION", "SUMMARY", "SCHEDULE"};
/// The number of a section by its keyword; 0 for any other word.
constexpr std::int32_t sectionOfDeck(std::string_view keyword) {
  for (std::int32_t i = 1; i <= 8; ++i) {
    if (deckSections[i] == keyword) return i;
  }
  return 0;
}

/// Which words are keywords, and how their data end.
class LUMBARN_API DeckForms {
 public:
  virtual ~DeckForms() = default;
  /// Of a name in upper case, of 8 characters at most, in a section; nothing for a word that is no keyword
  /// there.
  virtual std::optional<DeckKeywordForm> find(std::string_view name, std::int32_t section) const = 0;
};

}  // namespace lumbarn
