#include <fstream>
#include <set>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Paths.h"
#include "support/Messages.h"

namespace lumbarn {
namespace {

TEST(Messages, AllAreInTheDocumentationAndHaveIdentifiersOfTheirOwn) {
  std::ifstream file(examplePath("/../docs/messages.md"));
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  std::set<std::string_view> seen;
  constexpr const char* severities[] = {"remark", "incomplete", "damage"};
  for (const MessageRow& row : messageRows) {
    if (row.id.empty()) continue;
    EXPECT_TRUE(seen.insert(row.id).second) << row.id;
    const auto line =
        fmt::format("| `{}` | {} | {} |\n", row.id, severities[static_cast<int>(row.severity)], row.text);
    EXPECT_THAT(page, ::testing::HasSubstr(line)) << "run scripts/messages";
  }
  EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(page, '`')), 2 * seen.size() + 4)
      << "a row that is no longer in the table; run scripts/messages";
}

}  // namespace
}  // namespace lumbarn
