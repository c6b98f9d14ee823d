#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CommandRun.h"
#include "support/Forms.h"
#include "support/InitBuilder.h"
#include "support/TemporaryFolder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct InitCommand : ::testing::Test {
  InitCommand() { test::writeFile(folder.file("CASE.INIT"), test::twoLocalGrids(test::bigEndian)); }
  Outcome run(std::vector<std::string> args) {
    args.push_back(folder.file("CASE"));
    return command(args);
  }
  std::vector<std::vector<std::string>> rows(std::vector<std::string> args) {
    args.insert(args.end(), {"--format", "csv"});
    return parseCsv(run(args).out);
  }
  test::TemporaryFolder folder;
};

TEST_F(InitCommand, ListsEveryGrid) {
  const auto list = rows({"init"});
  ASSERT_EQ(list.size(), 1u + 6 + 3 + 5);
  EXPECT_THAT(list[2], ElementsAre("ROOT", "DEPTH", "REAL", "6", "M", "1", "6"));
  EXPECT_THAT(list.back(), ElementsAre("RING", "PVTNUM", "INTE", "2", "", "5", "6"));
  EXPECT_EQ(rows({"init", "--grid", "box"}).size(), 4u);
  const auto connections = rows({"init", "--nnc"});
  EXPECT_THAT(connections.back(),
              ElementsAre("RING", "local to local", "TRANLL", "REAL", "2", "CPM3/D/BAR", "34", "35"));
}

TEST_F(InitCommand, ShowsValuesWithTheirCells) {
  EXPECT_THAT(rows({"init", "--array", "PORO,DEPTH", "--ijk"}),
              ElementsAre(ElementsAre("i", "j", "k", "PORO", "DEPTH"), ElementsAre("1", "1", "1", "5", "1"),
                          ElementsAre("3", "1", "1", "6", "3"), ElementsAre("1", "2", "1", "7", "4"),
                          ElementsAre("3", "2", "1", "8", "6")));
  const auto all = rows({"init", "--array", "poro,DEPTH,SATNUM", "--ijk", "--all"});
  ASSERT_EQ(all.size(), 7u);
  EXPECT_THAT(all[5], ElementsAre("2", "2", "1", "-999", "-999", "-999"));
  EXPECT_THAT(rows({"init", "--array", "PERM*", "--grid", "RING"}),
              ElementsAre(ElementsAre("PERMR"), ElementsAre("25"), ElementsAre("26")));
  EXPECT_THAT(rows({"init", "--nnc", "--array", "TRAN*"})[2], ElementsAre("2", "0.25"));
}

TEST_F(InitCommand, NumbersCellsByTheGridFileWherePoreVolumesDoNot) {
  for (const std::vector<float>& porv : {std::vector<float>{}, {1, 0, 1, 1, 0, 0}, {1, 1, 1, 1, 0, 1}}) {
    std::filesystem::remove(folder.file("CASE.EGRID"));
    test::InitBuilder file(test::bigEndian);
    file.head({.Nx = 3, .Ny = 2, .nActive = 4});
    if (!porv.empty()) file.singles("PORV", porv);
    file.integers("CELL", {16777217, 3, 4, 6}).singles("DEPTH", {1, 2, 3, 4, 5, 6});
    test::writeFile(folder.file("CASE.INIT"), file.bytes());
    const auto unknown = run({"init", "--array", "CELL", "--ijk"});
    const bool tooMany = std::ranges::count(porv, 1.0F) > 4;
    EXPECT_EQ(unknown.status, tooMany ? 3 : 1);
    EXPECT_THAT(unknown.err, HasSubstr(tooMany ? "found 5); took the first ones as active"
                                               : "which 4 of the 6 cells are active is not known"));

    test::InitBuilder grid(test::bigEndian);
    grid.integers("ACTNUM", {1, 0, 1, 1, 0, 1}).integers("ENDGRID", {});
    test::writeFile(folder.file("CASE.EGRID"), grid.bytes());
    EXPECT_THAT(rows({"init", "--array", "CELL,DEPTH", "--ijk"}),
                ElementsAre(::testing::_, ElementsAre("1", "1", "1", "16777217", "1"),
                            ElementsAre("3", "1", "1", "3", "3"), ElementsAre("1", "2", "1", "4", "4"),
                            ElementsAre("3", "2", "1", "6", "6")));
  }
}

TEST_F(InitCommand, CheckFindsWhatDoesNotFit) {
  EXPECT_EQ(run({"check"}).status, 0);
  EXPECT_EQ(command({"check", sample("ARBOR/ARBOR.INIT")}).status, 0) << "words left at 1 are no finding";
  test::InitBuilder file(test::bigEndian);
  file.head({.Nx = 3, .Ny = 2, .nActive = 4}).singles("PORV", {1, 1, 1, 0, 0, 0});
  for (const auto* array : {"DEPTH", "NTG"}) file.singles(array, {1, 1, 1, 1, 1, 1});
  test::writeFile(folder.file("CASE.INIT"), file.bytes());
  const auto found = run({"check"});
  EXPECT_EQ(found.status, 3);
  EXPECT_THAT(found.out, HasSubstr("2 findings")) << "told once, not for each array";
  EXPECT_THAT(found.out, HasSubstr("pore volumes disagree with the active cells of grid ROOT (PORV"));
}

TEST_F(InitCommand, SaysWhatIsWrong) {
  const struct {
    std::vector<std::string> args;
    std::string message;
  } usages[] = {
      {{"init", "--ijk"}, "--ijk goes with --array"},
      {{"init", "--flags", "--nnc"}, "--flags goes without --nnc"},
      {{"init", "--array", "DEPHT"}, "has no array DEPHT; did you mean \"DEPTH\"?"},
      {{"init", "--grid", "X"}, "no grid \"X\"; it has ROOT, BOX, RING"},
      {{"tables", "--table", "PVTX"}, "no table \"PVTX\"; it has DENSITY"},
      {{"tables", "--number", "2"}, "--number goes with --table"},
      {{"tables", "--table", "density", "--number", "2"}, "no table 2 of DENSITY; it has 1"},
  };
  for (const auto& [args, message] : usages) {
    const auto outcome = run(args);
    EXPECT_EQ(outcome.status, 2) << message;
    EXPECT_THAT(outcome.err, HasSubstr(message));
  }
  auto bytes = test::twoLocalGrids(test::bigEndian);
  bytes.resize(bytes.size() - 3);
  test::writeFile(folder.file("CASE.INIT"), bytes);
  const auto cut = run({"init"});
  EXPECT_EQ(cut.status, 3);
  EXPECT_THAT(cut.out, HasSubstr("SATNUM"));
  EXPECT_THAT(cut.err, HasSubstr("record is cut off (FIPNUM"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
