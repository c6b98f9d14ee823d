#include <cstdlib>
#include <filesystem>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CommandRun.h"
#include "Run.h"
#include "support/Paths.h"
#include "support/SummaryBuilder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(Run, WrongUsageSaysWhatIsMeant) {
  const struct {
    std::vector<std::string> args;
    std::string message;
  } rows[] = {
      {{"sumary", "X"}, "unknown subcommand \"sumary\"; did you mean \"summary\"? (see \"lumbarn --help\")"},
      {{"qqqqq"}, "unknown subcommand \"qqqqq\" (see"},
      {{"records", "--stat", "X"},
       "unknown option \"--stat\"; did you mean \"--stats\"? (see \"lumbarn records --help\")"},
      {{"summary", "--report-step=1", "X"},
       "unknown option \"--report-step=1\"; did you mean \"--report-steps\"?"},
      {{"records", "X", "Y"}, "unknown argument \"Y\""},
      {{"vectors"}, "PATH is required (see \"lumbarn vectors --help\")"},
      {{"info", "--format", "xml", "X"}, "--format is table, csv or json, not \"xml\""},
      {{"restart", "--step", "X"}, "--step needs a whole number, not \"X\" (see"},
      {{"restart", "--step", "3", "--grid", "FAULT", sample("HOLLIN")},
       "step 3 has no grid FAULT; it has ROOT"},
      {{"tables", "--number", "2147483648", "X"}, "--number needs a whole number"},
      {{"info", "NO/SUCH"}, "NO/SUCH: "},
      {{"summary", "--steps", "5:3", sample("ARBOR")},
       "--steps takes a range as 3:7, 3:, :7 or 3, not \"5:3\""},
      {{"summary", "--steps", "2-3", sample("ARBOR")}, "--steps takes"},
      {{"summary", sample("expected")}, sample("expected")},
  };
  for (const auto& row : rows) {
    const Outcome run = command(row.args);
    EXPECT_EQ(run.status, 2) << row.message;
    EXPECT_EQ(run.out, "") << row.message;
    EXPECT_THAT(run.err, StartsWith("lumbarn: " + row.message));
  }
  EXPECT_THAT(command({}).err, HasSubstr("Subcommands:"));
}

constexpr const char* subcommands[] = {"info",  "records", "check", "vectors", "summary", "restart",
                                       "wells", "grid",    "rft",   "index",   "init",    "tables"};

TEST(Run, HelpGoesToStandardOutputWithAnExample) {
  EXPECT_THAT(command({"--version"}).out, ::testing::MatchesRegex("lumbarn [0-9.]+\n"));
  for (const char* subcommand : subcommands) {
    const Outcome help = command({subcommand, "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, HasSubstr(std::string("Example:\n  lumbarn ") + subcommand));
  }
}

/// Every option of every subcommand is in the man page and in the completions of both shells.
TEST(Run, WhatIsWrittenAboutTheOptionsIsWhole) {
  std::string manual = content(examplePath("/../cli/man/lumbarn.1"));
  std::erase(manual, '\\');
  const std::string written[] = {manual, content(examplePath("/../cli/completions/lumbarn.bash")),
                                 content(examplePath("/../cli/completions/_lumbarn"))};
  const std::regex option("--[a-z-]+");
  for (const char* subcommand : subcommands) {
    const std::string help = command({subcommand, "--help"}).out;
    for (std::sregex_iterator found(help.begin(), help.end(), option), end; found != end; ++found) {
      for (const auto& text : written) EXPECT_THAT(text, HasSubstr(found->str())) << subcommand;
    }
  }
}

TEST(Run, SeveralRunsInAFolderAreListed) {
  for (const char* subcommand :
       {"info", "check", "vectors", "summary", "wells", "rft", "grid", "restart", "init", "tables"}) {
    const Outcome run = command({subcommand, sample("CEDAR")});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "lumbarn: " + sample("CEDAR") +
                           " can mean several runs, name one: " + sample("CEDAR/CEDAR, ") +
                           sample("CEDAR/CEDAR_R1, ") + sample("CEDAR/CEDAR_R2") + "\n");
  }
  EXPECT_THAT(command({"records", sample("ARBOR")}).err,
              HasSubstr("name one of its files: " + sample("ARBOR/ARBOR.DATA, ")));
}

TEST(Run, AnyMemberRootOrFolderMeansTheRun) {
  const auto expected = command({"vectors", sample("ARBOR/ARBOR.SMSPEC")}).out;
  for (const char* path : {"ARBOR", "ARBOR/", "ARBOR/ARBOR", "ARBOR/ARBOR.DATA", "ARBOR/ARBOR.UNRST"}) {
    EXPECT_EQ(command({"vectors", sample(path)}).out, expected) << path;
  }
}

/// Exit status of the real program; standard error goes to a file.
int statusOf(const std::string& arguments, const std::string& messages) {
  const std::string line = "\"" + commandPath() + "\" " + arguments + " 2>" + messages;
  const int status = std::system(line.c_str());
  return WEXITSTATUS(status);
}

TEST(Program, ExitStatus) {
  const test::TemporaryFolder folder;
  const std::string messages = folder.file("messages");
  const std::string bytes = content(sample("ARBOR/ARBOR.UNSMRY"));
  store(folder.file("CUT.UNSMRY"), bytes.substr(0, 9000));
  store(folder.file("CUT.SMSPEC"), content(sample("ARBOR/ARBOR.SMSPEC")));
  const auto quoted = [](const std::string& path) { return " '" + path + "' "; };

  EXPECT_EQ(statusOf("info" + quoted(sample("ARBOR")) + ">/dev/null", messages), 0);
  EXPECT_EQ(content(messages), "") << "no progress bar without a terminal";
  EXPECT_EQ(statusOf("summary" + quoted(folder.file("CUT")) + ">/dev/null", messages), 3);
  EXPECT_EQ(content(messages),
            "lumbarn: " + folder.file("CUT.UNSMRY") +
                ": record is cut off (byte 8992: expected 24 bytes, found 8); kept 13 rows\n");
  EXPECT_EQ(statusOf("records" + quoted(sample("ARBOR/ARBOR.DATA")) + ">/dev/null", messages), 1);
  EXPECT_EQ(statusOf("check NOWHERE >/dev/null", messages), 2);
  if (std::filesystem::exists("/dev/full")) {
    EXPECT_EQ(statusOf("vectors" + quoted(sample("ARBOR")) + ">/dev/full", messages), 1);
    EXPECT_EQ(statusOf("--help >/dev/full", messages), 1);
    EXPECT_THAT(content(messages), HasSubstr("lumbarn: standard output cannot be written"));
    EXPECT_EQ(statusOf("vectors -o /dev/full" + quoted(sample("ARBOR")), messages), 1);
    EXPECT_EQ(content(messages), "lumbarn: /dev/full: cannot be written: No space left on device\n");
  }
}

TEST(Program, MessagesAndFilesWithClosedStreamsAndLimits) {
  const test::TemporaryFolder folder;
  store(folder.file("CUT.UNSMRY"), content(sample("ARBOR/ARBOR.UNSMRY")).substr(0, 9000));
  store(folder.file("CUT.SMSPEC"), content(sample("ARBOR/ARBOR.SMSPEC")));
  const std::string target = folder.file("out.csv");
  const auto shell = [&](const std::string& before, const std::string& behind) {
    const std::string line = before + "'" + commandPath() + "' summary --format csv -o '" + target + "' '" +
                             folder.file("CUT") + "' " + behind;
    return WEXITSTATUS(std::system(line.c_str()));
  };
  EXPECT_EQ(shell("", "2>&-"), 3);
  EXPECT_EQ(content(target).find("lumbarn:"), std::string::npos) << "a message in the output";
  std::filesystem::remove(target);
  EXPECT_EQ(shell("ulimit -f 0; ", "2>/dev/null"), 1)
      << "the signal of the size limit must not end the process";
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.file("")), {}), 2)
      << "a temporary file was left";
}

TEST(Run, StatusFollowsFromTheWorstDiagnosis) {
  const test::TemporaryFolder folder;
  test::SummaryBuilder run;
  run.vectors = {{"TIME", "", 0, "DAYS"}, {"FOPR", "", 0, "SM3/DAY"}};
  run.rows = {{{1, 2}}, {{2, 3}}};
  run.write(folder, "BOTH", test::bigEndian, true);
  run.write(folder, "BOTH", test::bigEndian, false);
  const Outcome remark = command({"summary", folder.file("BOTH")});
  EXPECT_EQ(remark.status, 0);
  EXPECT_THAT(remark.err, HasSubstr("BOTH.UNSMRY: the run has a unified file and step files"));
  EXPECT_EQ(command({"summary", folder.file("BOTH.UNSMRY")}).err, "");
  EXPECT_EQ(command({"summary", "--vectors", "FOPR,NONE", folder.file("BOTH.UNSMRY")}).status, 0);
  EXPECT_EQ(command({"check", folder.file("BOTH")}).status, 0);
  store(folder.file("BOTH.UNSMRY"), content(folder.file("BOTH.UNSMRY")).substr(0, 60));
  EXPECT_EQ(command({"check", folder.file("BOTH")}).status, 3);
  for (const char* name : {"BOTH.SMSPEC", "BOTH.UNSMRY", "BOTH.S0001", "BOTH.S0002"})
    store(folder.file(name), "");
  EXPECT_EQ(command({"check", folder.file("BOTH")}).status, 1);

  for (const char* subcommand : {"summary", "vectors"}) {
    Session small;
    small.memoryLimit = 16;
    const Outcome outcome = command({subcommand, sample("ARBOR")}, small);
    EXPECT_TRUE(outcome.err.empty() || outcome.status != 0) << subcommand << ": an empty table with exit 0";
  }
}

}  // namespace
}  // namespace lumbarn::cli::testing
