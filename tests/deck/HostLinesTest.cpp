#include <cstdint>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include "deck/ECLCommonFunctions.h"
#include "deck/qvEclipseData.h"
#include "support/Session.h"

namespace lumbarn::test {
namespace {

using Texts = std::vector<std::string>;

constexpr float unset = -32768;

TEST(HostLines, Cleaned) {
  struct Row {
    std::string line, upper, cut, keyword;
  };
  const Row rows[] = {
      {"", "", "", ""},
      {"\t", "\t", "\t", "\t"},
      {"  -- note", "-- NOTE", "  -- note", "-- not"},
      {"--\tnote ", "--\tnote ", "--\tnote ", "--\tnote"},
      {"== kept", "== kept", "== kept", "== kept"},
      {"-", "-", "-", "-"},
      {" \tpermx\t", "PERMX", " \tpermx\t", "\tpermx\t"},
      {"DIMENS 10 10 10 /", "DIMENS 10 10 10 /", "DIMENS 10 10 10 /", "DIMENS 1"},
      {"END -- end", "END -- END", "END -- end", "END -- e"},
      {"'A/B' /  x", "'A/B' /  X", "'A/B' /", "'A/B' /"},
      {"'A/B'", "'A/B'", "'A/B'", "'A/B'"},
      {"'a' 1 / it's", "'A' 1 / IT'S", "'a' 1 /", "'a' 1 /"},
      {"'A/B' 'C/D' 5 / 'E", "'A/B' 'C/D' 5 / 'E", "'A/B' 'C/D' 5 /", "'A/B' 'C"},
      {"  1 / 234", "1 / 234", "1 / 2", "1 / 23"},  // as many too many as there are blanks in front
      {"/ 'x'", "/ 'X'", "/", "/ 'x'"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(processEclipseLine(row.line, true), row.upper) << row.line;
    EXPECT_EQ(processSlashes(row.line), row.cut) << row.line;
    EXPECT_EQ(ExtractKeyword(row.line), row.keyword) << row.line;
  }
  EXPECT_EQ(processEclipseLine(" 'Well\tA' ", false), "'Well A'");
}

TEST(HostLines, TwoTestsForComments) {
  for (const char* line : {"", "\r", "\t", "--", "** x", "==", "--qv", "--qv 1", "--QV 1"})
    EXPECT_TRUE(checkifEclipseCommentLine(line)) << line;
  for (const char* line : {" ", "-", "/", " -- x", "* x"})
    EXPECT_FALSE(checkifEclipseCommentLine(line)) << line;
  for (const char* line : {"", " ", "\t", "--", "--qv", "--QV 1"})
    EXPECT_TRUE(checkIfCommentLine(line)) << line;
  for (const char* line : {"** x", "==", "--qv 1", "/", " -- x"})
    EXPECT_FALSE(checkIfCommentLine(line)) << line;
  EXPECT_EQ(processCaseLine(" runspec\t-- a"), "RUNSPEC -- A");
  EXPECT_EQ(processCaseLine("** a "), "** A");
}

TEST(HostLines, CutBehindSlashesWithQuotes) {
  const auto cut = [](std::string line) {
    auto iSlash = static_cast<std::int32_t>(line.find('/') + 1);
    auto iLength = static_cast<std::int32_t>(line.size());
    bool qOK = false;
    updateEclipseLine(line, iSlash, iLength, qOK);
    EXPECT_TRUE(qOK && iLength == static_cast<std::int32_t>(line.size()));
    return fmt::format("{}:{}", iSlash, line);
  };
  EXPECT_EQ(cut("GRID / x"), "6:GRID /");
  EXPECT_EQ(cut("'a/b' / x"), "7:'a/b' /");
  EXPECT_EQ(cut("'a/b'"), "0:'a/b'");
  EXPECT_EQ(cut("'a/b' x"), "0:'a/b' x");
  EXPECT_EQ(cut("'a/b' 'c/d' / x"), "9:'a/b' 'c/");  // it looks one step far
  EXPECT_EQ(cut("END"), "0:END");
}

TEST(HostLines, Arguments) {
  struct Row {
    const char* line;
    Texts arguments;
    bool qOK = true;
  };
  const Row rows[] = {
      {"/", {}},
      {"7", {"7"}},
      {"", {}, false},
      {"  /", {}, false},
      {"/ 5", {"/", "5"}},  // in column 1 it cuts nothing
      {"3* X /", {"*", "*", "*", "X"}},
      {"2*3.5 /", {"3.5", "3.5"}},
      {"'2*3.5' /", {"3.5", "3.5"}},
      {"'A*B' 2*'C D' /", {"A*B", "*", "*", "C D"}},  // the quote ends the word
      {"WELL1, WELL2,3/", {"WELL1", "WELL2", "3"}},
      {"X -- note", {"X"}},
      {"A --B", {"A"}},
      {"--B 1", {"--B", "1"}},
      {"'A--B' 1 /", {"A"}},
      {"A==B **C", {"A==B"}},
      {"1 2 / 3", {"1", "2"}},
      {"'A/B' 1 / 2", {"A/B", "1"}},
      {"'A/B' 'C'", {"A/B", "C"}},
      {"'A' 1 / 'b' x", {"A", "1", "/", "b", "x"}},  // a quote behind the last slash hides it
      {"'  A  B ' '' ' ' C", {"A  B", "", "C"}},
      {"'A,B'\t5", {"A", "B", "5"}},
      {"* *ABC 1*", {"*", "*ABC", "*"}},
      {"-*1 2*5 7 .*1", {"5", "5", "7", "5", "5"}},  // what is no count repeats what the last one gave
      {"0*5 2.5*1 -3*2 4", {"1", "1", "4"}},
      {"'A|B' C|D", {"A|B", "C|D"}},
  };
  for (const Row& row : rows) {
    Texts arguments{"old"};
    std::int32_t count = -1;
    bool qOK = !row.qOK;
    processEclipseArgumentLine(row.line, arguments, count, qOK);
    EXPECT_EQ(qOK, row.qOK) << row.line;
    EXPECT_EQ(arguments, row.arguments) << row.line;
    EXPECT_EQ(count, static_cast<std::int32_t>(row.arguments.size())) << row.line;
  }
}

TEST(HostLines, CountsThatNothingCanHold) {
  for (const char* line : {"2000000000*1", "1000000000000000000*1", "1*X 100000*Y 200000*Z"}) {
    Session session;
    Texts arguments;
    std::int32_t count = 0;
    bool qOK = true;
    processEclipseArgumentLine(line, arguments, count, qOK, session);
    EXPECT_FALSE(qOK) << line;
    EXPECT_EQ(session.faults(), 1) << line;
  }
}

TEST(HostLines, NumericArguments) {
  std::vector<float> values;
  std::int32_t count = -1;
  bool qOK = false;
  processNumericEclipseArgumentLine("/", values, count, qOK);
  EXPECT_TRUE(qOK && count == 0 && values.size() == 1);
  processNumericEclipseArgumentLine("2*1.5 * 3x 1D2 1.5E+1 inf -.5 /", values, count, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(count, 8);
  EXPECT_EQ(values, (std::vector<float>{1.5F, 1.5F, 0, 3, 100, 15, 0, -0.5F}));
  processNumericEclipseArgumentLine("4", values, count, qOK);
  EXPECT_TRUE(qOK && count == 1 && values.size() == 8 && values[0] == 4);
}

TEST(HostLines, TypedArguments) {
  struct Row {
    const char* text;
    float single;
    double number;
    std::int32_t integer;
  };
  for (const Row& row : {Row{"*", unset, unset, deckDefault}, Row{"", unset, unset, deckDefault},
                         Row{"2.5", 2.5F, 2.5, 2}, Row{"3.5", 3.5F, 3.5, 4}, Row{" -7 ", -7, -7, -7},
                         Row{"1.5D2", 150, 150, 150}, Row{"1E39", unset, 1e39, deckDefault},
                         Row{"3000000000", 3e9F, 3e9, deckDefault}, Row{"5X", unset, unset, deckDefault},
                         Row{"1D", unset, unset, deckDefault}, Row{"nan", unset, unset, deckDefault}}) {
    EXPECT_EQ(getSingleArgument(row.text), row.single) << row.text;
    EXPECT_EQ(getDoubleArgument(row.text), row.number) << row.text;
    EXPECT_EQ(getIntegerArgument(row.text), row.integer) << row.text;
  }
  EXPECT_EQ(UpdateEclipseStringArgument("'A B'", "X"), "A B");
  EXPECT_EQ(UpdateEclipseStringArgument("", "'X'"), "X");
  EXPECT_EQ(UpdateEclipseStringArgument("'P*", ""), "'P*");
}

TEST(HostLines, WellCodes) {
  const auto codes = [](std::int32_t (*code)(std::string_view), const Texts& texts) {
    std::string result;
    for (const std::string& text : texts) result += fmt::format("{} ", code(text));
    return result;
  };
  EXPECT_EQ(codes(getWellStatus, {"OPEN", "stop", "SHUT", "AUTO", "S", "", "X"}), "2 1 3 4 -1 -1 -1 ");
  EXPECT_EQ(codes(getWellPhase, {"OIL", "WAT", "GAS", "LIQ", "", "P"}), "1 2 3 4 -1 -1 ");
  EXPECT_EQ(codes(getWellMode, {"ORAT", "WRAT", "WGRA", "GRAT", "GRUP", "LRAT", "RATE", "RESV", "BHP"}),
            "1 2 9 8 8 4 15 5 7 ");
  EXPECT_EQ(
      codes(getWellMode, {"G", "THP", "TMRA", "STRA", "SATP", "SATT", "SATPX", "CRAT", "W", "S", "T", ""}),
      "3 6 10 11 12 13 -1 14 2 -1 6 -1 ");
}

TEST(HostLines, FileNames) {
  const DeckAliases aliases{{"ALL", "/shared/grids/"}};
  struct Row {
    Texts lines;
    std::string name, backslashes;
  };
  const Row rows[] = {
      {{"-- a", "", "'Grid/File A.inc' /"}, "Grid/File A.inc", "Grid\\File A.inc"},
      {{"grid/file.inc / it's"}, "grid/file.inc", "grid\\file.inc"},
      {{"/abs/file.inc/"}, "/abs/file.inc", "\\abs\\file.inc"},
      {{"'sub\\file.inc'/"}, "sub\\file.inc", "sub\\file.inc"},
      {{"/"}, "", ""},
      {{"'$ALL/a/b.inc' /"}, "/shared/grids/a/b.inc", "\\shared\\grids\\a\\b.inc"},
      {{"$ALL\\a.inc /"}, "/shared/grids/a.inc", "\\shared\\grids\\a.inc"},
      {{"'$OTHER/a/b.inc' /"}, "a/b.inc", "a\\b.inc"},
      {{"'$OTHER' /"}, "", ""},
  };
  for (const Row& row : rows) {
    for (const bool qBackslash : {false, true}) {
      std::string name;
      bool qOK = false;
      getIncludeFileName(row.lines, static_cast<std::int32_t>(row.lines.size()), name, qOK, qBackslash,
                         aliases);
      EXPECT_TRUE(qOK);
      EXPECT_EQ(name, qBackslash ? row.backslashes : row.name) << row.lines.back();
    }
  }
  std::string name;
  bool qOK = true;
  getIncludeFileName({"-- only", "'a.inc' /"}, 1, name, qOK, false);
  EXPECT_FALSE(qOK);
}

TEST(HostLines, MergedAndJoined) {
  const auto merged = [](const Texts& arguments, const Texts& defaults) {
    Texts result{"old"};
    std::int32_t count = -1;
    bool qOK = false;
    mergeArguments(arguments, static_cast<std::int32_t>(arguments.size()), defaults,
                   static_cast<std::int32_t>(defaults.size()), result, count, qOK);
    EXPECT_TRUE(qOK && count == static_cast<std::int32_t>(result.size()));
    return result;
  };
  EXPECT_EQ(merged({"*", "5"}, {"1", "2", "3"}), (Texts{"1", "5", "3"}));
  EXPECT_EQ(merged({"*", "*", "*"}, {"1"}), (Texts{"1", "*", "*"}));
  EXPECT_EQ(merged({}, {}), Texts());

  Texts lines{"1 2", "-- x", "", "3 /", "/", "4"};
  std::int32_t count = 6;
  bool qOK = false;
  compressEclipseArgLines(lines, count, qOK);
  EXPECT_TRUE(qOK && count == 2);
  EXPECT_EQ(lines, (Texts{"1 2 3 /", "/"}));
}

TEST(HostLines, WordsOfArrays) {
  Session session;
  std::vector<float> singles(6, -1);
  std::int32_t words = 3;
  bool qOK = false;
  copyEclipseSingleArrayLine({"1.5", "2*", "1\t2"}, words, 1, singles, qOK, session);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(words, 4);
  EXPECT_EQ(singles, (std::vector<float>{-1, 1.5F, 0, 0, 1, -1}));
  words = 2;
  copyEclipseSingleArrayLine({"9", "5*8"}, words, 4, singles, qOK, session);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(singles, (std::vector<float>{-1, 1.5F, 0, 0, 9, 8}));
  EXPECT_EQ(session.faults(), 1);

  std::vector<std::int32_t> longs(2);
  words = 4;
  copyEclipseLongArrayLine({"2.5", "X", "2*1.6", "5"}, words, 0, longs, qOK, session);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(longs, (std::vector<std::int32_t>{2, deckDefault, 2, 2, 5}));
  words = 2;
  copyEclipseLongArrayLine({"7", "3*"}, words, 0, longs, qOK, session);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(longs[0], 7);
  EXPECT_EQ(session.faults(), 2);

  const Texts lines{"-- ACTNUM", " 2*1 ", "", "0 1 / 5", "8"};
  getEclipseLongArray(lines, 5, 9, longs, qOK, session);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(longs, (std::vector<std::int32_t>{1, 1, 0, 1}));
}

TEST(HostLines, BoxOfCells) {
  Session session;
  std::vector<std::int32_t> cells(12, 0);
  bool qOK = false;
  copyBOXIntoLongArray({1, 2, 3, 4, 5}, 5, 2, 3, 1, 2, 1, 2, 3, 2, cells, qOK, session);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(cells, (std::vector<std::int32_t>{0, 1, 2, 0, 3, 4, 0, 5, 0, 0, 0, 0}));
  copyBOXIntoLongArray({1, 2}, 2, 3, 4, 2, 2, 2, 2, 3, 2, cells, qOK, session);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(session.faults(), 1);
}

}  // namespace
}  // namespace lumbarn::test
