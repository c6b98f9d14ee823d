#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Forms.h"
#include "support/Host.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(WellTestOperations, DescribeTheTestsOfAFile) {
  Host host;
  ASSERT_TRUE(host.load(examplePath("/data/ARBORF/ARBORF.FRFT"), 18));
  EXPECT_EQ(host.reader.NumberRFTTests(), 3);
  bool qRFT = false, qPLT = true, qSEG = true, qOK = false;
  host.reader.getRFTTestInfo(3, qRFT, qPLT, qSEG, qOK);
  EXPECT_TRUE(qOK && qRFT && !qPLT && !qSEG);
  std::vector<char> grids;
  host.reader.getRFTtestGrid(3, grids, qOK);
  EXPECT_EQ(std::string(grids.begin(), grids.end()), "ROOT ROOT ");
  const auto tests = host.reader.ListRFTTests(qOK);
  ASSERT_EQ(tests.size(), 3);
  EXPECT_EQ(tests[2].numberInWell, 2);
}

TEST(WellTestOperations, ReadTextsOfAUserInOnePlace) {
  const TemporaryFolder folder;
  writeFile(folder.file("rft.txt"), bytesOf("RFT\nORIGIN X\nWELLNAME A\nTIME 1.5\nP DEPTH\n1 2\n"));
  writeFile(folder.file("plt.txt"), bytesOf("-- x\nPLT\nWELLNAME B\nP LENGTH\n1 2\n"));
  Host host;
  const auto rft = [&](std::int32_t iTest) {
    bool qOK = false;
    host.reader.getUserRFTtest(iTest, host.table, host.headers, host.number, host.date, host.well, host.grid,
                               host.origin, qOK);
    return qOK;
  };
  EXPECT_FALSE(rft(1));
  EXPECT_FALSE(host.fetchTest(1));
  ASSERT_TRUE(host.load(folder.file("rft.txt"), 76));
  EXPECT_TRUE(host.reader.IsInitialised(76) && !host.reader.IsInitialised(77));
  EXPECT_EQ(host.reader.zOrigin, "rft");
  ASSERT_TRUE(rft(1));
  EXPECT_EQ(host.well + host.origin + host.date, "AX 12:00");
  EXPECT_EQ(host.table(1, 1), 2);
  bool qOK = false;
  host.reader.getUserPLTtest(1, host.table, host.headers, host.number, host.date, host.well, host.grid, qOK);
  EXPECT_TRUE(qOK && host.table.empty());
  EXPECT_FALSE(rft(2));

  // A file of the other kind is refused, and nothing remains that could be taken for its data.
  EXPECT_FALSE(host.load(folder.file("plt.txt"), 76));
  EXPECT_THAT(host.lastDiagnosis().text(),
              HasSubstr("byte 5: expected a text of well tests, found a user PLT"));
  EXPECT_EQ(host.reader.NumberUserTests(), 0);
  ASSERT_TRUE(host.load(folder.file("plt.txt"), 77));
  const auto tests = host.reader.ListUserTests();
  ASSERT_EQ(tests.size(), 1);
  EXPECT_EQ(tests[0].columns.at(0).name, "LENGTH");
  EXPECT_THAT(tests[0].columns.at(1).values, ElementsAre(1));
  EXPECT_TRUE(host.reader.DeleteObject(76));
  EXPECT_EQ(host.reader.NumberUserTests(), 0);
}

}  // namespace
}  // namespace lumbarn
