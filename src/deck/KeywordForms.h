#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "../text/DeckForm.h"

namespace lumbarn {

/// What decks are read by: the keywords of the dictionary and those that simulators have beyond it, with the
/// forms of their data. Where nothing is known of a keyword's data, its form is `Open`.
class KeywordForms final : public DeckForms {
 public:
  /// In section 0, what the word is in any of them. In SUMMARY, every word that has the form of a mnemonic is
  /// a keyword, as users name vectors too.
  std::optional<DeckKeywordForm> find(std::string_view name, std::int32_t section) const override;

  /// Sections in which a keyword is valid, as bits, 1 for RUNSPEC; 0 for a word that is not a keyword.
  static std::uint32_t sectionsOf(std::string_view name);
  /// Whether a keyword has a value for each cell.
  static bool isCellArray(std::string_view name);
};

}  // namespace lumbarn
