#include "StepData.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "../index/ActiveCount.h"
#include "../index/ReportStep.h"
#include "../support/Dates.h"
#include "../support/Fault.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

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

}  // namespace

RESTARTGRID& StepData::grid(std::int32_t number) {
  return const_cast<RESTARTGRID&>(std::as_const(*this).grid(number));
}

const RESTARTGRID& StepData::grid(std::int32_t number) const {
  if (number < 1 || number > nGrids) throw Fault(FaultNumber::Subscript);
  return tGrids[static_cast<std::size_t>(number) - 1];
}

void StepData::enterGrid(std::string_view zName, const std::string& zOrigin) {
  const std::string name(trim(zName));
  if (const auto known = gridOf_.find(name); known != gridOf_.end()) {
    iGrid = known->second;
    return;
  }
  RESTARTGRID added;
  added.GridName = name;
  added.iSeqnum = grid(1).iSeqnum;
  added.Origin = zOrigin;
  tGrids.push_back(std::move(added));
  iGrid = ++nGrids;
  gridOf_.emplace(name, iGrid);
}

void StepData::dropLastGrid() {
  gridOf_.erase(tGrids.back().GridName);
  tGrids.pop_back();
  --nGrids;
  iGrid = std::min(iGrid, nGrids);
}

void takeINTEHEAD(StepData& step, const HeaderWords& words) {
  RESTARTGRID& to = step.grid();
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
  if (step.iGrid == 1) {  // headers of local grids state nothing of the step
    step.iSeqnum = to.iSeqnum = stepNumber(step.seqnum, step.iFileNumber, words.words());
    step.iDay = to.iDay;
    step.iMonth = to.iMonth;
    step.iYear = to.iYear;
  }
  step.qHaveWells = to.nWells >= 1;
  step.qHaveGroups = to.nGroups >= 1;
  const std::int32_t sizes[] = {to.nIWELZ, to.nSWELZ, to.nXWELZ, to.nZWELZ, to.nICONZ, to.nSCONZ, to.nXCONZ};
  to.qWellDataValid = to.iProgram > 0 && std::ranges::all_of(sizes, [](auto size) { return size >= 1; });
}

void takeLOGIHEAD(StepData& step, std::span<const std::int16_t> words) {
  if (step.iGrid != 1) {
    step.grid().qLogi15 = step.grid(1).qLogi15;
  } else if (words.size() > 14) {
    step.grid().qLogi15 = words[14] != 0;
  }
}

void takeDOUBHEAD(StepData& step, std::span<const double> words) {
  if (words.empty()) return;
  RESTARTGRID& to = step.grid();
  to.dTime = words[0];
  if (step.iGrid == 1) {
    step.dTime = words[0];
    step.sFraction = std::isfinite(words[0]) ? static_cast<float>(words[0] - std::trunc(words[0])) : 0;
  }
  const auto [hour, minute] = timeOfDay(to.dTime);
  if (hour > 0 || minute >= 1) to.zDate = fmt::format("{} {}:{}", dateText(to), hour, minute);
}

}  // namespace lumbarn
