#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/FileSets.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;
using Names = std::vector<std::string>;

TEST(SetEclipseFileName, KeepsCaseAndGeneration) {
  struct Row {
    const char *file, *kind;
    bool unified, formatted;
    const char* expected;  // empty: there is no such file
  };
  const Row rows[] = {{"d/run.smspec", "SUMMARY", true, false, "d/run.unsmry"},
                      {"RUN.SMS", "SUMMARY", true, false, "RUN.USY"},
                      {"RUN.S0003", "SOLUTION", false, false, "RUN.X0003"},
                      {"RUN.Y50", "SUMMARY", false, true, "RUN.B50"},
                      {"RUN.UNRST", "RESTART", false, true, "RUN.F0000"},
                      {"RUN.x0004", "restart", true, false, "RUN.unrst"},
                      {"RUN.V2 é.RSSPEC", "SOLUTION", true, true, "RUN.V2 é.FUNRST"},
                      {"a.smspec/RUN", "SAVE", true, false, "a.smspec/RUN.SAVE"},
                      {"RUN.SLNSPEC", "STREAMLINE", true, false, ""},
                      {"RUN.SMSPEC", "GRID", true, false, ""}};
  for (const Row& row : rows) {
    std::string zExtension = "old", zName = "old";
    bool qOK = false;
    setEclipseFileName(row.file, row.kind, zExtension, row.unified, row.formatted, zName, qOK);
    EXPECT_EQ(zName, row.expected);
    EXPECT_EQ(zExtension, zName.empty() ? "" : zName.substr(zName.rfind('.') + 1));
    EXPECT_EQ(qOK, !zName.empty()) << row.file;
  }
}

struct Search {
  Names names;  // without the folder
  std::int32_t nFiles = 77;
  bool qOK = false;
};
Search search(const TemporaryFolder& folder, std::string_view file, std::string_view kind,
              std::int32_t iStart = -1, std::int32_t iEnd = -1) {
  Search result;
  GetFileNamesToLoad(folder.file(file), iStart, iEnd, false, kind, result.nFiles, result.names, result.qOK);
  const std::string front = folder.file("");
  for (std::string& name : result.names) {
    if (name.empty()) continue;  // the entry of an empty list
    EXPECT_EQ(name.substr(0, front.size()), front);
    name.erase(0, front.size());
  }
  return result;
}

TEST(GetFileNamesToLoad, FindsTheSetFromAnyOfItsFiles) {
  const TemporaryFolder folder;
  folder.add({"RUN.S0010", "RUN.S0002", "RUN.S0001", "RUN.A0001", "RUN.X0000", "RUN.X0002", "RUN.F0003",
              "RUN.B0005", "RUN.B0004", "RUN.S001", "RUN.S0001.bak", "RUN2.S0003", "XRUN.S0003", "RUN.SMSPEC",
              "RUN.UNSMRY"});
  std::filesystem::create_directory(folder.file("RUN.S0004"));
  folder.add({"elsewhere"});
  std::filesystem::create_symlink(folder.file("elsewhere"), folder.file("RUN.S0003"));

  const Names summary{"RUN.S0001", "RUN.S0002", "RUN.S0003", "RUN.S0010"};
  const Names restart{"RUN.X0000", "RUN.X0002"};
  struct Row {
    const char *file, *kind;
    Names expected;
  };
  // A member of a set stands for its set, also with a letter that no table has.
  const Row rows[] = {{"RUN.UNSMRY", "SUMMARY", summary},
                      {"RUN.S0002", "SOLUTION", summary},
                      {"RUN", "SUMMARY", summary},
                      {"RUN.FSMSPEC", "SUMMARY", {"RUN.A0001"}},
                      {"RUN.RSSPEC", "SOLUTION", restart},
                      {"RUN.SMSPEC", "RESTART", restart},
                      {"RUN.FSMSPEC", "RESTART", {"RUN.F0003"}},
                      {"RUN.B0004", "SUMMARY", {"RUN.B0004", "RUN.B0005"}},
                      {"RUN.SMS", "SUMMARY", {}},
                      {"RUN.EGRID", "", {}},
                      {"XRUN.SMSPEC", "SUMMARY", {"XRUN.S0003"}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.file) + " " + row.kind);
    const Search result = search(folder, row.file, row.kind);
    EXPECT_TRUE(result.qOK);
    EXPECT_EQ(result.names, row.expected);
    EXPECT_EQ(result.nFiles, static_cast<std::int32_t>(row.expected.size()));
  }
}

TEST(GetFileNamesToLoad, ShortNamesGoPatternByPattern) {
  const TemporaryFolder folder;
  folder.add({"r.z00", "r.x99", "r.y05", "r.y00", "r.x07", "r.w01"});
  for (const char* file : {"r.urs", "r.x07", "r.z55"}) {
    EXPECT_THAT(search(folder, file, "SOLUTION").names,
                ElementsAre("r.x07", "r.x99", "r.y00", "r.y05", "r.z00"));
  }
  EXPECT_THAT(search(folder, "r.urs", "SOLUTION", 99, 105).names, ElementsAre("r.x99", "r.y00", "r.y05"));
}

TEST(GetFileNamesToLoad, MatchesWithoutRegardToCaseButNeverMixesRuns) {
  const TemporaryFolder folder;
  const std::string strange = "Fäll 1.5 [α].S0001";
  folder.add({strange + ".S0009", strange + ".S0010", strange + ".S0011"});
  EXPECT_THAT(search(folder, strange + ".SMSPEC", "SUMMARY", 10, 11).names,
              ElementsAre(strange + ".S0010", strange + ".S0011"));
  folder.add({"Run.s0001", "Run.S0002", "two.S0001", "two.s0001", "TWO.S0002", "one.X0001"});
  EXPECT_THAT(search(folder, "RUN.SMSPEC", "SUMMARY").names, ElementsAre("Run.s0001", "Run.S0002"));
  EXPECT_THAT(search(folder, "two.smspec", "SUMMARY").names, ElementsAre("two.s0001")) << "not TWO's";
  EXPECT_THAT(search(folder, "two.SMSPEC", "SUMMARY").names, ElementsAre("two.S0001"));
}

TEST(GetFileNamesToLoad, FailsOnlyWhenTheFolderCannotBeListed) {
  const TemporaryFolder folder;
  Session session;
  std::int32_t nFiles = 77;
  Names names{"old"};
  bool qOK = true;
  GetFileNamesToLoad(folder.file("none/RUN.SMSPEC"), -1, -1, false, "SUMMARY", nFiles, names, qOK, session);
  EXPECT_FALSE(qOK);
  EXPECT_EQ(nFiles, 0);
  EXPECT_THAT(names, IsEmpty());
  ASSERT_EQ(session.diagnoses().size(), 1U);
  EXPECT_EQ(session.diagnoses()[0].path, folder.file("none/"));
  EXPECT_TRUE(search(folder, "RUN.SMSPEC", "SUMMARY").qOK) << "an empty folder is no failure";
}

TEST(GetFileListUsingStartAndEnd, CutsAsTold) {
  const Names all{"R.X0001", "R.X0003", "R.X0005", "R.X0007"};
  struct Row {
    std::int32_t start, end;
    Names expected;
  };
  const Names middle{"R.X0003", "R.X0005"}, one{"R.X0003"};
  // Turned round; an open end is the start; for a missing step the next one. Quirks: an end behind the last
  // file gives the first alone, a start behind it nothing as one empty entry, an open start leaves
  // everything.
  const Row rows[] = {{3, 5, middle}, {5, 3, middle}, {3, -1, one}, {3, 3, one},
                      {2, 2, one},    {2, 4, middle}, {0, 7, all},  {3, 8, one},
                      {8, 9, {""}},   {-1, 5, all},   {-1, -1, all}};
  for (const Row& row : rows) {
    SCOPED_TRACE(fmt::format("{}..{}", row.start, row.end));
    Names files = all;
    auto nFiles = static_cast<std::int32_t>(files.size());
    bool qOK = false;
    GetFileListUsingStartAndEnd(row.start, row.end, false, false, "UNRST", nFiles, files, qOK);
    EXPECT_TRUE(qOK);
    EXPECT_EQ(files, row.expected);
    EXPECT_EQ(nFiles, row.expected == Names{""} ? 0 : static_cast<std::int32_t>(row.expected.size()));
  }
}

TEST(SequenceLimits, FollowKindAndOpenEnds) {
  struct Row {
    const char* kind;
    bool unified;
    std::int32_t start, end, first, last;
  };
  const Row rows[] = {
      {"SUMMARY", true, -1, 10, 1, 10},  {"SOLUTION", true, -1, 10, 0, 10}, {"SAVE", true, -1, 0, 0, 0},
      {"streamline", true, -1, 4, 0, 4}, {"RESTART", true, -1, 4, 1, 4},    {"SUMMARY", true, -1, -1, -1, -1},
      {"SUMMARY", true, 3, -1, 3, 3},    {"SUMMARY", true, 3, 7, 3, 7},     {"SUMMARY", true, 7, 3, 7, 7},
      {"SUMMARY", false, 3, 7, 55, 66},
  };
  for (const Row& row : rows) {
    std::int32_t iFirst = 55, iLast = 66;
    bool qOK = false;
    setEclipseSequenceLimits(row.kind, row.unified, row.start, row.end, iFirst, iLast, qOK);
    EXPECT_TRUE(qOK);
    EXPECT_EQ(iFirst, row.first) << row.kind << " " << row.start << " " << row.end;
    EXPECT_EQ(iLast, row.last) << row.kind << " " << row.start << " " << row.end;
  }
}

TEST(SequenceLimits, StepsAreTestedInUnifiedSetsOnly) {
  struct Row {
    bool unified;
    std::int32_t step, first, last;
    bool use, past, ends;
  };
  const Row rows[] = {
      {true, 2, 3, 5, false, false, false},  {true, 3, 3, 5, true, false, false},
      {true, 5, 3, 5, true, false, true},    {true, 6, 3, 5, false, true, true},
      {true, 6, -1, -1, true, false, false}, {false, 6, 3, 5, true, false, false},
      {true, 4, 5, 3, false, false, true},
  };
  for (const Row& row : rows) {
    bool qUse = !row.use, qPast = !row.past, qExit = !row.ends, qOK = false;
    checkSequence(row.unified, row.step, row.first, row.last, qUse, qPast, qOK);
    EXPECT_EQ(qUse, row.use) << row.step;
    EXPECT_EQ(qPast, row.past) << row.step;
    checkForExit(row.unified, row.step, row.last, qExit, qOK);
    EXPECT_EQ(qExit, row.ends) << row.step;
  }
  bool qResult = true;
  EXPECT_FALSE(checkExit(true, false, qResult));
  EXPECT_TRUE(checkExit(false, true, qResult) && !qResult);
  EXPECT_TRUE(checkExit(false, false, qResult) && qResult);
}

}  // namespace
}  // namespace lumbarn
