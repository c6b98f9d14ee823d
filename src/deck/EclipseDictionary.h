#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Session.h"

namespace lumbarn {

/// One keyword in one section of one simulator.
struct DictionaryRow {
  std::string keyword;
  std::string section;
  std::string simulator;
  std::int32_t iClass = 1;
};

/// The keywords that hosts' decks are read by; see `KeywordForms` for what simulators know beyond them. One
/// table, built once, that never changes. Rows count from 1 and are grouped by the first letters of their
/// keywords.
class EclipseDictionary {
 public:
  static const EclipseDictionary& shared();

  struct Found {
    std::int32_t row = 0;
    std::int32_t section = 0;  ///< -1 for a section whose name is misspelled
    std::int32_t iClass = 0;
  };
  /// The row of a keyword field in a section; in section 0 the first of that name. The name of a section is
  /// found in every section.
  std::optional<Found> find(std::string_view key, std::int32_t section) const;

  std::span<const DictionaryRow> rows() const { return rows_; }
  /// First and last row of a letter, from 1; 0 for one that has none.
  std::pair<std::int32_t, std::int32_t> letter(char c) const;

 private:
  EclipseDictionary();

  std::vector<DictionaryRow> rows_;
  std::vector<std::size_t> byName_;  // rows in order of their names, for looking up
  std::array<std::pair<std::int32_t, std::int32_t>, 26> letters_{};
};

/// Makes the dictionary, where it is not there yet.
void InitEclipseDictionary(bool& qOK, Session& session = Session::process());

/// Appends a row to a table under construction.
void addDictionaryEntry(std::string_view zKeyword, std::string_view zSection, std::string_view zSimulator,
                        std::vector<DictionaryRow>& table, std::int32_t& count, bool& qOK,
                        std::int32_t iClass, Session& session = Session::process());

/// Finds a row; iRow 0, with qOK True, when there is none. Deliberate: meeting the name of a section moves
/// iCurrentSection there, also when the caller only looks ahead.
void lookupKeyword(std::string_view zKey, std::int32_t& iRow, std::int32_t& iKeySection, std::int32_t& iClass,
                   std::int32_t& iCurrentSection, bool& qOK, Session& session = Session::process());

bool isSectionKeyword(std::string_view zKey, std::int32_t& iSection);
/// 1 RUNSPEC to 8 SCHEDULE; -1 for any other word.
std::int32_t sectionNumber(std::string_view zName);

}  // namespace lumbarn
