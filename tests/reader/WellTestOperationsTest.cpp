#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reader/qvEclipseReader.h"
#include "support/Forms.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// A host's reader and what it is given back.
struct Host {
  bool load(const std::string& path, std::int32_t whichtype) {
    reader.FileName = path;
    reader.whichtype = whichtype;
    bool qOK = false;
    reader.ECLReadData(qOK);
    return qOK;
  }
  bool rft(std::int32_t iTest) {
    bool qOK = false;
    reader.GetRFTtest(iTest, values, headers, number, zDate, zWell, zGrid, zOrigin, qOK);
    return qOK;
  }
  bool userRft(std::int32_t iTest) {
    bool qOK = false;
    reader.getUserRFTtest(iTest, values, headers, number, zDate, zWell, zGrid, zOrigin, qOK);
    return qOK;
  }
  bool userPlt(std::int32_t iTest) {
    bool qOK = false;
    reader.getUserPLTtest(iTest, values, headers, number, zDate, zWell, zGrid, qOK);
    return qOK;
  }

  Session session;
  qvEclipseReader reader{session};
  XYData values;
  ByteTable headers;
  std::int32_t number = 0;
  std::string zDate, zWell, zGrid, zOrigin;
};

TEST(WellTestOperations, ReadTheSampleRunInBothForms) {
  for (const auto& [file, date] :
       {std::pair("ARBOR/ARBOR.RFT", "6 JAN 2016"), {"ARBORF/ARBORF.FRFT", "3 APR 2015"}}) {
    SCOPED_TRACE(file);
    Host host;
    ASSERT_TRUE(host.load(examplePath("/data/") + file, 18));
    EXPECT_EQ(host.reader.NumberRFTTests(), 3);
    ASSERT_TRUE(host.rft(3));
    EXPECT_EQ(host.zWell, "PROD");
    EXPECT_EQ(host.zDate, date);
    EXPECT_EQ(host.number, 2);
    EXPECT_EQ(host.values.rows(), 2);
    EXPECT_EQ(host.values(1, 1), 8360);
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
}

TEST(WellTestOperations, ReadTextsOfAUserInOnePlace) {
  const TemporaryFolder folder;
  writeFile(folder.file("rft.txt"), bytesOf("RFT\nORIGIN X\nWELLNAME A\nTIME 1.5\nP DEPTH\n1 2\n"));
  writeFile(folder.file("plt.txt"), bytesOf("PLT\nWELLNAME B\nP LENGTH\n1 2\n"));
  Host host;
  EXPECT_FALSE(host.userRft(1));
  EXPECT_FALSE(host.rft(1));
  ASSERT_TRUE(host.load(folder.file("rft.txt"), 76));
  EXPECT_TRUE(host.reader.IsInitialised(76));
  EXPECT_FALSE(host.reader.IsInitialised(77));
  EXPECT_EQ(host.reader.zOrigin, "rft");
  ASSERT_TRUE(host.userRft(1));
  EXPECT_EQ(host.zWell + host.zOrigin + host.zDate, "AX 12:00");
  EXPECT_EQ(host.values(1, 1), 2);
  EXPECT_TRUE(host.userPlt(1));
  EXPECT_TRUE(host.values.empty());
  EXPECT_FALSE(host.userRft(2));

  // A file of the other kind is refused, and nothing remains that could be taken for its data.
  EXPECT_FALSE(host.load(folder.file("plt.txt"), 76));
  EXPECT_THAT(host.session.diagnoses().back().text(), HasSubstr("user PLT"));
  EXPECT_EQ(host.reader.NumberUserTests(), 0);
  ASSERT_TRUE(host.load(folder.file("plt.txt"), 77));
  const auto tests = host.reader.ListUserTests();
  ASSERT_EQ(tests.size(), 1);
  EXPECT_EQ(tests[0].columns.at(0).name, "LENGTH");
  EXPECT_THAT(tests[0].columns.at(1).values, ElementsAre(1));

  EXPECT_TRUE(host.reader.DeleteObject(77));
  EXPECT_EQ(host.reader.NumberUserTests(), 1);
  EXPECT_TRUE(host.reader.DeleteObject(76));
  EXPECT_EQ(host.reader.NumberUserTests(), 0);
}

TEST(WellTestOperations, TellKindsOfFilesApart) {
  const TemporaryFolder folder;
  writeFile(folder.file("R.RFT"), bytesOf("RFT\n"));
  writeFile(folder.file("P.RFT"), bytesOf("PLT\n"));
  Host host;
  const std::pair<std::string, std::int32_t> files[] = {
      {folder.file("R.RFT"), 76}, {folder.file("P.RFT"), 77}, {examplePath("/data/ARBOR/ARBOR.RFT"), 18}};
  for (const auto& [path, kind] : files) {
    for (const std::int32_t asked : {18, 76, 77}) {
      EXPECT_EQ(host.reader.CheckECLIPSEFileType(path, asked), asked == kind) << path;
      EXPECT_EQ(host.load(path, asked), asked == kind) << path;
    }
  }
  EXPECT_TRUE(host.reader.IsInitialised(18));
  EXPECT_TRUE(host.reader.DeleteObject(18));
  EXPECT_FALSE(host.reader.IsInitialised(18));
}

}  // namespace
}  // namespace lumbarn
