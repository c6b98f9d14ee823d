#include "SummaryMatch.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <string_view>
#include <unordered_map>

namespace lumbarn {
namespace {

/// The old texts by equal text: finds the first open one at or behind a place, however many are equal.
class OpenTexts {
 public:
  explicit OpenTexts(const std::vector<std::string>& texts) : group_(texts.size()) {
    std::vector<std::uint32_t> sizes;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      group_[i] = numbers_.try_emplace(texts[i], static_cast<std::uint32_t>(sizes.size())).first->second;
      if (group_[i] == sizes.size()) sizes.push_back(0);
      ++sizes[group_[i]];
    }
    starts_.resize(sizes.size() + 1);
    std::partial_sum(sizes.begin(), sizes.end(), starts_.begin() + 1);
    auto ends = starts_;
    byGroup_.resize(texts.size());
    slot_.resize(texts.size());
    for (std::uint32_t i = 0; i < texts.size(); ++i) {
      slot_[i] = ends[group_[i]]++;
      byGroup_[slot_[i]] = i;
    }
    next_.resize(texts.size() + 1);
    std::iota(next_.begin(), next_.end(), 0U);
  }

  void close(std::size_t i) { next_[slot_[i]] = slot_[i] + 1; }

  /// The number of texts for none.
  std::size_t find(std::string_view text, std::size_t place) {
    const auto known = numbers_.find(text);
    if (known == numbers_.end()) return group_.size();
    const auto first = starts_[known->second];
    const auto end = starts_[known->second + 1];
    const auto behind = std::lower_bound(byGroup_.begin() + first, byGroup_.begin() + end, place);
    for (const auto from : {static_cast<std::uint32_t>(behind - byGroup_.begin()), first}) {
      if (const std::uint32_t slot = open(from); slot < end) return byGroup_[slot];
    }
    return group_.size();
  }

 private:
  /// The first open slot at or behind one, with the way there made short for the next time.
  std::uint32_t open(std::uint32_t slot) {
    std::uint32_t found = slot;
    while (next_[found] != found) found = next_[found];
    while (next_[slot] != slot) {
      const std::uint32_t step = next_[slot];
      next_[slot] = found;
      slot = step;
    }
    return found;
  }

  std::unordered_map<std::string_view, std::uint32_t> numbers_;
  std::vector<std::uint32_t> group_;    // of each text
  std::vector<std::uint32_t> starts_;   // first slot of each group
  std::vector<std::uint32_t> byGroup_;  // texts by group, in order within each
  std::vector<std::uint32_t> slot_;     // of each text in byGroup_
  std::vector<std::uint32_t> next_;     // a slot itself when open, else a slot behind it
};

}  // namespace

std::string matchingKey(const KeyParts& parts) {
  std::string key;
  for (const std::string_view part : parts) {
    key += part;
    key += '\0';
  }
  return key;
}

TextPairs pairTexts(const std::vector<std::string>& old, const std::vector<std::string>& main) {
  TextPairs pairs;
  pairs.iMatch.assign(main.size(), 0);
  std::vector<bool> open(old.size(), true);
  std::unique_ptr<OpenTexts> byText;  // made when the walk in step fails for the first time
  std::size_t place = 0;
  std::size_t left = old.size();
  for (std::size_t i = 0; i < main.size() && left > 0; ++i) {
    std::size_t found = place;
    if (place >= old.size() || !open[place] || old[place] != main[i]) {
      if (!byText) {
        byText = std::make_unique<OpenTexts>(old);
        for (std::size_t k = 0; k < old.size(); ++k) {
          if (!open[k]) byText->close(k);
        }
      }
      found = byText->find(main[i], place);
      if (found == old.size()) continue;
    }
    open[found] = false;
    if (byText) byText->close(found);
    pairs.iMatch[i] = static_cast<std::int32_t>(found) + 1;
    place = found + 1;
    --left;
  }
  for (std::size_t k = 0; k < old.size(); ++k) {
    if (open[k]) pairs.iNew.push_back(static_cast<std::int32_t>(k) + 1);
  }
  return pairs;
}

}  // namespace lumbarn
