#include "EclipseDictionary.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include "../support/Guarded.h"
#include "../support/Text.h"
#include "../text/DeckForm.h"
#include "DictionaryRows.h"

namespace lumbarn {

namespace {

constexpr const char* module = "EclipseDictionary";

/// "+" and "=" are short for ADD and EQUALS and are sorted like them.
std::string_view sortKey(std::string_view keyword) {
  if (keyword == "+") return "ADD";
  return keyword == "=" ? "EQUALS" : keyword;
}

std::size_t letterOf(const DictionaryRow& row) {
  return static_cast<std::size_t>(sortKey(row.keyword)[0] - 'A');
}

std::vector<DictionaryRow> rowsOf(const DictionaryGroup& group) {
  static const auto classes = [] {
    std::map<std::string, std::int32_t, std::less<>> result;
    for (const DictionaryClass& row : dictionaryClasses) {
      for (std::string& keyword : words(row.keywords)) result.emplace(std::move(keyword), row.number);
    }
    return result;
  }();
  std::vector<DictionaryRow> rows;
  for (std::string& keyword : words(group.keywords)) {
    const auto found = classes.find(keyword);
    const std::int32_t iClass = found == classes.end() ? 1 : found->second;
    rows.push_back({std::move(keyword), std::string(group.section), std::string(group.simulator), iClass});
  }
  return rows;
}

/// Merges groups, each of which stays in its order.
void mergeInto(std::vector<DictionaryRow>& rows, std::vector<std::vector<DictionaryRow>> groups) {
  std::vector<std::size_t> next(groups.size(), 0);
  while (true) {
    std::size_t least = groups.size();
    for (std::size_t i = 0; i < groups.size(); ++i) {
      if (next[i] == groups[i].size()) continue;
      if (least == groups.size() ||
          sortKey(groups[i][next[i]].keyword) < sortKey(groups[least][next[least]].keyword))
        least = i;
    }
    if (least == groups.size()) return;
    rows.push_back(std::move(groups[least][next[least]++]));
  }
}

/// All rows, grouped by first letter. Within a letter, SUMMARY vectors follow the other keywords.
std::vector<DictionaryRow> allRows() {
  std::vector<DictionaryRow> rows;
  for (const bool summary : {false, true}) {
    std::vector<std::vector<DictionaryRow>> groups;
    for (const DictionaryGroup& group : dictionaryGroups) {
      if ((group.section == "SUMMARY") == summary) groups.push_back(rowsOf(group));
    }
    for (auto& group : groups) {
      std::stable_sort(group.begin(), group.end(), [](const DictionaryRow& a, const DictionaryRow& b) {
        return letterOf(a) < letterOf(b);
      });
    }
    mergeInto(rows, std::move(groups));
  }
  std::stable_sort(rows.begin(), rows.end(),
                   [](const DictionaryRow& a, const DictionaryRow& b) { return letterOf(a) < letterOf(b); });
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

EclipseDictionary::EclipseDictionary() : rows_(allRows()), byName_(rows_.size()) {
  std::iota(byName_.begin(), byName_.end(), 0);
  std::stable_sort(byName_.begin(), byName_.end(),
                   [&](std::size_t a, std::size_t b) { return rows_[a].keyword < rows_[b].keyword; });
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    auto& [first, last] = letters_[letterOf(rows_[i])];
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
  if (key.empty() || letter(key[0]).first < 1) return std::nullopt;
  const std::string_view word = familyOf(key);
  const bool opensSection = sectionNumber(word) > 0;
  const auto nameOf = [&](std::size_t i) { return std::string_view(rows_[i].keyword); };
  auto row = std::lower_bound(byName_.begin(), byName_.end(), word,
                              [&](std::size_t i, std::string_view name) { return nameOf(i) < name; });
  for (; row != byName_.end() && nameOf(*row) == word; ++row) {
    const std::int32_t own = sectionNumber(rows_[*row].section);
    if (section < 1 || own == section || opensSection)
      return Found{static_cast<std::int32_t>(*row) + 1, own, rows_[*row].iClass};
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
