#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support/Pattern.h"
#include "support/Text.h"

namespace lumbarn {
namespace {

using namespace std::string_view_literals;

TEST(Text, TrimTakesWhatWritersPadNamesAndUnitsWith) {
  EXPECT_EQ(trim(" HOURS  "), "HOURS");
  EXPECT_EQ(trim("SM3/DAY\0"sv), "SM3/DAY");
  EXPECT_EQ(trim("\t A B\r\n"), "A B");
  EXPECT_EQ(trim("\0 "sv), "");
}

TEST(Text, BytesThatAreNotUtf8AreLatin1) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"WELL-1", "WELL-1"},
      {"\xD8ST", "\xC3\x98ST"},              // Latin-1 only
      {"\xC3\x98ST", "\xC3\x98ST"},          // UTF-8 already
      {"\xC3\x98\xD8", "\xC3\x98\xC3\x98"},  // both in one name
      {"A\xC3", "A\xC3\x83"},                // a sequence that the field truncates
      {"\xE2\x82\xAC", "\xE2\x82\xAC"},      // three bytes
      {"\xF0\x9F\x9B\xA2", "\xF0\x9F\x9B\xA2"},
      {"\xC0\xAF", "\xC3\x80\xC2\xAF"},                          // overlong
      {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xC2\x80"},              // a surrogate
      {"\xF4\x90\x80\x80", "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80"},  // beyond Unicode
  };
  for (const auto& [bytes, text] : cases) EXPECT_EQ(toUtf8(bytes), text);
}

TEST(Pattern, Rows) {
  using Pair = std::pair<const char*, const char*>;  // pattern and text
  const Pair matching[] = {{"", ""},          {"*", ""},         {"**", ""},        {"P*", "prod-1"},
                           {"*AB", "AAAB"},   {"*AB*", "xaby"},  {"P?", "P1"},      {"W#", "W7"},
                           {"[A-CX]1", "b1"}, {"[a-cx]1", "X1"}, {"[!A-C]1", "d1"}, {"[A-z]", "q"},
                           {"[A-]", "-"},     {"[-A]", "-"},     {"[!]", "!"},      {"[*]", "*"},
                           {"A[1", "A[1"},    {"[]", "[]"},      {"A]", "A]"},      {"A][1", "A][1"}};
  const Pair other[] = {
      {"", "A"},      {"?*", ""},    {"P*", "INJ"},     {"A*B*C", "AxxBxxBx"}, {"P?", "P"},
      {"W#", "WX"},   {"W##", "W7"}, {"[A-CX]1", "D1"}, {"[!A-C]1", "b1"},     {"[!A-C]", ""},
      {"[C-A]", "B"}, {"[A-]", "B"}, {"[*]", "A"},      {"[?#]", "A"},         {"*[0-9][0-9]", "WELL-1A2"}};
  const Pair longer[] = {{"A*B*C", "AxxBxxBxC"}, {"*[0-9][0-9]", "WELL-12"}, {"[\xC0-\xFF]", "\xE9"}};
  for (const auto& [pattern, text] : longer) EXPECT_TRUE(matchesPattern(text, pattern)) << pattern;
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
