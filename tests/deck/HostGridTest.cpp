#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostDeck.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;

const std::string head = "RUNSPEC\nDIMENS\n 2 2 2 /\nFIELD\nGRID\n";

/// The pillars of a grid of 2 by 2 cells of 10 by 20, from x0, y0, and its depths: 4 planes of 16.
std::string pillars(int x0, int y0) {
  std::string text = "COORD\n";
  for (int j = 0; j < 3; ++j) {
    for (int i = 0; i < 3; ++i) text += fmt::format(" {0} {1} 100 {0} {1} 200\n", x0 + 10 * i, y0 + 20 * j);
  }
  return text + "/\n";
}
const std::string depths = "ZCORN\n 16*100 32*110 16*120 /\n";

TEST(HostGrid, ArraysGoToTheBoxInForce) {
  struct Row {
    const char* text;
    std::vector<std::int32_t> activity;
  };
  for (const Row& row : std::initializer_list<Row>{
           {"ACTNUM\n 1 0 5*1 0 /\n", {1, 0, 1, 1, 1, 1, 1, 0}},
           {"BOX\n 1 1 1 2 2 2 /\nACTNUM\n 2*0 /\n", {1, 1, 1, 1, 0, 1, 0, 1}},
           {"BOX\n 1 2 2 2 1 2 /\nACTNUM\n 3*0 /\n", {1, 1, 0, 0, 1, 1, 0, 1}},
           {"BOX\n 2 /\nACTNUM\n 0 /\n", {1, 0, 1, 1, 1, 1, 1, 1}},
           {"BOX\n 1 1 1 1 1 1 /\nENDBOX\nACTNUM\n 8*0 /\n", {0, 0, 0, 0, 0, 0, 0, 0}},
           {"BOX\n 1 3 /\nACTNUM\n 0 /\n", {1, 1, 1, 1, 1, 1, 1, 1}},  // not in the grid: a fault
           {"ACTNUM\n 0 -- first\n 1 0 /\n", {0, 1, 0, 1, 1, 1, 1, 1}},
       }) {
    HostDeck deck(head + row.text);
    std::vector<std::int32_t> activity;
    bool qOK = false;
    EXPECT_TRUE(deck.load()) << row.text;
    deck.dat.getACTNUM(1, activity, qOK);
    EXPECT_TRUE(qOK && activity == row.activity) << row.text;
  }
  HostDeck deck(head);
  bool qOK = false;
  std::vector<std::int32_t> activity;
  ASSERT_TRUE(deck.load());
  deck.dat.setACTNUM(1, {0, 0}, qOK);
  EXPECT_TRUE(qOK);
  deck.dat.setACTNUM(1, {0, -1, 2, 1, 1, 1, 1, 1}, qOK);
  deck.dat.getACTNUM(1, activity, qOK);
  EXPECT_THAT(activity, ElementsAre(0, 0, 1, 1, 1, 1, 1, 1));
  deck.dat.getACTNUM(2, activity, qOK);
  EXPECT_FALSE(qOK);
}

TEST(HostGrid, CornersComeFromWholeAndPartialArrays) {
  struct Row {
    std::string text;
    std::array<float, 3> first, last;  // corner 1 of cell 1, corner 8 of cell 8
  };
  const std::string box = "BOX\n 2 2 2 2 2 2 /\n";
  for (const Row& row : std::initializer_list<Row>{
           {pillars(0, 0) + depths, {0, 0, 100}, {20, 40, 120}},
           {pillars(5, -90) + depths + box + "COORD\n 4 0 0 4 0 1 5 0 0 5 0 1\n 6 0 0 6 0 1 7 8 0 7 8 1 /\n",
            {5, -90, 100},
            {7, 8, 120}},
           {pillars(0, 0) + depths + box + "ZCORN\n 7*115 300 /\n", {0, 0, 100}, {20, 40, 300}},
           {pillars(0, 0) + "ZCORN\n 64*100 /\n" + depths, {0, 0, 100}, {20, 40, 120}},
           // Too short: what is missing is 0.
           {pillars(0, 0) + "ZCORN\n 16*100 /\n", {0, 0, 100}, {20, 40, 0}},
       }) {
    HostDeck deck(head + row.text);
    XYData corners;
    std::int32_t nCells = 0;
    bool qOK = true;
    ASSERT_TRUE(deck.load() && deck.faults.empty()) << row.text;
    deck.dat.getcorners(1, corners, nCells, qOK);
    EXPECT_FALSE(qOK);
    deck.dat.createcorners(1, qOK);
    EXPECT_TRUE(qOK);
    deck.dat.getcorners(1, corners, nCells, qOK);
    ASSERT_TRUE(qOK && nCells == 8 && corners.columns() == 8);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(corners.column(1)[i], row.first[i]) << row.text;
      EXPECT_EQ(corners.column(8)[21 + i], row.last[i]) << row.text;
    }
  }
}

TEST(HostGrid, OffsetsAreTakenOffOnce) {
  struct Row {
    std::string text;
    double x, y;
  };
  const std::string east = "BOX\n 2 2 1 2 1 2 /\nCOORD\n 18*300 18*400 /\nENDBOX\n";
  for (const Row& row : std::initializer_list<Row>{
           {pillars(500000, -9000), 500000, -8960},  // the least of those above 0, the largest of those below
           {pillars(-10, 70), 0, 70},                // on both sides of 0
           {pillars(500000, 7000) + east, 300, 300},
           {pillars(-5, 200) + east, 0, 200},
       }) {
    HostDeck deck(head + row.text + depths);
    deck.dat.OffSet = true;
    bool qOK = false;
    double x = -1, y = -1;
    ASSERT_TRUE(deck.load());
    const double before = deck.dat.contents().grids.records[0].dCoord[0];
    for (int again = 0; again < 2; ++again) deck.dat.createcorners(1, qOK);
    deck.dat.getOffSet(x, y, qOK);
    EXPECT_TRUE(qOK && x == row.x && y == row.y) << row.text << x << ' ' << y;
    EXPECT_EQ(deck.dat.contents().grids.records[0].dCoord[0], before - row.x);
  }
}

TEST(HostGrid, LocalGridsStayCurrentUntilTheNext) {
  HostDeck deck(head + pillars(0, 0) + depths +
                "CARFIN\n 'LGR' 1 1 2 2 1 2 3 1 1 /\nACTNUM\n 0 /\nENDFIN\nACTNUM\n 1 0 /\n"
                "RADFIN\n WELL 2 1 1 2 4 3 2 /\nENDBOX\nBOX\n 1 1 1 1 /\nACTNUM\n 0 /\nCARFIN\n BAD 1 2 /\n");
  ASSERT_TRUE(deck.load() && deck.faults.empty());
  const DeckGrids& grids = deck.dat.contents().grids;
  ASSERT_EQ(grids.records.size(), 4U);
  EXPECT_THAT(activityOf(grids.records[0]), ::testing::Each(1));
  EXPECT_EQ(grids.records[1].zName, "LGR");
  EXPECT_THAT(activityOf(grids.records[1]), ElementsAre(1, 0, 1));
  EXPECT_EQ(grids.records[1].parent, (HostBox{1, 1, 2, 2, 1, 2}));
  EXPECT_EQ(grids.records[2].nCells(), 24);
  EXPECT_EQ(grids.records[2].parent, (HostBox{2, 2, 1, 1, 1, 2}));
  EXPECT_EQ(activityOf(grids.records[2])[0], 0);
  EXPECT_EQ(grids.records[3].nCells(), 0);
  bool qOK = true;
  deck.dat.createcorners(2, qOK);  // no arrays of its own
  EXPECT_FALSE(qOK);
}

TEST(HostGrid, ReservoirsHaveTheirOwnPillars) {
  HostDeck deck(
      "RUNSPEC\nDIMENS\n 1 1 3 /\nNUMRES\n 2 /\nGRID\nCOORDSYS\n 1 1 /\n 2 2 COMP JOIN /\n/\n"
      "COORD\n 12*1 12*2 /\nRESVNUM\n 2 /\nCOORD\n 24*5 /\nRESVNUM\n 3 /\nZCORN\n 24*7 /\n");
  ASSERT_TRUE(deck.load() && deck.faults.empty());
  const DeckGrids& grids = deck.dat.contents().grids;
  ASSERT_EQ(grids.nCOORDSYS, 2U);
  EXPECT_EQ(grids.reservoirs[0].zCircle + grids.reservoirs[0].zConnection, "INCOMPSEPERATE");
  EXPECT_EQ(grids.reservoirs[1].zCircle + grids.reservoirs[1].zConnection, "COMPJOIN");
  XYData corners;
  std::int32_t nCells = 0;
  bool qOK = false;
  deck.dat.createcorners(1, qOK);
  deck.dat.getcorners(1, corners, nCells, qOK);
  ASSERT_TRUE(qOK);
  EXPECT_THAT(std::vector<float>(corners.column(1).begin(), corners.column(1).begin() + 3),
              ElementsAre(1, 1, 7));
  EXPECT_THAT(std::vector<float>(corners.column(2).begin(), corners.column(2).begin() + 3),
              ElementsAre(5, 5, 7));
  EXPECT_THAT(corners.column(3), ::testing::Each(0));  // a layer of no reservoir
}

TEST(HostGrid, KeepsMapFaultsAndPinch) {
  using Show = std::string (*)(const qvEclipseDat&);
  const Show map = [](const qvEclipseDat& dat) {
    const DeckGrids& g = dat.contents().grids;
    return fmt::format("{} {} {}{} {}{}", g.qMapAxes, g.dMapAxes[5], g.iGridUnit, g.qGridUnit, g.iMapUnit,
                       g.qMapUnit);
  };
  const Show faults = [](const qvEclipseDat& dat) {
    std::vector<std::string> names;
    std::vector<std::int32_t> segments;
    std::vector<float> multipliers;
    std::int32_t count = 0, most = 0;
    bool qOK = false;
    dat.getFAULTS(names, count, segments, multipliers, most, qOK);
    return fmt::format("{} {} {} {} {}", count, names, segments, multipliers, most);
  };
  const Show pinch = [](const qvEclipseDat& dat) {
    float threshold = 0, x = 0, y = 0;
    double gap = 0;
    std::string option, transmissibility, multiplier;
    bool qOK = false, qXY = false;
    dat.getPINCH(1, threshold, option, gap, transmissibility, multiplier, qOK);
    dat.getPINCHXY(x, y, qXY);
    return fmt::format("{} {} {} {} {} {} | {} {} {}", dat.NumberPINCH(), threshold, option, gap,
                       transmissibility, multiplier, qXY, x, y);
  };
  struct Row {
    const char* text;
    Show show;
    const char* expected;
  };
  for (const Row& row : std::initializer_list<Row>{
           {"MAPAXES\n 1 2 3 4 5 /\n", map, "false 0 0false 0false"},
           {"MAPAXES\n 1 2 3\n 4 5 6.5 /\nGRIDUNIT\n METRES /\nMAPUNITS\n miles /\n", map,
            "true 6.5 1true 2true"},
           {"FAULTS\n A 1 1 1 2 1 2 X /\n b 1 1 1 1 1 1 Y- /\n A 2 2 1 1 1 1 Z /\n C 1 1 1 1 1 1 /\n/\n"
            "MULTFLT\n B 0.5 /\n A 0.1 /\n NONE 3 /\n/\nNEWTRAN\n",
            faults, "2 [\"A\", \"B\"] [2, 1] [0.1, 0.5] 2"},
           {"MULTFLT\n A 0.5 /\n/\n", faults, "0 [] [] [] 0"},
           {"PINCH\n/\n", pinch, "1 0.001 GAP 1e+20 TOPBOT TOP | false 0.001 0.001"},
           {"PINCH\n 0.1 NOGAP 1* ALL /\nPINCHXY\n 1* 0.5 /\n", pinch,
            "1 0.1 NOGAP 1e+20 ALL TOP | true 0.001 0.5"},
           {"PINCH\n 0.1 /\nPINCHOUT\n", pinch, "1 0.001 GAP 1e+20 TOPBOT TOP | false 0.001 0.001"},
           {"NEWTRAN\n", pinch, "0 0  0   | false 0.001 0.001"},
       }) {
    HostDeck deck(head + row.text);
    EXPECT_TRUE(deck.load() && deck.faults.empty()) << row.text;
    EXPECT_EQ(row.show(deck.dat), row.expected) << row.text;
  }
}

TEST(HostGrid, CornerArraysAreReadOnRequestOnly) {
  HostDeck deck(head + pillars(0, 0) + depths + "PINCH\n/\n");
  deck.dat.ProcessCorners = false;
  ASSERT_TRUE(deck.load());
  EXPECT_TRUE(deck.dat.IsKeyWord("COORD") && deck.dat.IsKeyWord("ZCORN") && !deck.dat.IsKeyWord("PINCH"));
  EXPECT_TRUE(deck.dat.contents().grids.records[0].dCoord.empty() && deck.dat.NumberPINCH() == 1);
  bool qOK = true;
  deck.dat.createcorners(1, qOK);
  EXPECT_FALSE(qOK);
}

}  // namespace
}  // namespace lumbarn
