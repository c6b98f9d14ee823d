#include <csignal>
#include <cstdlib>
#include <regex>
#include <set>

#include "CommandTest.h"
#include "Run.h"
#include "support/ModelRun.h"
#include "support/Paths.h"
#include "support/SummaryBuilder.h"

namespace lumbarn::cli::testing {
namespace {

using Names = std::vector<std::string>;

struct Run : CommandTest {};

struct Refusal {
  const char *line, *message;
};
const Refusal refusals[] = {
    {"sumary X", ": unknown subcommand \"sumary\"; did you mean \"summary\"? (see \"lumbarn --help\")"},
    {"records --stat X", "\"--stat\"; did you mean \"--stats\"? (see \"lumbarn records --help\")"},
    {"summary --report-step=1 X", "option \"--report-step=1\"; did you mean \"--report-steps\"?"},
    {"info --format xml X", "--format is table, csv, json, ndjson or arrow, not \"xml\""},
    {"records ~NOT.THERE", "NOT.THERE"},
    {"records @ARBOR", "name one of its files: "},
    {"info @CEDAR", "CEDAR: can mean several runs, name one: "},
    {"restart --step", "--step needs a value (see \"lumbarn restart --help\")"},
    {"summary ~IN", "IN: has no summary specification (SMSPEC)"},
    {"grid @measured/rft.txt", "rft: has no grid file (EGRID or GRID)"},
    {"index --into ~ @measured/rft.txt", "rft: has no restart files and no INIT file"},
    {"restart --ijk @HOLLIN", "--ijk goes with --array"},
    {"restart --step 3 --array IWEL,ICON @HOLLIN", "show them one by one"},
    {"rft --test 1 --branch 1 @measured/rft.txt", "test 1 has no branches"},
    {"init --nnc --array X --ijk @HOLLIN", "--ijk goes with arrays of cells, not with --nnc"},
    {"summary --steps 5:3 @ARBOR", "steps 5:3 end before they begin"},
    {"summary --vectors X* @ARBOR", "no vector matches \"X*\""},
    {"restart --step X", "--step needs a whole number, not \"X\" (see"},
    {"restart --step 99 @HOLLIN", "has none of the report steps asked for; it has 0:13"},
    {"restart --step 3 --grid FAULT @HOLLIN", "step 3 has no grid FAULT; it has ROOT"},
    {"restart --step 3 --array PRESURE @HOLLIN", "did you mean \"PRESSURE\"?"},
    {"restart --step 3 --array ZWEL @HOLLIN", "holds no numbers but CHAR"},
    {"restart --step 3 --array ICON --ijk @HOLLIN", "ICON has no values for cells"},
    {"restart --array PRESSURE --format grdecl @HOLLIN", "--format grdecl needs --step N"},
    {"restart --step 3 --steps 4 @HOLLIN", "--step goes without other choices of steps"},
    {"cells --array PRESSURE --cell 1,2 @HOLLIN", "a cell is given as 12,8,4"},
    {"cells --array PRESSURE --cell 17,1,1 @HOLLIN", "cell 17,1,1 is not in grid ROOT"},
    {"stats --array PRESSURE --by FIPNUN @HOLLIN", "has no array FIPNUN"},
    {"wells --grid RODT @HOLLIN", "has no grid \"RODT\"; did you mean \"ROOT\"?\n"},
    {"wells ~IN", "IN: has no restart file"},
    {"init --ijk @HOLLIN", "--ijk goes with --array"},
    {"init --flags --nnc @HOLLIN", "--flags goes without --nnc"},
    {"init --array DEPHT @HOLLIN", "has no array DEPHT; did you mean \"DEPTH\"?"},
    {"tables --table PVTX @HOLLIN", "no table \"PVTX\"; it has SWFN"},
    {"tables --number 2 @HOLLIN", "--number goes with --table"},
    {"tables --table density --number 2 @HOLLIN", "no table 2 of DENSITY; it has 1"},
    {"rft --test 99 @HOLLIN", "HOLLIN.RFT: has 5 tests, there is no test 99"},
    {"rft --test 1 --segments @measured/rft.txt", "test 1 has no segments"},
    {"rft --test 0 @HOLLIN", "needs a number from 1, not \"0\""},
    {"rft --plt --all @HOLLIN", "at a time"},
    {"grid --array PORO @HOLLIN", "--array and --step go with --vtk"},
    {"grid --vtk ~OUT --corners @HOLLIN", "--corners and --vtk cannot be given together"},
    {"grid --vtk ~OUT --array PRESURE @HOLLIN", "did you mean \"PRESSURE\"?"},
    {"grid --vtk ~OUT --array DOUBHEAD @HOLLIN", "no array \"DOUBHEAD\" with a value for each cell"},
    {"grid --vtk ~OUT --array PRESSURE --step 99 @HOLLIN",
     "has none of the report steps asked for; it has 0:13"},
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

TEST_F(Run, HelpAndManPageTellEveryOptionWithAnExample) {
  std::ostringstream page;
  std::ostringstream none;
  const std::atomic<bool> stop = false;
  EXPECT_EQ(cli::run(std::vector<std::string>{"__man"}, page, none, stop), 0);
  const std::string manual = std::regex_replace(page.str(), std::regex(R"(\\f[A-Z]|\\)"), "");
  std::istringstream top(command({"--help"}).out);
  std::size_t subcommands = 0;
  for (std::string line; std::getline(top, line);) {
    std::smatch name;
    if (!std::regex_match(line, name, std::regex("  ([a-z]+)  +.*"))) continue;
    ++subcommands;
    const std::string help = command({name[1], "--help"}).out;
    EXPECT_THAT(help, HasSubstr("  lumbarn " + name.str(1)));
    const auto from = manual.find(".SS lumbarn " + name.str(1) + "\n");
    ASSERT_NE(from, manual.npos) << line;
    const std::string section = manual.substr(from, manual.find("\n.S", from + 1) - from);
    static const std::regex option("--[a-z][a-z-]*");
    for (std::sregex_iterator each(help.begin(), help.end(), option), end; each != end; ++each) {
      if (each->str() == "--help") continue;
      EXPECT_THAT(section, HasSubstr(each->str())) << name.str(1);
    }
  }
  EXPECT_GE(subcommands, 12U);
}

/// What a shell shows when Tab is pressed behind a line.
std::vector<std::string> tab(const std::string& shell, const std::string& line) {
  const std::string scripts = examplePath("/../cli/completions/");
  const std::string bash =
      "source " + scripts +
      "lumbarn.bash; COMP_WORDBREAKS=':='; COMP_LINE=\"$1\"; COMP_POINT=${#1}; compopt() { :; }; "
      "COMP_WORDS=($1); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _lumbarn; "
      "printf '%s\\n' \"${COMPREPLY[@]}\"";
  const std::string zsh =
      "words=(${(s: :)1}); [[ $1 == *' ' ]] && words+=(''); CURRENT=$#words; "
      "_files() { print -- :files }; compadd() { shift 3; print -l -- \"$@\" }; source " +
      scripts + "_lumbarn";
  const test::TemporaryFolder folder;
  store(folder.file("script"), shell == "bash" ? bash : zsh);
  const std::string call = shell + (shell == "bash" ? " --norc " : " -f ") + folder.file("script") + " '" +
                           line + "' > " + folder.file("out") + " 2>&1";
  EXPECT_EQ(std::system(call.c_str()), 0) << content(folder.file("out"));
  std::istringstream out(content(folder.file("out")));
  std::vector<std::string> words;
  for (std::string word; std::getline(out, word);) words.push_back(word);
  return words;
}

TEST_F(Run, ShellsCompleteWhatTheRunHas) {
  const std::string name = commandPath();
  const std::string hollin = sample("HOLLIN");
  for (const std::string shell : {"bash", "zsh"}) {
    if (std::system(("command -v " + shell + " > /dev/null").c_str()) != 0) continue;
    SCOPED_TRACE(shell);
    EXPECT_THAT(tab(shell, name + " sum"), ElementsAre("summary"));
    EXPECT_THAT(tab(shell, name + " summary --rep"), ElementsAre("--report-steps", "--replace"));
    EXPECT_THAT(tab(shell, name + " summary " + hollin + " --vectors FOPR,wbhp:p"),
                shell == "bash" ? ElementsAre("P1", "P2") : ElementsAre("FOPR,WBHP:P1", "FOPR,WBHP:P2"));
    EXPECT_THAT(tab(shell, name + " restart " + hollin + " --array PR"), ElementsAre("PRESSURE"));
    EXPECT_THAT(tab(shell, name + " wells " + hollin + " --well P"), ElementsAre("P1", "P2"));
    EXPECT_THAT(tab(shell, name + " summary " + hollin + " --steps 1"),
                ElementsAre("1", "10", "11", "12", "13"));
    EXPECT_THAT(tab(shell, name + " rft --format "), ::testing::Contains("csv"));
  }
}

/// Every writer's run and each of its files, in the words of the model.
TEST_F(Run, InfoHasTheFactsOfEveryWriter) {
  for (const auto& writer : test::everyWriter) {
    SCOPED_TRACE(writer.name);
    const test::ModelRun model(writer, test::bigEndian);
    const auto steps = model.model.restartSteps();
    const auto about = [&](const std::string& path) {
      return nlohmann::json::parse(command({"info", "--format", "json", path}).out);
    };
    const auto all = about(model.root());
    EXPECT_EQ(all["summary"]["vectors"], model.model.vectors().size());
    EXPECT_EQ(all["restart"]["steps"], steps.size());
    EXPECT_EQ(all["restart"]["last_step"], steps.back());
    for (const char* part : {"restart", "init", "grid"}) {
      EXPECT_EQ(all[part]["grid"], (nlohmann::json{3, 2, 4})) << part;
      EXPECT_EQ(all[part].value("local_grids", Names()), Names(writer.localGrid, "LGR1")) << part;
    }
    EXPECT_EQ(all["init"]["active_cells"], model.model.activeCells().size());
    EXPECT_EQ(all["grid"]["active_cells"], model.model.activeInGrid());
    if (model.indexPath.empty()) continue;
    const auto index = about(model.indexPath)["restart_index"];
    EXPECT_EQ(index["agrees_with_files"], "yes");
    EXPECT_EQ(index["first_step"], steps.front());
    EXPECT_EQ(index["grid"], all["restart"]["grid"]);
  }
}

TEST_F(Run, InfoReportsTheByteAtWhichAFileIsNotWhatItsNameSays) {
  std::vector<std::byte> bytes;
  RecordWriter(memorySink(bytes), test::bigEndian).integers("FOREIGN", std::array{1});
  for (const std::string name : {"A.SMSPEC", "A.RSSPEC", "A.INSPEC", "A.SAVE"}) {
    write(name, bytes);
    const Outcome outcome = run("info ~" + name);
    EXPECT_NE(outcome.status, 0) << name;
    EXPECT_THAT(outcome.err, ::testing::ContainsRegex(name + ": .*FOREIGN, occurrence 1, byte 0"));
  }
}

/// The real program, by way of a shell.
TEST_F(Run, ExitStatusAndStreamsOfTheProgram) {
  copy("ARBOR/ARBOR.UNSMRY", "CUT.UNSMRY", 9000);
  copy("ARBOR/ARBOR.SMSPEC", "CUT.SMSPEC");
  const std::string program = "'" + commandPath() + "' ", cut = " '" + file("CUT") + "' ";
  const std::string arbor = " '" + sample("ARBOR") + "' ", messages = file("messages"), target = file("out");
  const std::string message = "lumbarn: " + file("CUT.UNSMRY") +
                              ": record truncated (byte 8992: expected 24 bytes, found 8); kept 13 rows\n";
  std::vector<std::tuple<std::string, int, std::string>> rows{
      {program + "info" + arbor + ">/dev/null", 0, ""},
      {program + "vectors" + arbor + "<&- >&-", 1, "standard output cannot be written"},
      {program + "summary" + cut + ">/dev/null", 3, message},
      {program + "records '" + sample("ARBOR/ARBOR.DATA") + "'", 1, "not a record file (byte 0: "},
      {program + "check NOWHERE", 2, "NOWHERE"},
      {"ulimit -f 0; " + program + "summary -o '" + target + "'" + cut + "2>/dev/null", 1, ""},
  };
  if (std::filesystem::exists("/dev/full")) {
    rows.emplace_back(program + "vectors" + arbor + ">/dev/full", 1, "standard output cannot be written");
    rows.emplace_back(program + "--help >/dev/full", 1, "lumbarn: standard output cannot be written");
    rows.emplace_back(program + "vectors -o /dev/full" + arbor, 1,
                      "lumbarn: /dev/full: cannot be written: No space left on device\n");
  }
  for (const auto& [line, status, expected] : rows) {
    const bool quiet = line.ends_with("2>/dev/null");  // a message file cannot grow either
    EXPECT_EQ(WEXITSTATUS(std::system((line + (quiet ? "" : " 2>" + messages)).c_str())), status) << line;
    EXPECT_TRUE(quiet || content(messages).find(expected) != expected.npos) << line << content(messages);
    EXPECT_TRUE(status > 0 || content(messages).empty()) << "no progress bar without a terminal";
  }
  EXPECT_EQ(fileCount(), 3) << "a temporary file was left";
  const int closed = std::system((program + "summary -o '" + target + "'" + cut + "2>&-").c_str());
  EXPECT_EQ(WEXITSTATUS(closed), 3);
  EXPECT_THAT(content(target), ::testing::Not(HasSubstr("lumbarn:"))) << "a message in the output";
}

TEST_F(Run, EndsByTheSignalWithoutATemporaryFile) {
  // One block of two gigabytes, nearly all of it a hole: reading it takes much longer than sending a signal.
  constexpr std::int32_t elements = 500000000;
  std::vector<std::byte> bytes;
  RecordWriter(memorySink(bytes), test::bigEndian).header("LARGE", elements, "REAL");
  const auto mark = test::bytesOf("\x77\x35\x94");  // and a zero: 4 * elements
  bytes.insert(bytes.end(), mark.begin(), mark.end());
  write("BIG", bytes);
  std::filesystem::resize_file(file("BIG"), bytes.size() + 1 + 4LL * elements);
  std::ofstream(file("BIG"), std::ios::app) << "\x77\x35\x94" << '\0';
  std::signal(SIGHUP, SIG_DFL);  // the tests may have been started to ignore it
  const std::string script =
      "cd '" + file("") + "'; '" + commandPath() + "' records --stats -o out BIG 2>messages & id=$!; cd '" +
      file("") + "'; while [ $(ls -A | wc -l) -lt 3 ] && kill -0 $id; do :; done; kill -HUP $id; wait $id";
  EXPECT_EQ(WEXITSTATUS(std::system(script.c_str())), 128 + SIGHUP);
  EXPECT_EQ(content(file("messages")), "lumbarn: cancelled\n");
  EXPECT_EQ(fileCount(), 2) << "a temporary file was left";
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
}

}  // namespace
}  // namespace lumbarn::cli::testing
