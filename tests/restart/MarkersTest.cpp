#include <cstring>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "restart/Markers.h"

namespace lumbarn {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// Three wells, of which P1 has two connections, OBS none and G2 one. Every cell of a table has a value of
/// its own: well or connection number times 100 and column.
RESTARTGRID syntheticGrid(bool qPlanes = false) {
  RESTARTGRID grid;
  grid.nWells = 3;
  grid.nCWMAX = 4;
  grid.nIWELZ = grid.nICONZ = grid.nZWELZ = 3;
  grid.nConnections = qPlanes ? 0 : 3;
  grid.qIWEL = grid.qSWEL = grid.qXWEL = grid.qZWEL = grid.qICON = grid.qSCON = true;
  grid.iWELL = ColumnTable<std::int32_t>(3, 15);
  grid.sWELL = ColumnTable<float>(3, 15);
  grid.sWELL2 = ColumnTable<float>(3, 14);
  grid.zWELL = ColumnTable<std::string>(3, 2);
  const std::int32_t counts[] = {2, 0, 1};
  const char* const names[] = {"P1", "OBS", "G2"};
  for (std::size_t i = 1; i <= 3; ++i) {
    const auto number = static_cast<std::int32_t>(i * 100);
    for (std::int32_t c = 1; c <= 15; ++c) {
      grid.iWELL(i, static_cast<std::size_t>(c)) = number + c;
      grid.sWELL(i, static_cast<std::size_t>(c)) = static_cast<float>(number + c) + 0.5F;
      if (c < 15) grid.sWELL2(i, static_cast<std::size_t>(c)) = static_cast<float>(number + c) + 0.25F;
    }
    grid.iWELL(i, 3) = i == 1 ? 1 : i == 2 ? 9 : 4;
    grid.iWELL(i, 5) = counts[i - 1];
    grid.iWELL(i, 10) = i == 1 ? 1 : 3;
    grid.zWELL(i, 1) = names[i - 1];
  }
  grid.iCONN =
      qPlanes ? ColumnTable<std::int32_t>::threeDimensional(3, 4, 9) : ColumnTable<std::int32_t>(3, 9);
  grid.sCONN = qPlanes ? ColumnTable<float>::threeDimensional(3, 4, 15) : ColumnTable<float>(3, 15);
  const std::size_t owners[][2] = {{1, 1}, {1, 2}, {3, 1}};  // well and place in it
  for (std::size_t row = 1; row <= 3; ++row) {
    const auto [well, k] = owners[row - 1];
    for (std::size_t c = 1; c <= 15; ++c) {
      const auto value = static_cast<std::int32_t>(row * 100 + c);
      if (c <= 9) (qPlanes ? grid.iCONN(well, k, c) : grid.iCONN(row, c)) = value;
      (qPlanes ? grid.sCONN(well, k, c) : grid.sCONN(row, c)) = static_cast<float>(value) + 0.75F;
    }
  }
  return grid;
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

std::string wellRow(int well, const char* name, int hostType) {
  const int n = well * 100;
  std::string text = fmt::format("1 0 {} {} 1 (4) {} {} WELL (15) {} {} {} {} ", n + 1, n + 2, n + 4, name,
                                 n + 6, n + 8, hostType, n + 7);
  for (int c = 1; c <= 9; ++c) text += fmt::format("{}.5 ", n + c);
  for (const int c : {1, 2, 3, 4, 5, 6, 9, 10, 11, 12, 13, 14, 7, 8}) text += fmt::format("{}.25 ", n + c);
  return text + "(1) ";
}

std::string perfRow(int row, const char* name, bool qMarkers, bool qPlanes) {
  const int n = row * 100;
  std::string text = fmt::format("{} 0 {} {} {} ", n + 5, n + 1, n + 2, n + 3);
  text += qPlanes ? fmt::format("(4) {} ", n + 4) : "(5) ";
  text += fmt::format("{} PERF (1) {} ", name, n + 6);
  for (const int c : {1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}) {
    if (qMarkers) text += fmt::format("{}.75 ", n + c);
  }
  return text + fmt::format("{}{} {} (28) ", qMarkers ? "" : "(11) ", n + 7, n + 8);
}

MarkerBlock opened(std::span<const std::byte> bytes) {
  MarkerBlock block;
  std::string why;
  EXPECT_TRUE(block.open(bytes, why)) << why;
  return block;
}

TEST(Markers, RowsOfWellsAndTheirConnectionsAlsoWhenPacked) {
  const Session session;
  for (const auto& [qPlanes, qMarkers] :
       {std::pair(false, false), {false, true}, {true, false}, {true, true}}) {
    SCOPED_TRACE(fmt::format("planes {}, markers {}", qPlanes, qMarkers));
    const auto grid = syntheticGrid(qPlanes);
    const auto table = markerTable(grid, qMarkers, session);
    EXPECT_THAT(rowTexts(table), ElementsAre(wellRow(1, "P1", 4), perfRow(1, "P1", qMarkers, qPlanes),
                                             perfRow(2, "P1", qMarkers, qPlanes), wellRow(2, "OBS", -1),
                                             wellRow(3, "G2", 1), perfRow(3, "G2", qMarkers, qPlanes)));
    EXPECT_EQ(table.rows(), 15U) << "room for every connection slot";
    EXPECT_EQ(rowText(table, 15), "(55) ");
    EXPECT_THROW(table(16, 1), Fault);
    for (const std::int32_t iForm : {1, 2, 3}) {
      const auto bytes = packMarkers(grid, qMarkers, {.iForm = iForm}, session);
      EXPECT_EQ(std::memcmp(bytes.data(), iForm == 2 ? "MKEX" : "MK32", 4), 0);
      EXPECT_EQ(rowTexts(opened(bytes).table()), rowTexts(table)) << iForm;
    }
  }
}

TEST(Markers, TablesThatAStepDoesNotHave) {
  const Session session;
  auto grid = syntheticGrid();
  grid.qICON = grid.qZWEL = false;
  grid.sWELL = {};
  grid.sWELL2 = {};
  EXPECT_THAT(rowTexts(markerTable(grid, true, session)),
              ElementsAre("1 0 101 102 1 (4) 104 (1) WELL (15) 106 108 4 107 (24) ",
                          "1 0 201 202 1 (4) 204 (1) WELL (15) 206 208 -1 207 (24) ",
                          "1 0 301 302 1 (4) 304 (1) WELL (15) 306 308 1 307 (24) "));
  for (const auto& [count, first] : {std::pair(4, 1), std::pair(1, 0), std::pair(2147483647, 3)}) {
    auto wild = syntheticGrid();
    wild.iWELL(1, 5) = count;
    wild.iWELL(1, 10) = first;
    EXPECT_THROW(markerTable(wild, true, session), Fault) << count;
    EXPECT_THROW(packMarkers(wild, true, {}, session), Fault) << count;
  }
}

/// The bytes of the page that describes the layout, read by hand: no code of the writer is used.
TEST(Markers, TheLayoutOfABlockIsAsWrittenDown) {
  const Session session;
  auto grid = syntheticGrid();
  grid.sWELL = {};
  grid.sWELL2 = {};
  grid.zWELL(1, 1) = std::string(45, 'x') + "#";
  const auto bytes = packMarkers(grid, false, {.iForm = 3, .qLong = false}, session);
  const auto word = [&](std::size_t at) {
    std::int32_t value = 0;
    std::memcpy(&value, bytes.data() + at, 4);
    return value;
  };
  std::vector<std::int32_t> header;
  for (std::size_t at = 4; at < 56; at += 4) header.push_back(word(at));
  EXPECT_THAT(header, ElementsAre(20, 16, 0, 0, 1, 40, 6, 3, 3, 104, 55, 3, 0));
  ASSERT_EQ(bytes.size(), 56U + 6 * 104);
  std::vector<std::int32_t> perf;
  for (std::size_t at = 56 + 104; at < 56 + 104 + 64; at += 4) perf.push_back(word(at));
  constexpr std::int32_t set = 0x1F | 1 << 10 | 1 << 11 | 1 << 13 | 1 << 25 | 1 << 26;
  EXPECT_THAT(perf, ElementsAre(2, set, 0, 105, 0, 101, 102, 103, 0, 106, 107, 108, 0, 0, 0, 0));
  EXPECT_EQ(opened(bytes)(2, 11), Variant(std::string(40, 'x'))) << "short names";
  const auto wide = packMarkers(grid, false, {.iForm = 3, .qLong = true}, session);
  EXPECT_EQ(opened(wide)(2, 11), Variant(grid.zWELL(1, 1)));
}

TEST(Markers, BlocksOfAnotherLengthOrLayoutAreRefused) {
  const Session session;
  const auto whole = packMarkers(syntheticGrid(), true, {.iForm = 2}, session);
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
}

}  // namespace
}  // namespace lumbarn
