#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "shapes/ByteTable.h"
#include "shapes/HeaderLayout.h"
#include "support/Fault.h"

namespace lumbarn {
namespace {

constexpr std::int32_t withField[] = {2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 14};

TEST(HeaderLayout, TextsAreCutAtTheirFieldAndComeBack) {
  ByteTable bHeaders(headerWidth, 2);
  for (const auto iAttribute : withField) {
    setAttribute(iAttribute, bHeaders, 2, std::string(60, static_cast<char>('a' + iAttribute)));
  }
  const auto entry = bHeaders.entry(2);
  const std::string record(entry.begin(), entry.end());
  std::string fields;  // every field, in the order in which they stand
  for (const auto& [letter, width] : {std::pair{'e', 32U},
                                      {'f', 8U},
                                      {'c', 16U},
                                      {'g', 16U},
                                      {'j', 40U},
                                      {'h', 16U},
                                      {'i', 16U},
                                      {'k', 16U},
                                      {'l', 16U},
                                      {'m', 40U},
                                      {'o', 16U}})
    fields += std::string(width, letter);
  EXPECT_EQ(record, fields + ' ');
  for (const auto iAttribute : withField) {
    const std::string expected(headerField(iAttribute).width, static_cast<char>('a' + iAttribute));
    EXPECT_EQ(ExtractAttribute(iAttribute, record), expected);
    EXPECT_EQ(ExtractAttribute(iAttribute, bHeaders, 2), expected);
    EXPECT_EQ(ExtractAttribute(iAttribute, bHeaders, 1), "") << "the other record stays blank";
  }
  EXPECT_THROW(ExtractAttribute(4, bHeaders, 3), Fault);
  EXPECT_THROW(setAttribute(4, bHeaders, 0, "x"), Fault);
}

TEST(HeaderLayout, FieldTextRows) {
  const auto extract = [](std::string source) { return ExtractAttribute(attributeSource, source); };
  EXPECT_EQ(extract("  CASE A  "), "CASE A");
  EXPECT_EQ(extract(std::string("AB\0CD", 5)), "AB");
  EXPECT_EQ(extract(std::string("\0CD", 3)), "") << "a field that begins with 0 is empty";
  EXPECT_EQ(extract("\tA"), "\tA") << "only blanks are trimmed";
  EXPECT_EQ(ExtractAttribute(attributeMember, std::string(72, ' ') + "P1"), "P1") << "a record cut short";
  EXPECT_EQ(ExtractAttribute(attributeMember, std::string(72, 'x')), "");
}

TEST(ByteTable, AccessIsCheckedAndResizingKeepsEntries) {
  ByteTable table(3, 2);
  table(3, 2) = 'Z';
  EXPECT_EQ(table.entry(2)[2], 'Z');
  for (const auto& [iByte, iEntry] :
       std::vector<std::pair<std::size_t, std::size_t>>{{0, 1}, {4, 1}, {1, 0}, {1, 3}}) {
    EXPECT_THROW(table(iByte, iEntry), Fault) << iByte << "," << iEntry;
  }
  EXPECT_THROW(table.put(1, 2, 3, "x"), Fault) << "a field that reaches beyond the entry";
  EXPECT_THROW(table.put(1, 2, static_cast<std::size_t>(-1), "x"), Fault);
  table.resize(3, '-');
  EXPECT_EQ(table.get(2, 1, 3), "Z");
  EXPECT_EQ(table.get(3, 1, 3), "---");
  EXPECT_THROW(ByteTable(233, static_cast<std::size_t>(-1) / 16), Fault) << "a size that wraps around";
}

}  // namespace
}  // namespace lumbarn
