#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "StepData.h"

namespace lumbarn {

// What hosts are given of a step's arrays.

/// What is known of the arrays of one grid without their values. All have one element for each array, but
/// that without values in memory sMin and sMax are a single -1.
struct VectorDetails {
  std::vector<std::string> zVectors;
  std::vector<std::int32_t> nNumber;    ///< items
  std::vector<std::int32_t> iType;      ///< kind, see `ArrayKind`
  std::vector<std::int32_t> iPointer;   ///< position of the data, from 1, low word
  std::vector<std::int32_t> iPointerB;  ///< high word
  std::vector<double> dTime;            ///< days
  std::vector<float> sMin;              ///< values of -999 do not count; -999 when there are no others
  std::vector<float> sMax;
};

/// Those of one grid.
LUMBARN_API VectorDetails vectorDetails(const RESTARTGRID& grid);
LUMBARN_API std::vector<std::string> vectorNames(const RESTARTGRID& grid);
/// A row, from 1, of the fetch-on-demand table.
LUMBARN_API std::vector<std::int32_t> rowOfFOD(const RESTARTGRID& grid, std::size_t iRow);
LUMBARN_API std::vector<float> vectorMinima(const RESTARTGRID& grid);
LUMBARN_API std::vector<float> vectorMaxima(const RESTARTGRID& grid);
LUMBARN_API std::vector<double> vectorTimes(const RESTARTGRID& grid);

/// Values of a grid that has arrays, nActive rows by arrays: a copy. Without values in memory a table of one
/// row with -1 in the first column. Throws Fault 9 for arrays with fewer values than that.
LUMBARN_API XYData vectorTable(const RESTARTGRID& grid, Session& session);
/// One 233-byte record for each array of the current grid.
LUMBARN_API ByteTable vectorHeaders(const StepData& step);

}  // namespace lumbarn
