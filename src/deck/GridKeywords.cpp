#include <algorithm>
#include <limits>
#include <utility>

#include "../support/Fault.h"
#include "../vocabulary/Units.h"
#include "DeckScheduleStore.h"
#include "ECLCommonFunctions.h"
#include "KeywordParsers.h"
#include "qvEclipseData.h"

namespace lumbarn {

namespace {

using Words = std::vector<std::string>;

std::size_t extent(std::int32_t first, std::int32_t last) {
  return static_cast<std::size_t>(last - first) + 1;
}

/// The current grid. Throws Fault 9 before GRID, and when the box in force does not lie in the grid.
DeckGridRecord& gridOfBox(DeckGrids& grids) {
  const auto inside = [](std::int32_t first, std::int32_t last, std::int32_t size) {
    return first >= 1 && first <= last && last <= size;
  };
  if (grids.records.empty()) throw Fault(FaultNumber::Subscript);
  DeckGridRecord& grid = grids.grid();
  const HostBox& box = grids.box;
  if (!inside(box.iI1, box.iI2, grid.iNX) || !inside(box.iJ1, box.iJ2, grid.iNY) ||
      !inside(box.iK1, box.iK2, grid.iNZ))
    throw Fault(FaultNumber::Subscript);
  return grid;
}

std::int32_t arrayCount(std::size_t count) {
  if (count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
    throw Fault(FaultNumber::Overflow);
  return static_cast<std::int32_t>(count);
}

/// Sets the sizes; one that is not given is 0. Throws Fault 6 when the cells cannot be numbered.
void setSizes(DeckGridRecord& grid, std::int32_t iNX, std::int32_t iNY, std::int32_t iNZ) {
  const auto size = [](std::int32_t cells) { return static_cast<std::size_t>(std::max(cells, 0)); };
  arrayCount(static_cast<std::size_t>(arrayCount(size(iNX) * size(iNY))) * size(iNZ));
  grid.iNX = std::max(iNX, 0);
  grid.iNY = std::max(iNY, 0);
  grid.iNZ = std::max(iNZ, 0);
}

/// Lengthens an array for values in a box. Throws Fault 7 when a deck wants much room for few values: no
/// grid of a run is like that.
template <class T>
void lengthen(std::vector<T>& target, std::size_t items, std::size_t given, T value) {
  constexpr std::size_t plenty = std::size_t{1} << 28;
  if (items <= target.size()) return;
  if (items > plenty && items / 2 > target.size() + given) throw Fault(FaultNumber::OutOfMemory);
  target.resize(items, value);
}

void wholeDeck(const HostKeyword& keyword) {
  const DeckRunspec& runspec = keyword.runspec();
  keyword.grids().box = {1, runspec.iNX, 1, runspec.iNY, 1, runspec.iNZ};
}

/// Begins the section. A second GRID begins the global grid anew, and local grids stay.
void parseGRID(const HostKeyword& keyword) {
  DeckGrids& grids = keyword.grids();
  const DeckRunspec& runspec = keyword.runspec();
  if (grids.records.empty()) grids.records.emplace_back();
  grids.current = 0;
  grids.grid() = DeckGridRecord();
  setSizes(grids.grid(), runspec.iNX, runspec.iNY, runspec.iNZ);
  if (grids.grid().nCells() > 0) wholeDeck(keyword);
}

void parseBOX(const HostKeyword& keyword) {
  const Words words = keyword.arguments();
  HostBox& box = keyword.grids().box;
  std::int32_t* const ends[] = {&box.iI1, &box.iI2, &box.iJ1, &box.iJ2, &box.iK1, &box.iK2};
  for (std::size_t i = 0; i < std::size(ends); ++i) takeInteger(words, i, *ends[i]);
}

/// Deliberate: in a local grid too, this is the box of the global grid.
void parseENDBOX(const HostKeyword& keyword) { wholeDeck(keyword); }

/// Writes consecutive values starting at an index, extending the array as needed.
template <class T>
void put(std::vector<T>& target, std::size_t place, std::span<const T> values) {
  lengthen(target, place + values.size(), values.size(), T{});
  std::copy(values.begin(), values.end(), target.begin() + static_cast<std::ptrdiff_t>(place));
}

/// The next values of a source, up to a count.
template <class T>
std::span<const T> take(std::span<const T>& source, std::size_t count) {
  const auto part = source.first(std::min(count, source.size()));
  source = source.subspan(part.size());
  return part;
}

void putPillars(const DeckGrids& grids, std::vector<double> values, DeckGridRecord& grid) {
  const bool global = grids.current == 0;
  const auto reservoir = static_cast<std::size_t>(global ? std::max(grids.iReservoir - 1, 0) : 0);
  const std::size_t first = reservoir * grid.pillarItems();
  const HostBox& box = grids.box;
  if (box == grid.whole() && first == 0 && grid.dCoord.empty()) {
    grid.dCoord = std::move(values);
    return;
  }
  const std::size_t row = 6 * (static_cast<std::size_t>(grid.iNX) + 1);
  std::span<const double> left = values;
  for (std::int32_t j = box.iJ1; j <= box.iJ2 + 1 && !left.empty(); ++j) {
    const auto line = take(left, 6 * (extent(box.iI1, box.iI2) + 1));
    put(grid.dCoord,
        first + static_cast<std::size_t>(j - 1) * row + 6 * static_cast<std::size_t>(box.iI1 - 1), line);
  }
}

void parseCOORD(const HostKeyword& keyword) {
  DeckGrids& grids = keyword.grids();
  if (grids.current == 0) grids.qCOORD = true;
  // The data then are lines that name no keyword.
  if (!keyword.options.ProcessCorners) return;
  DeckGridRecord& grid = gridOfBox(grids);
  const HostBox& box = grids.box;
  std::int32_t count = arrayCount(6 * (extent(box.iI1, box.iI2) + 1) * (extent(box.iJ1, box.iJ2) + 1));
  std::vector<double> values;
  bool qOK = false;
  keyword.reading.readEclipseDoubleArray(keyword.file, count, values, qOK);
  DeckCoordBlock block = gridOffSet(values);
  block.box = box;
  grids.blocks.push_back(block);
  putPillars(grids, std::move(values), grid);
}

void putDepths(const HostBox& box, std::vector<float> values, DeckGridRecord& grid) {
  if (box == grid.whole() && grid.sDepths.size() <= values.size()) {
    grid.sDepths = std::move(values);
    return;
  }
  const std::size_t row = 2 * static_cast<std::size_t>(grid.iNX);
  const std::size_t plane = 2 * static_cast<std::size_t>(grid.iNY) * row;
  std::span<const float> left = values;
  const auto end = [](std::int32_t last) { return 2 * static_cast<std::size_t>(last); };
  for (std::size_t k = end(box.iK1 - 1); k < end(box.iK2) && !left.empty(); ++k) {
    for (std::size_t j = end(box.iJ1 - 1); j < end(box.iJ2) && !left.empty(); ++j)
      put(grid.sDepths, k * plane + j * row + end(box.iI1 - 1), take(left, 2 * extent(box.iI1, box.iI2)));
  }
}

void parseZCORN(const HostKeyword& keyword) {
  DeckGrids& grids = keyword.grids();
  if (grids.current == 0) grids.qZCORN = true;
  if (!keyword.options.ProcessCorners) return;
  DeckGridRecord& grid = gridOfBox(grids);
  const HostBox& box = grids.box;
  std::int32_t count =
      arrayCount(8 * extent(box.iI1, box.iI2) * extent(box.iJ1, box.iJ2) * extent(box.iK1, box.iK2));
  std::vector<float> values;
  bool qOK = false;
  keyword.reading.readEclipseSingleArray(keyword.file, count, values, qOK);
  putDepths(box, std::move(values), grid);
}

void parseACTNUM(const HostKeyword& keyword) {
  std::vector<std::string> lines;
  std::int32_t nLines = 0;
  bool qOK = false;
  keyword.reading.readKeywordArguments(keyword.file, lines, nLines, qOK, "/", true);
  DeckGridRecord& grid = gridOfBox(keyword.grids());
  const HostBox& box = keyword.grids().box;
  const std::size_t row = extent(box.iI1, box.iI2), plane = row * extent(box.iJ1, box.iJ2);
  std::vector<std::int32_t> values;
  getEclipseLongArray(lines, nLines, arrayCount(plane * extent(box.iK1, box.iK2)), values, qOK,
                      keyword.session);
  if (values.empty()) return;
  // Allocate only the layers that the list has values for.
  const std::size_t layers = std::min((values.size() + plane - 1) / plane, extent(box.iK1, box.iK2));
  const std::size_t cells = (static_cast<std::size_t>(box.iK1 - 1) + layers) *
                            static_cast<std::size_t>(grid.iNX) * static_cast<std::size_t>(grid.iNY);
  lengthen(grid.iACTNUM, cells, values.size(), 1);
  copyBOXIntoLongArray(values, static_cast<std::int32_t>(values.size()), box.iI1, box.iI2, box.iJ1, box.iJ2,
                       box.iK1, box.iK1 + static_cast<std::int32_t>(layers) - 1, grid.iNX, grid.iNY,
                       grid.iACTNUM, qOK, keyword.session);
}

/// A new grid, which stays the current one also behind ENDFIN: deliberate.
DeckGridRecord& addLocalGrid(const HostKeyword& keyword) {
  DeckGrids& grids = keyword.grids();
  if (grids.records.empty()) grids.records.emplace_back();
  grids.current = grids.records.size();
  return grids.records.emplace_back();
}

void beginLocalGrid(const HostKeyword& keyword, const DeckGridRecord& grid) {
  keyword.grids().box = grid.whole();
  if (keyword.schedule()) keyword.schedule()->localGrid(grid);
}

void parseCARFIN(const HostKeyword& keyword) {
  constexpr std::size_t needed = 10;
  const Words words = keyword.arguments();
  if (words.empty()) return;
  DeckGridRecord& grid = addLocalGrid(keyword);
  if (words.size() >= needed) {
    const auto at = [&](std::size_t place) { return integerAt(words, place); };
    grid.zName = words[0];
    grid.parent = {at(1), at(2), at(3), at(4), at(5), at(6)};
    setSizes(grid, at(7), at(8), at(9));
  }
  beginLocalGrid(keyword, grid);
}

/// A column of the parent, first and last layer, then the cells along radius, angle and depth.
void parseRADFIN(const HostKeyword& keyword) {
  constexpr std::size_t needed = 8;
  const Words words = keyword.arguments();
  if (words.empty()) return;
  DeckGridRecord& grid = addLocalGrid(keyword);
  if (words.size() >= needed) {
    const auto at = [&](std::size_t place) { return integerAt(words, place); };
    grid.zName = words[0];
    grid.parent = {at(1), at(1), at(2), at(2), at(3), at(4)};
    setSizes(grid, at(5), at(6), at(7));
  }
  beginLocalGrid(keyword, grid);
}

void parseMAPAXES(const HostKeyword& keyword) {
  DeckGrids& grids = keyword.grids();
  const Words words = keyword.arguments();
  if (words.size() < grids.dMapAxes.size()) return;
  for (std::size_t i = 0; i < grids.dMapAxes.size(); ++i) grids.dMapAxes[i] = getDoubleArgument(words[i]);
  grids.qMapAxes = true;
}

void parseGRIDMAPUNITS(const HostKeyword& keyword) {
  DeckGrids& grids = keyword.grids();
  std::int32_t system = WhichUnitSystem(textAt(keyword.arguments(), 0));
  if (system < 0) system = keyword.runspec().iUnitSystem;
  const bool grid = keyword.zKeyword == "GRIDUNIT";
  (grid ? grids.iGridUnit : grids.iMapUnit) = system;
  (grid ? grids.qGridUnit : grids.qMapUnit) = true;
}

void parseCOORDSYS(const HostKeyword& keyword) {
  DeckGrids& grids = keyword.grids();
  for (const Words& words : keyword.records()) {
    if (words.size() < 2) continue;
    if (grids.nCOORDSYS == grids.reservoirs.size()) grids.reservoirs.emplace_back();
    DeckReservoir& reservoir = grids.reservoirs[grids.nCOORDSYS++];
    reservoir.iFirstLayer = integerAt(words, 0);
    reservoir.iLastLayer = integerAt(words, 1);
    reservoir.zCircle = textAt(words, 2, reservoir.zCircle);
    reservoir.zConnection = textAt(words, 3, reservoir.zConnection);
  }
}

/// The reservoir that the COORD behind it is for. One that NUMRES does not have is ignored.
void parseRESNUM(const HostKeyword& keyword) {
  const std::int32_t reservoir = integerAt(keyword.arguments(), 0);
  if (reservoir >= 1 && reservoir <= keyword.runspec().iNumRes) keyword.grids().iReservoir = reservoir;
}

DeckFault* GetFaultByName(DeckGrids& grids, const std::string& zName) {
  const auto found = grids.faultByName.find(zName);
  return found == grids.faultByName.end() ? nullptr : &grids.faults[found->second];
}

void parseFAULTS(const HostKeyword& keyword) {
  constexpr std::size_t needed = 8;
  DeckGrids& grids = keyword.grids();
  for (const Words& words : keyword.records()) {
    if (words.size() < needed) continue;
    const auto at = [&](std::size_t place) { return integerAt(words, place); };
    DeckFault* fault = GetFaultByName(grids, words[0]);
    if (!fault) {
      grids.faultByName.emplace(words[0], grids.faults.size());
      fault = &grids.faults.emplace_back(DeckFault{.zName = words[0], .segments = {}});
    }
    fault->segments.push_back({{at(1), at(2), at(3), at(4), at(5), at(6)}, words[7]});
  }
}

/// A fault that FAULTS did not name is dropped.
void parseMULTFLT(const HostKeyword& keyword) {
  for (const Words& words : keyword.records()) {
    DeckFault* const fault = words.empty() ? nullptr : GetFaultByName(keyword.grids(), words[0]);
    const float multiplier = singleAt(words, 1);
    if (fault && multiplier != static_cast<float>(noDeckValue)) fault->sMultiplier = multiplier;
  }
}

DeckPinch SetPINCHOUT(const Words& words) {
  DeckPinch pinch;
  if (const float threshold = singleAt(words, 0); threshold != static_cast<float>(noDeckValue))
    pinch.sThreshold = threshold;
  pinch.zGap = textAt(words, 1, pinch.zGap);
  if (words.size() > 2 && getDoubleArgument(words[2]) != noDeckValue)
    pinch.dMaxGap = getDoubleArgument(words[2]);
  pinch.zTransmissibility = textAt(words, 3, pinch.zTransmissibility);
  pinch.zMultiplier = textAt(words, 4, pinch.zMultiplier);
  return pinch;
}

/// One record each for PINCH, a later keyword takes the place of an earlier one. PINCREG, with a record for
/// each region, is in no row of the dictionary and does not get here.
void parsePINCH(const HostKeyword& keyword) {
  DeckGrids& grids = keyword.grids();
  if (keyword.zKeyword == "PINCHOUT") {
    grids.pinches = {DeckPinch()};
  } else if (keyword.zKeyword == "PINCH") {
    grids.pinches = {SetPINCHOUT(keyword.arguments())};
  } else if (keyword.zKeyword == "PINCHXY") {
    const Words words = keyword.arguments();
    grids.qPinchXY = true;
    for (std::size_t i = 0; i < grids.sPinchXY.size(); ++i) {
      if (const float value = singleAt(words, i); value != static_cast<float>(noDeckValue))
        grids.sPinchXY[i] = value;
    }
  }
}

constexpr ParserRow rows[] = {
    {"parseACTNUM", parseACTNUM},
    {"parseBOX", parseBOX},
    {"parseCARFIN", parseCARFIN},
    {"parseCOORD", parseCOORD},
    {"parseCOORDSYS", parseCOORDSYS},
    {"parseENDBOX", parseENDBOX},
    {"parseFAULTS", parseFAULTS},
    {"parseGRID", parseGRID},
    {"parseGRIDMAPUNITS", parseGRIDMAPUNITS},
    {"parseMAPAXES", parseMAPAXES},
    {"parseMULTFLT", parseMULTFLT},
    {"parsePINCH", parsePINCH},
    {"parseRADFIN", parseRADFIN},
    {"parseRESNUM", parseRESNUM},
    {"parseZCORN", parseZCORN},
};

}  // namespace

std::span<const ParserRow> gridParsers() { return rows; }

}  // namespace lumbarn
