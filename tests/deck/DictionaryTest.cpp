#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "deck/EclipseDictionary.h"
#include "deck/qvEclipseKeys.h"
#include "support/Text.h"

namespace lumbarn::test {
namespace {

TEST(Dictionary, RowsStandByLetter) {
  const auto& dictionary = EclipseDictionary::shared();
  const auto rows = dictionary.rows();
  ASSERT_EQ(rows.size(), 2987U);
  std::map<std::string, int> sections;
  for (const DictionaryRow& row : rows) ++sections[row.section];
  const std::map<std::string, int> expected{{"RUNSPEC", 225}, {"GRID", 275},     {"EDIT", 88},
                                            {"PROPS", 815},   {"REGIONS", 124},  {"SOLUTION", 153},
                                            {"SUMMARY", 860}, {"SCHEDULE", 446}, {"SUMAMRY", 1}};
  EXPECT_EQ(sections, expected);

  std::string first;
  for (const DictionaryRow& row : rows.first(6)) first += row.keyword + ' ';
  EXPECT_EQ(first, "ACF ACFDET ACFS ACTCO2S ACTDIM ACTION ");
  std::int32_t next = 1;
  for (char c = 'A'; c <= 'Z'; ++c) {
    const auto [begin, end] = dictionary.letter(c);
    if (begin == 0) continue;
    EXPECT_EQ(begin, next) << c;
    next = end + 1;
    for (std::int32_t row = begin; row <= end; ++row) {
      const std::string& keyword = rows[static_cast<std::size_t>(row - 1)].keyword;
      EXPECT_TRUE(keyword[0] == c || keyword == (c == 'A' ? "+" : c == 'E' ? "=" : "")) << keyword;
    }
  }
  EXPECT_EQ(next, 2988);
  const auto plus =
      std::find_if(rows.begin(), rows.end(), [](const auto& row) { return row.keyword == "+"; });
  EXPECT_EQ((plus - 1)->keyword, "ACTPARAM");
}

/// What is found for each word: row's name, section, class and the section from then on, or "-".
std::string lookedUp(std::string_view keys, const std::int32_t inSection) {
  std::string result;
  for (const std::string& key : words(keys)) {
    std::int32_t row = -1, keySection = -1, iClass = -1, section = inSection;
    bool qOK = false;
    lookupKeyword(key, row, keySection, iClass, section, qOK);
    EXPECT_TRUE(qOK);
    if (row > 0) {
      const std::string& name = EclipseDictionary::shared().rows()[static_cast<std::size_t>(row - 1)].keyword;
      result += fmt::format("{}:{}:{}:{} ", name, keySection, iClass, section);
    } else {
      result += "- ";
    }
  }
  return result;
}

TEST(Dictionary, Lookup) {
  EXPECT_EQ(lookedUp("WELSPECS DATES grid + GRID", 0), "WELSPECS:8:1:0 DATES:8:1:0 - - GRID:2:1:2 ");
  EXPECT_EQ(lookedUp("BOX GRID", 1), "- GRID:2:1:2 ");
  EXPECT_EQ(lookedUp("WELSPECS _X + = ADD EQUALS PORO_1 COORD", 2),
            "- - - - - - PORO:2:1001:2 COORD:2:1002:2 ");
  EXPECT_EQ(lookedUp("GRID_1 RIVRXSEC BICS", 4), "GRID:2:1:2 - - ");
  EXPECT_EQ(lookedUp("FIP FIPNUM FIPABC TNUMABC", 5),
            "FIP:5:1000:5 FIP:5:1000:5 FIP:5:1000:5 TNUM:5:1000:5 ");
  EXPECT_EQ(lookedUp("FIPSEP TVDPX EQUIL", 6), "- TVDP:6:2:6 EQUIL:6:1:6 ");  // FIPSEP counts as FIP
  EXPECT_EQ(lookedUp("INCLUDE", 7), "- ");
  EXPECT_EQ(lookedUp("INCLUDE DATES BOX SCHEDULE", 8), "INCLUDE:8:1:8 DATES:8:1:8 BOX:8:1:8 SCHEDULE:8:1:8 ");
  std::int32_t section = 7;
  EXPECT_FALSE(isSectionKeyword("DATES", section));
  EXPECT_TRUE(isSectionKeyword("EDIT", section));
  EXPECT_EQ(section, 3);
  EXPECT_EQ(sectionNumber("SUMAMRY"), -1);
}

/// Keywords that are accepted and go to no parser, that have a parser and are not accepted, and that are in
/// no row of the dictionary. Lost keywords show up here as well as mended ones.
TEST(Dictionary, KeywordsThatTheLoaderLoses) {
  const auto select = [](std::string_view names, auto chosen) {
    std::string result;
    for (const std::string& name : words(names)) {
      if (chosen(name)) result += name + ' ';
    }
    return result;
  };
  constexpr std::string_view names =
      "AQUDIMS ASPWETF BICS DREFS ENDSCALE GREF PARACHORS PINCREG SATOPTS SCDPTAB SORWMIS SSHIFTS TPAMEPS "
      "TPAMEPSS WELTARG WLISTNAM DIMENS ZCORN GREFS RIRXSEC EQUALS POLYMER";
  EXPECT_EQ(
      select(names,
             [](const auto& name) { return processEclipseKeyword(name) && parserOfKeyword(name).empty(); }),
      "AQUDIMS ENDSCALE GREF SATOPTS SSHIFTS WELTARG WLISTNAM ");
  EXPECT_EQ(select(names, [](const auto& name) { return !processEclipseKeyword(name); }),
            "ASPWETF SCDPTAB EQUALS POLYMER ");
  EXPECT_EQ(select(names, [](const auto& name) { return !EclipseDictionary::shared().find(name, 0); }),
            "BICS DREFS PARACHORS PINCREG SORWMIS TPAMEPS TPAMEPSS EQUALS ");
  EXPECT_EQ(parserOfKeyword("DIMENS"), "parseDIMENS");
  EXPECT_EQ(parserOfKeyword("SCDPTAB"), "parseSCDPTAB");
  EXPECT_EQ(parserOfKeyword("WELLSHUT"), "parseWELLPROD");
  EXPECT_EQ(parserOfKeyword("RESVNUM"), "parseRESNUM");
}

TEST(Dictionary, Defaults) {
  std::string counts;
  for (const std::string& key : words("TABDIMS REGDIMS WELLDIMS EQLDIMS MISCIBLE ENDSCALE SATOPTS VFPPDIMS "
                                      "VFPIDIMS PARTTRAC ROCKOPTS PINCREG "
                                      "PINCHXY WEFAC WELDRAW WELSPECS WELSPECL WELLSPEC WCONHIST WCONPROD "
                                      "WELLPROD WCONINJ WCONINJE WCONINJH "
                                      "WELOPEN WELOPENL SEPCOND FIELDSEP GRAVITY DENSITY DIMENS")) {
    counts += std::to_string(defaultArguments(key).size()) + ' ';
  }
  EXPECT_EQ(counts, "15 10 10 5 3 4 4 6 3 3 4 5 2 3 5 16 16 7 11 16 18 12 10 8 7 8 12 10 3 3 0 ");
  EXPECT_EQ(defaultArguments("MISCIBLE")[2], "");
  EXPECT_EQ(defaultArguments("WELSPECL")[12], "SEG");
  EXPECT_EQ(defaultDensities(1)[1], "999.014");
  EXPECT_EQ(defaultDensities(4)[2], "0.062428");
}

}  // namespace
}  // namespace lumbarn::test
