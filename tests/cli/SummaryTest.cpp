#include <bit>
#include <cstdlib>
#include <map>

#include "CommandTest.h"
#include "support/SummaryBuilder.h"

namespace lumbarn::cli::testing {
namespace {

std::uint32_t bitsOf(const std::string& number) {
  return std::bit_cast<std::uint32_t>(std::strtof(number.c_str(), nullptr));
}

/// Columns by name, as the bits of their values.
std::map<std::string, std::vector<std::uint32_t>> columnsOf(const Rows& rows) {
  std::map<std::string, std::vector<std::uint32_t>> columns;
  for (std::size_t i = 0; i < rows[0].size(); ++i) {
    auto& column = columns[rows[0][i]];
    for (std::size_t row = 1; row < rows.size(); ++row) column.push_back(bitsOf(rows[row].at(i)));
  }
  return columns;
}

struct Summary : CommandTest {};

TEST_F(Summary, SamplesAreRightToTheLastBit) {
  const std::pair<const char*, const char*> runs[] = {{"ARBOR.summary.csv", "@ARBOR"},
                                                      {"HOLLIN.summary.csv", "@HOLLIN"},
                                                      {"CEDAR_R2.chain.csv", "--restart @CEDAR/CEDAR_R2"}};
  for (const auto& [expected, args] : runs) {
    const auto wanted = columnsOf(parseCsv(content(sample(std::string("expected/") + expected))));
    EXPECT_EQ(columnsOf(csv(std::string("summary ") + args)), wanted);
  }
}

TEST_F(Summary, StepsAndRows) {
  const std::pair<const char*, std::vector<std::string>> rows[] = {
      {"--steps 2:3", {"46.25", "61.5", "92"}},
      {"--steps 3", {"92"}},
      {"--steps 5:", {"425"}},
      {"--steps last", {"425"}},
      {"--steps :2 --report-steps", {"31", "61.5"}}};
  for (const auto& [options, times] : rows) {
    Rows expected{{"TIME"}};
    for (const auto& time : times) expected.push_back({time});
    EXPECT_EQ(csv(std::string("summary --vectors TIME @ARBORM ") + options), expected) << options;
  }
  const Outcome none = run("summary --steps 9: @ARBORM");
  EXPECT_EQ(none.status, 2);
  EXPECT_THAT(none.err, HasSubstr("has none of the report steps asked for; it has 1:5"));
  EXPECT_EQ(run("summary --report-steps --every month @ARBORM").status, 2);
  EXPECT_EQ(csv("summary --report-steps --restart @CEDAR/CEDAR_R2").size(), 1 + 6 + 4 + 6);
}

TEST_F(Summary, RowsByDate) {
  EXPECT_EQ(run("summary @HOLLIN --vectors FOPR --dates --from 2001-08-01 --to 2001-12-31 --every month "
                "--format csv")
                .out,
            "DATE,TIME,FOPR\r\n"
            "2001-08-30T12:00:00,60.5,270.3153\r\n"
            "2001-09-30T00:00:00,91,254.36227\r\n"
            "2001-10-30T12:00:00,121.5,240.55296\r\n"
            "2001-11-30T00:00:00,152,228.18753\r\n"
            "2001-12-30T12:00:00,182.5,218.17055\r\n");
  EXPECT_THAT(run("summary @HOLLIN --date 2001-07-01").err,
              HasSubstr("from 2001-07-02T00:00:00 to 2003-07-15T06:30:00"));
}

TEST_F(Summary, ColumnsByPattern) {
  const Outcome some =
      run("summary --vectors wbhp:p*,BPR:1,1,1 --vectors FOPR,X* --except TIME --format csv @ARBOR");
  EXPECT_EQ(some.status, 0);
  EXPECT_THAT(some.out, ::testing::StartsWith("WBHP:PROD,\"BPR:1,1,1\",FOPR\r\n"));
  EXPECT_THAT(some.err, HasSubstr("ARBOR.SMSPEC: no vector matches \"X*\"\n"));
  EXPECT_THAT(run("summary --vectors WBPH:PROD @ARBOR").err, HasSubstr("did you mean \"WBHP:PROD\"?"));
  EXPECT_EQ(run("summary --vectors= @ARBOR").status, 2);
}

TEST_F(Summary, NamesValuesAndDatesOfAnOddRun) {
  test::SummaryBuilder odd;
  odd.vectors = {{"TIME", "", 0, "HOURS"},   {"WOPR", "A,\"\n1", 0, "SM3/DAY"}, {"WOPR"},
                 {"FOPR", "", 0, "SM3/DAY"}, {"FOPR", "", 0, "SM3/DAY"},        {"FOPR", "", 0, "SM3/DAY"}};
  odd.start = {29, 2, 2024, 12, 30, 0};
  const float none = std::numeric_limits<float>::quiet_NaN();
  odd.rows = {{{0.5F, none, 9, 1.5F, 2, 3}}, {{36, -std::numeric_limits<float>::infinity(), 9, 0.1F, 5, 6}}};
  odd.write(folder_, "ODD", test::bigEndian);
  const Outcome table = run("summary --dates --format csv ~ODD");
  EXPECT_EQ(table.out,
            "DATE,TIME,\"WOPR:A,\"\"\n1\",FOPR\r\n"
            "2024-02-29T13:00:00,0.5,,1.5\r\n"
            "2024-03-02T00:30:00,36,-inf,0.1\r\n");
  EXPECT_EQ(table.status, 0);
  EXPECT_THAT(table.err, HasSubstr("2 vectors omitted, as their names occur before (FOPR and others)"));
  EXPECT_EQ(json("summary --keep-duplicates --vectors FOPR ~ODD")[0],
            (nlohmann::json{{"TIME", 0.5}, {"FOPR", 1.5}, {"FOPR#2", 2}, {"FOPR#3", 3}}));
  EXPECT_EQ(json("summary ~ODD")[1]["WOPR:A,\"\n1"], nullptr);
  EXPECT_THAT(run("summary ~ODD").out, ::testing::StartsWith(" TIME  WOPR:A,\"?1     FOPR\nHOURS"));

  const auto vectors = csv("vectors --keep-duplicates ~ODD");
  ASSERT_EQ(vectors.size(), 6) << "a dummy well is none";
  EXPECT_EQ(vectors[2][3], "A,\"\n1");
  EXPECT_EQ(vectors[5][0], "FOPR#3");
}

TEST_F(Summary, RowsOfARunThatLacksAVectorShowNoValueOfIt) {
  test::SummaryBuilder builder;
  builder.vectors = {{"TIME", "", 0, "DAYS"}, {"FOPR", "", 0, "SM3/DAY"}};
  builder.rows = {{{1, 10}}};
  builder.write(folder_, "OLD", test::bigEndian);
  builder.vectors[1].mnemonic = "FGPR";
  builder.rows = {{{2, 20}}};
  builder.restart = "OLD";
  builder.write(folder_, "NEW", test::bigEndian);
  EXPECT_EQ(run("summary --restart --replace -o ~OLD.UNSMRY ~NEW").status, 2) << "a file that is read";
  EXPECT_EQ(run("summary --restart --format csv ~NEW").out, "TIME,FGPR,FOPR\r\n1,,10\r\n2,20,\r\n");
}

}  // namespace
}  // namespace lumbarn::cli::testing
