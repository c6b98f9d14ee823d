#include "Closest.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

#include "Text.h"

namespace lumbarn {

namespace {

/// Letters to insert, remove or replace to get from one word to the other.
std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t k = 0; k < b.size(); ++k) {
      const std::size_t replaced = diagonal + (a[i] == b[k] ? 0 : 1);
      diagonal = row[k + 1];
      row[k + 1] = std::min({replaced, row[k] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string closest(std::string_view word, std::span<const std::string> known) {
  const std::string given = lower(word.substr(0, word.find('=')));
  std::string best;
  std::size_t bestDistance = given.size() / 4 + 2;
  for (const std::string& candidate : known) {
    const std::string other = lower(candidate);
    // A beginning of the word is nearer than any misspelling.
    const std::size_t distance = other.starts_with(given) ? 0 : editDistance(given, other);
    if (distance < bestDistance) {
      best = candidate;
      bestDistance = distance;
    }
  }
  return best;
}

std::string listText(std::span<const std::string> names) {
  constexpr std::size_t shown = 12;
  std::string text;
  for (std::size_t i = 0; i < names.size() && i < shown; ++i) text += (i == 0 ? "" : ", ") + names[i];
  if (names.size() > shown) text += " and " + std::to_string(names.size() - shown) + " others";
  return text;
}

}  // namespace lumbarn
