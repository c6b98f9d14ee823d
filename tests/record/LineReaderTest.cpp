#include <gtest/gtest.h>

#include "record/LineReader.h"
#include "support/Forms.h"

namespace lumbarn {
namespace {

using namespace test;

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

}  // namespace
}  // namespace lumbarn
