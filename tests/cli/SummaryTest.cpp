#include <bit>
#include <cstdlib>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CommandRun.h"
#include "support/SummaryBuilder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

using Rows = std::vector<std::vector<std::string>>;

std::uint32_t bitsOf(const std::string& number) {
  return std::bit_cast<std::uint32_t>(std::strtof(number.c_str(), nullptr));
}

/// Columns by name, as the bits of their values.
std::map<std::string, std::vector<std::uint32_t>> columnsOf(const std::string& csv) {
  const Rows rows = parseCsv(csv);
  std::map<std::string, std::vector<std::uint32_t>> columns;
  for (std::size_t i = 0; i < rows[0].size(); ++i) {
    auto& column = columns[rows[0][i]];
    for (std::size_t row = 1; row < rows.size(); ++row) column.push_back(bitsOf(rows[row].at(i)));
  }
  return columns;
}

TEST(Summary, SamplesAreRightToTheLastBit) {
  const struct {
    const char* expected;
    std::vector<std::string> args;
  } runs[] = {{"ARBOR.summary.csv", {sample("ARBOR")}},
              {"HOLLIN.summary.csv", {sample("HOLLIN")}},
              {"CEDAR_R2.chain.csv", {"--restart", sample("CEDAR/CEDAR_R2")}}};
  for (const auto& run : runs) {
    std::vector<std::string> args{"summary", "--format", "csv"};
    args.insert(args.end(), run.args.begin(), run.args.end());
    const Outcome outcome = command(args);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(columnsOf(outcome.out), columnsOf(content(sample(std::string("expected/") + run.expected))));
  }
}

/// The same run in each form; formatted files hold eight digits.
TEST(Summary, FormsAndLayoutsAgree) {
  const auto show = [](const char* run) {
    return parseCsv(command({"summary", "--format", "csv", sample(run)}).out);
  };
  const Rows unformatted = show("ARBORM");
  const Rows formatted = show("ARBORFM");
  EXPECT_EQ(show("ARBORF"), formatted);
  ASSERT_EQ(formatted.size(), unformatted.size());
  EXPECT_EQ(formatted[0], unformatted[0]);
}

TEST(Summary, StepsAndRows) {
  const auto times = [](std::vector<std::string> options) {
    std::vector<std::string> args{"summary", "--format", "csv", "--vectors", "TIME"};
    args.insert(args.end(), options.begin(), options.end());
    const Outcome run = command(args);
    EXPECT_EQ(run.status, 0);
    std::vector<std::string> found;
    for (const auto& row : parseCsv(run.out)) found.push_back(row.at(0));
    return found;
  };
  for (const char* run : {"ARBORM", "ARBORF"}) {
    const std::string path = sample(run);
    EXPECT_THAT(times({"--steps", "2:3", path}), ElementsAre("TIME", "46.25", "61.5", "92")) << run;
    EXPECT_THAT(times({"--steps", "3", path}), ElementsAre("TIME", "92")) << run;
    EXPECT_THAT(times({"--steps", "5:", path}), ElementsAre("TIME", "425")) << run;
    EXPECT_THAT(times({"--steps", ":2", "--report-steps", path}), ElementsAre("TIME", "31", "61.5")) << run;
    EXPECT_THAT(times({"--steps", "9:", path}), ElementsAre("TIME")) << run;
  }
  EXPECT_THAT(times({"--report-steps", "--restart", sample("CEDAR/CEDAR_R2")}),
              ::testing::SizeIs(1 + 6 + 4 + 6));
}

TEST(Summary, ColumnsByPattern) {
  const auto header = [](std::vector<std::string> options) {
    std::vector<std::string> args{"summary", "--format", "csv"};
    args.insert(args.end(), options.begin(), options.end());
    args.push_back(sample("ARBOR"));
    return parseCsv(command(args).out).at(0);
  };
  EXPECT_THAT(header({"--vectors", "wbhp:p*,BPR:1,1,1", "--vectors", "FOPR"}),
              ElementsAre("TIME", "BPR:1,1,1", "FOPR", "WBHP:PROD"));
  EXPECT_THAT(header({"--vectors", "F?PR", "--except", "TIME,FWPR", "--dates"}),
              ElementsAre("DATE", "FGPR", "FOPR", "FVPR"));
  EXPECT_THAT(header({"--except", "?*:*", "--except", "F*"}), ElementsAre("TIME", "YEARS"));

  const Outcome some = command({"summary", "--vectors", "FOPR,WBHP:PRD,X*", sample("ARBOR")});
  EXPECT_EQ(some.status, 0);
  EXPECT_EQ(some.err,
            "lumbarn: no vector matches \"WBHP:PRD\"; did you mean \"WBHP:PROD\"?\n"
            "lumbarn: no vector matches \"X*\"\n");
  const Outcome none = command({"summary", "--vectors", "X*", sample("ARBOR")});
  EXPECT_EQ(none.status, 2);
  EXPECT_EQ(none.out, "");
}

/// A run with what well names and values can be.
std::string oddRun(const test::TemporaryFolder& folder) {
  test::SummaryBuilder run;
  run.vectors = {{"TIME", "", 0, "HOURS"},   {"WOPR", "A,\"1\"", 0, "SM3/DAY"}, {"WOPR"},
                 {"FOPR", "", 0, "SM3/DAY"}, {"FOPR", "", 0, "SM3/DAY"},        {"FOPR", "", 0, "SM3/DAY"}};
  run.start = {29, 2, 2024, 12, 30, 0};
  const float none = std::numeric_limits<float>::quiet_NaN();
  run.rows = {{{0.5F, none, 9, 1.5F, 2, 3}}, {{36, -std::numeric_limits<float>::infinity(), 9, 0.1F, 5, 6}}};
  return run.write(folder, "ODD", test::everyForm[1].form);
}

TEST(Summary, NamesValuesAndDatesOfAnOddRun) {
  const test::TemporaryFolder folder;
  const std::string path = oddRun(folder);
  const Outcome csv = command({"summary", "--dates", "--format", "csv", path});
  EXPECT_EQ(csv.out,
            "DATE,TIME,\"WOPR:A,\"\"1\"\"\",FOPR\r\n"
            "2024-02-29T13:00:00,0.5,,1.5\r\n"
            "2024-03-02T00:30:00,36,-inf,0.1\r\n");
  EXPECT_EQ(csv.status, 0);
  EXPECT_EQ(csv.err,
            "lumbarn: 2 vectors left out, as their names occur before (FOPR and others); --keep-duplicates "
            "shows all\n");
  const Outcome all =
      command({"summary", "--keep-duplicates", "--vectors", "FOPR", "--format", "json", path});
  EXPECT_EQ(all.err, "");
  EXPECT_EQ(nlohmann::json::parse(all.out)[0],
            (nlohmann::json{{"TIME", 0.5}, {"FOPR", 1.5}, {"FOPR#2", 2}, {"FOPR#3", 3}}));
  EXPECT_THAT(nlohmann::json::parse(command({"summary", "--format", "json", path}).out)[1]["WOPR:A,\"1\""],
              nullptr);
}

TEST(Summary, RowsOfARunThatLacksAVectorShowNoValueOfIt) {
  const test::TemporaryFolder folder;
  test::SummaryBuilder run;
  run.vectors = {{"TIME", "", 0, "DAYS"}, {"FOPR", "", 0, "SM3/DAY"}};
  run.rows = {{{1, 10}}};
  run.write(folder, "OLD", test::bigEndian);
  run.vectors[1].mnemonic = "FGPR";
  run.rows = {{{2, 20}}};
  run.restart = "OLD";
  const std::string path = run.write(folder, "NEW", test::bigEndian);
  EXPECT_EQ(command({"summary", "--restart", "--format", "csv", path}).out,
            "TIME,FGPR,FOPR\r\n1,,10\r\n2,20,\r\n");
}

TEST(Vectors, SayWhatTheSpecificationSays) {
  const test::TemporaryFolder folder;
  const auto rows =
      parseCsv(command({"vectors", "--keep-duplicates", "--format", "csv", oddRun(folder)}).out);
  ASSERT_EQ(rows.size(), 6) << "a dummy well is none";
  EXPECT_THAT(rows[0],
              ElementsAre("name", "mnemonic", "class", "member", "index", "lgr", "units", "description"));
  EXPECT_THAT(rows[2], ElementsAre("WOPR:A,\"1\"", "WOPR", "WELLS", "A,\"1\"", "", "", "SM3/DAY",
                                   "Oil production rate"));
  EXPECT_EQ(rows[5][0], "FOPR#3");

  const auto sampled = parseCsv(command({"vectors", "--format", "csv", sample("ARBOR")}).out);
  const auto expected = columnsOf(content(sample("expected/ARBOR.summary.csv")));
  EXPECT_EQ(sampled.size(), 1 + expected.size());
  for (std::size_t i = 1; i < sampled.size(); ++i)
    EXPECT_TRUE(expected.contains(sampled[i][0])) << sampled[i][0];
}

TEST(Summary, DamagedRunsGiveWhatStandsBeforeTheDamage) {
  const test::TemporaryFolder folder;
  const std::string data = folder.file("RUN.UNSMRY");
  const std::string spec = folder.file("RUN.SMSPEC");
  const std::string wholeSpec = content(sample("ARBOR/ARBOR.SMSPEC"));
  const std::string whole = content(sample("ARBOR/ARBOR.UNSMRY"));
  const std::vector<std::string> show{"summary", "--vectors", "FOPR", "--format", "csv", folder.file("RUN")};
  store(spec, wholeSpec);

  const Outcome noData = command(show);
  EXPECT_EQ(noData.status, 1);
  EXPECT_THAT(noData.err, HasSubstr(data));
  EXPECT_EQ(std::ranges::count(noData.err, '\n'), 1);

  store(data, whole);
  const Rows expected = parseCsv(command(show).out);
  for (const std::size_t keep : {701UL, 5000UL, 9000UL, whole.size() - 1}) {
    store(data, whole.substr(0, keep));
    const Outcome cut = command(show);
    EXPECT_EQ(cut.status, 3) << keep;
    const Rows rows = parseCsv(cut.out);
    ASSERT_LT(rows.size(), expected.size());
    EXPECT_TRUE(std::ranges::equal(rows, std::span(expected).first(rows.size()))) << keep;
    EXPECT_THAT(cut.err, ::testing::StartsWith("lumbarn: " + data + ": ")) << keep;
    EXPECT_EQ(std::ranges::count(cut.err, '\n'), 1) << cut.err;
  }
  store(data, whole);
  store(spec, wholeSpec.substr(0, 1000));
  EXPECT_EQ(command(show).status, 1) << "KEYWORDS is not whole";
  EXPECT_EQ(command({"vectors", spec}).status, 1);
}

}  // namespace
}  // namespace lumbarn::cli::testing
