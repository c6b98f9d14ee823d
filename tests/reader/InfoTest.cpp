#include <fstream>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reader/qvEclipseInfo.h"
#include "support/SummaryBuilder.h"

namespace lumbarn {
namespace {

TEST(Info, TheLogTellsTheVersionAtStartAndEnd) {
  test::TemporaryFolder folder;
  Session session;
  qvEclipseInfo info(session);
  info.CloseDown();  // nothing was logged before, so nothing is now
  const std::string version = info.DLLVersion(folder.file("host.log"), "Host starts", true);
  EXPECT_THAT(version,
              ::testing::MatchesRegex("Lumbarn v[0-9]+\\.[0-9]+\\.[0-9]+ [0-9]{4}-[0-9]{2}-[0-9]{2}"));
  info.CloseDown();
  std::ifstream in(folder.file("host.txt"));
  const std::string text(std::istreambuf_iterator<char>(in), {});
  EXPECT_EQ(text, "Host starts\n" + version + " OK\n" + version + " Close Down\n");
}

}  // namespace
}  // namespace lumbarn
