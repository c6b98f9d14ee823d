#include "VectorSelection.h"

#include <cstdint>
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

/// Looks names up, by comparing while they are few and then by an index over all vectors, which costs as much
/// as many comparisons.
class Names {
 public:
  explicit Names(std::span<const SummaryVector> vectors) : vectors_(vectors) {}

  /// Marks the vectors of that very name; false when there are none.
  bool markName(std::string_view name, std::vector<bool>& marks) {
    if (++lookUps_ <= mostCompared) return compareAll(name, marks);
    if (byName_.empty()) index();
    const auto [first, last] = byName_.equal_range(upper(name));
    for (auto it = first; it != last; ++it) marks[it->second] = true;
    return first != last;
  }

  bool markPattern(std::string_view pattern, std::vector<bool>& marks) {
    bool any = markName(pattern, marks);
    if (pattern.find_first_of("*?") == std::string_view::npos) return any;
    const std::string plain = onlyStarAndQuestion(pattern);
    for (std::size_t i = 0; i < vectors_.size(); ++i) {
      if (!matchesPattern(vectors_[i].name, plain)) continue;
      marks[i] = true;
      any = true;
    }
    return any;
  }

  void markLists(std::span<const std::string> lists, std::vector<bool>& marks,
                 std::vector<std::string>& unmatched) {
    for (const std::string& list : lists) {
      const std::string_view whole = trim(list);
      if (whole.find(',') != std::string_view::npos && markName(whole, marks)) continue;
      for (std::string& pattern : splitPatterns(whole)) {
        if (!markPattern(pattern, marks)) unmatched.push_back(std::move(pattern));
      }
    }
  }

 private:
  static constexpr int mostCompared = 16;

  bool compareAll(std::string_view name, std::vector<bool>& marks) const {
    bool any = false;
    for (std::size_t i = 0; i < vectors_.size(); ++i) {
      const std::string& own = vectors_[i].name;
      if (own.size() != name.size() || !equalNoCase(own, name)) continue;
      marks[i] = true;
      any = true;
    }
    return any;
  }
  void index() {
    byName_.reserve(vectors_.size());
    for (std::size_t i = 0; i < vectors_.size(); ++i) byName_.emplace(upper(vectors_[i].name), i);
  }

  std::span<const SummaryVector> vectors_;
  int lookUps_ = 0;
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

VectorSelection selectVectors(std::span<const SummaryVector> vectors, std::span<const std::string> only,
                              std::span<const std::string> except) {
  Names names(vectors);
  VectorSelection selection;
  selection.mask.assign(vectors.size(), only.empty());
  names.markLists(only, selection.mask, selection.unmatched);
  std::vector<bool> left(vectors.size(), false);
  names.markLists(except, left, selection.unmatched);
  for (std::size_t i = 0; i < vectors.size(); ++i) {
    if (left[i]) selection.mask[i] = false;
  }
  return selection;
}

}  // namespace lumbarn
