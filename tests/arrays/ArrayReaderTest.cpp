#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arrays/ArrayReader.h"
#include "arrays/DerivedSaturation.h"
#include "support/IndexedRun.h"
#include "support/RestartBuilder.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;

class ArrayReading : public OfForm {
 protected:
  ArrayReading()
      : files_(run_.writeRestart(folder_, "R", form_, true)),
        reader_(walkRestart(session_, files_), session_) {
    session_.faultReporter = [this](std::string_view) { ++faults_; };
    writeFile(folder_.file("R.INIT"), run_.init(form_));
    cells_ = reader_.index().steps[0].cellsOf("");
  }
  void tellActiveCells() {
    const auto active = findActiveCells(session_, folder_.file("R.INIT"), "", "", cells_);
    ASSERT_TRUE(active);
    reader_.setActiveCells("", *active);
  }

  TemporaryFolder folder_;
  IndexedRun run_;
  Session session_;
  std::vector<std::string> files_;
  ArrayReader reader_;
  GridCells cells_;
  int faults_ = 0;
  bool qOK_ = false;
};
INSTANTIATE_TEST_SUITE_P(Forms, ArrayReading, ::testing::ValuesIn(everyForm), formName);

TEST_P(ArrayReading, ByNameAsItStands) {
  std::vector<double> values(3);
  const struct {
    std::int32_t step;
    const char *name, *grid;
    std::int64_t first;
    std::vector<double> expected;
  } rows[] = {{2, "PRESSURE", "", 6, {206, 207, 208}},
              {5, "pressure", "near well", 1, {2501, 2502, 2503}},
              {1, "REGION", "ROOT", 6, {7, 8, 16777217}},
              {1, "PRESSURE", "LGR1", 0, {1100, 1101, 1102}}};
  for (const auto& row : rows) {
    reader_.read(row.step, row.name, row.grid, row.first, std::span(values), qOK_);
    EXPECT_TRUE(qOK_) << row.name;
    EXPECT_EQ(values, row.expected) << row.name;
  }
  const struct {
    std::int32_t step;
    const char *name, *grid;
    std::int64_t first;
    std::size_t told;
  } failures[] = {{3, "PRESSURE", "", 0, 1},  {1, "FOO", "", 0, 1},  {1, "PRESSURE", "LGR9", 0, 1},
                  {1, "PRESSURE", "", 7, 0},  {1, "ZWEL", "", 0, 0}, {1, "PRESSURE", "", -1, 0},
                  {1, "PRESSUREXX", "", 0, 1}};
  for (const auto& row : failures) {
    session_.clearDiagnoses();
    faults_ = 0;
    reader_.read(row.step, row.name, row.grid, row.first, std::span(values), qOK_);
    EXPECT_FALSE(qOK_) << row.name;
    EXPECT_EQ(session_.diagnoses().size(), row.told) << row.name;
    EXPECT_EQ(faults_, row.told == 0 ? 1 : 0) << row.name;
    if (row.told == 0) continue;
    EXPECT_TRUE(session_.diagnoses()[0].offset) << row.name;
  }
}

TEST_P(ArrayReading, ByCellWithInactiveOnes) {
  std::vector<double> values(12);
  reader_.readCells(2, "PRESSURE", "", 0, values, qOK_);
  EXPECT_FALSE(qOK_) << "it is not known yet which cells are active";
  EXPECT_EQ(session_.diagnoses().size(), 1U);
  tellActiveCells();
  reader_.readCells(2, "PRESSURE", "", 0, values, qOK_);
  ASSERT_TRUE(qOK_);
  EXPECT_THAT(values, ElementsAre(200, 201, -999, 202, 203, 204, -999, 205, 206, 207, 208, -999));
  session_.NullValue = 0;
  values.resize(4);
  reader_.readCells(2, "REGION", "ROOT", 5, values, qOK_);
  EXPECT_THAT(values, ElementsAre(5, 0, 6, 7));
  reader_.readCells(2, "FULL", "", 8, values, qOK_);
  EXPECT_THAT(values, ElementsAre(208, 209, 210, 0)) << "the file has a value for the inactive cell too";
  reader_.readCells(2, "PRESSURE", "LGR1", 0, values, qOK_);
  EXPECT_TRUE(qOK_) << "all of its cells are active";
  double value = 1;
  reader_.readCell(5, "PRESSURE", "", 2, 2, 2, value, qOK_);
  EXPECT_EQ(value, 508);
  reader_.readCell(5, "PRESSURE", "", 3, 1, 1, value, qOK_);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(faults_, 0);
  reader_.readCell(5, "PRESSURE", "", 4, 1, 1, value, qOK_);
  EXPECT_FALSE(qOK_);
  reader_.readCells(2, "PRESSURE", "", 9, values, qOK_);
  EXPECT_FALSE(qOK_);
  reader_.readCells(2, "ICON", "", 0, values, qOK_);
  EXPECT_FALSE(qOK_) << "no array of cells";
}

/// Simulators omit one saturation.
TEST_P(ArrayReading, DerivedSaturations) {
  RestartBuilder run;
  run.steps = {{.number = 1}};
  run.steps[0].grids[0].arrays = {{"SWAT", {0.25F, 0.5F, 1, 0}}, {"SGAS", {0.25F, 0, 0.5F, 0}}};
  const std::vector<std::string> files{run.write(folder_, "D", form_)};
  ArrayReader reader(walkRestart(session_, files), session_);
  const auto derived = derivedArray(reader.index().steps[0], "");
  ASSERT_TRUE(derived && derived->isDerived());
  EXPECT_EQ(derived->keyword.view(), "SOIL");
  std::vector<double> values(3);
  reader.read(1, "soil", "", 1, std::span(values), qOK_);
  EXPECT_THAT(values, ElementsAre(0.5, 0, 1)) << "not below 0";
  double value = 0;
  reader.readCell(1, "SOIL", "ROOT", 1, 1, 1, value, qOK_);
  EXPECT_EQ(value, 0.5);
}

}  // namespace
}  // namespace lumbarn
