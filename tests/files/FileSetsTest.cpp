#include <filesystem>

#include <gtest/gtest.h>

#include "files/FileSets.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using test::TemporaryFolder;
using Names = std::vector<std::string>;

TEST(SetEclipseFileName, KeepsCaseAndGeneration) {
  struct Row {
    const char *file, *kind;
    bool unified, formatted;
    const char* expected;  // empty: there is no such file
  };
  const Row rows[] = {{"d/run.smspec", "SUMMARY", true, false, "d/run.unsmry"},
                      {"RUN.S0003", "SOLUTION", false, false, "RUN.X0003"},
                      {"RUN.Y50", "SUMMARY", false, true, "RUN.B50"},
                      {"RUN.V2 é.RSSPEC", "SOLUTION", true, true, "RUN.V2 é.FUNRST"},
                      {"a.smspec/RUN", "SAVE", true, false, "a.smspec/RUN.SAVE"},
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

/// The names found, without the folder.
Names search(const TemporaryFolder& folder, std::string_view file, std::string_view kind,
             std::int32_t iStart = -1, std::int32_t iEnd = -1) {
  std::int32_t nFiles = 77;
  Names names;
  bool qOK = false;
  GetFileNamesToLoad(folder.file(file), iStart, iEnd, false, kind, nFiles, names, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(nFiles, static_cast<std::int32_t>(names.size()));
  for (std::string& name : names) name.erase(0, folder.file("").size());
  return names;
}

TEST(GetFileNamesToLoad, FindsTheSetFromAnyOfItsFiles) {
  const TemporaryFolder folder;
  folder.add({"RUN.S0010",  "RUN.S0002",  "RUN.A0001", "RUN.X0002",
              "RUN.F0003",  "RUN.B0005",  "RUN.S001",  "RUN.S0001.bak",
              "RUN2.S0003", "RUN.SMSPEC", "elsewhere", "r.z00",
              "r.x99",      "r.y05",      "r.w01",     "Fäll 1.5 [α].S0001.S0009",
              "Run.s0001",  "two.S0001",  "two.s0001", "TWO.S0002"});
  std::filesystem::create_directory(folder.file("RUN.S0004"));
  std::filesystem::create_symlink(folder.file("elsewhere"), folder.file("RUN.S0003"));
  const Names summary{"RUN.S0002", "RUN.S0003", "RUN.S0010"}, lower{"r.x99", "r.y05", "r.z00"};
  struct Row {
    const char *file, *kind;
    Names expected;
  };
  // A member of a set stands for its set, also with a letter that no table has. Names match without regard to
  // case, but runs are not mixed.
  const Row rows[] = {{"RUN.UNSMRY", "SUMMARY", summary},
                      {"RUN.RSSPEC", "SOLUTION", {"RUN.X0002"}},
                      {"RUN.FSMSPEC", "RESTART", {"RUN.F0003"}},
                      {"RUN.B0004", "SUMMARY", {"RUN.B0005"}},
                      {"r.z55", "SOLUTION", lower},
                      {"Fäll 1.5 [α].S0001.SMSPEC", "SUMMARY", {"Fäll 1.5 [α].S0001.S0009"}},
                      {"two.smspec", "SUMMARY", {"two.s0001"}},
                      {"two.SMSPEC", "SUMMARY", {"two.S0001"}}};
  for (const Row& row : rows) EXPECT_EQ(search(folder, row.file, row.kind), row.expected) << row.file;
  EXPECT_EQ(search(folder, "r.urs", "SOLUTION", 99, 105), (Names{"r.x99", "r.y05"}));

  Session session;
  std::int32_t nFiles = 77;
  Names names{"old"};
  bool qOK = true;
  GetFileNamesToLoad(folder.file("none/RUN.SMSPEC"), -1, -1, false, "SUMMARY", nFiles, names, qOK, session);
  EXPECT_FALSE(qOK) << "only when the folder cannot be listed";
  EXPECT_EQ(names, Names{});
  ASSERT_EQ(session.diagnoses().size(), 1U);
  EXPECT_EQ(session.diagnoses()[0].path, folder.file("none/"));
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
  const Row rows[] = {{3, 5, middle}, {5, 3, middle}, {3, -1, one}, {3, 3, one},  {2, 2, one},
                      {2, 4, middle}, {0, 7, all},    {3, 8, one},  {8, 9, {""}}, {-1, 5, all}};
  for (const Row& row : rows) {
    Names files = all;
    auto nFiles = static_cast<std::int32_t>(files.size());
    bool qOK = false;
    GetFileListUsingStartAndEnd(row.start, row.end, false, false, "UNRST", nFiles, files, qOK);
    EXPECT_TRUE(qOK);
    EXPECT_EQ(files, row.expected) << row.start << ".." << row.end;
    EXPECT_EQ(nFiles, row.expected == Names{""} ? 0 : static_cast<std::int32_t>(row.expected.size()));
  }
}

TEST(SequenceLimits, FollowKindAndOpenEndsAndTestStepsOfUnifiedSets) {
  struct Limits {
    const char* kind;
    bool unified;
    std::int32_t start, end, first, last;
  };
  const Limits limits[] = {
      {"SUMMARY", true, -1, 10, 1, 10}, {"SOLUTION", true, -1, 10, 0, 10}, {"SUMMARY", true, -1, -1, -1, -1},
      {"SUMMARY", true, 3, -1, 3, 3},   {"SUMMARY", true, 7, 3, 7, 7},     {"SUMMARY", false, 3, 7, 55, 66},
  };
  bool qOK = false;
  for (const Limits& row : limits) {
    std::int32_t iFirst = 55, iLast = 66;
    setEclipseSequenceLimits(row.kind, row.unified, row.start, row.end, iFirst, iLast, qOK);
    EXPECT_EQ(std::pair(iFirst, iLast), std::pair(row.first, row.last)) << row.kind << row.start << row.end;
  }
  bool qResult = true;
  EXPECT_FALSE(checkExit(true, false, qResult));
  EXPECT_TRUE(checkExit(false, true, qResult) && !qResult);
  EXPECT_EQ(TypeStringFromNum(3) + TypeStringFromNum(7), "REAL");
}

}  // namespace
}  // namespace lumbarn
