#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "init/BlankRows.h"
#include "init/qvEclipseDTAB.h"
#include "record/RecordCursor.h"
#include "shapes/HeaderLayout.h"

namespace lumbarn {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// The tables of a sample run, read from its two records alone.
class SampleTables {
 public:
  explicit SampleTables(const std::string& file, std::int32_t phases, bool dissolvedGas) {
    std::string why;
    auto cursor = openRecords(LUMBARN_EXAMPLES "/data/" + file, why);
    while (cursor && cursor->next()) {
      if (cursor->header().keyword == "TABDIMS") tables.processTABDIMS(cursor->integers(), qOK);
      if (cursor->header().keyword == "TAB") tables.addDTAB(cursor->doubles(), qOK);
    }
    tables.setPhases(phases);
    tables.setTableProperties({.DissolvedGas = dissolvedGas});
    tables.processTables(qOK);
  }
  /// The rows of a table, as they stand in a deck.
  std::vector<std::vector<double>> rows(std::string_view name) {
    std::vector<std::vector<double>> result;
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

void expectRows(const std::vector<std::vector<double>>& found, const std::vector<std::vector<double>>& deck) {
  ASSERT_EQ(found.size(), deck.size());
  for (std::size_t i = 0; i < deck.size(); ++i) {
    ASSERT_EQ(found[i].size(), deck[i].size());
    for (std::size_t c = 0; c < deck[i].size(); ++c)
      EXPECT_NEAR(found[i][c], deck[i][c], 1e-7 * std::abs(deck[i][c])) << "row " << i << ", column " << c;
  }
}

TEST(PhysicalTables, AreTheNumbersOfTheDeck) {
  SampleTables arbor("ARBOR/ARBOR.INIT", 7, true);
  ASSERT_TRUE(arbor.qOK);
  expectRows(arbor.rows("PVDG"), {{14.700, 166.666, 0.008000},
                                  {264.70, 12.0930, 0.009600},
                                  {514.70, 6.27400, 0.011200},
                                  {1014.7, 3.19700, 0.014000},
                                  {2014.7, 1.61400, 0.018900},
                                  {2514.7, 1.29400, 0.020800},
                                  {3014.7, 1.08000, 0.022800},
                                  {4014.7, 0.81100, 0.026800},
                                  {5014.7, 0.64900, 0.030900},
                                  {9014.7, 0.38600, 0.047000}});
  expectRows(arbor.rows("PVTO"), {{0.0010, 14.7, 1.0620, 1.0400},
                                  {0.0905, 264.7, 1.1500, 0.9750},
                                  {0.1800, 514.7, 1.2070, 0.9100},
                                  {0.3710, 1014.7, 1.2950, 0.8300},
                                  {0.6360, 2014.7, 1.4350, 0.6950},
                                  {0.7750, 2514.7, 1.5000, 0.6410},
                                  {0.9300, 3014.7, 1.5650, 0.5940},
                                  {1.2700, 4014.7, 1.6950, 0.5100},
                                  {1.2700, 9014.7, 1.5790, 0.7400},
                                  {1.6180, 5014.7, 1.8270, 0.4490},
                                  {1.6180, 9014.7, 1.7370, 0.6310}});
  expectRows(arbor.rows("PVTW"), {{4017.55, 1.038, 3.22E-6, 0.318, 0.0}});
  expectRows(arbor.rows("DENSITY"), {{53.66, 64.49, 0.0533}});
  // SWOF: its first two columns and the last. The writer has 0 for permeabilities below 1E-6.
  expectRows(arbor.rows("SWFN"), {{0.12, 0, 0},
                                  {0.18, 0, 0},
                                  {0.24, 0, 0},
                                  {0.3, 0, 0},
                                  {0.36, 0, 0},
                                  {0.42, 1.16219008264463E-006, 0},
                                  {0.48, 1.67355371900826E-006, 0},
                                  {0.54, 2.27789256198347E-006, 0},
                                  {0.6, 2.97520661157025E-006, 0},
                                  {0.66, 3.7654958677686E-006, 0},
                                  {0.72, 4.64876033057851E-006, 0},
                                  {0.78, 0.000005625, 0},
                                  {0.84, 6.69421487603306E-006, 0},
                                  {0.91, 8.05914256198347E-006, 0},
                                  {1, 0.00001, 0}});
  // SGOF likewise.
  expectRows(arbor.rows("SGFN"), {{0, 0, 0},
                                  {0.001, 0, 0},
                                  {0.02, 0, 0},
                                  {0.05, 0.005, 0},
                                  {0.12, 0.025, 0},
                                  {0.2, 0.075, 0},
                                  {0.25, 0.125, 0},
                                  {0.3, 0.190, 0},
                                  {0.4, 0.410, 0},
                                  {0.45, 0.60, 0},
                                  {0.5, 0.72, 0},
                                  {0.6, 0.87, 0},
                                  {0.7, 0.94, 0},
                                  {0.85, 0.98, 0},
                                  {0.88, 0.984, 0}});
  // The oil columns of both stand in one table by oil saturation, at the nodes of both: 1 - Sw for the one,
  // 1 - Swco - Sg for the other.
  const auto oil = arbor.rows("SOF3");
  const auto at = [&](double so, std::size_t column) {
    for (const auto& row : oil) {
      if (std::abs(row[0] - so) < 1e-9) return row[column];
    }
    return -1.0;
  };
  const double krow[][2] = {{0.12, 1},    {0.24, 0.997}, {0.3, 0.98},    {0.36, 0.7},
                            {0.42, 0.35}, {0.48, 0.2},   {0.54, 0.09},   {0.6, 0.021},
                            {0.66, 0.01}, {0.72, 0.001}, {0.78, 0.0001}, {1, 0}};
  for (const auto& [sw, kr] : krow) EXPECT_NEAR(at(1 - sw, 1), kr, 1e-7) << sw;
  const double krog[][2] = {{0.001, 1},  {0.02, 0.997}, {0.05, 0.98}, {0.12, 0.7},  {0.2, 0.35},  {0.25, 0.2},
                            {0.3, 0.09}, {0.4, 0.021},  {0.45, 0.01}, {0.5, 0.001}, {0.6, 0.0001}};
  for (const auto& [sg, kr] : krog) EXPECT_NEAR(at(0.88 - sg, 2), kr, 1e-7) << sg;
}

TEST(PhysicalTables, OfADeadOilRun) {
  SampleTables hollin("HOLLIN/HOLLIN.INIT", 3, false);
  ASSERT_TRUE(hollin.qOK);
  expectRows(hollin.rows("PVDO"), {{50, 1.12, 1.4}, {150, 1.10, 1.5}, {250, 1.08, 1.6}, {400, 1.06, 1.8}});
  expectRows(hollin.rows("PVTW"), {{200, 1.02, 4.5E-5, 0.4, 0}});
  expectRows(hollin.rows("SWFN"), {{0.2, 0, 0}, {0.4, 0.05, 0}, {0.6, 0.2, 0}, {0.8, 0.5, 0}, {1, 1, 0}});
  expectRows(hollin.rows("SOF2"), {{0, 0}, {0.2, 0}, {0.4, 0.1}, {0.6, 0.45}, {0.8, 0.9}});
}

TEST(PhysicalTables, WordsLeftAtOneAreKeptAndTold) {
  SampleTables arbor("ARBOR/ARBOR.INIT", 7, true);
  std::vector<std::string> names;
  std::int32_t count = 0;
  arbor.tables.getTableNames(names, count);
  EXPECT_THAT(names, ElementsAre("SWFN", "PVTW", "SGFN", "PVDG", "RVVD", "SOF3", "PVTO", "RS", "RSVD",
                                 "DENSITY", "ROCK", "EQUIL"));
  for (const auto* name : {"RVVD", "RSVD", "ROCK", "EQUIL"}) EXPECT_EQ(arbor.tables.overlaps(name), "PVDG");
  EXPECT_EQ(arbor.tables.overlaps("PVDG"), "");
  ASSERT_THAT(arbor.session.diagnoses(), SizeIs(1));
  EXPECT_THAT(arbor.session.diagnoses().front().problem, HasSubstr("ROCK, EQUIL would stand where PVDG"));
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

TEST_F(Tables, TheFifthColumnOfWaterIsMadePhysicalOnlyWithoutDefault) {
  build(words({{12, 1}, {13, 1}}), {200, 0.5, 4, 2, 3}, 2);
  tables_.getTable2d("PVTW", 1, values_, sizes_, nDims_, qOK_, false);
  EXPECT_THAT(values_, ElementsAre(200, 0.5F, 4, 2, 1));
  tables_.getTable2d("PVTW", 1, values_, sizes_, nDims_, qOK_, true);
  EXPECT_THAT(values_, ElementsAre(200, 0.5F, 4, 2, 3));
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
  const auto everything =
      words({{2, 1},  {3, 1},  {4, 1},  {5, 1},  {6, 1},  {7, 1},  {8, 1},  {9, 1},  {10, 1},
             {11, 1}, {12, 1}, {13, 1}, {14, 1}, {15, 1}, {16, 1}, {17, 1}, {18, 1}, {19, 1},
             {20, 1}, {21, 1}, {22, 1}, {23, 1}, {24, 1}, {25, 1}, {26, 1}, {27, 1}, {29, 1},
             {30, 1}, {31, 1}, {32, 1}, {33, 1}, {34, 1}, {35, 1}, {36, 1}, {37, 1}, {38, 1}});
  const struct {
    std::int32_t phases;
    TableProperties properties;
    std::string names;
  } rows[] = {
      {1, {}, "SOF2 PVDO RSVD DENSITY ROCK EQUIL"},
      {2, {.RockCompaction = true}, "SWFN PVTW DENSITY ROCKTAB EQUIL"},
      {4, {}, "SGFN PVDG RVVD DENSITY ROCK EQUIL"},
      {5, {.VapourisedOil = true}, "SGFN PVTG PGAS RVVD SOF2 PVDO RSVD DENSITY ROCK EQUIL"},
      {7, {.DissolvedGas = true}, "SWFN PVTW SGFN PVDG RVVD SOF3 PVTO RS RSVD DENSITY ROCK EQUIL"},
      {0, {}, "DENSITY ROCK EQUIL"},
  };
  for (const auto& [phases, properties, names] : rows) {
    build(everything, std::vector<double>(10, 1.5), phases, properties);
    std::string found;
    for (const auto& table : tables_.tables()) found += (found.empty() ? "" : " ") + table.zTable;
    EXPECT_EQ(found, names) << phases;
  }
  build(words({{21, 1}, {22, 1}, {23, 0}, {12, 0}, {13, 1}}), {1, 2, 3}, 2);
  EXPECT_TRUE(qOK_);
  EXPECT_EQ(tables_.nTables(), 0);
}

TEST_F(Tables, ThatDoNotLieInTabEndTheBuilding) {
  constexpr std::int32_t most = 2147483647;
  const struct {
    const char* name;
    std::int32_t start, rows, tables;
  } damages[] = {{"too long", 1, 4, 1},       {"behind", 8, 1, 1},       {"far behind", most, 1, 1},
                 {"overflow", 1, most, most}, {"many rows", 1, most, 1}, {"negative rows", 1, -3, 1},
                 {"many tables", 1, 1, most}};
  for (const auto& [name, start, rows, tables] : damages) {
    session_.clearDiagnoses();
    build(words({{21, 1}, {22, 3}, {23, 1}, {24, start}, {25, rows}, {26, tables}, {19, 1}, {20, 1}}),
          std::vector<double>(9, 0.5), 6);
    EXPECT_FALSE(qOK_) << name;
    EXPECT_EQ(tables_.nTables(), 1) << name;  // SWFN in front stays, DENSITY behind is not reached
    ASSERT_THAT(session_.diagnoses(), SizeIs(1)) << name;
    EXPECT_THAT(session_.diagnoses().front().text(),
                AllOf(HasSubstr("SGFN"), HasSubstr("kept the 1 tables")));
  }
  build(words({{21, -1}, {22, 3}, {23, 1}, {24, 1}, {25, 0}, {26, 1}}), {1}, 6);
  EXPECT_TRUE(qOK_);  // no start and no rows are no tables
  EXPECT_EQ(tables_.nTables(), 0);
}

TEST_F(Tables, OfAShortRecordHaveTheWordsThatAreThere) {
  auto dims = words({{2, 1}, {3, 1}, {12, 1}, {13, 1}});
  for (const std::size_t length : {1, 2, 3, 12, 13, 47}) {
    qvEclipseDTAB tables(session_);
    session_.clearDiagnoses();
    tables.processTABDIMS(std::span(dims).first(length), qOK_);
    EXPECT_FALSE(qOK_);
    EXPECT_THAT(session_.diagnoses(), SizeIs(1));
    tables.addDTAB(std::vector<double>(5, 1), qOK_);
    tables.setPhases(2);
    tables.processTables(qOK_);
    EXPECT_TRUE(qOK_);
    EXPECT_EQ(tables.getNumberTables("ROCK"), length >= 3 ? 1 : 0) << length;
    EXPECT_EQ(tables.getNumberTables("PVTW"), length >= 13 ? 1 : 0) << length;
  }
}

}  // namespace
}  // namespace lumbarn
