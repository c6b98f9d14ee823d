#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "shapes/ByteTable.h"
#include "shapes/HeaderLayout.h"
#include "shapes/XYData.h"
#include "support/Fault.h"

namespace lumbarn {
namespace {

TEST(HeaderLayout, FieldTextRows) {
  const std::pair<std::string, const char*> rows[] = {{"  CASE A  ", "CASE A"},
                                                      {std::string("AB\0CD", 5), "AB"},
                                                      {std::string("\0CD", 3), ""},
                                                      {"\tA", "\tA"}};
  for (const auto& [source, text] : rows) EXPECT_EQ(ExtractAttribute(attributeSource, source), text);
  EXPECT_EQ(ExtractAttribute(attributeMember, std::string(72, ' ') + "P1"), "P1") << "a truncated record";
  EXPECT_EQ(ExtractAttribute(attributeMember, std::string(72, 'x')), "");
}

TEST(ByteTable, AccessIsCheckedAndResizingKeepsEntries) {
  ByteTable table(3, 2);
  table(3, 2) = 'Z';
  using Place = std::pair<std::size_t, std::size_t>;
  for (const auto& [iByte, iEntry] : {Place{0, 1}, {4, 1}, {1, 0}, {1, 3}})
    EXPECT_THROW(table(iByte, iEntry), Fault) << iByte << "," << iEntry;
  EXPECT_THROW(table.put(1, 2, 3, "x"), Fault) << "a field that reaches beyond the entry";
  EXPECT_THROW(table.put(1, 2, static_cast<std::size_t>(-1), "x"), Fault);
  table.resize(3, '-');
  EXPECT_EQ(table.get(2, 1, 3), "Z");
  EXPECT_EQ(table.get(3, 1, 3), "---");
  EXPECT_THROW(ByteTable(233, static_cast<std::size_t>(-1) / 16), Fault) << "a size that wraps around";
  for (const std::size_t rows : {std::size_t{1} << 62, std::size_t{1} << 58})
    EXPECT_THROW(XYData(rows, 1, Session()), Fault) << "nor more than there is";
}

}  // namespace
}  // namespace lumbarn
