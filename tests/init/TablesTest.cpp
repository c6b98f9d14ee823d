#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "init/qvEclipseDTAB.h"
#include "shapes/HeaderLayout.h"

namespace lumbarn {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

/// TABDIMS with the given words set, from 1.
std::vector<std::int32_t> words(std::initializer_list<std::pair<int, std::int32_t>> set) {
  std::vector<std::int32_t> result(tableDimsWords);
  for (const auto& [number, value] : set) result[static_cast<std::size_t>(number) - 1] = value;
  return result;
}

class Tables : public testing::Test {
 protected:
  void build(std::vector<std::int32_t> dims, std::vector<double> tab, std::int32_t phases,
             TableProperties properties = {}) {
    tables_.processTABDIMS(dims, qOK_);
    tables_.addDTAB(std::move(tab), qOK_);
    tables_.setPhases(phases);
    tables_.setTableProperties(properties);
    tables_.processTables(qOK_);
  }
  void get(std::string_view name, std::int32_t number) {
    tables_.getTable(name, number, values_, sizes_, nDims_, qOK_);
  }
  /// A physical table as "NAME=1,2 UNIT, ...".
  std::string shown(std::string_view name, std::int32_t number, std::int32_t iUnits) {
    std::string all;
    for (const auto& column : tables_.physicalTable(name, number, iUnits, qOK_).columns)
      all += fmt::format("{}{}={:.6g}{}{}", all.empty() ? "" : ", ", column.name,
                         fmt::join(column.values, ","), column.units.empty() ? "" : " ", column.units);
    return all;
  }
  std::string names() const {
    std::string all;
    for (const auto& table : tables_.tables()) all += (all.empty() ? "" : " ") + table.zTable;
    return all;
  }
  Session session_;
  qvEclipseDTAB tables_{session_};
  bool qOK_ = false;
  std::vector<float> values_;
  std::vector<std::int32_t> sizes_;
  std::int32_t nDims_ = 0;
};

TEST_F(Tables, ColumnsOfSeveralTablesAlternateAndBlankRowsGo) {
  const double blank = 2e20;
  build(words({{21, 2}, {22, 3}, {23, 2}}),
        {-7, 0.1, 0.5, blank, 0.2, 0.6, 1,  // behind one foreign word: Sw of both tables
         0, 1, blank, 0, 0.5, 1,            // krw of both
         9, 8, -blank, 7, 6, 5},            // Pcow of both
        2);
  ASSERT_TRUE(qOK_);
  EXPECT_EQ(tables_.getNumberTables(" swfn "), 2);
  get("SWFN", 1);
  EXPECT_TRUE(qOK_);
  EXPECT_THAT(sizes_, ElementsAre(2, 3));
  EXPECT_THAT(values_, ElementsAre(0.1F, 0.5F, 0, 1, 9, 8));
  get("SWFN", 2);
  EXPECT_THAT(values_, ElementsAre(0.2F, 0.6F, 1, 0, 0.5F, 1, 7, 6, 5));
  // Unused rows have a multiple of 1E20 in the first column, and the last value of the others.
  build(words({{21, 1}, {22, 4}, {23, 1}}), {0.2, 0.8, 1e22, -1e20, 0, 1, 1, 1, 5, 0, 0, 0}, 2);
  EXPECT_EQ(shown("SWFN", 1, 1), "SW=0.2,0.8, KRW=0,1, PCOW=5,0 BARS");
  for (const auto& [name, number] : {std::pair{"SWFN", 0}, {"SWFN", 3}, {"PVTO", 1}, {"", 1}}) {
    get(name, number);
    EXPECT_FALSE(qOK_) << name << number;
  }
  std::vector<std::int32_t> each;
  tables_.GetTABDIMS(each);
  EXPECT_EQ(each, words({{21, 1}, {22, 4}, {23, 1}}));
  std::vector<std::string> found, parents;
  tables_.getAllTableProperties(found, parents, each, qOK_);
  EXPECT_THAT(found, ElementsAre("SWFN"));
  EXPECT_EQ(tables_.getTableIndex("swfn") + tables_.nSaturationTables() + tables_.nSaturationRows(),
            1 + 2 + 4);
  EXPECT_EQ(tables_.nPVTTables() + tables_.nPVTRows() + tables_.nPVTOuterRows(), 0);
}

TEST_F(Tables, OfAnOuterIndexHaveItsValuesBesideThem) {
  // PVTO of 2 values of Rs and up to 3 pressures: P, 1/B, 1/(B mu); then Rs.
  const double none = 2e20;
  build(words({{7, 1}, {8, 19}, {9, 2}, {10, 3}, {11, 1}}),
        {10,   20,   none, 30,    none, none, 0.5,  0.25, none, 0.2,
         none, none, 0.25, 0.125, none, 0.1,  none, none, 7,    8},
        1, {.DissolvedGas = true});
  ASSERT_TRUE(qOK_);
  get("PVTO", 1);
  EXPECT_THAT(sizes_, ElementsAre(2, 2, 3));
  EXPECT_THAT(values_, ElementsAre(10, 30, 20, 2e20F, 0.5F, 0.2F, 0.25F, 2e20F, 0.25F, 0.1F, 0.125F, 2e20F));
  tables_.getTable2d("PVTO", 1, values_, sizes_, nDims_, qOK_);
  EXPECT_EQ(nDims_, 2);
  EXPECT_THAT(sizes_, ElementsAre(4, 4));
  EXPECT_THAT(values_, ElementsAre(7, -999, 8, -999, 10, 20, 30, 2e20F, 0.5F, 0.25F, 0.2F, 2e20F, 0.25F,
                                   0.125F, 0.1F, 2e20F));
  ByteTable headers;
  tables_.getTableHeaders("PVTO", 1, headers, qOK_);
  EXPECT_EQ(ExtractAttribute(attributeVariable, headers, 1), "P");
  tables_.getTableHeaders2D("PVTO", 1, headers, qOK_);
  ASSERT_EQ(headers.entries(), 4u);
  EXPECT_EQ(ExtractAttribute(attributeMember, headers, 1), "RS");
  EXPECT_EQ(ExtractAttribute(attributeVariable, headers, 3), "1/BO");
  EXPECT_EQ(shown("PVTO", 1, 2), "RS=7,7,8 MSCF/STB, P=10,20,30 PSIA, BO=2,4,5 RB/STB, MUO=2,2,2 CP");
}

TEST_F(Tables, WithAnOuterIndexOfSeveralRegionsAlternate) {
  const double none = -1e20;
  build(words({{14, 1}, {15, 25}, {16, 2}, {17, 2}, {18, 2}}),
        {0.2, 0.1,  0.3, none, 0.6, none, 0.7,   0,  // Rv: two values of Pg of the one region, then the other
         0.5, 0.25, 0.2, none, 1,   none, 0.125, 0.1,  // 1/B
         1,   1,    0.1, none, 1,   none, 0.25,  1,    // 1/(B mu)
         100, 200,  50,  80},
        4, {.VapourisedOil = true});
  ASSERT_TRUE(qOK_);
  EXPECT_EQ(shown("PVTG", 1, 1),
            "PG=100,100,200 BARSA, RV=0.2,0.1,0.3 SM3/SM3, BG=2,4,5 RM3/SM3, MUG=0.5,0.25,2 CP");
  EXPECT_EQ(shown("PVTG", 2, 1),
            "PG=50,80,80 BARSA, RV=0.6,0.7,0 SM3/SM3, BG=1,8,10 RM3/SM3, MUG=1,0.5,0.1 CP");
  build(words({{14, 1}, {15, 7}, {16, 2}, {17, 1}, {18, 1}}), {0.2, 0.2, 0.5, 0.5, 1, 1, 100, none}, 4,
        {.VapourisedOil = true});
  EXPECT_EQ(shown("PVTG", 1, 1), "PG=100 BARSA, RV=0.2 SM3/SM3, BG=2 RM3/SM3, MUG=0.5 CP");
}

TEST_F(Tables, TheFifthColumnOfWaterIsMadePhysicalOnlyWithoutDefault) {
  build(words({{12, 1}, {13, 1}}), {200, 0.5, 4, 2, 3}, 2);
  tables_.getTable2d("PVTW", 1, values_, sizes_, nDims_, qOK_, false);
  EXPECT_THAT(values_, ElementsAre(200, 0.5F, 4, 2, 1));
  tables_.getTable2d("PVTW", 1, values_, sizes_, nDims_, qOK_, true);
  EXPECT_THAT(values_, ElementsAre(200, 0.5F, 4, 2, 3));
}

TEST_F(Tables, ASingleBlankTakesOnlyWhatFollowsFromIt) {
  session_.NullValue = 0.5;  // a value that tables may have
  build(words({{12, 1}, {13, 1}, {14, 6}, {17, 1}, {18, 1}}), {200, 0.5, 2e20, 2, 3, 100, 0.5, -1e20}, 6);
  EXPECT_EQ(shown("PVTW", 1, 1), "PREF=200 BARSA, BW=2 RM3/SM3, CW=0.5 1/BARS, MUW=0.25 CP, CV=0.5 1/BARS");
  EXPECT_EQ(shown("PVDG", 1, 1), "P=100 BARSA, BG=2 RM3/SM3, MUG=0.5 CP");
  build(words({{12, 1}, {13, 1}}), {200, 2e20, 4, 2, 3}, 2);
  EXPECT_EQ(shown("PVTW", 1, 1), "PREF=200 BARSA, BW=0.5 RM3/SM3, CW=4 1/BARS, MUW=0.5 CP, CV=1 1/BARS");
}

TEST_F(Tables, InvertedColumnsHaveTheNullValueForZero) {
  std::vector<float> values{0.5F, 0, 4, 0.25F, 3, 0};
  const std::int32_t sizes[] = {3, 2};
  tables_.InvertColumns(1, 2, 2, values, sizes, qOK_);
  EXPECT_TRUE(qOK_);
  EXPECT_THAT(values, ElementsAre(2, -999, 4, 2, 0, 0));
  for (const auto& [first, second] : {std::pair{0, 1}, {1, 0}, {3, 1}, {1, 3}}) {
    tables_.InvertColumns(first, second, 3, values, sizes, qOK_);
    EXPECT_FALSE(qOK_);
  }
  EXPECT_THAT(values, ElementsAre(2, -999, 4, 2, 0, 0));
}

TEST_F(Tables, DependOnPhasesAndFlags) {
  std::vector<std::int32_t> everything(tableDimsWords, 1);
  for (const int start : {2, 4, 7, 8, 12, 14, 15, 19, 21, 24, 27, 31, 33, 36})
    everything[static_cast<std::size_t>(start) - 1] = 2;
  const struct {
    std::int32_t phases;
    TableProperties properties;
    std::string expected;
  } rows[] = {
      {1, {}, "SOF2 PVCDO RSVD DENSITY ROCK EQUIL"},
      {2, {.RockCompaction = true}, "SWFN PVTW DENSITY ROCKTAB EQUIL"},
      {4, {}, "SGFN PVDG RVVD DENSITY ROCK EQUIL"},
      {5, {.VapourisedOil = true}, "SGFN PVTG PGAS RVVD SOF2 PVCDO RSVD DENSITY ROCK EQUIL"},
      {7, {.DissolvedGas = true}, "SWFN PVTW SGFN PVDG RVVD SOF3 PVTO RS RSVD DENSITY ROCK EQUIL"},
      {0, {}, "DENSITY ROCK EQUIL"},
  };
  for (const auto& [phases, properties, expected] : rows) {
    build(everything, std::vector<double>(11, 1.5), phases, properties);
    EXPECT_EQ(names(), expected) << phases;
  }
  build(words({{21, 1}, {22, 1}, {23, 0}, {12, 0}, {13, 1}}), {1, 2, 3}, 2);
  EXPECT_TRUE(qOK_);
  EXPECT_EQ(tables_.nTables(), 0);
}

TEST_F(Tables, ThatDoNotLieInTabAreOmitted) {
  constexpr std::int32_t most = 2147483647;
  const struct {
    const char* name;
    std::int32_t start, rows, tables;
  } damages[] = {{"too long", 2, 4, 1},       {"behind", 8, 1, 1},       {"far behind", most, 1, 1},
                 {"overflow", 2, most, most}, {"many rows", 2, most, 1}, {"negative rows", 2, -3, 1},
                 {"many tables", 2, 1, most}};
  for (const auto& [name, start, rows, tables] : damages) {
    session_.clearDiagnoses();
    build(words({{21, 2}, {22, 2}, {23, 1}, {24, start}, {25, rows}, {26, tables}, {19, 5}, {20, 1}}),
          std::vector<double>(9, 0.5), 6);
    EXPECT_FALSE(qOK_) << name;
    EXPECT_EQ(tables_.nTables(), 2) << name;  // SWFN and DENSITY
    ASSERT_THAT(session_.diagnoses(), SizeIs(1)) << name;
    EXPECT_THAT(session_.diagnoses().front().text(),
                AllOf(HasSubstr("SGFN"), HasSubstr("omitted the table")));
  }
  build(words({{21, -1}, {22, 3}, {23, 1}, {24, 1}, {25, 0}, {26, 1}}), {1}, 6);
  EXPECT_TRUE(qOK_);  // no start and no rows are no tables
  EXPECT_EQ(tables_.nTables(), 0);
  EXPECT_EQ(session_.diagnoses().back().message, Message::InitTablesNone);
}

/// An unused table keeps its dimensions and begins at word 1 of TAB.
TEST_F(Tables, AtWordOneAreInUseOnlyIfTheyOwnThePosition) {
  const TableProperties unknown{.known = false};
  const struct {
    const char* why;
    std::initializer_list<std::pair<int, std::int32_t>> set;
    TableProperties properties;
    std::string expected;
  } rows[] = {
      {"extends into another", {{2, 1}, {3, 2}, {31, 1}, {32, 1}, {19, 5}, {20, 1}}, {}, "DENSITY ROCK"},
      {"longest", {{33, 1}, {34, 2}, {35, 1}, {2, 1}, {3, 1}}, {}, "RSVD"},
      {"tie", {{33, 1}, {34, 1}, {35, 1}, {2, 1}, {3, 2}}, {}, "ROCK"},
      {"longer than TAB", {{33, 1}, {34, 90}, {35, 1}, {2, 1}, {3, 1}}, {}, "ROCK"},
      {"live oil, LOGIHEAD all false", {{7, 2}, {8, 8}, {9, 1}, {10, 2}, {11, 1}}, unknown, "PVTO RS"},
      {"dead oil, LOGIHEAD all false", {{7, 2}, {8, 1}, {9, 1}, {10, 2}, {11, 1}}, unknown, "PVDO"},
      {"rock, LOGIHEAD all false", {{2, 1}, {3, 1}, {4, 3}, {5, 2}, {6, 1}}, unknown, "ROCKTAB ROCK"},
  };
  for (const auto& [why, set, properties, expected] : rows) {
    build(words(set), std::vector<double>(20, 1.5), 1, properties);
    EXPECT_EQ(names(), expected) << why;
    EXPECT_TRUE(qOK_) << why;
  }
}

TEST_F(Tables, ADeadOilTableOfOneRowIsThatOfConstantCompressibility) {
  build(words({{7, 1}, {10, 2}, {11, 1}}), {3600, 2e20, 0.8, 0.8, 6.65e-5, 6.65e-5, 0.4, 0.4, 5e-5, 5e-5}, 1);
  EXPECT_EQ(shown("PVCDO", 1, 2),
            "PREF=3600 PSIA, BO=1.25 RB/STB, CO=6.65e-05 1/PSI, MUO=2 CP, CVO=1.65e-05 1/PSI");
  get("PVDO", 1);
  EXPECT_FALSE(qOK_);
}

TEST_F(Tables, OfOneSimulatorHavePressuresAndRatiosInMetricUnits) {
  build(words({{7, 2}, {8, 8}, {9, 1}, {10, 2}, {11, 1}, {19, 10}, {20, 1}}), std::vector<double>(20, 1.5), 1,
        {.DissolvedGas = true});
  tables_.setProgram(simulatorOfMetricTables);
  EXPECT_EQ(shown("PVTO", 1, fieldUnits),
            "RS=1.5,1.5 SM3/SM3, P=1.5,1.5 BARSA, BO=0.666667,0.666667 RB/STB, MUO=1,1 CP");
  EXPECT_EQ(shown("DENSITY", 1, fieldUnits), "OIL=1.5 LB/FT3, WATER=1.5 LB/FT3, GAS=1.5 LB/FT3");
}

TEST_F(Tables, OfAShortRecordHaveTheWordsThatAreThere) {
  for (const std::size_t length : {1, 2, 3, 12, 13, 47}) {
    auto dims = words({{2, 1}, {3, 1}, {12, 3}, {13, 1}});
    dims.resize(length);
    session_.clearDiagnoses();
    build(dims, std::vector<double>(7, 1), 2);
    EXPECT_EQ(session_.diagnoses().front().found, std::to_string(length));
    EXPECT_EQ(names(), length >= 13 ? "PVTW ROCK" : length >= 3 ? "ROCK" : "") << length;
  }
}

}  // namespace
}  // namespace lumbarn
