#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support/Pattern.h"

namespace lumbarn {
namespace {

TEST(Pattern, Rows) {
  using Pair = std::pair<const char*, const char*>;  // pattern and text
  const Pair matching[] = {{"", ""},
                           {"*", ""},
                           {"**", ""},
                           {"P*", "prod-1"},
                           {"*AB", "AAAB"},
                           {"*AB*", "xaby"},
                           {"A*B*C", "AxxBxxBxC"},
                           {"P?", "P1"},
                           {"W#", "W7"},
                           {"[A-CX]1", "b1"},
                           {"[a-cx]1", "X1"},
                           {"[!A-C]1", "d1"},
                           {"[A-z]", "q"},
                           {"[A-]", "-"},
                           {"[-A]", "-"},
                           {"[!]", "!"},
                           {"[*]", "*"},
                           {"A[1", "A[1"},
                           {"[]", "[]"},
                           {"A]", "A]"},
                           {"A][1", "A][1"},
                           {"*[0-9][0-9]", "WELL-12"},
                           {"[\xC0-\xFF]", "\xE9"}};
  const Pair other[] = {
      {"", "A"},      {"?*", ""},    {"P*", "INJ"},     {"A*B*C", "AxxBxxBx"}, {"P?", "P"},
      {"W#", "WX"},   {"W##", "W7"}, {"[A-CX]1", "D1"}, {"[!A-C]1", "b1"},     {"[!A-C]", ""},
      {"[C-A]", "B"}, {"[A-]", "B"}, {"[*]", "A"},      {"[?#]", "A"},         {"*[0-9][0-9]", "WELL-1A2"}};
  for (const auto& [pattern, text] : matching) EXPECT_TRUE(matchesPattern(text, pattern)) << pattern;
  for (const auto& [pattern, text] : other) EXPECT_FALSE(matchesPattern(text, pattern)) << pattern;
}

TEST(Pattern, HostileTextsEndInTime) {
  std::string pattern;
  for (int i = 0; i < 40; ++i) pattern += "*A";
  EXPECT_FALSE(matchesPattern(std::string(1000, 'A'), pattern + "B"));
  EXPECT_FALSE(matchesPattern(std::string(1000, '['), "*" + std::string(500, '[') + "A"));
}

}  // namespace
}  // namespace lumbarn
