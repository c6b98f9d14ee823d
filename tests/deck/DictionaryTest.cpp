#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

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
  std::map<std::int32_t, int> classes;
  for (const DictionaryRow& row : rows) {
    ++sections[row.section];
    ++classes[row.iClass];
  }
  const std::map<std::string, int> expected{{"RUNSPEC", 225}, {"GRID", 275},     {"EDIT", 88},
                                            {"PROPS", 815},   {"REGIONS", 124},  {"SOLUTION", 153},
                                            {"SUMMARY", 860}, {"SCHEDULE", 446}, {"SUMAMRY", 1}};
  EXPECT_EQ(sections, expected);
  EXPECT_EQ(classes.size(), 5U);
  EXPECT_EQ(classes[1002], 1);

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

TEST(Dictionary, Lookup) {
  struct Row {
    const char* key;
    std::int32_t section;
    const char* found;  // the row's name, empty for none
    std::int32_t keySection, iClass, newSection;
  };
  const Row rows[] = {
      {"DATES", 8, "DATES", 8, 1, 8},
      {"WELSPECS", 2, "", 0, -1, 2},
      {"WELSPECS", 0, "WELSPECS", 8, 1, 0},
      {"GRID", 1, "GRID", 2, 1, 2},
      {"SCHEDULE", 8, "SCHEDULE", 8, 1, 8},
      {"GRID_1", 4, "GRID", 2, 1, 2},
      {"FIPNUM", 5, "FIP", 5, 1000, 5},
      {"FIPABC", 5, "FIP", 5, 1000, 5},
      {"FIP", 5, "FIP", 5, 1000, 5},
      {"FIPSEP", 6, "", 0, -1, 6},
      {"TNUMABC", 5, "TNUM", 5, 1000, 5},
      {"TVDPX", 6, "TVDP", 6, 2, 6},
      {"PORO_1", 2, "PORO", 2, 1001, 2},
      {"_X", 2, "", 0, -1, 2},
      {"INCLUDE", 7, "", 0, -1, 7},
      {"INCLUDE", 8, "INCLUDE", 8, 1, 8},
      {"COORD", 2, "COORD", 2, 1002, 2},
      {"+", 2, "", 0, -1, 2},
      {"ADD", 2, "", 0, -1, 2},
      {"EQUALS", 2, "", 0, -1, 2},
      {"grid", 0, "", 0, -1, 0},
      {"", 2, "", 0, -1, 2},
      {"EQUIL", 6, "EQUIL", 6, 1, 6},
      {"RIVRXSEC", 4, "", 0, -1, 4},
      {"BICS", 4, "", 0, -1, 4},
      {"BOX", 1, "", 0, -1, 1},
      {"BOX", 8, "BOX", 8, 1, 8},
  };
  for (const Row& row : rows) {
    std::int32_t iRow = -1, keySection = -1, iClass = -1, section = row.section;
    bool qOK = false;
    lookupKeyword(row.key, iRow, keySection, iClass, section, qOK);
    EXPECT_TRUE(qOK);
    const auto all = EclipseDictionary::shared().rows();
    EXPECT_EQ(iRow == 0 ? "" : all[static_cast<std::size_t>(iRow - 1)].keyword, row.found) << row.key;
    EXPECT_EQ(keySection, row.keySection) << row.key;
    EXPECT_EQ(iClass, row.iClass) << row.key;
    EXPECT_EQ(section, row.newSection) << row.key;
  }
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
  struct Row {
    const char* key;
    std::size_t count;
    std::size_t place;
    const char* value;
  };
  const Row rows[] = {
      {"TABDIMS", 15, 10, "-1"},       {"REGDIMS", 10, 6, "1"},      {"WELLDIMS", 10, 1, "10"},
      {"EQLDIMS", 5, 2, "100"},        {"MISCIBLE", 3, 3, ""},       {"ENDSCALE", 4, 2, "REVERS"},
      {"SATOPTS", 4, 4, ""},           {"VFPPDIMS", 6, 6, "0"},      {"VFPIDIMS", 3, 1, "0"},
      {"PARTTRAC", 3, 3, "0"},         {"ROCKOPTS", 4, 3, "PVTNUM"}, {"PINCHOUT", 5, 3, "1E+20"},
      {"PINCHXY", 2, 2, "0.001"},      {"WEFAC", 3, 3, "YES"},       {"WELDRAW", 5, 2, "-32768"},
      {"WELSPECS", 16, 9, "WELLSHUT"}, {"WELSPECL", 16, 13, "SEG"},  {"WELLSPEC", 7, 2, "FIELD"},
      {"WCONHIST", 11, 6, "1.0E+20"},  {"WCONPROD", 16, 2, "*"},     {"WELLPROD", 18, 1, "*"},
      {"WCONINJ", 12, 4, "4"},         {"WCONINJE", 10, 3, "OPEN"},  {"WCONINJH", 8, 3, "OPEN"},
      {"WELOPEN", 7, 2, "OPEN"},       {"WELOPENL", 8, 2, ""},       {"SEPCOND", 12, 12, "*"},
      {"FIELDSEP", 10, 1, "*"},        {"GRAVITY", 3, 3, "0.7773"}};
  for (const Row& row : rows) {
    std::vector<std::string> arguments;
    std::int32_t count = 0;
    bool qOK = false;
    getDefaultArguments(row.key, arguments, count, qOK);
    EXPECT_TRUE(qOK);
    ASSERT_EQ(arguments.size(), row.count) << row.key;
    EXPECT_EQ(count, static_cast<std::int32_t>(row.count));
    EXPECT_EQ(arguments[row.place - 1], row.value) << row.key;
  }
  EXPECT_TRUE(defaultArguments("DIMENS").empty());
  EXPECT_EQ(defaultDensities(1)[1], "999.014");
  EXPECT_EQ(defaultDensities(3)[0], "0.6");
  EXPECT_EQ(defaultDensities(4)[2], "0.062428");
}

}  // namespace
}  // namespace lumbarn::test
