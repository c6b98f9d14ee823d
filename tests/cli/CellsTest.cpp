#include "CommandTest.h"

namespace lumbarn::cli::testing {
namespace {

struct CellsCommand : CommandTest {};

TEST_F(CellsCommand, ShowsChosenCellsOverTime) {
  const std::string line = "restart @HOLLIN --array PRESSURE,SWAT --cell 2,1,1 --steps 0:13";
  const auto rows = csv(line);
  ASSERT_EQ(rows.size(), 15U);
  EXPECT_THAT(rows[0], ElementsAre("step", "date", "days", "grid", "i", "j", "k", "PRESSURE", "SWAT"));
  EXPECT_THAT(rows[1],
              ElementsAre("0", "2001-07-01T00:00:00", "0", "ROOT", "2", "1", "1", "211.07866", "0.2"));
  EXPECT_THAT(rows[14], ElementsAre("13", "2003-07-15T06:30:00", "744.2708333333334", "ROOT", "2", "1", "1",
                                    "321.1038", "0.19788219"));
  EXPECT_EQ(csv("cells @HOLLIN --array PRESSURE,SWAT --cell 2,1,1"), rows);
  const Outcome inactive = run("init @HOLLIN --array PORO --cell 1,1,1 --cell 2,1,1 --format csv");
  EXPECT_EQ(inactive.status, 0);
  EXPECT_EQ(inactive.out, "grid,i,j,k,PORO\r\nROOT,1,1,1,\r\nROOT,2,1,1,0.22\r\n");
  EXPECT_THAT(inactive.err, HasSubstr("cell 1,1,1 is not active"));
}

TEST_F(CellsCommand, SummarizesByRegion) {
  const auto rows = csv("stats @HOLLIN --array PRESSURE --steps last --by FIPNUM --weight PORV");
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_THAT(rows[1], ElementsAre("13", "2003-07-15T06:30:00", "ROOT", "PRESSURE", "1", "378", "318.80643",
                                   "327.67398", "323.3713784192605", "323.3713784192605",
                                   "122234.38104248047", "1663200", "BARS"));
  EXPECT_EQ(rows[2][9], "325.3078345243262");
  EXPECT_THAT(rows[3][4], "all");
  const auto one = csv("stats @HOLLIN --array PRESSURE --steps last --region FIPNUM=1 --percentiles 0,50");
  EXPECT_EQ(one[0][10], "p0");
  EXPECT_EQ(one[1][5], rows[1][5]);
  EXPECT_EQ(std::stof(one[1][10]), std::stof(rows[1][6])) << "the smallest";
  const Outcome none = run("cells @HOLLIN --array PRESSURE --steps last --region FIPNUM=3");
  EXPECT_EQ(none.status, 2);
  EXPECT_THAT(none.err, HasSubstr("of FIPNUM there are 1, 2"));
}

TEST_F(CellsCommand, WritesKeywordsOfADeck) {
  const std::string text = run("init @HOLLIN --array PORO,FIPNUM --format grdecl").out;
  std::istringstream words(text);
  std::string word;
  for (const char* expected : {"PORO", "--", "16", "12", "5"}) {
    words >> word;
    EXPECT_EQ(word, expected);
  }
  int cells = 0, empty = 0;
  while (words >> word && word != "/") {
    const auto star = word.find('*');
    const int count = star == word.npos ? 1 : std::stoi(word);
    cells += count;
    const auto value = word.substr(star + 1);
    EXPECT_TRUE(value == "0" || value == "0.22") << word;
    if (value == "0") empty += count;
  }
  EXPECT_EQ(cells, 960);
  EXPECT_EQ(empty, 63);
  EXPECT_THAT(text, HasSubstr("\n/\nFIPNUM\n-- 16 12 5\n"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
