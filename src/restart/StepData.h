#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../index/HeaderWords.h"
#include "../support/Export.h"
#include "RestartGrid.h"

namespace lumbarn {

/// What one report step of a restart file has: header words, and for the global grid and each local grid its
/// solution arrays, wells and connections.
struct LUMBARN_API StepData {
  std::string FileName;
  std::int32_t iSeqnum = -1;  ///< report step; before reading, the number in the name of the file
  std::int32_t iDay = -1;
  std::int32_t iMonth = -1;
  std::int32_t iYear = -1;
  double dTime = 0;     ///< days
  float sFraction = 0;  ///< of a day
  std::int32_t nGrids = 1;
  std::int32_t iGrid = 1;             ///< current grid: 1 is the global one
  std::int32_t nVectorEstimate = 10;  ///< first capacity of the array tables; reading counts the arrays
  std::vector<RESTARTGRID> tGrids{1};
  std::vector<std::int32_t> iHeader;  ///< copy of the last INTEHEAD
  bool qHaveWells = false;
  bool qHaveGroups = false;
  bool qHaveHeader = false;  ///< an INTEHEAD was read
  bool qPastEnd = false;     ///< the step lies behind iEnd

  // Not used by existing hosts.
  std::optional<std::int32_t> seqnum;  ///< value of SEQNUM
  std::int32_t iFileNumber = -1;       ///< step number in the name of the file

  /// The current grid. Throws Fault 9 if there is no grid iGrid.
  RESTARTGRID& grid() { return grid(iGrid); }
  const RESTARTGRID& grid() const { return grid(iGrid); }
  /// A grid by its number, from 1. Throws Fault 9 if there is no such grid.
  RESTARTGRID& grid(std::int32_t number);
  const RESTARTGRID& grid(std::int32_t number) const;
  /// Makes the grid of that name the current one, a new one if there is none.
  void enterGrid(std::string_view zName, const std::string& zOrigin);
  void dropLastGrid();

 private:
  std::map<std::string, std::int32_t, std::less<>> gridOf_{{"ROOT", 1}};
};

/// The words of the header records of the current grid. Those of the global grid are the step's, too.
LUMBARN_API void takeINTEHEAD(StepData& step, const HeaderWords& words);
LUMBARN_API void takeLOGIHEAD(StepData& step, std::span<const std::int16_t> words);
LUMBARN_API void takeDOUBHEAD(StepData& step, std::span<const double> words);

}  // namespace lumbarn
