#include "StepWells.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "../support/Guarded.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

constexpr float notStored = -32768;

using WordToColumn = std::pair<std::size_t, std::size_t>;  // word of the block, column of the table

constexpr WordToColumn iwelColumns[] = {{1, 1},  {2, 2}, {7, 3},  {11, 4}, {5, 5},  {23, 6},
                                        {12, 7}, {8, 8}, {13, 9}, {6, 11}, {9, 12}, {25, 15}};
constexpr WordToColumn swelColumns[] = {{1, 1}, {2, 2}, {3, 3}, {4, 4},  {5, 5},
                                        {6, 6}, {7, 7}, {9, 8}, {10, 9}, {17, 11}};
constexpr WordToColumn swelColumns2[] = {{1, 1},   {2, 3},   {3, 2},  {34, 9},
                                         {34, 11}, {55, 10}, {70, 8}, {69, 7}};
constexpr WordToColumn xwelColumns2[] = {{76, 4}, {78, 5}, {77, 6}, {81, 12}, {83, 13}, {82, 14}};
constexpr WordToColumn xwelColumns[] = {{1, 1}, {2, 2}, {3, 3}, {4, 4},  {5, 5},
                                        {6, 6}, {7, 7}, {8, 9}, {30, 10}};
constexpr WordToColumn iconColumns[] = {{2, 1},  {3, 2}, {4, 3},  {6, 4}, {5, 5},
                                        {14, 6}, {7, 7}, {10, 8}, {1, 9}};
constexpr WordToColumn iconWithoutMarkers[] = {{1, 9}, {2, 1}, {3, 2}, {4, 3}, {5, 5}, {6, 4}};
constexpr WordToColumn iconShort[] = {{2, 1}, {3, 2}, {4, 3}, {5, 5}, {6, 4}};
constexpr WordToColumn sconColumns[] = {{1, 1}, {2, 2},  {3, 3},  {4, 4},   {5, 5},   {6, 6},
                                        {7, 7}, {13, 8}, {14, 9}, {15, 10}, {21, 11}, {22, 12}};

/// The words of a table that are inside a block; computed once for each record.
std::vector<WordToColumn> wordsInside(std::span<const WordToColumn> columns, std::int32_t nWords) {
  std::vector<WordToColumn> inside;
  const auto has = [&](const WordToColumn& one) { return std::cmp_less_equal(one.first, nWords); };
  std::ranges::copy_if(columns, std::back_inserter(inside), has);
  return inside;
}

/// Whether a record consists of complete blocks, at least `nBlocks` of them.
bool holdsBlocks(std::size_t words, std::int32_t nWords, std::int64_t nBlocks) {
  const auto perBlock = static_cast<std::size_t>(nWords);
  return words % perBlock == 0 && std::cmp_greater_equal(words / perBlock, nBlocks);
}

/// The result for a record without a table: True if there is nothing to read, False if the record does not
/// consist of complete blocks. In the latter case the word count becomes 0, which marks the data as absent
/// for the rest of the step. Nothing if the record is to be read.
std::optional<bool> outcomeWithoutTable(std::size_t words, std::int32_t& nWords, std::int64_t nBlocks) {
  if (nBlocks < 1 || nWords < 1) return true;
  if (holdsBlocks(words, nWords, nBlocks)) return std::nullopt;
  nWords = 0;
  return false;
}

float toSingle(double value) {
  constexpr double most = std::numeric_limits<float>::max();
  if (std::abs(value) <= most || std::isnan(value)) return static_cast<float>(value);
  return std::copysign(std::numeric_limits<float>::infinity(), static_cast<float>(value > 0 ? 1 : -1));
}

std::size_t size(std::int32_t count) { return static_cast<std::size_t>(std::max(count, 0)); }

/// Connections of each well and where their rows begin.
struct WellConnections {
  std::int32_t first = 0;
  std::int32_t count = 0;
};

WellConnections connectionsOf(const RESTARTGRID& grid, std::size_t iWell) {
  if (!grid.qIWEL || iWell > grid.iWELL.rows()) return {};
  return {grid.iWELL(iWell, 10), grid.iWELL(iWell, 5)};
}

/// A well cannot have more connections than it has slots, nor all of them more than the record.
bool connectionsFit(const RESTARTGRID& grid) {
  if (!grid.qIWEL) return true;
  for (std::size_t i = 1; i <= grid.iWELL.rows(); ++i) {
    if (grid.iWELL(i, 5) > grid.nCWMAX) return false;
  }
  return true;
}

/// Picks the words of every connection out of its slot. A record holds nCWMAX slots for each well, used or
/// not. Each well's connections lie one behind the other in a table of nConnections rows; without any count
/// of connections the table has a plane for each well and a row for each slot.
template <class T>
ColumnTable<T> connectionTable(const RESTARTGRID& grid, std::span<const T> words, std::int32_t nWords,
                               std::size_t columns, std::span<const WordToColumn> taken) {
  const auto slots = size(grid.nCWMAX);
  const auto perSlot = size(nWords);
  const bool planes = grid.nConnections < 1;
  auto table = planes ? ColumnTable<T>::threeDimensional(size(grid.nWells), slots, columns)
                      : ColumnTable<T>(size(grid.nConnections), columns);
  for (std::size_t well = 1; well <= size(grid.nWells); ++well) {
    const auto [first, count] = connectionsOf(grid, well);
    if (count < 1) continue;
    const auto block = words.subspan((well - 1) * slots * perSlot, slots * perSlot);
    for (std::size_t k = 1; k <= (planes ? slots : size(count)); ++k) {
      const auto slot = block.subspan((k - 1) * perSlot, perSlot);
      for (const auto& [word, column] : taken) {
        T& to = planes ? table(well, k, column) : table(size(first) - 1 + k, column);
        to = slot[word - 1];
      }
    }
  }
  return table;
}

}  // namespace

std::int32_t EclipseWellPhase(std::int32_t iType, std::int32_t iControl) {
  switch (iType) {
    case 1:
      return iControl >= 1 && iControl <= 4 ? iControl : 1;
    case 4:
      return 3;
    case 11:
      return 2;
    case 13:
      return 1;
    default:
      return -1;
  }
}

std::int32_t EclipseToQVWellType(std::int32_t iType) {
  constexpr std::int32_t types[] = {4, 6, 2, 1};
  return iType >= 1 && iType <= 4 ? types[iType - 1] : -1;
}

bool takeIWEL(RESTARTGRID& to, std::span<const std::int32_t> words) {
  if (const auto outcome = outcomeWithoutTable(words.size(), to.nIWELZ, to.nWells)) return *outcome;
  const auto perWell = size(to.nIWELZ);
  const auto taken = wordsInside(iwelColumns, to.nIWELZ);
  ColumnTable<std::int32_t> table(size(to.nWells), 15);
  std::int64_t connections = 0;
  for (std::size_t i = 1; i <= table.rows(); ++i) {
    const auto block = words.subspan((i - 1) * perWell, perWell);
    for (const auto& [word, column] : taken) table(i, column) = block[word - 1];
    std::int32_t phase = EclipseWellPhase(table(i, 3), table(i, 12));
    // Deliberate: a block that is too short for the word gives what the table held before.
    if (phase == -1) phase = perWell >= 16 ? block[15] : 0;
    table(i, 14) = phase;
    table(i, 5) = std::max(table(i, 5), 0);
    table(i, 10) = static_cast<std::int32_t>(connections + 1);
    connections += table(i, 5);
    if (connections >= std::numeric_limits<std::int32_t>::max()) {
      to.nIWELZ = 0;
      return false;
    }
  }
  to.dropConnections();
  to.nConnections = static_cast<std::int32_t>(connections);
  to.iWELL = std::move(table);
  to.qIWEL = true;
  return true;
}

bool takeSWEL(RESTARTGRID& to, std::span<const float> words) {
  if (const auto outcome = outcomeWithoutTable(words.size(), to.nSWELZ, to.nWells)) return *outcome;
  const auto rows = size(to.nWells);
  if (!to.qSWEL || to.sWELL.rows() != rows) {
    to.sWELL = ColumnTable<float>(rows, 15, notStored);
    to.sWELL2 = ColumnTable<float>(rows, 14, notStored);
  }
  const auto taken = wordsInside(swelColumns, to.nSWELZ);
  const auto taken2 = wordsInside(swelColumns2, to.nSWELZ);
  for (std::size_t i = 1; i <= rows; ++i) {
    const auto block = words.subspan((i - 1) * size(to.nSWELZ), size(to.nSWELZ));
    for (const auto& [word, column] : taken) to.sWELL(i, column) = block[word - 1];
    for (const auto& [word, column] : taken2) to.sWELL2(i, column) = block[word - 1];
  }
  to.qSWEL = true;
  return true;
}

bool takeXWEL(RESTARTGRID& to, std::span<const double> words, const StepOptions& options) {
  constexpr double most = 1e36;
  if (const auto outcome = outcomeWithoutTable(words.size(), to.nXWELZ, to.nWells)) return *outcome;
  const auto rows = size(to.nWells);
  to.dWELL = ColumnTable<double>(rows, 11);
  if (to.sWELL2.rows() != rows) to.sWELL2 = ColumnTable<float>(rows, 14);
  const auto taken = wordsInside(xwelColumns, to.nXWELZ);
  const auto taken2 = wordsInside(xwelColumns2, to.nXWELZ);
  for (std::size_t i = 1; i <= rows; ++i) {
    const auto block = words.subspan((i - 1) * size(to.nXWELZ), size(to.nXWELZ));
    for (const auto& [word, column] : taken) {
      const bool known = block[word - 1] >= -most && block[word - 1] <= most;
      to.dWELL(i, column) = known ? block[word - 1] : options.noRate;
    }
    for (const auto& [word, column] : taken2) to.sWELL2(i, column) = toSingle(block[word - 1]);
  }
  to.qXWEL = true;
  return true;
}

bool takeZWEL(RESTARTGRID& to, std::span<const std::string> words) {
  if (const auto outcome = outcomeWithoutTable(words.size(), to.nZWELZ, to.nWells)) return *outcome;
  const auto perWell = size(to.nZWELZ);
  to.zWELL = ColumnTable<std::string>(size(to.nWells), 2);
  for (std::size_t i = 1; i <= to.zWELL.rows(); ++i) {
    for (std::size_t j = 1; j <= std::min<std::size_t>(perWell, 2); ++j) {
      to.zWELL(i, j) = trim(words[(i - 1) * perWell + j - 1]);
    }
  }
  to.qZWEL = true;
  return true;
}

bool takeZGRP(RESTARTGRID& to, std::span<const std::string> words) {
  if (to.nGroups < 1 || to.nZGRPZ < 1) return true;
  const auto perGroup = size(to.nZGRPZ);
  if (words.size() % perGroup != 0) {
    to.nZGRPZ = 0;
    return false;
  }
  to.zGROUP = ColumnTable<std::string>(words.size() / perGroup, 1);
  const auto named = std::min(to.zGROUP.rows(), size(to.nGroups));
  for (std::size_t i = 1; i <= named; ++i) to.zGROUP(i, 1) = trim(words[(i - 1) * perGroup]);
  to.qZGRP = true;
  return true;
}

bool takeICON(RESTARTGRID& to, std::span<const std::int32_t> words, const StepOptions& options) {
  // Deliberate, as existing hosts expect: a slot of one word is not read.
  if (to.nWells < 1 || to.nICONZ <= 1 || to.nCWMAX < 1) return true;
  const std::int64_t slots = std::int64_t{to.nWells} * to.nCWMAX;
  if (const auto outcome = outcomeWithoutTable(words.size(), to.nICONZ, slots)) return *outcome;
  if (!connectionsFit(to)) {
    to.nICONZ = 0;
    return false;
  }
  // Deliberate: without markers a slot of six words or more gives the cell and two words, and of a shorter
  // one the first word is taken too.
  std::span<const WordToColumn> columns = iconColumns;
  if (!options.qMarkers)
    columns = to.nICONZ >= 6 ? std::span<const WordToColumn>(iconShort) : iconWithoutMarkers;
  to.iCONN = connectionTable(to, words, to.nICONZ, 9, wordsInside(columns, to.nICONZ));
  to.nCWMax = to.nCWMAX;
  to.qICON = true;
  return true;
}

bool takeSCON(RESTARTGRID& to, std::span<const float> words) {
  if (to.nWells < 1 || to.nSCONZ < 1 || to.nCWMAX < 1) return true;
  const std::int64_t slots = std::int64_t{to.nWells} * to.nCWMAX;
  if (const auto outcome = outcomeWithoutTable(words.size(), to.nSCONZ, slots)) return *outcome;
  if (!connectionsFit(to)) {
    to.nSCONZ = 0;
    return false;
  }
  to.sCONN = connectionTable(to, words, to.nSCONZ, 15, wordsInside(sconColumns, to.nSCONZ));
  to.nCWMax = to.nCWMAX;
  to.qSCON = true;
  return true;
}

std::optional<Diagnosis> takeWellRecord(RecordCursor& cursor, RESTARTGRID& grid, const StepOptions& options,
                                        Session& session) {
  const RecordHeader& header = cursor.header();
  bool fits = true;
  // A table that finds no room is missing and the step goes on, so that is reported as hosts know it.
  const auto take = [&](const char* routine, auto&& words, auto into) {
    fits = succeeds(session, "qvEclipseSEQUENCE", routine, [&] { return into(words); });
  };
  if (header.is("IWEL", ElementType::Integer)) {
    take("processIWEL", cursor.integers(), [&](const auto& words) { return takeIWEL(grid, words); });
  } else if (header.is("ICON", ElementType::Integer)) {
    take("processICON", cursor.integers(), [&](const auto& words) { return takeICON(grid, words, options); });
  } else if (header.is("SWEL", ElementType::Single)) {
    take("processSWEL", cursor.singles(), [&](const auto& words) { return takeSWEL(grid, words); });
  } else if (header.is("SCON", ElementType::Single)) {
    take("processSCON", cursor.singles(), [&](const auto& words) { return takeSCON(grid, words); });
  } else if (header.is("XWEL", ElementType::Double)) {
    take("processXWEL", cursor.doubles(), [&](const auto& words) { return takeXWEL(grid, words, options); });
  } else if (header.is("ZWEL", ElementType::Text)) {
    take("processZWEL", cursor.texts(), [&](const auto& words) { return takeZWEL(grid, words); });
  } else if (header.is("ZGRP", ElementType::Text)) {
    take("processZGRP", cursor.texts(), [&](const auto& words) { return takeZGRP(grid, words); });
  }
  if (fits) return std::nullopt;
  return Diagnosis{.message = Message::WellRecordLength,
                   .path = cursor.path(),
                   .keyword = header.keyword,
                   .occurrence = cursor.occurrence(),
                   .offset = header.headerAt,
                   .expected = fmt::format("complete blocks for {} wells of up to {} connections",
                                           grid.nWells, grid.nCWMAX),
                   .found = fmt::format("{} words", header.count),
                   .action = "skipped the record"};
}

std::optional<std::int32_t> wellPVTNumber(const RESTARTGRID& grid, std::string_view zWell,
                                          std::int32_t iWell) {
  const auto wells = static_cast<std::int32_t>(grid.iWELL.rows());
  if (iWell == -1) {
    if (trim(zWell).empty()) return std::nullopt;
    // Deliberate, as hosts know it: a name that no well has means the last well.
    iWell = std::min(wells, 1);
    while (iWell < wells && !(grid.qZWEL && equalNoCase(grid.zWELL(size(iWell), 1), trim(zWell)))) ++iWell;
  }
  if (iWell < 1 || iWell > wells) return std::nullopt;
  return grid.iWELL(size(iWell), 9);
}

}  // namespace lumbarn
