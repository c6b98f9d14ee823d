#include "Pattern.h"

#include <cstddef>

#include "Text.h"

namespace lumbarn {

namespace {

constexpr std::size_t none = std::string_view::npos;

bool inRange(char c, char first, char last) {
  const auto byte = [](char x) { return static_cast<unsigned char>(x); };
  return byte(first) <= byte(c) && byte(c) <= byte(last);
}

/// Whether a set, without its brackets, has the character. Both cases of a letter are tried, so that "[A-z]"
/// means what it looks like.
bool setHas(std::string_view set, char c) {
  const bool negated = set.size() > 1 && set.front() == '!';
  if (negated) set.remove_prefix(1);
  const char up = upperLetter(c);
  const char low = lowerLetter(c);
  while (!set.empty()) {
    const bool range = set.size() > 2 && set[1] == '-';
    const char last = set[range ? 2 : 0];
    if (inRange(up, set[0], last) || inRange(low, set[0], last)) return !negated;
    set.remove_prefix(range ? 3 : 1);
  }
  return negated;
}

/// The place behind the pattern's element at `place` when that element takes the character, else `none`.
/// `lastClose` is the place of the last `]`, known beforehand so that many `[` do not each search for theirs.
std::size_t behindMatch(std::string_view pattern, std::size_t place, std::size_t lastClose, char c) {
  const char element = pattern[place];
  if (element == '?') return place + 1;
  if (element == '#') return c >= '0' && c <= '9' ? place + 1 : none;
  if (element == '[' && lastClose != none && place < lastClose && pattern[place + 1] != ']') {
    const auto close = pattern.find(']', place);
    return setHas(pattern.substr(place + 1, close - place - 1), c) ? close + 1 : none;
  }
  return upperLetter(element) == upperLetter(c) ? place + 1 : none;
}

}  // namespace

// Only the last `*` met is ever tried again: what an earlier one took need not change once a later one is
// reached, and so nothing grows exponentially.
bool matchesPattern(std::string_view text, std::string_view pattern) {
  const auto lastClose = pattern.rfind(']');
  std::size_t at = 0;
  std::size_t place = 0;
  std::size_t behindStar = none;
  std::size_t starTook = 0;  // the text's place up to which that `*` has taken
  while (at < text.size()) {
    if (place < pattern.size() && pattern[place] == '*') {
      behindStar = ++place;
      starTook = at;
      continue;
    }
    const auto next = place < pattern.size() ? behindMatch(pattern, place, lastClose, text[at]) : none;
    if (next != none) {
      place = next;
      ++at;
    } else if (behindStar != none) {
      place = behindStar;
      at = ++starTook;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', place) == none;
}

bool hasWildcard(std::string_view pattern) { return pattern.find_first_of("*?#[") != none; }

}  // namespace lumbarn
