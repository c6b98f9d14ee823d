#include <algorithm>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CommandRun.h"
#include "support/TemporaryFolder.h"

namespace lumbarn::cli::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// The lines of an output, without their ends.
std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    if (line.ends_with('\r')) line.pop_back();
    all.push_back(line);
  }
  return all;
}

std::vector<std::string> linesOf(std::vector<std::string> args, int status = 0) {
  const Outcome run = command(args);
  EXPECT_EQ(run.status, status) << run.err;
  return lines(run.out);
}

// What an engineer asks on a working day, with the numbers that an independent reader found in the files.

TEST(Tasks, CellsOverTime) {
  const auto rows = linesOf({"restart", sample("HOLLIN"), "--array", "PRESSURE,SWAT", "--cell", "2,1,1",
                             "--steps", "0:13", "--format", "csv"});
  ASSERT_EQ(rows.size(), 15U);
  EXPECT_EQ(rows[0], "step,date,days,grid,i,j,k,PRESSURE,SWAT");
  EXPECT_EQ(rows[1], "0,2001-07-01T00:00:00,0,ROOT,2,1,1,211.07866,0.2");
  EXPECT_EQ(rows[14], "13,2003-07-15T06:30:00,744.2708333333334,ROOT,2,1,1,321.1038,0.19788219");
  const Outcome outside = command({"restart", sample("HOLLIN"), "--array", "PRESSURE", "--cell", "17,1,1"});
  EXPECT_EQ(outside.status, 2);
  EXPECT_THAT(outside.err, HasSubstr("17,1,1"));
}

TEST(Tasks, TimeFilters) {
  EXPECT_THAT(linesOf({"summary", sample("HOLLIN"), "--vectors", "FOPR", "--dates", "--from", "2001-08-01",
                       "--to", "2001-12-31", "--every", "month", "--format", "csv"}),
              ElementsAre("DATE,TIME,FOPR", "2001-08-30T12:00:00,60.5,270.3153",
                          "2001-09-30T00:00:00,91,254.36227", "2001-10-30T12:00:00,121.5,240.55296",
                          "2001-11-30T00:00:00,152,228.18753", "2001-12-30T12:00:00,182.5,218.17055"));
  for (const char* subcommand : {"summary", "wells"}) {
    const Outcome early = command({subcommand, sample("HOLLIN"), "--date", "1999-01-01"});
    EXPECT_EQ(early.status, 2) << subcommand;
    EXPECT_THAT(early.err, HasSubstr("2003-07-15T06:30:00")) << subcommand;
  }
}

TEST(Tasks, LongFormAndUnitRow) {
  const std::vector<std::string> args{"summary",      sample("HOLLIN"), "--vectors",
                                      "FOPR,WBHP:P1", "--steps",        "last"};
  auto longForm = args;
  longForm.insert(longForm.end(), {"--long", "--format", "csv"});
  const auto rows = linesOf(longForm);
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(rows[0], "run,step,date,days,vector,mnemonic,member,value,unit");
  EXPECT_EQ(rows[1], "HOLLIN,13,2003-07-15T06:30:00,744.2708,FOPR,FOPR,,32.601315,SM3/DAY");
  auto unitRow = args;
  unitRow.insert(unitRow.end(), {"--unit-row", "--format", "csv"});
  EXPECT_EQ(linesOf(unitRow).at(1), "DAYS,SM3/DAY,BARSA");
  unitRow.back() = "json";
  const Outcome json = command(unitRow);
  EXPECT_THAT(json.out, HasSubstr("\"units\""));
  EXPECT_THAT(json.out, HasSubstr("\"rows\""));
}

TEST(Tasks, SeveralRuns) {
  const auto rows = linesOf({"summary", sample("CEDAR/CEDAR"), sample("CEDAR/CEDAR_R1"), "--vectors", "FOPT",
                             "--report-steps", "--format", "csv"});
  ASSERT_FALSE(rows.empty());
  EXPECT_EQ(rows[0], "run,TIME,FOPT");
  EXPECT_EQ(std::ranges::count(rows, "CEDAR,425,8500000"), 1);
  EXPECT_EQ(std::ranges::count(rows, "CEDAR_R1,517,10340000"), 1);
  const auto good =
      linesOf({"summary", sample("HOLLIN"), sample("NOWHERE"), "--vectors", "FOPT", "--format", "csv"}, 3);
  EXPECT_GT(good.size(), 1U);
}

TEST(Tasks, Compare) {
  const std::vector<std::string> args{"compare", sample("CEDAR/CEDAR"), sample("CEDAR/CEDAR"), "--vectors",
                                      "F*"};
  EXPECT_EQ(command(args).status, 0);
  const Outcome different =
      command({"compare", sample("ARBOR"), sample("HOLLIN"), "--vectors", "F*", "--array", "PRESSURE",
               "--abs", "0.01", "--rel", "1e-3", "--format", "csv"});
  EXPECT_EQ(different.status, 4) << different.err;
  EXPECT_EQ(command({"compare", sample("ARBOR"), sample("NOWHERE")}).status, 2);
  const auto largest = linesOf({"compare", sample("CEDAR/CEDAR"), sample("CEDAR/CEDAR_R1"), "--vectors",
                                "FGIPL,FOPT", "--top", "1", "--format", "csv"},
                               4);
  EXPECT_THAT(largest,
              ElementsAre("kind,name,step,date,place,a,b,abs,rel",
                          ::testing::StartsWith(
                              "vector,FGIPL,14,2016-03-01T00:00:00,,346917632,364728000,17810368,")));
}

TEST(Tasks, UnitConversion) {
  const auto rows = linesOf({"summary", sample("ARBOR"), "--units", "metric", "--vectors", "FPR,FOPR",
                             "--unit-row", "--format", "csv"});
  ASSERT_GT(rows.size(), 2U);
  EXPECT_EQ(rows[1], "DAYS,BARSA,SM3/DAY");
  EXPECT_EQ(rows[2], "1,330.71643,3179.7458");
}

TEST(Tasks, ValuesOfAnyRecord) {
  EXPECT_THAT(linesOf({"records", sample("HOLLIN/HOLLIN.UNRST"), "--show", "INTEHEAD", "--occurrence", "1",
                       "--range", "9:12", "--format", "csv"}),
              ElementsAre("keyword,occurrence,offset,index,value", "INTEHEAD,1,36,9,16",
                          "INTEHEAD,1,36,10,12", "INTEHEAD,1,36,11,5", "INTEHEAD,1,36,12,897"));
  EXPECT_GT(linesOf({"records", sample("HOLLIN/HOLLIN.UNRST"), "--show", "Z*", "--format", "csv"}).size(),
            1U);
}

TEST(Tasks, WellsAndTestsByPattern) {
  const auto wells = linesOf(
      {"wells", sample("HOLLIN"), "--well", "P*", "--steps", "5:13", "--no-connections", "--format", "csv"});
  ASSERT_GT(wells.size(), 1U);
  EXPECT_THAT(wells[0], ::testing::StartsWith("step,date,days,grid,well,type,"));
  EXPECT_THAT(wells[1], ::testing::StartsWith("5,"));
  EXPECT_THAT(wells.back(), ::testing::StartsWith("13,2003-07-15T06:30:00,"));
  const auto tests =
      linesOf({"rft", sample("HOLLIN"), "--well", "P1", "--from", "2002-01-01", "--long", "--format", "csv"});
  ASSERT_FALSE(tests.empty());
  EXPECT_EQ(tests[0], "test,well,date,depth,array,value,unit");
  const Outcome none = command({"wells", sample("HOLLIN"), "--well", "NOBODY", "--steps", "last"});
  EXPECT_EQ(none.status, 2);
  EXPECT_THAT(none.err, HasSubstr("P1"));
}

TEST(Tasks, StatisticsByRegion) {
  const auto rows = linesOf({"stats", sample("HOLLIN"), "--array", "PRESSURE", "--steps", "last", "--by",
                             "FIPNUM", "--weight", "PORV", "--format", "csv"});
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[0], "step,date,grid,array,region,count,min,max,mean,weighted_mean,sum,weight_sum,unit");
  EXPECT_EQ(
      rows[1],
      "13,2003-07-15T06:30:00,ROOT,PRESSURE,1,378,318.80643,327.67398,323.3713784192605,323.3713784192605,"
      "122234.38104248047,1663200,BARS");
  EXPECT_THAT(rows[2], HasSubstr(",2,519,320.0165,330.38712,325.3309940639488,325.3078345243262,"));
  EXPECT_THAT(rows[3], HasSubstr(",all,897,"));
}

TEST(Tasks, OtherForms) {
  const test::TemporaryFolder folder;
  const auto path = [&](const char* name) { return folder.file(name); };
  const std::string original = sample("HOLLIN/HOLLIN.UNRST");
  EXPECT_EQ(command({"convert", original, "-o", path("HOLLIN.FUNRST")}).status, 0);
  EXPECT_EQ(command({"convert", original, "--little-endian", "-o", path("LITTLE.UNRST")}).status, 0);
  EXPECT_EQ(command({"convert", path("LITTLE.UNRST"), "-o", path("BACK.UNRST")}).status, 0);
  EXPECT_TRUE(content(path("BACK.UNRST")) == content(original));
  const auto porosity = linesOf({"init", sample("HOLLIN"), "--array", "PORO", "--format", "grdecl"});
  ASSERT_GT(porosity.size(), 3U);
  EXPECT_EQ(porosity[0], "PORO");
  EXPECT_EQ(porosity[1], "-- 16 12 5");
  EXPECT_EQ(porosity.back(), "/");
  const Outcome objects = command({"vectors", sample("HOLLIN"), "--format", "ndjson"});
  EXPECT_EQ(objects.status, 0);
  EXPECT_EQ(objects.out.front(), '{');
}

}  // namespace
}  // namespace lumbarn::cli::testing
