#include <string>

#include <gtest/gtest.h>

#include "support/Pattern.h"

namespace lumbarn {
namespace {

struct PatternCase {
  const char* pattern;
  const char* text;
  bool matches;
};

TEST(Pattern, Rows) {
  const PatternCase rows[] = {
      {"", "", true},
      {"", "A", false},
      {"*", "", true},
      {"**", "", true},
      {"?*", "", false},
      {"P*", "prod-1", true},
      {"P*", "INJ", false},
      {"*AB", "AAAB", true},
      {"*AB*", "xaby", true},
      {"A*B*C", "AxxBxxBxC", true},
      {"A*B*C", "AxxBxxBx", false},
      {"P?", "P", false},
      {"P?", "P1", true},
      {"W#", "W7", true},
      {"W#", "WX", false},
      {"W##", "W7", false},
      {"[A-CX]1", "b1", true},
      {"[a-cx]1", "X1", true},
      {"[A-CX]1", "D1", false},
      {"[!A-C]1", "b1", false},
      {"[!A-C]1", "d1", true},
      {"[!A-C]", "", false},
      {"[A-z]", "q", true},
      {"[C-A]", "B", false},
      {"[A-]", "-", true},
      {"[-A]", "-", true},
      {"[A-]", "B", false},
      {"[!]", "!", true},
      {"[*]", "*", true},
      {"[*]", "A", false},
      {"[?#]", "A", false},
      {"A[1", "A[1", true},
      {"[]", "[]", true},
      {"A]", "A]", true},
      {"*[0-9][0-9]", "WELL-12", true},
      {"*[0-9][0-9]", "WELL-1A2", false},
      {"[\xC0-\xFF]", "\xE9", true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(matchesPattern(row.text, row.pattern), row.matches) << row.pattern << " on " << row.text;
  }
}

TEST(Pattern, HostileTextsEndInTime) {
  std::string pattern;
  for (int i = 0; i < 40; ++i) pattern += "*A";
  EXPECT_FALSE(matchesPattern(std::string(1000, 'A'), pattern + "B"));
  EXPECT_FALSE(matchesPattern(std::string(1000, '['), "*" + std::string(500, '[') + "A"));
}

}  // namespace
}  // namespace lumbarn
