#include "IndexFileGrid.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "../support/Text.h"

namespace lumbarn {
namespace {

constexpr std::size_t nameWidth = 16;

/// Calls `visit` with each text of the current record as stored, without a string for each: an index has
/// as many names as a run has records.
template <class Visit>
void forEachText(RecordCursor& cursor, Visit visit) {
  const auto width = static_cast<std::size_t>(cursor.header().width);
  std::string all(static_cast<std::size_t>(cursor.header().count) * width, ' ');
  cursor.readText(all);
  for (std::size_t at = 0; at < all.size(); at += width) visit(std::string_view(all).substr(at, width));
}

/// Does not leave the loop early: without branches it is vectorized, and there is a name for each record.
bool isName(std::string_view text) {
  bool printable = true;
  for (const char c : text) printable &= (c >= ' ') & (c <= '~');
  return printable;
}

}  // namespace

std::uint64_t positionOf(std::int32_t iPointer, std::int32_t iPointerB) {
  return std::uint64_t{static_cast<std::uint32_t>(iPointerB)} << 32 | static_cast<std::uint32_t>(iPointer);
}

bool IndexFileGrid::take(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  if (header.is("NUMBER", ElementType::Integer)) {
    iNumber = cursor.integers();
    nArrays = static_cast<std::int32_t>(iNumber.size());
  } else if (header.is("POINTER", ElementType::Integer)) {
    iPointer = cursor.integers();
  } else if (header.is("POINTERB", ElementType::Integer)) {
    iPointerB = cursor.integers();
  } else if (header.is("ARRAYMIN", ElementType::Single)) {
    sMin = cursor.singles();
  } else if (header.is("ARRAYMAX", ElementType::Single)) {
    sMax = cursor.singles();
  } else if (header.is("TYPE", ElementType::Text)) {
    zTypes.clear();
    zTypes.reserve(static_cast<std::size_t>(header.count));
    forEachText(cursor, [&](std::string_view text) { zTypes.emplace_back(text); });
  } else {
    return false;
  }
  return true;
}

void IndexFileGrid::takeNames(RecordCursor& cursor) {
  const auto count = static_cast<std::size_t>(cursor.header().count);
  bNames = ByteTable(nameWidth, count);
  keywords.clear();
  keywords.reserve(count);
  char* entry = bNames.bytes().data();
  forEachText(cursor, [&](std::string_view text) {
    keywords.emplace_back(text);
    text.copy(entry, nameWidth);
    entry += nameWidth;
  });
}

void IndexFileGrid::setNames(const std::vector<std::string>& names) {
  bNames = ByteTable(nameWidth, names.size());
  for (std::size_t i = 0; i < names.size(); ++i) bNames.put(i + 1, 1, nameWidth, names[i]);
}

std::vector<std::string> IndexFileGrid::names() const {
  std::vector<std::string> names;
  names.reserve(bNames.entries());
  for (std::size_t i = 1; i <= bNames.entries(); ++i) names.emplace_back(bNames.get(i, 1, nameWidth));
  return names;
}

std::vector<std::uint64_t> IndexFileGrid::positions(std::string_view name) const {
  std::vector<std::uint64_t> found;
  const std::size_t count = std::min({bNames.entries(), iPointer.size(), iPointerB.size()});
  for (std::size_t i = 0; i < count; ++i) {
    if (equalNoCase(bNames.get(i + 1, 1, nameWidth), trim(name).substr(0, nameWidth)))
      found.push_back(positionOf(iPointer[i], iPointerB[i]));
  }
  return found;
}

const IndexFileGrid* findGrid(const std::vector<IndexFileGrid>& grids, std::string_view zGrid) {
  const auto grid = std::find_if(grids.begin(), grids.end(),
                                 [&](const IndexFileGrid& one) { return sameGrid(one.zGrid, zGrid); });
  return grid == grids.end() ? nullptr : &*grid;
}

std::int32_t indexOfGrid(const std::vector<IndexFileGrid>& grids, std::string_view zGrid) {
  const IndexFileGrid* grid = findGrid(grids, zGrid);
  return grid ? static_cast<std::int32_t>(grid - grids.data()) + 1 : 0;
}

void addNewNames(const std::vector<std::string>& more, std::vector<std::string>& names) {
  for (const std::string& name : more) {
    if (std::ranges::find(names, name) == names.end()) names.push_back(name);
  }
}

bool toGroup(const IndexFileGrid& grid, IndexGroup& group, std::string& problem) {
  const std::size_t count = grid.keywords.size();
  group.grid = grid.zGrid;
  if (grid.zTypes.size() != count || grid.iNumber.size() != count || grid.iPointer.size() != count ||
      grid.iPointerB.size() != count) {
    problem = fmt::format("{} names with {} types, {} numbers, {} and {} pointers", count, grid.zTypes.size(),
                          grid.iNumber.size(), grid.iPointer.size(), grid.iPointerB.size());
    return false;
  }
  if (!std::ranges::all_of(grid.keywords, [](const auto& name) { return isName(name.whole()); })) {
    problem = "a name has characters that no record's name has";
    return false;
  }
  const bool ranges = grid.sMin.size() == count && grid.sMax.size() == count;
  group.entries.reserve(count);
  std::int64_t beyond = 0;  // elements that an X231 part announces
  for (std::size_t i = 0; i < count; ++i) {
    if (grid.zTypes[i].view() == x231) {
      beyond = -elementsOfX231 * grid.iNumber[i];
      continue;
    }
    auto& entry = group.entries.emplace_back(IndexEntry{
        grid.keywords[i], FixedText<4>(grid.zTypes[i].whole()), std::exchange(beyond, 0) + grid.iNumber[i],
        positionOf(grid.iPointer[i], grid.iPointerB[i])});
    if (ranges) {
      entry.minimum = grid.sMin[i];
      entry.maximum = grid.sMax[i];
    }
  }
  return true;
}

}  // namespace lumbarn
