#include "EclipseDictionary.h"

#include <algorithm>
#include <map>
#include <utility>

#include "../support/Guarded.h"
#include "../support/Text.h"
#include "../text/DeckForm.h"
#include "DictionaryRows.h"

namespace lumbarn {

namespace {

constexpr const char* module = "EclipseDictionary";

/// "+" and "=" are short for ADD and EQUALS, and stand where these would.
std::string_view sortKey(std::string_view keyword) {
  if (keyword == "+") return "ADD";
  return keyword == "=" ? "EQUALS" : keyword;
}

std::vector<DictionaryRow> sortedRows() {
  std::map<std::string, std::int32_t, std::less<>> classes;
  for (const DictionaryClass& row : dictionaryClasses) {
    for (std::string& keyword : words(row.keywords)) classes.emplace(std::move(keyword), row.number);
  }
  std::vector<DictionaryRow> rows;
  for (const DictionaryGroup& group : dictionaryGroups) {
    for (std::string& keyword : words(group.keywords)) {
      const auto found = classes.find(keyword);
      const std::int32_t iClass = found == classes.end() ? 1 : found->second;
      rows.push_back({std::move(keyword), std::string(group.section), std::string(group.simulator), iClass});
    }
  }
  std::stable_sort(rows.begin(), rows.end(), [](const DictionaryRow& a, const DictionaryRow& b) {
    return sortKey(a.keyword) < sortKey(b.keyword);
  });
  return rows;
}

/// What is looked up for a keyword field: families of keywords have one row each.
std::string_view familyOf(std::string_view key) {
  std::string_view word = key;
  if (key.size() >= 4) {
    for (const std::string_view family : {"TNUM", "TBLK", "TVDP", "FIP"}) {
      if (!key.starts_with(family)) continue;
      word = family;
      break;
    }
  }
  const std::size_t mark = key.find('_');
  return mark == key.npos || mark == 0 ? word : key.substr(0, mark);
}

bool isLetter(char c) { return c >= 'A' && c <= 'Z'; }

}  // namespace

EclipseDictionary::EclipseDictionary() : rows_(sortedRows()) {
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    auto& [first, last] = letters_[static_cast<std::size_t>(sortKey(rows_[i].keyword)[0] - 'A')];
    last = static_cast<std::int32_t>(i + 1);
    if (first == 0) first = last;
  }
}

const EclipseDictionary& EclipseDictionary::shared() {
  static const EclipseDictionary dictionary;
  return dictionary;
}

std::pair<std::int32_t, std::int32_t> EclipseDictionary::letter(char c) const {
  return isLetter(c) ? letters_[static_cast<std::size_t>(c - 'A')] : std::pair<std::int32_t, std::int32_t>();
}

std::optional<EclipseDictionary::Found> EclipseDictionary::find(std::string_view key,
                                                                std::int32_t section) const {
  if (key.empty()) return std::nullopt;
  const auto [first, last] = letter(key[0]);
  if (first < 1) return std::nullopt;
  const std::string_view word = familyOf(key);
  const auto end = rows_.begin() + last;
  auto row = std::lower_bound(
      rows_.begin() + first - 1, end, word,
      [](const DictionaryRow& a, std::string_view name) { return sortKey(a.keyword) < name; });
  for (; row != end && sortKey(row->keyword) == word; ++row) {
    const std::int32_t own = sectionNumber(row->section);
    if (row->keyword != word) continue;
    if (section < 1 || own == section || sectionNumber(word) > 0)
      return Found{static_cast<std::int32_t>(row - rows_.begin()) + 1, own, row->iClass};
  }
  return std::nullopt;
}

void InitEclipseDictionary(bool& qOK, Session& session) {
  guarded(session, qOK, module, "InitEclipseDictionary", [] { EclipseDictionary::shared(); });
}

void addDictionaryEntry(std::string_view zKeyword, std::string_view zSection, std::string_view zSimulator,
                        std::vector<DictionaryRow>& table, std::int32_t& count, bool& qOK,
                        std::int32_t iClass, Session& session) {
  guarded(session, qOK, module, "addDictionaryEntry", [&] {
    table.push_back({std::string(zKeyword), std::string(zSection), std::string(zSimulator), iClass});
    count = static_cast<std::int32_t>(table.size());
  });
}

void lookupKeyword(std::string_view zKey, std::int32_t& iRow, std::int32_t& iKeySection, std::int32_t& iClass,
                   std::int32_t& iCurrentSection, bool& qOK, Session& session) {
  iRow = 0;
  iKeySection = 0;
  guarded(session, qOK, module, "lookupKeyword", [&] {
    const auto found = EclipseDictionary::shared().find(zKey, iCurrentSection);
    if (!found) return;
    iRow = found->row;
    iKeySection = found->section;
    iClass = found->iClass;
    if (const std::int32_t section = sectionNumber(familyOf(zKey)); section > 0) iCurrentSection = section;
  });
}

bool isSectionKeyword(std::string_view zKey, std::int32_t& iSection) {
  const std::int32_t section = sectionOfDeck(zKey);
  if (section > 0) iSection = section;
  return section > 0;
}

std::int32_t sectionNumber(std::string_view zName) {
  const std::int32_t section = sectionOfDeck(zName);
  return section > 0 ? section : -1;
}

}  // namespace lumbarn
