#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <numeric>
#include <string>
#include <vector>

#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "init/qvEclipseDTAB.h"
#include "record/RecordCursor.h"
#include "shapes/HeaderLayout.h"
#include "support/Paths.h"

namespace lumbarn {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using Rows = std::vector<std::vector<double>>;

/// The tables of a sample run, read from its two records alone.
class SampleTables {
 public:
  explicit SampleTables(const std::string& file, std::int32_t phases, bool dissolvedGas) {
    std::string why;
    auto cursor = openRecords(examplePath("/data/") + file, why);
    while (cursor && cursor->next()) {
      if (cursor->header().keyword == "TABDIMS") tables.processTABDIMS(cursor->integers(), qOK);
      if (cursor->header().keyword == "TAB") tables.addDTAB(cursor->doubles(), qOK);
    }
    tables.setPhases(phases);
    tables.setTableProperties({.DissolvedGas = dissolvedGas});
    tables.processTables(qOK);
  }
  /// The rows of a table, as they stand in a deck.
  Rows rows(std::string_view name) {
    Rows result;
    const auto table = tables.physicalTable(name, 1, 2, qOK);
    for (std::size_t i = 0; i < table.rows(); ++i) {
      auto& row = result.emplace_back();
      for (const auto& column : table.columns) row.push_back(column.values[i]);
    }
    return result;
  }
  Session session;
  qvEclipseDTAB tables{session};
  bool qOK = false;
};

void expectRows(const Rows& found, const Rows& deck, std::string_view table) {
  ASSERT_EQ(found.size(), deck.size()) << table;
  for (std::size_t i = 0; i < deck.size(); ++i) {
    ASSERT_EQ(found[i].size(), deck[i].size()) << table;
    for (std::size_t c = 0; c < deck[i].size(); ++c)
      EXPECT_NEAR(found[i][c], deck[i][c], 1e-7 * std::abs(deck[i][c]))
          << table << ", row " << i << ", column " << c;
  }
}

/// The numbers of a keyword of a deck, up to each "/".
Rows deckRecords(const std::string& file, std::string_view keyword) {
  std::ifstream deck(examplePath("/data/") + file);
  Rows records(1);
  std::string word;
  while (deck >> word && word != keyword) {
  }
  while (deck >> word && std::isalpha(static_cast<unsigned char>(word.front())) == 0) {
    word == "/" ? records.push_back({}) : records.back().push_back(std::atof(word.c_str()));
  }
  std::erase_if(records, [](const auto& record) { return record.empty(); });
  return records;
}

/// Columns of a table of so many columns.
Rows columnsOf(const std::vector<double>& numbers, std::size_t width,
               std::initializer_list<std::size_t> columns) {
  Rows rows;
  for (std::size_t first = 0; first < numbers.size(); first += width) {
    auto& row = rows.emplace_back();
    for (const auto column : columns) row.push_back(numbers.at(first + column));
  }
  return rows;
}

TEST(PhysicalTables, AreTheNumbersOfTheDeck) {
  for (const bool gas : {true, false}) {
    SampleTables run(gas ? "ARBOR/ARBOR.INIT" : "HOLLIN/HOLLIN.INIT", gas ? 7 : 3, gas);
    ASSERT_TRUE(run.qOK);
    const auto records = [&](std::string_view keyword) {
      return deckRecords(gas ? "ARBOR/ARBOR.DATA" : "HOLLIN/HOLLIN.DATA", keyword);
    };
    const auto expectDeck = [&](std::string_view table) {
      expectRows(run.rows(table), columnsOf(records(table).at(0), 3, {0, 1, 2}), table);
    };
    expectDeck(gas ? "PVDG" : "PVDO");
    expectDeck("DENSITY");
    expectRows(run.rows("PVTW"), records("PVTW"), "PVTW");

    const auto saturations = records("SWOF").at(0);
    auto water = columnsOf(saturations, 4, {0, 1, 3});
    for (auto& row : water) row[1] = row[1] < 1e-6 ? 0 : row[1];  // the writer does so
    expectRows(run.rows("SWFN"), water, "SWFN");
    // The oil columns stand in one table by oil saturation, at the nodes of both: 1 - Sw for the one, less
    // the lowest Sw for the other.
    const auto oil = run.rows(gas ? "SOF3" : "SOF2");
    const auto expectOil = [&](const Rows& relative, double most, std::size_t column) {
      for (const auto& row : relative) {
        const auto node =
            std::ranges::find_if(oil, [&](const auto& at) { return std::abs(at[0] - most + row[0]) < 1e-9; });
        ASSERT_NE(node, oil.end()) << row[0];
        EXPECT_NEAR((*node)[column], row[1], 1e-7) << row[0];
      }
    };
    expectOil(columnsOf(saturations, 4, {0, 2}), 1, 1);
    if (!gas) continue;
    const auto gasSaturations = records("SGOF").at(0);
    expectRows(run.rows("SGFN"), columnsOf(gasSaturations, 4, {0, 1, 3}), "SGFN");
    expectOil(columnsOf(gasSaturations, 4, {0, 2}), 1 - saturations[0], 2);
    Rows liveOil, dissolved;
    for (const auto& record : records("PVTO")) {
      dissolved.push_back({record[0]});
      for (const auto& row : columnsOf({record.begin() + 1, record.end()}, 3, {0, 1, 2}))
        liveOil.push_back({record[0], row[0], row[1], row[2]});
    }
    expectRows(run.rows("PVTO"), liveOil, "PVTO");
    expectRows(run.rows("RS"), dissolved, "RS");
  }
}

TEST(PhysicalTables, ThatAreNotInUseAreNotListed) {
  SampleTables arbor("ARBOR/ARBOR.INIT", 7, true);
  std::vector<std::string> names;
  std::int32_t count = 0;
  arbor.tables.getTableNames(names, count);
  EXPECT_THAT(names, ElementsAre("SWFN", "PVTW", "SGFN", "PVDG", "SOF3", "PVTO", "RS", "DENSITY"));
  EXPECT_THAT(arbor.session.diagnoses(), IsEmpty());
}

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
  for (const auto& [name, number] : {std::pair{"SWFN", 0}, {"SWFN", 3}, {"PVTO", 1}, {"", 1}}) {
    get(name, number);
    EXPECT_FALSE(qOK_) << name << number;
  }
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
  tables_.getTableHeaders2D("PVTO", 1, headers, qOK_);
  ASSERT_EQ(headers.entries(), 4u);
  EXPECT_EQ(ExtractAttribute(attributeMember, headers, 1), "RS");
  EXPECT_EQ(ExtractAttribute(attributeVariable, headers, 3), "1/BO");

  const auto physical = tables_.physicalTable("PVTO", 1, 2, qOK_);
  ASSERT_THAT(physical.columns, SizeIs(4));
  EXPECT_THAT(physical.columns[0].values, ElementsAre(7, 7, 8));
  EXPECT_THAT(physical.columns[2].values, ElementsAre(2, 4, 5));
  EXPECT_THAT(physical.columns[3],
              AllOf(Field(&PhysicalTable::Column::name, "MUO"), Field(&PhysicalTable::Column::units, "CP"),
                    Field(&PhysicalTable::Column::values, ElementsAre(2, 2, 2))));
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
  const auto columns = [&](std::int32_t region) {
    std::vector<std::vector<double>> all;
    for (auto& column : tables_.physicalTable("PVTG", region, 1, qOK_).columns) all.push_back(column.values);
    return all;
  };
  EXPECT_THAT(columns(1), ElementsAre(ElementsAre(100, 100, 200), ElementsAre(0.2, 0.1, 0.3),
                                      ElementsAre(2, 4, 5), ElementsAre(0.5, 0.25, 2)));
  EXPECT_THAT(columns(2), ElementsAre(ElementsAre(50, 80, 80), ElementsAre(0.6, 0.7, 0),
                                      ElementsAre(1, 8, 10), ElementsAre(1, 0.5, 0.1)));
}

/// Tables that no sample run has: the second of two regions, TAB counting up from 1.
TEST_F(Tables, StandWhereTheirWordsSay) {
  const struct {
    const char* name;
    std::initializer_list<std::pair<int, std::int32_t>> set;
    std::int32_t iUnits;
    std::string columns;
  } rows[] = {
      {"ROCK", {{2, 1}, {3, 2}}, 4, "PREF=2 ATMA, CR=4 1/ATM"},
      {"ROCKTAB", {{4, 1}, {5, 2}, {6, 2}}, 3, "P=3,4 ATMA, PVMULT=7,8, TRMULT=11,12"},
      {"DENSITY", {{19, 1}, {20, 2}}, 3, "OIL=2 GM/CC, WATER=4 GM/CC, GAS=6 GM/CC"},
      {"RSVD", {{33, 1}, {34, 2}, {35, 2}}, 2, "DEPTH=3,4 FT, RS=7,8 MSCF/STB"},
      {"RVVD", {{36, 1}, {37, 2}, {38, 2}}, 2, "DEPTH=3,4 FT, RV=7,8 STB/MSCF"},
      {"EQUIL",
       {{31, 1}, {32, 2}},
       1,
       "DEPTH=2 M, P=4 BARSA, WOC=6 M, PCOW=8 BARS, GOC=10 M, PCOG=12 BARS, RSTYPE=14, RVTYPE=16, "
       "ACCURACY=18, ITEM10=20"},
  };
  std::vector<double> tab(20);
  std::iota(tab.begin(), tab.end(), 1);
  for (const auto& [name, set, iUnits, columns] : rows) {
    build(words(set), tab, 7, {.RockCompaction = name == std::string("ROCKTAB")});
    const auto table = tables_.physicalTable(name, 2, iUnits, qOK_);
    std::string found;
    for (const auto& column : table.columns)
      found += fmt::format("{}{}={}{}{}", found.empty() ? "" : ", ", column.name,
                           fmt::join(column.values, ","), column.units.empty() ? "" : " ", column.units);
    EXPECT_EQ(found, columns) << name;
  }
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
  const auto rowOf = [&](std::string_view name) {
    std::vector<double> row;
    for (const auto& column : tables_.physicalTable(name, 1, 1, qOK_).columns)
      row.push_back(column.values.at(0));
    return row;
  };
  build(words({{12, 1}, {13, 1}, {14, 6}, {17, 1}, {18, 1}}), {200, 0.5, 2e20, 2, 3, 100, 0.5, -1e20}, 6);
  EXPECT_THAT(rowOf("PVTW"), ElementsAre(200, 2, 0.5, 0.25, 0.5));
  EXPECT_THAT(rowOf("PVDG"), ElementsAre(100, 2, 0.5));
  build(words({{12, 1}, {13, 1}}), {200, 2e20, 4, 2, 3}, 2);
  EXPECT_THAT(rowOf("PVTW"), ElementsAre(200, 0.5, 4, 0.5, 1));
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
    std::string names;
  } rows[] = {
      {1, {}, "SOF2 PVCDO RSVD DENSITY ROCK EQUIL"},
      {2, {.RockCompaction = true}, "SWFN PVTW DENSITY ROCKTAB EQUIL"},
      {4, {}, "SGFN PVDG RVVD DENSITY ROCK EQUIL"},
      {5, {.VapourisedOil = true}, "SGFN PVTG PGAS RVVD SOF2 PVCDO RSVD DENSITY ROCK EQUIL"},
      {7, {.DissolvedGas = true}, "SWFN PVTW SGFN PVDG RVVD SOF3 PVTO RS RSVD DENSITY ROCK EQUIL"},
      {0, {}, "DENSITY ROCK EQUIL"},
  };
  for (const auto& [phases, properties, names] : rows) {
    build(everything, std::vector<double>(11, 1.5), phases, properties);
    std::string found;
    for (const auto& table : tables_.tables()) found += (found.empty() ? "" : " ") + table.zTable;
    EXPECT_EQ(found, names) << phases;
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
}

/// An unused table keeps its dimensions and begins at word 1 of TAB.
TEST_F(Tables, AtWordOneAreInUseOnlyIfTheyOwnThePosition) {
  const TableProperties unknown{.known = false};
  const struct {
    const char* why;
    std::initializer_list<std::pair<int, std::int32_t>> set;
    TableProperties properties;
    std::string names;
  } rows[] = {
      {"extends into another", {{2, 1}, {3, 2}, {31, 1}, {32, 1}, {19, 5}, {20, 1}}, {}, "DENSITY ROCK"},
      {"longest", {{33, 1}, {34, 2}, {35, 1}, {2, 1}, {3, 1}}, {}, "RSVD"},
      {"tie", {{33, 1}, {34, 1}, {35, 1}, {2, 1}, {3, 2}}, {}, "ROCK"},
      {"longer than TAB", {{33, 1}, {34, 90}, {35, 1}, {2, 1}, {3, 1}}, {}, "ROCK"},
      {"live oil, LOGIHEAD all false", {{7, 2}, {8, 8}, {9, 1}, {10, 2}, {11, 1}}, unknown, "PVTO RS"},
      {"dead oil, LOGIHEAD all false", {{7, 2}, {8, 1}, {9, 1}, {10, 2}, {11, 1}}, unknown, "PVDO"},
      {"rock, LOGIHEAD all false", {{2, 1}, {3, 1}, {4, 3}, {5, 2}, {6, 1}}, unknown, "ROCKTAB ROCK"},
  };
  for (const auto& [why, set, properties, names] : rows) {
    build(words(set), std::vector<double>(20, 1.5), 1, properties);
    std::string found;
    for (const auto& table : tables_.tables()) found += (found.empty() ? "" : " ") + table.zTable;
    EXPECT_EQ(found, names) << why;
    EXPECT_TRUE(qOK_) << why;
  }
}

TEST_F(Tables, RowsWithoutAFirstValueDoNotExist) {
  // Unused rows have a multiple of 1E20 in the first column, and the last value of the others.
  build(words({{21, 1}, {22, 4}, {23, 1}}), {0.2, 0.8, 1e22, -1e20, 0, 1, 1, 1, 5, 0, 0, 0}, 2);
  get("SWFN", 1);
  EXPECT_THAT(sizes_, ElementsAre(2, 3));
  EXPECT_THAT(values_, ElementsAre(0.2F, 0.8F, 0, 1, 5, 0));
  EXPECT_EQ(tables_.physicalTable("SWFN", 1, 1, qOK_).rows(), 2);
}

TEST_F(Tables, ADeadOilTableOfOneRowIsThatOfConstantCompressibility) {
  build(words({{7, 1}, {10, 2}, {11, 1}}), {3600, 2e20, 0.8, 0.8, 6.65e-5, 6.65e-5, 0.4, 0.4, 5e-5, 5e-5}, 1);
  const auto table = tables_.physicalTable("PVCDO", 1, 2, qOK_);
  std::string found;
  for (const auto& column : table.columns)
    found += fmt::format("{}={:.4g} {}, ", column.name, fmt::join(column.values, ","), column.units);
  EXPECT_EQ(found, "PREF=3600 PSIA, BO=1.25 RB/STB, CO=6.65e-05 1/PSI, MUO=2 CP, CVO=1.65e-05 1/PSI, ");
  get("PVDO", 1);
  EXPECT_FALSE(qOK_);
}

TEST_F(Tables, OfOneSimulatorHavePressuresInMetricUnits) {
  build(words({{7, 2}, {8, 8}, {9, 1}, {10, 2}, {11, 1}, {19, 10}, {20, 1}}), std::vector<double>(20, 1.5), 1,
        {.DissolvedGas = true});
  tables_.setProgram(simulatorOfMetricTables);
  std::string found;
  for (const auto* name : {"PVTO", "DENSITY"}) {
    for (const auto& column : tables_.physicalTable(name, 1, fieldUnits, qOK_).columns)
      found += column.units + " ";
  }
  EXPECT_EQ(found, "SM3/SM3 BARSA RB/STB CP LB/FT3 LB/FT3 LB/FT3 ");
}

TEST_F(Tables, OfAShortRecordHaveTheWordsThatAreThere) {
  auto dims = words({{2, 1}, {3, 1}, {12, 3}, {13, 1}});
  for (const std::size_t length : {1, 2, 3, 12, 13, 47}) {
    qvEclipseDTAB tables(session_);
    session_.clearDiagnoses();
    tables.processTABDIMS(std::span(dims).first(length), qOK_);
    EXPECT_FALSE(qOK_);
    EXPECT_THAT(session_.diagnoses(), SizeIs(1));
    tables.addDTAB(std::vector<double>(7, 1), qOK_);
    tables.setPhases(2);
    tables.processTables(qOK_);
    EXPECT_TRUE(qOK_);
    EXPECT_EQ(tables.getNumberTables("ROCK"), length >= 3 ? 1 : 0) << length;
    EXPECT_EQ(tables.getNumberTables("PVTW"), length >= 13 ? 1 : 0) << length;
  }
}

}  // namespace
}  // namespace lumbarn
