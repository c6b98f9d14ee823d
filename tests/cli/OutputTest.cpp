#include "CommandTest.h"
#include "Output.h"
#include "ProgressBar.h"
#include "TableWriter.h"

namespace lumbarn::cli::testing {
namespace {

namespace fs = std::filesystem;

struct Output : CommandTest {};

TEST_F(Output, AFileAppearsWholeOrNotAtAll) {
  Session cancelled;
  cancelled.CancelLoad = true;
  const Outcome stopped = run("summary -o ~out @ARBOR", cancelled);
  EXPECT_EQ(stopped.status, 130);
  EXPECT_EQ(stopped.err, "lumbarn: cancelled\n");
  EXPECT_EQ(run("summary -o ~out --vectors NONE @ARBOR").status, 2);
  EXPECT_EQ(fileCount(), 0) << "nothing may stay behind";

  store(file("out"), "old");
  EXPECT_EQ(run("summary -o ~out --vectors NONE @ARBOR").status, 2);
  EXPECT_EQ(content(file("out")), "old");
  const Outcome written = run("summary -o ~out @ARBOR");
  EXPECT_EQ(written.status, 0);
  EXPECT_EQ(written.out + written.err, "");
  EXPECT_EQ(content(file("out")), run("summary @ARBOR").out);
  EXPECT_EQ(fileCount(), 1);
}

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
  EXPECT_TRUE(fs::is_symlink(file("link"))) << "a link stays one";
  EXPECT_THAT(content(file("behind")), ::testing::StartsWith("name "));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

std::string tableOf(Format format) {
  std::ostringstream out;
  const auto table = TableWriter::make(format, {{"name"}, {"value", true, 5, "BARSA"}, {"note, \"x\""}}, out);
  const char* const texts[] = {"a,b", "say \"hi\"", "line\r\nend", "\xC3\xA9t\xC3\xA9", "bad \xFF", ""};
  float value = 0.1F;
  for (const char* text : texts) {
    table->text(text);
    table->number(value);
    table->text("-");
    value *= -1000;
  }
  table->finish();
  return out.str();
}

TEST(TableWriter, QuotesWhatEachFormatNeeds) {
  EXPECT_EQ(tableOf(Format::Csv),
            "name,value,\"note, \"\"x\"\"\"\r\n"
            "\"a,b\",0.1,-\r\n"
            "\"say \"\"hi\"\"\",-100,-\r\n"
            "\"line\r\nend\",1e+05,-\r\n"
            "\xC3\xA9t\xC3\xA9,-1e+08,-\r\n"
            "bad \xC3\xBF,1e+11,-\r\n"
            ",-1e+14,-\r\n");
  const auto json = nlohmann::json::parse(tableOf(Format::Json));
  EXPECT_EQ(json[2], (nlohmann::json{{"name", "line\r\nend"}, {"value", 1e5}, {"note, \"x\"", "-"}}));
  EXPECT_EQ(json[4]["name"], "bad \xC3\xBF");
  EXPECT_EQ(tableOf(Format::Table),
            "name  value  note, \"x\"\n"
            "      BARSA\n"
            "a,b     0.1  -\n"
            "say \"hi\"   -100  -\n"
            "line??end  100000  -\n"
            "\xC3\xA9t\xC3\xA9   -100000000  -\n"
            "bad \xC3\xBF  1e+11  -\n"
            "      -1e+14  -\n");
}

TEST(ProgressBar, AppearsAfterASecondAndGoesAwayForMessages) {
  Session session;
  auto now = Session::Clock::time_point{};
  session.now = [&now] { return now; };
  std::ostringstream err;
  ProgressBar bar(err, session, true);
  bar.files(2);
  bar.fraction(0.1);
  now += std::chrono::milliseconds(999);
  bar.fraction(0.4);
  EXPECT_EQ(err.str(), "");
  now += std::chrono::milliseconds(1);
  bar.fraction(0.5);
  EXPECT_EQ(err.str(), "\r[##########                              ]  25 %");
  err.str("");
  bar.fraction(0.6);
  EXPECT_EQ(err.str(), "") << "drawn too often";
  now += std::chrono::seconds(1);
  bar.fileDone();
  EXPECT_THAT(err.str(), HasSubstr(" 50 %"));
  err.str("");
  bar.hide();
  bar.hide();
  EXPECT_EQ(err.str(), "\r\033[K");
}

}  // namespace
}  // namespace lumbarn::cli::testing
