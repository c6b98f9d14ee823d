#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/Families.h"
#include "files/FileChoice.h"
#include "record/RecordWriter.h"
#include "support/TemporaryFolder.h"

namespace lumbarn {
namespace {

using test::TemporaryFolder;
using testing::IsEmpty;
using Names = std::vector<std::string>;
using enum FileKind;

std::string nameIn(const RunFamily& family, const RunMember* member) {
  return member ? member->path.substr(family.folder.size()) : "none";
}
Names stepNames(const RunFamily& family, FileKind kind) {
  Names names;
  for (const RunMember* member : family.steps(kind)) names.push_back(nameIn(family, member));
  return names;
}
Names bases(const std::string& path) {
  std::string why;
  Names names;
  for (const RunFamily& family : findRuns(path, why)) names.push_back(family.base);
  EXPECT_EQ(names.empty(), !why.empty()) << path;
  return names;
}
// The one run that a path means.
RunFamily run(const std::string& path) {
  std::string why;
  const std::vector<RunFamily> runs = findRuns(path, why);
  EXPECT_EQ(runs.size(), 1U) << path << ": " << why;
  return runs.empty() ? RunFamily{} : runs[0];
}

TEST(Families, AnyPathLeadsToItsRuns) {
  const TemporaryFolder folder;
  folder.add({"RUN.SMSPEC", "RUN.UNSMRY", "RUN.DATA", "RUN.PRT", "RUN_2.S0001", "Fall 1.5 é.INIT",
              "case.1.egrid", "DECK.DATA", "notes.txt", "plain"});
  std::filesystem::create_directory(folder.file("FOLDER.INIT"));
  const Names all{"Fall 1.5 é", "RUN", "RUN_2", "case.1"};
  // A file of another kind beside the run means it; "RUN.UNRST" is neither there nor a base name.
  const std::pair<const char*, Names> rows[] = {{"", all},
                                                {"RUN", {"RUN"}},
                                                {"RUN.UNSMRY", {"RUN"}},
                                                {"RUN.UNRST", {}},
                                                {"Fall 1.5 é", {"Fall 1.5 é"}},
                                                {"DECK", {"DECK"}},
                                                {"none/RUN", {}}};
  for (const auto& [path, expected] : rows) EXPECT_EQ(bases(folder.file(path)), expected) << path;
  EXPECT_THAT(bases(""), IsEmpty());
}

TEST(Families, TheGivenFileDecidesBetweenForms) {
  const TemporaryFolder folder;
  folder.add({"R.SMSPEC", "R.FSMSPEC", "R.fsmspec", "R.FUNSMRY", "R.S0002", "R.S0001", "R.A0001", "R.A0003",
              "R.a0003", "R.DATA", "R.UNRST", "R.X0001", "R.U01"});
  struct Row {
    const char *path, *spec, *summary, *restart;
    Names summarySteps;
  };
  const Row rows[] = {
      {"R", "R.SMSPEC", "R.S0001", "R.UNRST", {"R.S0001", "R.S0002"}},
      {"R.FSMSPEC", "R.FSMSPEC", "R.FUNSMRY", "R.UNRST", {"R.A0001", "R.A0003"}},
      {"R.fsmspec", "R.fsmspec", "R.FUNSMRY", "R.UNRST", {"R.A0001", "R.a0003"}},
      {"R.A0003", "R.FSMSPEC", "R.A0003", "R.UNRST", {"R.A0001", "R.A0003"}},
      {"R.X0001", "R.SMSPEC", "R.S0001", "R.X0001", {"R.S0001", "R.S0002"}},
      {"R.U01", "R.SMSPEC", "R.U01", "R.UNRST", {"R.U01"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    const RunFamily family = run(folder.file(row.path));
    EXPECT_EQ(nameIn(family, family.find(SummarySpec)), row.spec);
    EXPECT_EQ(nameIn(family, family.find(Summary)), row.summary);
    EXPECT_EQ(nameIn(family, family.find(Restart)), row.restart);
    EXPECT_EQ(stepNames(family, Summary), row.summarySteps);
    EXPECT_THAT(stepNames(family, Save), IsEmpty());
    EXPECT_EQ(nameIn(family, family.find(Init)), "none");
  }
  const TemporaryFolder other;
  other.add({"R.SMSPEC", "R.FSMSPEC", "R.FUNSMRY"});
  const RunFamily family = run(other.file("R"));
  EXPECT_EQ(nameIn(family, family.find(SummarySpec)), "R.FSMSPEC") << "that of the data";
}

TEST(Families, AFileWithAnUntellingNameIsAMemberByItsContent) {
  const TemporaryFolder folder;
  std::vector<std::byte> bytes;
  RecordWriter(memorySink(bytes), Form{Framing::Formatted, false})
      .integers("FILEHEAD", std::vector<std::int32_t>(100));
  test::writeFile(folder.file("case.5"), bytes);
  folder.add({"case.5.INIT", "case.INIT"});
  const RunFamily family = run(folder.file("case.5"));
  EXPECT_EQ(family.base, "case.5") << "the name is a base name with a dot";
  ASSERT_TRUE(family.given);
  EXPECT_EQ(family.find(EGrid), family.givenMember());
  EXPECT_TRUE(family.givenMember()->formatted);

  test::writeFile(folder.file("case.UNRST"), bytes);
  Session session;
  chooseFiles(session, run(folder.file("case")), Restart);
  ASSERT_EQ(session.diagnoses().size(), 1U);
  EXPECT_EQ(session.diagnoses()[0].text(),
            folder.file("case.UNRST: is an EGRID file, not a restart file (FILEHEAD, occurrence 1, byte 0: "
                        "expected restart, found EGRID); read nothing of it"));
}

TEST(Families, RunsThatDifferInCaseAndFoldersAreKeptApart) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.file("BOTH"));
  folder.add({"run.smspec", "RUN.SMSPEC", "Other.INIT", "BOTH.SMSPEC", "BOTH/INNER.INIT"});
  EXPECT_EQ(bases(folder.file("run")), (Names{"run"}));
  EXPECT_EQ(bases(folder.file("Run")), (Names{"RUN", "run"}));
  EXPECT_EQ(bases(folder.file("other")), (Names{"Other"}));
  EXPECT_EQ(bases(folder.file("BOTH")), (Names{"INNER", "BOTH"})) << "a folder and a base name";
  EXPECT_EQ(bases(folder.file("BOTH/")), (Names{"INNER"}));
}

}  // namespace
}  // namespace lumbarn
