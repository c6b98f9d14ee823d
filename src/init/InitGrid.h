#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../arrays/ArrayTable.h"
#include "../record/RecordHeader.h"
#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "ModelFlags.h"

namespace lumbarn {

/// Connection arrays of one kind: transmissibilities and the like of connections that are no neighbours.
struct tNNC {
  std::string zNNCType;      ///< label: "NNC", "NNCGL", "NNCLL"
  std::vector<float> sData;  ///< nItems values of each array, one array after the other
  std::vector<std::string> zArrays;
  std::int32_t nItems = 0;  ///< connections
  std::int32_t nArrays = 0;
  std::vector<RecordHeader> headers;  ///< where the arrays stand
  std::vector<std::int32_t> iKinds;   ///< 3, singles, for each
};

/// Kind of a connection array by its name, upper case: 1 between cells of one grid, 2 between a local grid
/// and the global one, 3 between two local grids, 4 for all other names.
LUMBARN_API std::int32_t whichNNCType(std::string_view zName);

/// The active cells of a grid.
struct InitActiveCells {
  std::vector<std::int32_t> iA2N;  ///< cell numbers, from 1, nActive of them; 0 where cells are too few
  bool agrees = false;             ///< the files decide which cells are active, see `decideActiveCells`
};

/// One grid of an INIT file: the global one, "ROOT", or a local one.
struct GRIDINFO {
  std::string GridName = "ROOT";
  std::int32_t iUnits = 1;  ///< 1 metric, 2 field, 3 laboratory, 4 metric with atmospheres
  std::int32_t Nx = 1;
  std::int32_t Ny = 1;
  std::int32_t Nz = 1;
  std::int64_t nCells = 0;
  std::int32_t nActive = 0;
  std::int32_t nOtherActive = 0;  ///< another number that the header states; 0 for none
  std::int32_t iProgram = 0;
  std::int32_t iDay = 1;
  std::int32_t iMonth = 1;
  std::int32_t iYear = 1980;
  std::int32_t nVectorsMax = 100;
  std::int32_t nPhases = 0;
  std::string zDate;  ///< "1 JAN 2015"; empty when the file has no date
  bool qE100 = true;
  bool qFrontSim = false;
  ModelFlags flags;
  std::vector<RecordHeader> candidates;  ///< records that may be arrays, until all of them are known
  std::vector<KeptArray> arrays;         ///< names, units, kinds and places, in the order of the file
  XYData sData;                          ///< nActive values of each; empty once fetched, and without LoadData
  std::optional<RecordHeader> PORV;
  std::optional<InitActiveCells> active;  ///< once asked for
  std::array<tNNC, 3> xNNC;
  std::string zScratchFile;  ///< holds the values in place of sData

  std::int32_t nVectors() const { return static_cast<std::int32_t>(arrays.size()); }
};

}  // namespace lumbarn
