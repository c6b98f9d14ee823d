#include <array>
#include <tuple>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arrays/ArrayUnits.h"
#include "index/RestartIndex.h"
#include "record/Quarnet.h"
#include "shapes/HeaderLayout.h"
#include "support/Fault.h"
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

struct HeaderCase {
  std::size_t words;
  std::int32_t word4, word12, program, word96;
  std::int64_t nActive, ofInit;
};

TEST(HeaderWordsTest, ActiveCellsDependOnTheSimulator) {
  for (const auto& [words, word4, word12, program, word96, nActive, ofInit] :
       {HeaderCase{411, 7, 5, 100, 0, 5, 5}, HeaderCase{411, 7, 5, 300, 0, 7, 7},
        HeaderCase{411, 7, 5, 300, 1, 5, 7}, HeaderCase{411, 0, 5, 300, 0, 5, 5},
        HeaderCase{95, 7, 5, 300, 0, 7, 7}, HeaderCase{94, 7, 5, 300, 0, 5, 5}}) {
    std::vector<std::int32_t> header(411);
    header[3] = word4, header[8] = 2, header[9] = 3, header[10] = 4, header[11] = word12;
    header[94] = program, header[95] = word96;
    header.resize(words);
    std::int32_t active = 0;
    std::int64_t cells = 0;
    PreprocessINTEHEAD(HeaderWords(header), active, cells);
    EXPECT_EQ(active, nActive) << words << " words, simulator " << program;
    EXPECT_EQ(cells, 24);
    EXPECT_EQ(gridCells(header, true).active, ofInit);
    EXPECT_EQ(gridCells(header, false).active, nActive);
  }
  EXPECT_EQ(cellCount(46341, 46341, 2), 4294976562);
  EXPECT_THROW(cellCount(2147483647, 2147483647, 3), Fault);
}

TEST(ArrayUnitsTest, FollowTheUnitSystem) {
  const std::pair<const char*, const char*> rows[] = {{"PRESSURE", "BARS PSI ATMOS"},
                                                      {"TOPS", "M FT cm"},
                                                      {"RV", "SM3/SM3 Stb/Mscf scc/scc"},
                                                      {"PORV", "M3 RB cc"},
                                                      {"TRANX", "CPM3/D/BAR CPRB/D/PSI CPcc/H/A"},
                                                      {"PERMTRAN", "MDarcy MDarcy MDarcy"},
                                                      {"SWAT", "  "}};
  for (const auto& [name, units] : rows) {
    EXPECT_EQ(fmt::format("{} {} {}", arrayUnit(name, 1), arrayUnit(name, 2), arrayUnit(name, 3)), units);
    EXPECT_EQ(arrayUnit(name, 4), "");
  }
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

TEST_P(RestartForms, AStepHasItsArraysAndWhatHostsAreToldOfThem) {
  auto run = threePhases();
  run.dualPorosity = true;
  RestartLoad load(run.write(folder_, "RUN", form_));
  ASSERT_TRUE(load.run() && load.fetch(1));
  EXPECT_THAT(load.names(), ElementsAre("PRESSURE", "SWAT", "FIPNUM", "SGAS", "SOIL"));
  EXPECT_THAT(load.values("PRESSURE"), ElementsAre(101.5F, 102, 103, 104));
  EXPECT_THAT(load.values("FIPNUM"), ElementsAre(1, 2, 9999999, -4)) << "integers become singles";
  EXPECT_THAT(load.values("SOIL"), ElementsAre(0.5F, 0, 0, 0.5F)) << "what is left, between 0 and 1";
  EXPECT_TRUE(std::ranges::equal(load.table.column(5), load.values("SOIL")));

  EXPECT_EQ(ExtractAttribute(attributeDataKind, load.headers, 1), "SOLUTION");
  EXPECT_EQ(ExtractAttribute(attributeSource, load.headers, 1), "RUN");
  EXPECT_EQ(ExtractAttribute(attributeIndex, load.headers, 1), "1");
  EXPECT_EQ(ExtractAttribute(attributeUnits, load.headers, 1), "BARS");
  EXPECT_EQ(ExtractAttribute(attributeVariable, load.headers, 5), "SOIL");
  EXPECT_EQ(ExtractAttribute(attributeLGRName, load.headers, 1), "");

  const auto text = [&](std::size_t slot) { return std::get<std::string>(load.source(slot)); };
  EXPECT_EQ(text(4), "15 JUL 2003 6:0");
  EXPECT_EQ(text(6), "SOLUTION");
  EXPECT_EQ(text(29), "ROOT");
  EXPECT_EQ(load.source(7), Variant(std::int16_t{1}));
  EXPECT_EQ(load.source(8), Variant(std::int16_t{1}));
  EXPECT_EQ(load.source(33), Variant(true));
  EXPECT_EQ(load.source(40), Variant(10.25));
  EXPECT_EQ(load.source(63), Variant(std::int32_t{7}));
  EXPECT_EQ(load.source(64), Variant(std::int32_t{2}));
}

/// A host reads the values by itself, with nothing but the places.
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
  EXPECT_THAT(
      (std::vector{places.places(1, 5), places.places(2, 5), places.places(3, 5), places.places(4, 5)}),
      ElementsAre(4, 19, 4, 4));

  FileTypeSettings settings;
  bool qOK = false;
  places.reader.getEclipseFODInfo(settings, qOK);
  EXPECT_EQ(settings[1], form_.formatted());
  cFILETYPE file(places.session);
  file.setForm(form_);
  Quarnet records(places.session);
  records.OpenRecordFile(places.reader.FileName, file, qOK);
  for (std::size_t i : {4U, 1U, 2U}) {
    file.SeekByte64(places.places(3, i), places.places(4, i));
    std::vector<float> values;
    records.ReadSingles(places.places(1, i), "", file, values, qOK);
    ASSERT_TRUE(qOK);
    EXPECT_EQ(values, whole.values(whole.names()[i - 1]));
  }
}

TEST_P(RestartForms, LocalGridsFollowTheGlobalOne) {
  auto run = threePhases();
  run.gridEnd = RestartBuilder::GridEnd::OneInteger;
  run.dualPorosity = true;
  auto& grids = run.steps[0].grids;
  grids.push_back({"FINE", {3, 1, 1}, 3, {{"PRESSURE", {1, 2, 3}}, {"SWAT", {0, 0, 1}}}, {}});
  grids.push_back({"ONE", {1, 1, 1}, 1, {{"PRESSURE", {7}}}, {}});
  grids.push_back({"NONE", {2, 1, 1}, 2, {}, {}});
  run.steps.push_back(run.steps[0]);
  run.steps[1].number = 2;
  auto loaded = load(run);
  ASSERT_TRUE(loaded.run()) << loaded.lastDiagnosis().text();
  for (const auto step : {1, 2}) {
    EXPECT_THAT(loaded.values("PRESSURE", step, 2), ElementsAre(1, 2, 3));
    EXPECT_THAT(loaded.names(step, 3), ElementsAre("PRESSURE")) << "the word of ENDLGR is no array";
    EXPECT_THAT(loaded.names(step, 2), ElementsAre("PRESSURE", "SWAT")) << "SOIL needs SGAS too";
  }
  EXPECT_EQ(loaded.reader.RestartSteps()[0].nGrids, 4);
  EXPECT_EQ(loaded.reader.RestartSteps()[1].nGrids, 3) << "a last grid without arrays goes at the file's end";
  ASSERT_TRUE(loaded.fetch(1, 2));
  EXPECT_EQ(ExtractAttribute(attributeLGRName, loaded.headers, 1), "FINE");
  EXPECT_EQ(loaded.source(33), Variant(true)) << "as the global grid";
  EXPECT_FALSE(loaded.fetch(1, 4));
  EXPECT_FALSE(loaded.fetch(1, 5));
  EXPECT_THAT(loaded.faults, ElementsAre(HasSubstr("(No.9)")));
}

/// Of a grid of 6 cells, 4 of them active; the first array is of the active cells.
TEST_P(RestartForms, OnlyArraysOfTheGridAreKept) {
  auto run = threePhases();
  auto& grid = run.steps[0].grids[0];
  grid.size = {3, 2, 1};
  grid.arrays.resize(1);
  const std::tuple<const char*, std::size_t, bool> cases[] = {
      {"TEMP", 4, true},    {"OTHER", 5, false},   {"CELLS", 6, false},    {"SWEL", 4, false},
      {"HIDDEN", 4, false}, {"FLOOILI+", 4, true}, {"FLOOILA+", 4, false}, {"FLOGASN+", 4, false},
      {"FLOA+", 4, true},   {"VOILL+", 4, false},  {"VOILI+", 4, true},    {"MIXED", 4, true}};
  std::vector<std::string> kept{"PRESSURE"};
  for (const auto& [name, count, isKept] : cases) {
    grid.arrays.push_back({name == std::string("MIXED") ? "mixed" : name, std::vector<float>(count)});
    if (isKept) kept.emplace_back(name);
  }
  auto loaded = load(run);
  ASSERT_TRUE(loaded.run());
  EXPECT_EQ(loaded.names(), kept);
}

TEST_P(RestartForms, PatternsChooseArrays) {
  struct Row {
    const char* only;
    const char* except;
    std::vector<std::string> names;
    std::vector<std::string> unmatched = {};
  };
  for (const auto& row :
       {Row{"pres*, SGAS,RS", "", {"PRESSURE", "SGAS"}, {"RS"}}, Row{"", "S*", {"PRESSURE", "FIPNUM"}},
        Row{"SOIL", "", {"SWAT", "SGAS", "SOIL"}}, Row{"S?A?", "", {"SWAT", "SGAS"}}}) {
    auto loaded = load(threePhases());
    loaded.reader.zOnly = row.only;
    loaded.reader.zExcept = row.except;
    ASSERT_TRUE(loaded.run());
    EXPECT_EQ(loaded.names(), row.names) << row.only;
    EXPECT_EQ(loaded.reader.UnmatchedPatterns(), row.unmatched);
  }
  auto listed = load(threePhases());
  listed.reader.bOnly = ByteTable(onlyWidth, 1);
  listed.reader.bOnly.put(1, 1, onlyNameWidth, "PRESSURE");
  listed.reader.qOnly = true;
  ASSERT_TRUE(listed.run());
  EXPECT_THAT(listed.names(), ElementsAre("PRESSURE"));
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

TEST_P(RestartForms, AShortHeaderTakesTheStepFromElsewhere) {
  auto run = threePhases();
  run.headerWords = 60;
  run.steps[0].number = 7;
  for (const bool unified : {true, false}) {
    RestartLoad loaded(run.write(folder_, "RUN", form_, unified));
    ASSERT_TRUE(loaded.run());
    EXPECT_THAT(loaded.steps(), ElementsAre(7));
    EXPECT_EQ(loaded.reader.RestartGrid(1, 1)->iDay, -1);
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
}

}  // namespace
}  // namespace lumbarn
