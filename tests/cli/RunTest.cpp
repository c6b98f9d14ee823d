#include <cstdlib>
#include <regex>

#include "CommandTest.h"
#include "Run.h"
#include "support/Paths.h"
#include "support/SummaryBuilder.h"

namespace lumbarn::cli::testing {
namespace {

struct Run : CommandTest {};

struct Refusal {
  const char *line, *message;
};
const Refusal refusals[] = {
    {"sumary X", ": unknown subcommand \"sumary\"; did you mean \"summary\"? (see \"lumbarn --help\")"},
    {"records --stat X", "\"--stat\"; did you mean \"--stats\"? (see \"lumbarn records --help\")"},
    {"summary --report-step=1 X", "option \"--report-step=1\"; did you mean \"--report-steps\"?"},
    {"records X Y", "unknown argument \"Y\""},
    {"vectors", "PATH is required (see \"lumbarn vectors --help\")"},
    {"info --format xml X", "--format is table, csv or json, not \"xml\""},
    {"info NO/SUCH", "NO/SUCH: "},
    {"records ~NOT.THERE", "NOT.THERE"},
    {"records @ARBOR", "name one of its files: "},
    {"summary --steps 5:3 @ARBOR", "--steps takes a range as 3:7, 3:, :7 or 3, not \"5:3\""},
    {"summary --vectors X* @ARBOR", "no vector matches \"X*\""},
    {"summary @expected", "/expected"},
    {"restart --step X", "--step needs a whole number, not \"X\" (see"},
    {"restart --step 99 @HOLLIN", "has no report step 99; it has 0:13"},
    {"restart --step 3 --grid FAULT @HOLLIN", "step 3 has no grid FAULT; it has ROOT"},
    {"restart --step 3 --array PRESURE @HOLLIN", "did you mean \"PRESSURE\"?"},
    {"restart --step 3 --array X @HOLLIN", "no array X; it has PRESSURE, SWAT, SOIL"},
    {"restart --step 3 --array ZWEL @HOLLIN", "holds no numbers but CHAR"},
    {"restart --step 3 --array ICON --ijk @HOLLIN", "it cannot be shown with --ijk"},
    {"restart --array PRESSURE @HOLLIN", "--array needs --step N"},
    {"wells --step 99 @HOLLIN", "has no report step 99; it has 0:13\n"},
    {"wells --grid RODT @HOLLIN", "step 13 has no grid \"RODT\"; did you mean \"ROOT\"?\n"},
    {"wells --grid LGR9 @HOLLIN", "step 13 has no grid \"LGR9\"; it has ROOT\n"},
    {"wells ~IN", "IN: has no restart files"},
    {"init --ijk @HOLLIN", "--ijk goes with --array"},
    {"init --flags --nnc @HOLLIN", "--flags goes without --nnc"},
    {"init --array DEPHT @HOLLIN", "has no array DEPHT; did you mean \"DEPTH\"?"},
    {"init --grid X @HOLLIN", "no grid \"X\"; it has ROOT"},
    {"tables --table PVTX @HOLLIN", "no table \"PVTX\"; it has SWFN"},
    {"tables --number 2 @HOLLIN", "--number goes with --table"},
    {"tables --number 2147483648 X", "--number needs a whole number"},
    {"tables --table density --number 2 @HOLLIN", "no table 2 of DENSITY; it has 1"},
    {"rft --test 99 @HOLLIN", "HOLLIN.RFT: has 5 tests, there is no test 99"},
    {"rft --test 1 --segments @measured/rft.txt", "test 1 has no segments"},
    {"rft --test 0 @HOLLIN", "needs a number from 1, not \"0\""},
    {"rft --plt --all @HOLLIN", "at a time"},
    {"rft --plt @ARBOR", "say which test with --test N"},
    {"grid --grid ROT @HOLLIN", "no grid \"ROT\"; did you mean \"ROOT\"?"},
    {"grid --array PORO @HOLLIN", "--array, --step and --z-up go with --vtk"},
    {"grid --vtk ~OUT --corners @HOLLIN", "--corners and --vtk cannot be given together"},
    {"grid --vtk ~OUT --array PRESURE @HOLLIN", "did you mean \"PRESSURE\"?"},
    {"grid --vtk ~OUT --array DOUBHEAD @HOLLIN", "no array \"DOUBHEAD\" with a value for each cell"},
    {"grid --vtk ~OUT --array PRESSURE --step 99 @HOLLIN", "no restart step 99 is there"},
    {"grid --vtk ~IN.EGRID ~IN.EGRID", "is an input, not replaced"},
    {"index @HOLLIN --into ~nowhere", "nowhere"},
};

TEST_F(Run, WrongUsageSaysWhatIsMeantAndWritesNothing) {
  copy("HOLLIN/HOLLIN.EGRID", "IN.EGRID");
  for (const auto& [line, message] : refusals) {
    const Outcome outcome = run(line);
    EXPECT_EQ(outcome.status, 2) << line;
    EXPECT_EQ(outcome.out, "") << line;
    EXPECT_THAT(outcome.err, HasSubstr(message));
    EXPECT_EQ(fileCount(), 1) << line;
  }
  EXPECT_THAT(command({}).err, HasSubstr("Subcommands:"));
  EXPECT_THAT(run("--version").out, ::testing::MatchesRegex("lumbarn [0-9.]+\n"));
}

TEST_F(Run, EveryOptionIsInTheManPageAndInTheCompletions) {
  std::string manual = content(examplePath("/../cli/man/lumbarn.1"));
  std::erase(manual, '\\');
  const std::string written[] = {manual, content(examplePath("/../cli/completions/lumbarn.bash")),
                                 content(examplePath("/../cli/completions/_lumbarn"))};
  const std::regex option("--[a-z-]+");
  for (const char* subcommand : {"info", "records", "check", "vectors", "summary", "restart", "wells", "grid",
                                 "rft", "index", "init", "tables"}) {
    const std::string help = command({subcommand, "--help"}).out;
    EXPECT_THAT(help, HasSubstr(std::string("Example:\n  lumbarn ") + subcommand));
    for (std::sregex_iterator found(help.begin(), help.end(), option), end; found != end; ++found) {
      for (const auto& text : written) EXPECT_THAT(text, HasSubstr(found->str())) << subcommand;
    }
  }
}

TEST_F(Run, SeveralRunsInAFolderAreListed) {
  for (const char* subcommand :
       {"info", "check", "vectors", "summary", "wells", "rft", "grid", "restart", "init", "tables"}) {
    const Outcome outcome = command({subcommand, sample("CEDAR")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "lumbarn: " + sample("CEDAR") +
                               " can mean several runs, name one: " + sample("CEDAR/CEDAR, ") +
                               sample("CEDAR/CEDAR_R1, ") + sample("CEDAR/CEDAR_R2") + "\n");
  }
}

/// The real program, by way of a shell.
TEST_F(Run, ExitStatusAndStreamsOfTheProgram) {
  copy("ARBOR/ARBOR.UNSMRY", "CUT.UNSMRY", 9000);
  copy("ARBOR/ARBOR.SMSPEC", "CUT.SMSPEC");
  const std::string program = "'" + commandPath() + "' ", cut = " '" + file("CUT") + "' ";
  const std::string arbor = " '" + sample("ARBOR") + "' ", messages = file("messages"), target = file("out");
  const std::string message = "lumbarn: " + file("CUT.UNSMRY") +
                              ": record is cut off (byte 8992: expected 24 bytes, found 8); kept 13 rows\n";
  struct Row {
    std::string line;
    int status;
    std::string message;
  };
  std::vector<Row> rows{
      {program + "info" + arbor + ">/dev/null", 0, ""},
      {program + "summary" + cut + ">/dev/null", 3, message},
      {program + "records '" + sample("ARBOR/ARBOR.DATA") + "'", 1, "is no record file"},
      {program + "check NOWHERE", 2, "NOWHERE"},
      {"ulimit -f 0; " + program + "summary -o '" + target + "'" + cut + "2>/dev/null", 1, ""},
  };
  if (std::filesystem::exists("/dev/full")) {
    rows.push_back({program + "vectors" + arbor + ">/dev/full", 1, "standard output cannot be written"});
    rows.push_back({program + "--help >/dev/full", 1, "lumbarn: standard output cannot be written"});
    rows.push_back({program + "vectors -o /dev/full" + arbor, 1,
                    "lumbarn: /dev/full: cannot be written: No space left on device\n"});
  }
  for (const Row& row : rows) {
    const bool quiet = row.line.ends_with("2>/dev/null");  // a message file cannot grow either
    const int status = std::system((row.line + (quiet ? "" : " 2>" + messages)).c_str());
    EXPECT_EQ(WEXITSTATUS(status), row.status) << row.line;
    if (!quiet) {
      EXPECT_THAT(content(messages), HasSubstr(row.message)) << row.line;
    }
    EXPECT_TRUE(row.status > 0 || content(messages).empty()) << "no progress bar without a terminal";
  }
  EXPECT_EQ(fileCount(), 3) << "a temporary file was left";
  const int closed = std::system((program + "summary -o '" + target + "'" + cut + "2>&-").c_str());
  EXPECT_EQ(WEXITSTATUS(closed), 3);
  EXPECT_THAT(content(target), ::testing::Not(HasSubstr("lumbarn:"))) << "a message in the output";
}

TEST_F(Run, StatusFollowsFromTheWorstDiagnosis) {
  test::SummaryBuilder builder;
  builder.vectors = {{"TIME", "", 0, "DAYS"}, {"FOPR", "", 0, "SM3/DAY"}};
  builder.rows = {{{1, 2}}, {{2, 3}}};
  for (const bool unified : {true, false}) builder.write(folder_, "BOTH", test::bigEndian, unified);
  const Outcome remark = run("summary ~BOTH");
  EXPECT_EQ(remark.status, 0);
  EXPECT_THAT(remark.err, HasSubstr("BOTH.UNSMRY: the run has a unified file and step files"));
  EXPECT_EQ(run("summary ~BOTH.UNSMRY").err, "");
  EXPECT_EQ(run("check ~BOTH").status, 0);
  store(file("BOTH.UNSMRY"), content(file("BOTH.UNSMRY")).substr(0, 60));
  EXPECT_EQ(run("check ~BOTH").status, 3);
  for (const char* name : {"BOTH.SMSPEC", "BOTH.UNSMRY", "BOTH.S0001", "BOTH.S0002"}) store(file(name), "");
  EXPECT_EQ(run("check ~BOTH").status, 1);

  for (const char* subcommand : {"summary", "vectors"}) {
    Session small;
    small.memoryLimit = 16;
    const Outcome outcome = command({subcommand, sample("ARBOR")}, small);
    EXPECT_TRUE(outcome.err.empty() || outcome.status != 0) << subcommand << ": an empty table with exit 0";
  }
}

}  // namespace
}  // namespace lumbarn::cli::testing
