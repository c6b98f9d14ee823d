#include "VectorSelection.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <unordered_map>

#include "../support/Pattern.h"
#include "../support/Text.h"

namespace lumbarn {
namespace {

bool isCellNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789*?") == std::string_view::npos;
}

/// True when the item ends in what can be the first number of a cell.
bool opensCell(std::string_view item) {
  const auto colon = item.rfind(':');
  return colon != std::string_view::npos && isCellNumber(item.substr(colon + 1));
}

/// The pattern matcher knows more special characters than `*` and `?`; names of wells hold those as letters.
std::string onlyStarAndQuestion(std::string_view pattern) {
  std::string plain;
  for (const char c : pattern) {
    if (c == '[' || c == '#') {
      plain += {'[', c, ']'};
    } else {
      plain += c;
    }
  }
  return plain;
}

bool hasOtherThanAscii(std::string_view name) {
  return std::ranges::any_of(name, [](char c) { return static_cast<unsigned char>(c) > 127; });
}

using Ranks = std::vector<std::int32_t>;

class Names {
 public:
  explicit Names(std::span<const std::string> names) : names_(names) {}

  /// Gives the vectors of that very name the current rank; false when there are none.
  bool markName(std::string_view name, Ranks& marks) {
    if (++lookUps_ > worthATable) return markByTable(name, marks);
    bool any = false;
    for (std::size_t i = 0; i < names_.size(); ++i) {
      if (names_[i].size() != name.size() || !equalNoCase(names_[i], name)) continue;
      mark(marks, i);
      any = true;
    }
    return any;
  }

  bool markPattern(std::string_view pattern, Ranks& marks) {
    bool any = markName(pattern, marks);
    if (pattern.find_first_of("*?") == std::string_view::npos) return any;
    const std::string plain = onlyStarAndQuestion(pattern);
    for (std::size_t i = 0; i < names_.size(); ++i) {
      if (!matchesPattern(names_[i], plain)) continue;
      mark(marks, i);
      any = true;
    }
    return any;
  }

  void markLists(std::span<const std::string> lists, Ranks& marks, std::vector<std::string>& unmatched) {
    rank_ = 0;
    for (const std::string& list : lists) {
      const std::string_view whole = trim(list);
      ++rank_;
      if (whole.find(',') != std::string_view::npos && markName(toUtf8(whole), marks)) continue;
      for (std::string& pattern : splitPatterns(whole)) {
        ++rank_;
        if (!markPattern(toUtf8(pattern), marks)) unmatched.push_back(std::move(pattern));
      }
    }
  }

 private:
  /// A few names are found faster by looking through all than by making a table of all first.
  static constexpr int worthATable = 32;

  void mark(Ranks& marks, std::size_t i) const {
    if (marks[i] < 0) marks[i] = rank_;
  }

  bool markByTable(std::string_view name, Ranks& marks) {
    if (byName_.empty()) {
      byName_.reserve(names_.size());
      for (std::size_t i = 0; i < names_.size(); ++i) byName_.emplace(upper(names_[i]), i);
    }
    const auto [first, last] = byName_.equal_range(upper(name));
    for (auto it = first; it != last; ++it) mark(marks, it->second);
    return first != last;
  }

  std::span<const std::string> names_;
  int lookUps_ = 0;
  std::int32_t rank_ = 0;  // of the pattern that is being marked
  std::unordered_multimap<std::string, std::size_t> byName_;
};

}  // namespace

std::vector<std::string> splitPatterns(std::string_view list) {
  std::vector<std::string> items;
  for (const std::string& item : split(list, ',')) items.emplace_back(trim(item));
  std::vector<std::string> patterns;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (opensCell(items[i]) && i + 2 < items.size() && isCellNumber(items[i + 1]) &&
        isCellNumber(items[i + 2])) {
      patterns.push_back(items[i] + ',' + items[i + 1] + ',' + items[i + 2]);
      i += 2;
    } else if (!items[i].empty()) {
      patterns.push_back(items[i]);
    }
  }
  return patterns;
}

MnemonicFilter::MnemonicFilter(std::span<const std::string> only, std::span<const std::string> except) {
  for (const auto lists : {only, except}) {
    for (const std::string& list : lists) {
      add(trim(list));  // the list may be one name that holds commas
      for (const std::string& pattern : splitPatterns(list)) add(pattern);
    }
  }
}

void MnemonicFilter::add(std::string_view pattern) {
  const auto end = std::min(pattern.find_first_of("*?:"), pattern.size());
  beginnings_.push_back({upper(pattern.substr(0, end)), end == pattern.size() || pattern[end] == ':'});
}

bool MnemonicFilter::operator()(std::string_view mnemonic) const {
  // A damaged file may have a mnemonic that holds the separator; patterns are cut there too.
  const std::string letters = upper(mnemonic.substr(0, mnemonic.find(':')));
  return std::ranges::any_of(beginnings_, [&](const Beginning& beginning) {
    return beginning.whole ? letters == beginning.letters : letters.starts_with(beginning.letters);
  });
}

VectorSelection selectVectors(std::span<const std::string> vectorNames, std::span<const std::string> only,
                              std::span<const std::string> except) {
  std::vector<std::string> converted;
  if (std::ranges::any_of(vectorNames, hasOtherThanAscii)) {
    std::ranges::transform(vectorNames, std::back_inserter(converted), toUtf8);
    vectorNames = converted;
  }
  Names names(vectorNames);
  VectorSelection selection;
  selection.rank.assign(vectorNames.size(), -1);
  names.markLists(only, selection.rank, selection.unmatched);
  Ranks left(vectorNames.size(), -1);
  names.markLists(except, left, selection.unmatched);
  for (std::size_t i = 0; i < vectorNames.size(); ++i)
    selection.mask.push_back((only.empty() || selection.rank[i] >= 0) && left[i] < 0);
  return selection;
}

VectorSelection selectVectors(std::span<const SummaryVector> vectors, std::span<const std::string> only,
                              std::span<const std::string> except) {
  std::vector<std::string> names;
  names.reserve(vectors.size());
  for (const auto& vector : vectors) names.push_back(vector.name);
  return selectVectors(names, only, except);
}

}  // namespace lumbarn
