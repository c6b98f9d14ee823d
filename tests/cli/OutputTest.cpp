#include "CommandTest.h"
#include "Output.h"
#include "ProgressBar.h"

namespace lumbarn::cli::testing {
namespace {

namespace fs = std::filesystem;

struct Output : CommandTest {};

TEST_F(Output, WhatIsReplacedAndOnRequestOnly) {
  copy("ARBOR/ARBOR.SMSPEC", "A.SMSPEC");
  copy("ARBOR/ARBOR.UNSMRY", "A.UNSMRY");
  copy("ARBOR/ARBOR.UNRST", "other");
  store(file("deck"), "RUNSPEC\nDIMENS\n 1 1 1 /\n");
  store(file("table.csv"), "a,b\r\n1,2\r\n");
  store(file("behind"), "old");
  fs::create_hard_link(file("A.UNSMRY"), file("hard"));
  fs::create_directory(file("folder"));
  fs::create_symlink("behind", file("link"));
  const std::pair<const char*, int> rows[] = {{"~A.SMSPEC", 2},        {"~A.SMSPEC --replace", 2},
                                              {"~folder", 2},          {"~no/such/folder", 1},
                                              {"~other", 2},           {"~deck", 2},
                                              {"~hard --replace", 2},  // another name of a file that is read
                                              {"~other --replace", 0}, {"~deck --replace", 0},
                                              {"~table.csv", 0},       {"~link", 0},
                                              {"/dev/null", 0}};
  for (const auto& [target, status] : rows) {
    const std::string path = file(words(target)[0].substr(1));
    const std::string before = fs::is_regular_file(path) ? content(path) : "";
    EXPECT_EQ(run(std::string("vectors ~A -o ") + target).status, status) << target;
    EXPECT_TRUE(status == 0 || before.empty() || content(path) == before) << target;
  }
  EXPECT_EQ(content(file("table.csv")), run("vectors ~A").out);
  EXPECT_EQ(run("summary ~A --vectors NONE -o ~table.csv").status, 2);
  EXPECT_EQ(content(file("table.csv")), run("vectors ~A").out) << "replaced by nothing";
  EXPECT_TRUE(fs::is_symlink(file("link"))) << "a link stays one";
  EXPECT_THAT(content(file("behind")), ::testing::StartsWith("name "));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
