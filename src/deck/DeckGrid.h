#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"

namespace lumbarn {

/// First and last I, J and K, from 1.
struct LUMBARN_API HostBox {
  std::int32_t iI1 = 0, iI2 = 0, iJ1 = 0, iJ2 = 0, iK1 = 0, iK2 = 0;
  bool operator==(const HostBox&) const = default;
};

/// One grid of a deck: the global one, or a local one. Arrays are no longer than what was read into them:
/// what is missing of pillars and depths is 0, of activity 1, so that sizes that a deck only claims take no
/// memory.
struct LUMBARN_API DeckGridRecord {
  std::int32_t iNX = 0, iNY = 0, iNZ = 0;
  std::int32_t nActive = 0;  ///< counted when corners are made
  HostBox parent;            ///< a local grid's box in its parent
  std::string zName;         ///< of a local grid
  std::vector<double> dCoord;
  std::vector<float> sDepths;
  std::vector<std::int32_t> iACTNUM;
  bool qOffSet = false;  ///< the offset was taken off dCoord
  bool qHaveCorners = false;

  std::int32_t nCells() const { return iNX * iNY * iNZ; }
  HostBox whole() const { return {1, iNX, 1, iNY, 1, iNZ}; }
  /// Values of pillars of one reservoir.
  std::size_t pillarItems() const {
    return 6 * (static_cast<std::size_t>(iNX) + 1) * (static_cast<std::size_t>(iNY) + 1);
  }
};

/// One COORD keyword: the box that it was read with, and what can be taken off its coordinates.
struct LUMBARN_API DeckCoordBlock {
  HostBox box;
  double dMinX = 0;
  double dMinY = 0;
};

/// One row of COORDSYS: the layers that have one set of pillars.
struct LUMBARN_API DeckReservoir {
  std::int32_t iFirstLayer = 0;
  std::int32_t iLastLayer = 0;
  std::string zCircle = "INCOMP";
  std::string zConnection = "SEPERATE";  // deliberate: hosts know the word in this spelling
};

struct LUMBARN_API DeckFaultSegment {
  HostBox box;
  std::string zFace;
};

struct LUMBARN_API DeckFault {
  std::string zName;
  float sMultiplier = 1;
  std::vector<DeckFaultSegment> segments;
};

/// One record of PINCH, or PINCHOUT, which has none.
struct LUMBARN_API DeckPinch {
  float sThreshold = 0.001F;
  std::string zGap = "GAP";
  double dMaxGap = 1e20;
  std::string zTransmissibility = "TOPBOT";
  std::string zMultiplier = "TOP";
};

/// What the grid keywords of a deck say.
struct LUMBARN_API DeckGrids {
  std::vector<DeckGridRecord> records;  ///< the global grid first
  std::size_t current = 0;              ///< where arrays go; ENDFIN does not bring the global grid back
  HostBox box;                          ///< the one in force
  std::vector<DeckCoordBlock> blocks;
  std::vector<DeckReservoir> reservoirs;
  std::size_t nCOORDSYS = 0;    ///< rows of `reservoirs` that a deck gives
  std::int32_t iReservoir = 0;  ///< of RESVNUM, from 1; 0: the first
  bool qCOORD = false, qZCORN = false;
  bool qMapAxes = false;
  std::array<double, 6> dMapAxes{};  ///< X1, Y1, X2, Y2, X3, Y3 as in the deck
  std::int32_t iGridUnit = 0, iMapUnit = 0;
  bool qGridUnit = false, qMapUnit = false;
  std::vector<DeckFault> faults;
  std::unordered_map<std::string, std::size_t> faultByName;  ///< places in it
  std::vector<DeckPinch> pinches;
  bool qPinchXY = false;
  std::array<float, 2> sPinchXY{0.001F, 0.001F};
  double dOffSetX = 0, dOffSetY = 0;  ///< taken off by the last `makeCorners` with an offset

  DeckGridRecord& grid() { return records[current]; }
};

/// What can be taken off the coordinates of a block of points x, y, z, so that they keep their digits as
/// singles: the smallest x when it is above 0, the largest when that is below 0, else nothing; y likewise.
LUMBARN_API DeckCoordBlock gridOffSet(const std::vector<double>& dPoints);

/// Prepares the corners of a grid, from 0: takes the offset off the pillars once when asked to, and counts
/// the active cells. Throws Fault 9 when there is no such grid.
LUMBARN_API void makeCorners(DeckGrids& grids, std::size_t grid, bool qOffSet);
/// A row of 24 singles for each cell, as in `Hadrick`; zeros for a cell in no reservoir.
LUMBARN_API XYData cornerRows(const DeckGrids& grids, std::size_t grid, Session& session);
/// One number for each cell; as read, all 1 without ACTNUM.
LUMBARN_API std::vector<std::int32_t> activityOf(const DeckGridRecord& grid);

}  // namespace lumbarn
