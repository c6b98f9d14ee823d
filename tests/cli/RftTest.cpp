#include "CommandTest.h"
#include "support/WellTestBuilder.h"

namespace lumbarn::cli::testing {
namespace {

using Singles = test::WellTestBuilder::Singles;
using Integers = test::WellTestBuilder::Integers;

struct RftCommand : CommandTest {};

TEST_F(RftCommand, ShowsTheTablesOfTheReader) {
  test::WellTestBuilder builder;
  builder.tests = {{.well = " H-1",
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
  builder.write(folder_, test::bigEndian);
  EXPECT_THAT(csv("rft ~RUN.RFT").at(1),
              ElementsAre("1", "H-1", "2015-01-11T06:00:00", "1", "ROOT", "RFT PLT SEG", "3", "1", "1", "1"));
  const auto plt = csv("rft --test 1 --plt ~RUN.RFT");
  // The cells of connections stand in both tables that are put together here.
  EXPECT_THAT(plt.at(0), ElementsAre("CONMD", "CONLENST", "CONLENEN", "CONLENTH", "CONBRNO", "CONPRES",
                                     "CONIPOS", "CONJPOS", "CONKPOS", "CONIPOS#2", "CONJPOS#2", "CONKPOS#2"));
  EXPECT_THAT(plt.at(2), ElementsAre("15", "10", "20", "10", "2", "101.5", "5", "7", "2", "5", "7", "2"));
  EXPECT_EQ(csv("rft --plt --branch 1 ~RUN.RFT").size(), 2);
  EXPECT_EQ(csv("rft --test 1 --branch 1 ~RUN.RFT").size(), 3);
  EXPECT_EQ(csv("rft --test 1 --icd 1 ~RUN.RFT").at(1).at(1), "");
  EXPECT_THAT(csv("rft --test 1 --segments ~RUN.RFT").at(3), ElementsAre("3", "2", "20", "20.1", "2"));
  const auto all = csv("rft --all ~RUN.RFT");
  EXPECT_EQ(all.size(), 1 + 7 * 3 + 4 * 3 + 2 * 2);
  EXPECT_THAT(all.at(21), ElementsAre("1", "H-1", "connections", "CONPRES", "BARSA", "3", "102"));
  EXPECT_THAT(run("rft --plt --branch 2 ~RUN.RFT").err,
              HasSubstr("test 1 has 1 PLT branch, there is no number 2"));
}

TEST_F(RftCommand, ShowsADamagedTextWithWhatIsWrong) {
  store(file("M.RFT"), "RFT\nWELLNAME P1\nDEPTH PRESSURE\n1 2\n3\n4 5\n");
  const Outcome table = run("rft --test 1 --format csv ~M");
  EXPECT_EQ(table.status, 3);
  EXPECT_EQ(table.out, "DEPTH,PRESSURE\r\n1,2\r\n3,0\r\n");
  EXPECT_THAT(table.err, HasSubstr("line 5: row has too few numbers (byte 35: expected 2 numbers, found 1)"));
  EXPECT_EQ(run("info ~M").status, 3);
  EXPECT_THAT(run("check ~M.RFT").out, HasSubstr("M.RFT: 1 test, 1 finding"));
  store(file("notes.txt"), "hello\n");
  EXPECT_THAT(run("rft ~notes.txt").err, HasSubstr("no text that RFT or PLT opens"));
}

}  // namespace
}  // namespace lumbarn::cli::testing
