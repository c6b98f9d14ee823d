#include <array>
#include <tuple>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arrays/ArrayReader.h"
#include "arrays/ArrayUnits.h"
#include "index/RestartIndex.h"
#include "shapes/HeaderLayout.h"
#include "support/Fault.h"
#include "support/FaultySource.h"
#include "support/IndexedRun.h"
#include "support/RestartBuilder.h"
#include "support/RestartLoad.h"

namespace lumbarn {
namespace {

using test::RestartBuilder;
using test::RestartLoad;
using test::TemporaryFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(HeaderWordsTest, ActiveCellsDependOnTheSimulator) {
  const std::tuple<std::size_t, std::int32_t, std::int32_t, std::int32_t, std::int64_t, std::int64_t> rows[] =
      {{411, 7, 100, 0, 5, 5}, {411, 7, 300, 0, 7, 7}, {411, 7, 300, 1, 5, 7},
       {411, 0, 300, 0, 5, 5}, {95, 7, 300, 0, 7, 7},  {94, 7, 300, 0, 5, 5}};
  for (const auto& [words, word4, program, word96, nActive, ofInit] : rows) {
    std::vector<std::int32_t> header(411);
    header[3] = word4, header[8] = 2, header[9] = 3, header[10] = 4, header[11] = 5;
    header[94] = program, header[95] = word96;
    header.resize(words);
    EXPECT_EQ(gridCells(header, true).cells, 24);
    EXPECT_EQ(gridCells(header, true).active, ofInit) << words << " words, simulator " << program;
    EXPECT_EQ(gridCells(header, false).active, nActive);
  }
  EXPECT_EQ(cellCount(46341, 46341, 2), 4294976562);
  EXPECT_THROW(cellCount(2147483647, 2147483647, 3), Fault);
}

class RestartForms : public test::OfForm {
 protected:
  RestartLoad load(const RestartBuilder& run) { return RestartLoad(run.write(folder_, "RUN", form_)); }
  TemporaryFolder folder_;
};
INSTANTIATE_TEST_SUITE_P(Forms, RestartForms, ::testing::ValuesIn(test::everyForm), test::formName);

RestartBuilder threePhases() {
  RestartBuilder run;
  run.steps = {{1, 10.25, {15, 7, 2003}}};
  run.steps[0].grids[0].arrays = {{"PRESSURE", {101.5F, 102, 103, 104}},
                                  {"SWAT", {0.25F, 0.5F, 0.75F, 1}},
                                  {"FIPNUM", {1, 2, 9999999, -4}, true},
                                  {"SGAS", {0.25F, 0.5F, 0.5F, -0.5F}}};
  return run;
}

/// A host reads the values when it needs them, by nothing but their positions.
TEST_P(RestartForms, PlacesLeadToTheValues) {
  auto whole = load(threePhases());
  ASSERT_TRUE(whole.run());
  auto places = load(threePhases());
  places.reader.LoadData = false;
  ASSERT_TRUE(places.run() && places.fetch(1));
  EXPECT_TRUE(places.qFOD);
  EXPECT_EQ(places.names(), whole.names());
  EXPECT_THAT(places.values("PRESSURE"), IsEmpty());
  EXPECT_EQ(places.table.rows(), 1U);
  EXPECT_EQ(places.table.columns(), 5U);
  EXPECT_EQ(places.table(1, 1), -1);

  FileTypeSettings settings;
  bool qOK = false;
  places.reader.getEclipseFODInfo(settings, qOK);
  ArrayReader reader(places.session);
  const auto column = [&](std::size_t i) {
    std::array<std::int32_t, 5> items{};
    for (std::size_t row = 1; row <= 5; ++row) items[row - 1] = places.places(row, i);
    return items;
  };
  for (std::size_t i : {4U, 1U, 2U, 3U}) {
    std::vector<float> values(4);
    reader.readFetched(places.reader.FileName, settings, column(i), 0, values);
    EXPECT_EQ(values, whole.values(whole.names()[i - 1]));
  }
  EXPECT_THAT(column(5), ElementsAre(4, 19, 4, 4, 1)) << "derived";
  const auto first = column(1);
  for (const std::array<std::int32_t, 4> wrong :
       {std::array{4, 19, 4, 4}, {4, 3, 0, 0}, {4, 3, first[2], 7}, {-1, 3, first[2], 0}}) {
    std::vector<float> values(2);
    const std::array items{wrong[0], wrong[1], wrong[2], wrong[3], 1};
    EXPECT_ANY_THROW(reader.readFetched(places.reader.FileName, settings, items, 0, values))
        << wrong[0] << " " << wrong[1] << " " << wrong[3];
  }
}

TEST_P(RestartForms, LocalGridsFollowTheGlobalOne) {
  auto run = threePhases();
  run.gridEnd = RestartBuilder::GridEnd::OneInteger;
  auto& grids = run.steps[0].grids;
  grids.push_back({"ONE", {1, 1, 1}, 1, {{"PRESSURE", {7}}, {"SWAT", {1}}}, {}});
  grids.push_back({"NONE", {2, 1, 1}, 2, {}, {}});
  run.steps.push_back(run.steps[0]);
  auto loaded = load(run);
  ASSERT_TRUE(loaded.run()) << loaded.lastDiagnosis().text();
  EXPECT_THAT(loaded.names(1, 2), ElementsAre("PRESSURE", "SWAT")) << "ENDLGR is no array; SOIL needs SGAS";
  EXPECT_EQ(loaded.reader.RestartSteps()[0].nGrids, 3);
  EXPECT_EQ(loaded.reader.RestartSteps()[1].nGrids, 2) << "a last grid without arrays goes at the file's end";
  ASSERT_TRUE(loaded.fetch(1, 2));
  EXPECT_EQ(ExtractAttribute(attributeLGRName, loaded.headers, 1), "ONE");
  EXPECT_FALSE(loaded.fetch(1, 3));
  EXPECT_FALSE(loaded.fetch(1, 4));
  EXPECT_THAT(loaded.faults, ElementsAre(HasSubstr("(No.9)")));
}

TEST_P(RestartForms, PatternsChooseArrays) {
  const std::tuple<const char*, const char*, std::vector<std::string>> rows[] = {
      {"pres*, SGAS,RS", "", {"PRESSURE", "SGAS"}},
      {"", "S*", {"PRESSURE", "FIPNUM"}},
      {"SOIL", "", {"SWAT", "SGAS", "SOIL"}}};
  for (const auto& [only, except, names] : rows) {
    auto loaded = load(threePhases());
    loaded.reader.zOnly = only;
    loaded.reader.zExcept = except;
    ASSERT_TRUE(loaded.run());
    EXPECT_EQ(loaded.names(), names) << only;
    EXPECT_EQ(loaded.reader.UnmatchedPatterns().size(), names.front() == "PRESSURE" && *only ? 1U : 0U);
  }
}

TEST_P(RestartForms, TheMissingSaturationFollowsFromThePhases) {
  struct Row {
    std::int32_t phases;
    std::vector<std::string> given;
    std::vector<std::string> kept;
  };
  for (const auto& [phases, given, kept] :
       {Row{3, {"SWAT"}, {"SWAT", "SOIL"}}, Row{3, {"SGAS"}, {"SGAS"}}, Row{5, {"SGAS"}, {"SGAS", "SOIL"}},
        Row{7, {"SWAT"}, {"SWAT"}}, Row{6, {"SWAT"}, {"SWAT", "SGAS"}}, Row{6, {"SGAS"}, {"SGAS", "SWAT"}},
        Row{6, {"SGAS", "SWAT"}, {"SGAS", "SWAT"}},
        Row{7, {"SOIL", "SWAT", "SGAS"}, {"SOIL", "SWAT", "SGAS"}}, Row{1, {"SWAT"}, {"SWAT"}}}) {
    auto run = threePhases();
    run.phases = phases;
    run.steps[0].grids[0].arrays.clear();
    for (const auto& name : given) run.steps[0].grids[0].arrays.push_back({name, {0.25F, 0, 1, 2}});
    auto loaded = load(run);
    ASSERT_TRUE(loaded.run());
    EXPECT_EQ(loaded.names(), kept) << phases;
    if (kept.size() == given.size()) continue;
    EXPECT_THAT(loaded.values(kept.back()), ElementsAre(0.75F, 1, 0, 0));
  }
}

/// The header counts cells without pore volume as active, in both grids; arrays have values for the others.
TEST_P(RestartForms, TheLengthOfTheArraysDecidesTheActiveCells) {
  RestartBuilder run;
  const std::vector<RestartBuilder::Array> arrays{{"PRESSURE", {1, 2, 3}}, {"RS", {4, 5, 6}}};
  run.steps = {{.number = 1, .grids = {{.arrays = arrays}, {.name = "FINE", .arrays = arrays}}}};
  auto loaded = load(run);
  ASSERT_TRUE(loaded.run());
  for (const std::int32_t grid : {1, 2}) {
    EXPECT_EQ(loaded.reader.RestartGrid(1, grid)->nActive, 3);
    EXPECT_THAT(loaded.values("rs", 1, grid), ElementsAre(4, 5, 6));
  }
  const auto index = walkRestart(loaded.session, std::array{loaded.reader.FileName});
  EXPECT_EQ(index.steps.at(0).cellsOf("FINE").active, 3);
  bool met = true;
  for (int read = 1; met; ++read) {
    const test::FaultyFiles faults(test::ReadFault::Fails, read);
    EXPECT_TRUE(!loaded.run() || loaded.values("rs", 1, 2).size() == 3) << read;
    met = faults.met();
  }
}

/// Wells and arrays of active cells do not depend on the number of all cells.
TEST_P(RestartForms, GridsBeyond2To31Cells) {
  auto run = threePhases();
  run.head = {{9, 65536}, {10, 65536}};
  run.steps[0].grids[0].wells = {{"A", {{1, 2, 1}}, {}}};
  run.dualPorosity = true;
  auto loaded = load(run);
  ASSERT_TRUE(loaded.run());
  const auto& grid = *loaded.reader.RestartGrid(1, 1);
  EXPECT_TRUE(grid.qIWEL && grid.qLogi15);
  EXPECT_EQ(grid.nCells, std::int64_t{65536} * 65536);
  EXPECT_EQ(loaded.values("PRESSURE").size(), 4U);
}

TEST(RestartArrays, ArraysBeyond2To31ElementsAreArraysOfCells) {
  const TemporaryFolder folder;
  RestartLoad loaded(test::writeLargeRestart(folder));
  loaded.reader.LoadData = false;
  ASSERT_TRUE(loaded.run()) << loaded.lastDiagnosis().text();
  EXPECT_THAT(loaded.names(), ElementsAre("PRESSURE"));
}

TEST_P(RestartForms, WhatCannotBeReadSaysWhere) {
  auto overflow = threePhases();
  overflow.head = {{9, 2147483647}, {10, 2147483647}, {11, 3}};
  auto loaded = load(overflow);
  EXPECT_FALSE(loaded.run());
  EXPECT_THAT(loaded.faults, ElementsAre(HasSubstr("(No.6)")));
  EXPECT_EQ(loaded.lastDiagnosis().keyword, "INTEHEAD");
  EXPECT_TRUE(loaded.lastDiagnosis().offset);

  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), form_);
  out.integers("SEQNUM", std::array{1});
  threePhases().write(out, threePhases().steps[0]);
  out.header("STRANGE", 0, "ABCD");
  out.integers("SEQNUM", std::array{2});
  out.header("STRANGE", 1, "ABCD");
  const auto file = folder_.file(form_.formatted() ? "RUN.FUNRST" : "RUN.UNRST");
  test::writeFile(file, bytes);
  RestartLoad strange(file);
  EXPECT_FALSE(strange.run());
  EXPECT_THAT(strange.steps(), ElementsAre(1)) << "the steps before stay";
  EXPECT_EQ(strange.lastDiagnosis().keyword, "STRANGE");
  EXPECT_EQ(strange.lastDiagnosis().occurrence, 2);

  test::writeFile(folder_.file("NOTE.UNRST"), test::bytesOf("no record file"));
  strange.reader.FileName = folder_.file("NOTE.UNRST");
  EXPECT_FALSE(strange.run());
  EXPECT_TRUE(strange.steps().empty()) << "nothing of the file before";
  EXPECT_FALSE(strange.fetch(1));
}

}  // namespace
}  // namespace lumbarn
