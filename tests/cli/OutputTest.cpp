#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CommandRun.h"
#include "Output.h"
#include "ProgressBar.h"
#include "TableWriter.h"
#include "support/SummaryBuilder.h"

namespace lumbarn::cli::testing {
namespace {

namespace fs = std::filesystem;

std::size_t filesIn(const std::string& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
}

TEST(Output, AFileAppearsWholeOrNotAtAll) {
  const test::TemporaryFolder folder;
  const std::string target = folder.file("out.csv");
  const std::vector<std::string> summary{"summary", "--format", "csv", "-o", target};
  const auto with = [&](std::initializer_list<std::string> more) {
    auto args = summary;
    args.insert(args.end(), more);
    return args;
  };
  Session cancelled;
  cancelled.CancelLoad = true;
  const Outcome stopped = command(with({sample("ARBOR")}), cancelled);
  EXPECT_EQ(stopped.status, 130);
  EXPECT_EQ(stopped.err, "lumbarn: cancelled\n");
  EXPECT_EQ(command(with({"--vectors", "NONE", sample("ARBOR")})).status, 2);
  EXPECT_EQ(filesIn(folder.file("")), 0) << "nothing may stay behind";

  store(target, "old");
  EXPECT_EQ(command(with({"--vectors", "NONE", sample("ARBOR")})).status, 2);
  EXPECT_EQ(content(target), "old");
  const Outcome written = command(with({sample("ARBOR")}));
  EXPECT_EQ(written.status, 0);
  EXPECT_EQ(written.out + written.err, "");
  EXPECT_EQ(content(target), command({"summary", "--format", "csv", sample("ARBOR")}).out);
  EXPECT_EQ(filesIn(folder.file("")), 1);
}

TEST(Output, PlacesThatCannotBeReplaced) {
  const test::TemporaryFolder folder;
  const std::string bytes = content(sample("ARBOR/ARBOR.SMSPEC"));
  store(folder.file("A.SMSPEC"), bytes);
  EXPECT_EQ(command({"vectors", "-o", folder.file("A.SMSPEC"), folder.file("A")}).status, 2);
  EXPECT_EQ(content(folder.file("A.SMSPEC")), bytes) << "an input must not be lost";
  EXPECT_EQ(command({"vectors", "-o", folder.file(""), folder.file("A")}).status, 2);
  EXPECT_EQ(command({"vectors", "-o", folder.file("no/such/folder"), folder.file("A")}).status, 1);

  store(folder.file("behind"), "old");
  fs::create_symlink("behind", folder.file("link"));
  EXPECT_EQ(command({"vectors", "-o", folder.file("link"), folder.file("A")}).status, 0);
  EXPECT_TRUE(fs::is_symlink(folder.file("link"))) << "a link stays one";
  EXPECT_THAT(content(folder.file("behind")), ::testing::StartsWith("name "));
  if (fs::is_character_file("/dev/null")) {
    EXPECT_EQ(command({"vectors", "-o", "/dev/null", folder.file("A")}).status, 0);
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
  }
}

TEST(Output, SimulatorFilesAndDecksAreReplacedOnRequestOnly) {
  const test::TemporaryFolder folder;
  for (const char* name : {"SMSPEC", "UNSMRY"})
    store(folder.file(std::string("A.") + name), content(sample(std::string("ARBOR/ARBOR.") + name)));
  const std::string other = content(sample("ARBOR/ARBOR.UNRST"));
  const std::string deck = "RUNSPEC\nDIMENS\n 1 1 1 /\n";
  store(folder.file("other"), other);
  store(folder.file("deck"), deck);
  store(folder.file("table.csv"), "a,b\r\n1,2\r\n");
  fs::create_hard_link(folder.file("A.UNSMRY"), folder.file("link"));
  const auto write = [&](const char* name, bool replace) {
    std::vector<std::string> args{"vectors", "-o", folder.file(name), folder.file("A")};
    if (replace) args.emplace_back("--replace");
    return command(args).status;
  };
  for (const auto& [name, bytes] : {std::pair("other", other), std::pair("deck", deck)}) {
    EXPECT_EQ(write(name, false), 2) << name;
    EXPECT_EQ(content(folder.file(name)), bytes);
    EXPECT_EQ(write(name, true), 0) << name;
  }
  EXPECT_EQ(write("table.csv", false), 0);
  EXPECT_EQ(write("link", true), 2) << "another name of a file that is read";
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
  EXPECT_THAT(err.str(), ::testing::HasSubstr(" 50 %"));
  err.str("");
  bar.hide();
  bar.hide();
  EXPECT_EQ(err.str(), "\r\033[K");
}

}  // namespace
}  // namespace lumbarn::cli::testing
