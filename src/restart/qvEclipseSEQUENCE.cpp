#include "qvEclipseSEQUENCE.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "../arrays/ArrayUnits.h"
#include "../arrays/DerivedSaturation.h"
#include "../index/ActiveCount.h"
#include "../index/RestartIndex.h"
#include "../shapes/HeaderLayout.h"
#include "../shapes/OnlyList.h"
#include "../support/Dates.h"
#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "../vocabulary/Mnemonics.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvEclipseSEQUENCE";
constexpr float noValue = -999;

/// "15 JUL 2003", without padding; the month is missing if its number is not valid.
std::string dateText(const RESTARTGRID& grid) {
  return fmt::format("{} {} {}", grid.iDay, monthName(grid.iMonth), grid.iYear);
}

/// Hour and minute of a time in days, to the nearest second, as 6:30 is not exact as a fraction of a day.
std::pair<int, int> timeOfDay(double days) {
  constexpr double secondsPerDay = 86400;
  if (!std::isfinite(days)) return {0, 0};
  const double seconds = std::fmod(std::round((days - std::floor(days)) * secondsPerDay), secondsPerDay);
  const int minutes = static_cast<int>(seconds / 60);
  return {minutes / 60, minutes % 60};
}

/// Smallest and largest value that is one.
std::pair<float, float> range(std::span<const float> values) {
  float least = noValue;
  float most = noValue;
  for (const float value : values) {
    if (value == noValue || std::isnan(value)) continue;
    if (least == noValue || value < least) least = value;
    if (most == noValue || value > most) most = value;
  }
  return {least, most};
}

}  // namespace

RESTARTGRID& qvEclipseSEQUENCE::grid(std::int32_t number) {
  return const_cast<RESTARTGRID&>(std::as_const(*this).grid(number));
}

const RESTARTGRID& qvEclipseSEQUENCE::grid(std::int32_t number) const {
  if (number < 1 || number > nGrids) throw Fault(FaultNumber::Subscript);
  return tGrids[static_cast<std::size_t>(number) - 1];
}

bool qvEclipseSEQUENCE::checkIfRESTARTArray(const RecordHeader& header) const {
  if (header.type != ElementType::Integer && header.type != ElementType::Single) return false;
  const RESTARTGRID& current = grid();
  if (header.count != current.nActive && header.count != current.nCells) return false;
  if (isRefusedArrayName(header.keyword)) return false;
  return checkEclipseONLYList(*session_, header.keyword) &&
         (!selection || selection->chooses(header.keyword));
}

void qvEclipseSEQUENCE::processINTEHEAD(const HeaderWords& words) {
  RESTARTGRID& to = grid();
  const std::pair wells(to.nWells, to.nCWMAX);
  for (const auto& [word, field] : std::initializer_list<std::pair<std::size_t, std::int32_t*>>{
           {3, &to.iUnits},  {9, &to.Nx},      {10, &to.Ny},      {11, &to.Nz},      {15, &to.iPhases},
           {17, &to.nWells}, {18, &to.nCWMAX}, {19, &to.nGroups}, {21, &to.iWord21}, {25, &to.nIWELZ},
           {26, &to.nSWELZ}, {27, &to.nXWELZ}, {28, &to.nZWELZ},  {33, &to.nICONZ},  {34, &to.nSCONZ},
           {35, &to.nXCONZ}, {37, &to.nIGRPZ}, {38, &to.nSGRPZ},  {39, &to.nXGRPZ},  {40, &to.nZGRPZ},
           {65, &to.iDay},   {66, &to.iMonth}, {67, &to.iYear},   {95, &to.iProgram}}) {
    words.take(word, *field);
  }
  if (words.has(12)) to.nActive = static_cast<std::int32_t>(statedActiveCells(words, false).active);
  for (std::size_t i = 0; i < std::size(to.iAquiferSizes); ++i) words.take(41 + i, to.iAquiferSizes[i]);
  if (wells != std::pair(to.nWells, to.nCWMAX)) to.dropWells();  // a second header of the grid
  to.nWellsHeader = to.nWells;
  to.nCells = cellCount(to.Nx, to.Ny, to.Nz);
  to.qE100 = !words.isE300();
  to.zDate = dateText(to);
  if (iGrid == 1) {  // headers of local grids state nothing of the step
    iSeqnum = to.iSeqnum = stepNumber(sections_.seqnum(), iFileNumber_, words.words());
    iDay = to.iDay;
    iMonth = to.iMonth;
    iYear = to.iYear;
  }
  qHaveWells = to.nWells >= 1;
  qHaveGroups = to.nGroups >= 1;
  const std::int32_t sizes[] = {to.nIWELZ, to.nSWELZ, to.nXWELZ, to.nZWELZ, to.nICONZ, to.nSCONZ, to.nXCONZ};
  to.qWellDataValid = to.iProgram > 0 && std::ranges::all_of(sizes, [](auto size) { return size >= 1; });
}

void qvEclipseSEQUENCE::processLOGIHEAD(std::span<const std::int16_t> words) {
  if (iGrid != 1) {
    grid().qLogi15 = grid(1).qLogi15;
  } else if (words.size() > 14) {
    grid().qLogi15 = words[14] != 0;
  }
}

void qvEclipseSEQUENCE::processDBLEHEAD(std::span<const double> words) {
  if (words.empty()) return;
  RESTARTGRID& to = grid();
  to.dTime = words[0];
  if (iGrid == 1) {
    dTime = words[0];
    sFraction = std::isfinite(dTime) ? static_cast<float>(dTime - std::trunc(dTime)) : 0;
  }
  const auto [hour, minute] = timeOfDay(to.dTime);
  if (hour > 0 || minute >= 1) to.zDate = fmt::format("{} {}:{}", dateText(to), hour, minute);
}

void qvEclipseSEQUENCE::AddLGRGrid(std::string_view zName) {
  const std::string name(trim(zName));
  if (const auto known = gridOf_.find(name); known != gridOf_.end()) {
    iGrid = known->second;
    return;
  }
  RESTARTGRID added;
  added.GridName = name;
  added.iSeqnum = grid(1).iSeqnum;
  added.Origin = Origin;
  tGrids.push_back(std::move(added));
  iGrid = ++nGrids;
  gridOf_.emplace(name, iGrid);
}

void qvEclipseSEQUENCE::getSEQUENCEData(XYData& xyData, bool& qOK) const {
  guarded(*session_, qOK, className, "getSEQUENCEData", [&] {
    const RESTARTGRID& from = grid();
    const auto columns = static_cast<std::size_t>(from.arrays.nVectors());
    if (columns == 0) return false;
    if (!from.arrays.hasValues()) {
      XYData none(1, columns, *session_);
      std::ranges::fill(none.values(), 0.0F);
      none(1, 1) = -1;
      xyData = std::move(none);
      return true;
    }
    const auto rows = static_cast<std::size_t>(std::max(from.nActive, 0));
    // Deliberate, as hosts know it: the table has one row for each active cell and takes its values from the
    // start of the block, so arrays of all cells run on from column to column. `ArrayTable::column` has each
    // array as it is.
    const auto all = from.arrays.values();
    if (rows * columns > all.size()) throw Fault(FaultNumber::Subscript);
    XYData copy(rows, columns, *session_);
    std::ranges::copy(all.first(rows * columns), copy.values().begin());
    xyData = std::move(copy);
    return true;
  });
}

void qvEclipseSEQUENCE::getSEQUENCEHeaders(ByteTable& bHeaders, bool& qOK) const {
  guarded(*session_, qOK, className, "getSEQUENCEHeaders", [&] {
    const RESTARTGRID& from = grid();
    ByteTable headers(headerWidth, from.arrays.arrays().size());
    std::size_t i = 0;
    for (const KeptArray& array : from.arrays.arrays()) {
      ++i;
      setAttribute(attributeDataKind, headers, i, "SOLUTION");
      setAttribute(attributeSource, headers, i, trim(from.Origin));
      setAttribute(attributeIndex, headers, i, fmt::format("{}", iSeqnum));
      if (nGrids > 1) setAttribute(attributeLGRName, headers, i, from.GridName);
      setAttribute(attributeUnits, headers, i, array.unit);
      setAttribute(attributeVariable, headers, i, array.name);
      std::string number;
      setAttribute(attributeVerbose, headers, i, getEclipseLongDescription("SOLUTION", array.name, number));
    }
    bHeaders = std::move(headers);
  });
}

void qvEclipseSEQUENCE::getSEQUENCEFODInfo(ColumnTable<std::int32_t>& iFOD, bool& qOK) const {
  guarded(*session_, qOK, className, "getSEQUENCEFODInfo", [&] { iFOD = grid().arrays.iFOD(); });
}

void qvEclipseSEQUENCE::DeleteSEQUENCEData(bool& qOK) {
  guarded(*session_, qOK, className, "DeleteSEQUENCEData", [&] {
    RESTARTGRID& from = grid();
    from.arrays.clear();
    from.nActive = 0;
    from.dropWells();
    from.qZGRP = false;
    from.zGROUP = {};
  });
}

void qvEclipseSEQUENCE::GetINTEHEAD(std::vector<std::int32_t>& words, bool& qOK) const {
  qOK = qHaveHeader;
  if (qOK) words = iHeader;
}

void qvEclipseSEQUENCE::getRESTARTDate(std::int32_t& day, std::int32_t& month, std::int32_t& year) const {
  day = iDay;
  month = iMonth;
  year = iYear;
}

std::int32_t qvEclipseSEQUENCE::dimension(std::int32_t number, std::int32_t RESTARTGRID::*field,
                                          bool& qOK) const {
  qOK = number >= 1 && number <= nGrids;
  return qOK ? grid(number).*field : -1;
}

std::int32_t qvEclipseSEQUENCE::Nx(std::int32_t number, bool& qOK) const {
  return dimension(number, &RESTARTGRID::Nx, qOK);
}

std::int32_t qvEclipseSEQUENCE::Ny(std::int32_t number, bool& qOK) const {
  return dimension(number, &RESTARTGRID::Ny, qOK);
}

std::int32_t qvEclipseSEQUENCE::Nz(std::int32_t number, bool& qOK) const {
  return dimension(number, &RESTARTGRID::Nz, qOK);
}

void qvEclipseSEQUENCE::GetVectorDetails(VectorDetails& details, bool& qOK) const {
  guarded(*session_, qOK, className, "GetVectorDetails", [&] {
    details = {GetVectorNames(),    GetVectorNumber(), GetVectorType(),     GetVectorPointer(),
               GetVectorPointerB(), GetVectorTime(),   GetVectorArrayMin(), GetVectorArrayMax()};
  });
}

std::vector<std::string> qvEclipseSEQUENCE::GetVectorNames() const {
  std::vector<std::string> names;
  for (const KeptArray& array : grid().arrays.arrays()) names.push_back(array.name);
  return names;
}

std::vector<std::int32_t> qvEclipseSEQUENCE::rowOfFOD(std::size_t iRow) const {
  const auto table = grid().arrays.iFOD();
  std::vector<std::int32_t> row;
  for (std::size_t i = 1; i <= table.columns(); ++i) row.push_back(table(iRow, i));
  return row;
}

std::vector<float> qvEclipseSEQUENCE::GetVectorArrayMin() const {
  const ArrayTable& arrays = grid().arrays;
  if (!arrays.hasValues()) return {-1.0F};
  std::vector<float> least;
  for (std::int32_t i = 1; i <= arrays.nVectors(); ++i) least.push_back(range(arrays.column(i)).first);
  return least;
}

std::vector<float> qvEclipseSEQUENCE::GetVectorArrayMax() const {
  const ArrayTable& arrays = grid().arrays;
  if (!arrays.hasValues()) return {-1.0F};
  std::vector<float> most;
  for (std::int32_t i = 1; i <= arrays.nVectors(); ++i) most.push_back(range(arrays.column(i)).second);
  return most;
}

std::vector<double> qvEclipseSEQUENCE::GetVectorTime() const {
  return std::vector<double>(grid().arrays.arrays().size(), grid().dTime);
}

void qvEclipseSEQUENCE::addDerivedData(bool& qOK) {
  guarded(*session_, qOK, className, "addDerivedData", [&] {
    for (iGrid = 1; iGrid < nGrids; ++iGrid) deriveSaturation();
    deriveSaturation();
  });
}

/// The saturation that is missing is what the others leave, by the phases of the run.
void qvEclipseSEQUENCE::deriveSaturation() {
  ArrayTable& arrays = grid().arrays;
  const std::int32_t water = arrays.find("SWAT");
  const std::int32_t gas = arrays.find("SGAS");
  const auto derived = derivedSaturation(grid().iPhases, arrays.find("SOIL") > 0, water > 0, gas > 0);
  if (!derived || (selection && !selection->choosesDerived(derived->name))) return;
  if (!arrays.addDerived(derived->name, "", grid().nActive, {LoadData, nVectorEstimate}, *session_)) return;
  if (!arrays.hasValues()) return;
  const auto out = arrays.column(arrays.nVectors());
  const auto one = std::as_const(arrays).column(derived->water ? water : gas);
  const bool both = derived->water && derived->gas;
  const auto other = both ? std::as_const(arrays).column(gas) : std::span<const float>();
  for (std::size_t i = 0; i < out.size(); ++i)
    out[i] = DerivedSaturation::remaining(one[i], both ? other[i] : 0);
}

}  // namespace lumbarn
