#include <gtest/gtest.h>

#include "record/LineReader.h"
#include "support/Forms.h"

namespace lumbarn {
namespace {

using namespace test;

std::string linesOf(std::string_view text) {
  LineReader reader(std::make_shared<MemorySource>(bytesOf(text)), "memory");
  std::string all;
  while (!reader.atEnd()) {
    EXPECT_TRUE(reader.next());
    reader.stepBack();
    EXPECT_FALSE(reader.atEnd());
    EXPECT_TRUE(reader.next());
    all += std::to_string(reader.number()) + "@" + std::to_string(reader.position()) + "[";
    all += std::string(reader.line()) + "]";
  }
  EXPECT_FALSE(reader.next());
  return all;
}

TEST(LineReader, CutsAtAnyLineEnd) {
  EXPECT_EQ(linesOf(""), "");
  EXPECT_EQ(linesOf("\n"), "1@0[]");
  EXPECT_EQ(linesOf("a\r\nb\r\n"), "1@0[a]2@3[b]");
  EXPECT_EQ(linesOf("a\rb\r\r\n\n"), "1@0[a]2@2[b]3@4[]4@6[]");
  EXPECT_EQ(linesOf("\xEF\xBB\xBFx"), "1@3[x]");
  EXPECT_EQ(linesOf("\xEF\xBB"), "1@0[\xEF\xBB]");
}

// Lines that end, or break their CR LF, at and around the end of a transfer, and lines longer than several.
TEST(LineReader, KeepsLinesWholeOverTransfers) {
  for (const std::size_t length : {65533, 65534, 65535, 65536, 65537, 300000}) {
    const std::string a(length, 'a'), b(length, 'b');
    LineReader reader(std::make_shared<MemorySource>(bytesOf(a + "\r\n" + b + "\r\n")), "memory");
    EXPECT_TRUE(reader.next() && reader.line() == a) << length;
    EXPECT_TRUE(reader.next() && reader.line() == b) << length;
    EXPECT_EQ(reader.position(), length + 2);
    EXPECT_FALSE(reader.next());
  }
}

TEST(LineReader, KnowsComments) {
  for (const char* line : {"", "  ", "\t", "--", "-- x", "--qv", "--QV x", "--q"})
    EXPECT_TRUE(checkIfCommentLine(line)) << line;
  for (const char* line : {"-", "/", " -- x", "--qv x", "--qvx", "** x", "== x", "x -- y"})
    EXPECT_FALSE(checkIfCommentLine(line)) << line;
}

}  // namespace
}  // namespace lumbarn
