#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arrays/ArrayReader.h"
#include "support/Guarded.h"
#include "support/IndexedRun.h"
#include "support/RestartBuilder.h"
#include "support/RestartLoad.h"

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
  }
  void read(ArrayReader& reader, auto step, auto name, const char* grid, std::int64_t first, auto values) {
    guarded(session_, qOK_, "ArrayReader", "read", [&] {
      if constexpr (std::is_same_v<decltype(step), std::int32_t>)
        reader.read(step, name, grid, first, values);
      else
        reader.fetch(*step, *name, grid, first, values);
    });
  }
  TemporaryFolder folder_;
  IndexedRun run_;
  Session session_;
  std::vector<std::string> files_;
  ArrayReader reader_;
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
              {1, "DOUBHEAD", "", 0, {1.25, -1e300}},
              {1, "PRESSURE", "LGR1", 0, {1100, 1101, 1102}}};
  for (const auto& row : rows) {
    values.resize(row.expected.size());
    read(reader_, row.step, row.name, row.grid, row.first, std::span(values));
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
    read(reader_, row.step, row.name, row.grid, row.first, std::span(values));
    EXPECT_FALSE(qOK_) << row.name;
    EXPECT_EQ(session_.diagnoses().size(), row.told) << row.name;
    EXPECT_EQ(faults_, row.told == 0 ? 1 : 0) << row.name;
    if (row.told == 0) continue;
    EXPECT_TRUE(session_.diagnoses()[0].offset) << row.name;
  }
  std::vector<float> singles(2);
  read(reader_, 2, "PRESSURE", "", 1, std::span(singles));
  EXPECT_THAT(singles, ElementsAre(201, 202));
  const IndexStep& step = reader_.index().steps[0];
  IndexEntry moved = *step.find("PRESSURE");
  moved.count = 8;
  read(reader_, &step, &moved, "", 0, std::span(values));
  EXPECT_EQ(session_.diagnoses().back().id(), "arrays.array.moved");
}

/// A run that is continued into its own file writes steps again.
TEST_P(ArrayReading, StepsAndArraysOfOneNameAreReachedByPosition) {
  RestartBuilder run;
  run.steps = {{.number = 4}, {.number = 4}};
  run.steps[0].grids[0].arrays = {{"SWAT", {1, 1, 1, 1}}, {"SWAT", {2, 2, 2, 2}}};
  run.steps[1].grids[0].arrays = {
      {"SWAT", {0.5F, 0, 1, 0.5F}}, {"SWAT", {4, 4, 4, 4}}, {"SGAS", {0.25F, 0, 0.5F, 0}}};
  const std::vector<std::string> files{run.write(folder_, "T", form_)};
  ArrayReader reader(walkRestart(session_, files), session_);
  const auto ids = [](const Session& session) {
    std::vector<std::string> all;
    for (const auto& diagnosis : session.diagnoses()) all.emplace_back(diagnosis.id());
    return all;
  };
  std::vector<double> value(1);
  for (int i = 0; i < 2; ++i) {
    read(reader, 4, "swat", "", 0, std::span(value));
    EXPECT_THAT(value, ElementsAre(0.5)) << "the step written last, its first array";
    EXPECT_THAT(ids(session_), ElementsAre("step.twice", "arrays.array.twice"));
  }
  const IndexStep& first = *reader.index().nth(4, 1);
  read(reader, &first, first.findAll("swat").at(1), "", 0, std::span(value));
  EXPECT_THAT(value, ElementsAre(2));
  EXPECT_FALSE(reader.index().nth(4, 3) || reader.index().nth(5));
  std::vector<double> derived(3);
  read(reader, 4, "soil", "", 0, std::span(derived));
  EXPECT_THAT(derived, ElementsAre(0.25, 1, 0)) << "not below 0";

  RestartLoad load(files[0]);
  ASSERT_TRUE(load.run());
  EXPECT_EQ(load.reader.RestartValues(1, 1, 2)[0], 2);
  EXPECT_EQ(load.reader.RestartValues(2, 1, "SWAT")[0], 0.5F);
  EXPECT_THAT(ids(load.session), ElementsAre("arrays.array.twice", "step.twice"));
}

}  // namespace
}  // namespace lumbarn
