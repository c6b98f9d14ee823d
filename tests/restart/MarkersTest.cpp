#include <cstring>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "restart/Markers.h"
#include "restart/WellRecords.h"
#include "restart/qvEclipseSOLUTION.h"
#include "support/RestartBuilder.h"
#include "support/RestartLoad.h"

namespace lumbarn {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// P1 with two connections, OBS with none, G2 with one.
RestartBuilder threeWells() {
  RestartBuilder run;
  run.steps = {{.number = 4}};
  auto& grid = run.steps[0].grids[0];
  grid.arrays = {{"PRESSURE", {1, 2, 3, 4}}};
  grid.wells = {{"P1", {{1, 1, 1}, {2, 1, 1}}, {{6, 1}, {7, 1}, {8, 108}, {11, 104}, {12, 107}, {23, 106}}},
                {"OBS", {}, {{7, 9}}},
                {"G2", {{2, 2, 1}}, {{7, 4}}}};
  return run;
}

RESTARTGRID loadedWells() {
  const TemporaryFolder folder;
  qvEclipseSOLUTION set;
  EXPECT_TRUE(set.CheckRESTARTFile(threeWells().write(folder, "RUN", bigEndian)));
  set.setMarkerMethod(2);
  set.iStart = set.iEnd = -1;
  bool qOK = false;
  set.getSOLUTIONData(qOK);
  return std::move(set.step(1).grid());
}

/// A row as text: its items side by side, runs of empty ones as their count in brackets.
std::string rowText(const MarkerTable& table, std::size_t iRow) {
  std::string text;
  int empty = 0;
  for (std::size_t i = 1; i <= 56; ++i) {
    const Variant item = i <= MarkerTable::nItems ? table(iRow, i) : Variant(true);
    if (std::holds_alternative<std::monostate>(item)) {
      ++empty;
      continue;
    }
    if (empty > 0) text += fmt::format("({}) ", empty);
    empty = 0;
    if (const auto* number = std::get_if<std::int32_t>(&item)) text += fmt::format("{} ", *number);
    if (const auto* value = std::get_if<double>(&item)) text += fmt::format("{} ", *value);
    if (const auto* words = std::get_if<std::string>(&item)) text += *words + ' ';
  }
  return text;
}

std::vector<std::string> rowTexts(const MarkerTable& table) {
  std::vector<std::string> rows;
  for (std::size_t i = 1; i <= table.used(); ++i) rows.push_back(rowText(table, i));
  return rows;
}

MarkerBlock opened(std::span<const std::byte> bytes) {
  MarkerBlock block;
  std::string why;
  EXPECT_TRUE(block.open(bytes, why)) << why;
  return block;
}

TEST(Markers, RowsOfWellsAndTheirConnectionsAlsoWhenPacked) {
  const Session session;
  const std::string singles = "1001 1003 1004 1005 1006 1007 1013 1014 1015 1021 1022 10107 10110 (28) ";
  const std::pair<bool, std::string> cases[] = {
      {false, "10105 0 1 1 1 (5) P1 PERF (1) 10114 (11) 10107 10110 (28) "},
      {true, "10105 0 1 1 1 (5) P1 PERF (1) 10114 " + singles}};
  for (const auto& [qMarkers, connection] : cases) {
    SCOPED_TRACE(qMarkers);
    const auto grid = loadedWells();
    const auto table = markerTable(grid, qMarkers, session);
    EXPECT_THAT(
        rowTexts(table),
        ElementsAre("1 0 1 1 1 (4) 104 P1 WELL (15) 106 108 4 107 1001 1002 1003 1004 1005 1006 1007 "
                    "1009 1010 1001 1003 1002 1076 1078 1077 1034 1055 1034 1081 1083 1082 1069 1070 "
                    "(1) ",
                    connection, StartsWith("10205 0 2 1 1 "), HasSubstr(" OBS WELL (15) 0 0 -1 0 2001 "),
                    HasSubstr(" G2 WELL (15) 0 0 1 0 3001 "), StartsWith("30105 0 2 2 1 ")));
    EXPECT_EQ(table.rows(), 12U) << "room for every connection slot";
    EXPECT_EQ(rowText(table, 12), "(55) ");
    EXPECT_THROW(table(13, 1), Fault);
    for (const std::int32_t iForm : {1, 2, 3}) {
      const auto bytes = packMarkers(grid, qMarkers, {.iForm = iForm}, session);
      EXPECT_EQ(std::memcmp(bytes.data(), iForm == 2 ? "MKEX" : "MK32", 4), 0);
      EXPECT_EQ(rowTexts(opened(bytes).table()), rowTexts(table)) << iForm;
    }
  }
}

TEST(Markers, BlocksOfAnotherLengthOrLayoutAreRefused) {
  const Session session;
  const auto whole = packMarkers(loadedWells(), true, {.iForm = 2}, session);
  MarkerBlock block;
  std::string why;
  for (std::size_t size = 0; size < whole.size(); ++size)
    EXPECT_FALSE(block.open(std::span(whole).first(size), why)) << size;
  const std::tuple<std::size_t, std::uint32_t, const char*> rows[] = {
      {4, 0x14000000, "other byte order"}, {4, 21, "not number 20"},        {8, 17, "another shape"},
      {24, 0x7FFFFFFF, "bytes of a row"},  {28, 7, "counts of rows"},       {24, 39, "another shape"},
      {40, 0x80000000, "bytes of a row"},  {56, 3, "row 1 is of no known"}, {56, 2, "not those of the rows"}};
  for (const auto& [at, value, told] : rows) {
    auto damaged = whole;
    std::memcpy(damaged.data() + at, &value, 4);
    EXPECT_FALSE(block.open(damaged, why));
    EXPECT_THAT(why, HasSubstr(told));
  }
  EXPECT_EQ(opened(whole).header().nPerfs, 3);
}

TEST(Markers, FollowTheMethodOfTheReader) {
  const TemporaryFolder folder;
  const auto path = threeWells().write(folder, "RUN", bigEndian);
  for (const auto& [method, mark] : {std::pair(2, "MKEX"), std::pair(3, "MK32"), std::pair(5, "MKEX")}) {
    RestartLoad load(path);
    load.reader.MarkerMethod = method;
    ASSERT_TRUE(load.run());
    MarkerTable rows;
    std::vector<std::byte> bytes;
    std::int32_t nRows = 0;
    std::int32_t nBytesRows = 0;
    bool qOK = false;
    load.reader.GetRESTARTSEQUENCE(1, load.table, load.headers, load.source, rows, nRows, qOK);
    ASSERT_TRUE(qOK);
    load.reader.GetRESTARTSEQUENCEb(1, load.table, load.headers, load.source, bytes, nBytesRows, qOK);
    ASSERT_TRUE(qOK);
    EXPECT_THAT((std::array{nRows, nBytesRows}), ElementsAre(6, 6));
    EXPECT_EQ(std::memcmp(bytes.data(), mark, 4), 0);
    EXPECT_EQ(rowTexts(opened(bytes).table()), rowTexts(rows));
    const bool full = method != 3;  // SCON is read when it is needed
    EXPECT_EQ(std::holds_alternative<double>(rows(2, 15)), full);
    const auto well = load.reader.RestartWells(1, 1, qOK).at(0);
    const auto& second = well.connections.at(1);
    EXPECT_EQ(fmt::format("{} {} {} {}", well.group, second.iStatus, second.iDirection, second.iWord7),
              full ? "FIELD 10206 10214 10207" : "FIELD 10206 0 0");
    ASSERT_EQ(second.numbers.has_value(), full);
    EXPECT_EQ(full ? second.numbers->lengthEnd : 0, full ? 2021 : 0);
  }
}

}  // namespace
}  // namespace lumbarn
