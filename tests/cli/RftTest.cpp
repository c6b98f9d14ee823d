#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CommandRun.h"
#include "support/WellTestBuilder.h"

namespace lumbarn::cli::testing {
namespace {

using test::TemporaryFolder;
using test::WellTestBuilder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class RftTables : public ::testing::Test {
 protected:
  RftTables() {
    using Singles = WellTestBuilder::Singles;
    using Integers = WellTestBuilder::Integers;
    WellTestBuilder file;
    file.tests = {{.well = " H-1",
                   .arrays = {{"CONIPOS", Integers{4, 5, 6}},
                              {"CONJPOS", Integers{7, 7, 7}},
                              {"CONKPOS", Integers{1, 2, 3}},
                              {"CONBRNO", Integers{1, 2, 2}},
                              {"CONLENST", Singles{0, 10, 20}},
                              {"CONLENEN", Singles{10, 20, 30}},
                              {"CONPRES", Singles{100, 101.5F, 102}},
                              {"SEGBRNO", Integers{1, 1, 2}},
                              {"SEGLENST", Singles{0, 10, 20}},
                              {"SEGLENEN", Singles{10, 20, 20.1F}},
                              {"SEGNXT", Integers{0, 1, 2}},
                              {"BRNST", Integers{1, 3}},
                              {"BRNEN", Integers{2, 3}}},
                   .time = 10.25F}};
    path_ = file.write(folder_, test::bigEndian);
  }
  std::vector<std::vector<std::string>> table(std::vector<std::string> args) {
    args.insert(args.begin(), {"rft", "--format", "csv"});
    args.push_back(path_);
    const Outcome run = command(args);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 0);
    return parseCsv(run.out);
  }

  TemporaryFolder folder_;
  std::string path_;
};

TEST_F(RftTables, AreThoseOfTheReader) {
  EXPECT_THAT(table({}).at(1),
              ElementsAre("1", "H-1", "2015-01-11T06:00:00", "1", "", "RFT PLT SEG", "3", "1", "1", "1"));
  const auto plt = table({"--plt"});
  // The cells of connections stand in both tables that are put together here.
  EXPECT_THAT(plt.at(0), ElementsAre("CONMD", "CONLENST", "CONLENEN", "CONLENTH", "CONBRNO", "CONPRES",
                                     "CONIPOS", "CONJPOS", "CONKPOS", "CONIPOS#2", "CONJPOS#2", "CONKPOS#2"));
  EXPECT_THAT(plt.at(2), ElementsAre("15", "10", "20", "10", "2", "101.5", "5", "7", "2", "5", "7", "2"));
  EXPECT_EQ(table({"--plt", "--branch", "1"}).size(), 2);
  EXPECT_EQ(table({"--branch", "1"}).size(), 3);
  EXPECT_EQ(table({"--icd", "1"}).at(1).at(1), "");
  EXPECT_THAT(table({"--segments"}).at(3), ElementsAre("3", "2", "20", "20.1", "2"));
  const auto all = table({"--all"});
  EXPECT_EQ(all.size(), 1 + 7 * 3 + 4 * 3 + 2 * 2);
  EXPECT_THAT(command({"info", "--format", "json", path_}).out, HasSubstr("\"H-1\""));
  EXPECT_THAT(all.at(21), ElementsAre("1", "H-1", "connections", "CONPRES", "BARSA", "3", "102"));
}

TEST_F(RftTables, ThatAreNotThereAreTold) {
  const std::pair<std::vector<std::string>, const char*> rows[] = {
      {{"--test", "2"}, "RUN.RFT: has 1 test, there is no test 2"},
      {{"--branch", "2"}, "test 1 has 1 branch, there is no number 2"},
      {{"--plt", "--branch", "2"}, "test 1 has 1 PLT branch, there is no number 2"},
      {{"--test", "0"}, "needs a number from 1, not \"0\""},
      {{"--plt", "--all"}, "at a time"},
  };
  for (const auto& [args, message] : rows) {
    std::vector<std::string> all{"rft"};
    all.insert(all.end(), args.begin(), args.end());
    all.push_back(path_);
    const Outcome run = command(all);
    EXPECT_EQ(run.status, 2) << message;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(message));
  }
  EXPECT_THAT(command({"rft", "--plt", sample("ARBOR")}).err, HasSubstr("say which test with --test N"));
  EXPECT_THAT(command({"rft", sample("measured/rft.txt"), "--segments", "--test", "1"}).err,
              HasSubstr("test 1 has no segments"));
  store(folder_.file("notes.txt"), "hello\n");
  EXPECT_THAT(command({"rft", folder_.file("notes.txt")}).err, HasSubstr("no text that RFT or PLT opens"));
}

TEST_F(RftTables, OfADamagedFileComeWithOneMessage) {
  const std::string whole = content(path_);
  store(path_, whole.substr(0, whole.size() - 30));
  const Outcome run = command({"rft", path_});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.out, HasSubstr("H-1"));
  EXPECT_THAT(run.err, HasSubstr("record is cut off"));
  EXPECT_EQ(std::ranges::count(run.err, '\n'), 1);
}

TEST_F(RftTables, OfADamagedTextComeWithWhatIsWrong) {
  const std::string path = folder_.file("M.RFT");
  store(path, "RFT\nWELLNAME P1\nDEPTH PRESSURE\n1 2\n3\n4 5\n");
  const Outcome table = command({"rft", "--test", "1", "--format", "csv", folder_.file("M")});
  EXPECT_EQ(table.status, 3);
  EXPECT_EQ(table.out, "DEPTH,PRESSURE\r\n1,2\r\n3,0\r\n");
  EXPECT_THAT(table.err, HasSubstr("line 5: row has too few numbers (byte 35: expected 2 numbers, found 1)"));
  EXPECT_EQ(command({"info", folder_.file("M")}).status, 3);
  const Outcome check = command({"check", path});
  EXPECT_EQ(check.status, 3);
  EXPECT_THAT(check.out, HasSubstr("M.RFT: 1 test, 1 finding"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
