#include <algorithm>
#include <limits>
#include <span>

#include "../grid/CornerRows.h"
#include "../support/Fault.h"
#include "DeckGrid.h"

namespace lumbarn {

namespace {

struct Offset {
  double x = 0;
  double y = 0;
};

/// That of a single block is taken as it is; of several the least that is not 0 counts, from the first on.
Offset setgridOffSet(const std::vector<DeckCoordBlock>& blocks) {
  if (blocks.empty()) return {};
  Offset offset{blocks.front().dMinX, blocks.front().dMinY};
  for (const DeckCoordBlock& block : blocks) {
    if (block.dMinX != 0) offset.x = std::min(offset.x, block.dMinX);
    if (block.dMinY != 0) offset.y = std::min(offset.y, block.dMinY);
  }
  return offset;
}

void applygridOffSet(std::vector<double>& dCoord, const Offset& offset) {
  for (std::size_t i = 0; i < dCoord.size(); i += 3) dCoord[i] -= offset.x;
  for (std::size_t i = 1; i < dCoord.size(); i += 3) dCoord[i] -= offset.y;
}

double fromZero(double least, double most) { return least > 0 ? least : most < 0 ? most : 0; }

/// The reservoir of each layer, from 0; -1 for none. Without COORDSYS the first has all layers, and so has
/// every local grid its one set of pillars.
std::vector<std::int32_t> reservoirOfLayer(const DeckGrids& grids, std::size_t grid, std::size_t pillarSets) {
  std::vector<std::int32_t> reservoirs(static_cast<std::size_t>(grids.records[grid].iNZ), 0);
  if (grid > 0 || grids.nCOORDSYS == 0) return reservoirs;
  std::fill(reservoirs.begin(), reservoirs.end(), -1);
  const std::size_t rows = std::min(grids.nCOORDSYS, pillarSets);
  for (std::size_t row = rows; row-- > 0;) {  // the first that has a layer keeps it
    const DeckReservoir& reservoir = grids.reservoirs[row];
    const auto last = std::min<std::int64_t>(reservoir.iLastLayer, grids.records[grid].iNZ);
    for (std::int64_t k = std::max<std::int64_t>(reservoir.iFirstLayer, 1); k <= last; ++k)
      reservoirs[static_cast<std::size_t>(k) - 1] = static_cast<std::int32_t>(row);
  }
  return reservoirs;
}

}  // namespace

DeckCoordBlock gridOffSet(const std::vector<double>& dPoints) {
  constexpr double far = 1e20;
  double leastX = far, mostX = -far, leastY = far, mostY = -far;
  for (std::size_t i = 0; i + 2 < dPoints.size(); i += 3) {
    leastX = std::min(leastX, dPoints[i]);
    mostX = std::max(mostX, dPoints[i]);
    leastY = std::min(leastY, dPoints[i + 1]);
    mostY = std::max(mostY, dPoints[i + 1]);
  }
  if (mostX < leastX) return {};
  return {.box = {}, .dMinX = fromZero(leastX, mostX), .dMinY = fromZero(leastY, mostY)};
}

void makeCorners(DeckGrids& grids, std::size_t grid, bool qOffSet) {
  if (grid >= grids.records.size()) throw Fault(FaultNumber::Subscript);
  DeckGridRecord& record = grids.records[grid];
  if (qOffSet && !record.qOffSet) {
    const Offset offset = setgridOffSet(grids.blocks);
    grids.dOffSetX = offset.x;
    grids.dOffSetY = offset.y;
    applygridOffSet(record.dCoord, offset);
    record.qOffSet = true;
  }
  const auto inactive = std::count_if(record.iACTNUM.begin(), record.iACTNUM.end(),
                                      [](std::int32_t cell) { return cell <= 0; });
  record.nActive = record.nCells() - static_cast<std::int32_t>(inactive);
  record.qHaveCorners = true;
}

XYData cornerRows(const DeckGrids& grids, std::size_t grid, Session& session) {
  constexpr std::size_t rowItems = 24, depthsOfCell = 8;
  const DeckGridRecord& record = grids.records[grid];
  const auto cells = static_cast<std::size_t>(record.nCells());
  XYData rows(rowItems, cells, session);
  if (cells == 0) return rows;
  const std::size_t sets =
      std::max<std::size_t>((record.dCoord.size() + record.pillarItems() - 1) / record.pillarItems(), 1);
  session.checkMemory(sets * record.pillarItems() * sizeof(float));
  std::vector<float> pillars(record.dCoord.begin(), record.dCoord.end());
  pillars.resize(sets * record.pillarItems());
  std::vector<float> padded;
  std::span<const float> depths = record.sDepths;
  if (depths.size() < depthsOfCell * cells) {
    padded = record.sDepths;
    padded.resize(depthsOfCell * cells);
    depths = padded;
  }
  const std::vector<std::int32_t> reservoirs = reservoirOfLayer(grids, grid, sets);
  const CornerSource source{.Nx = record.iNX,
                            .Ny = record.iNY,
                            .Nz = record.iNZ,
                            .coord = pillars,
                            .zcorn = depths,
                            .reservoirOfLayer = reservoirs,
                            .compressed = false,
                            .numbers = {}};
  writeCornerRows(source,
                  {.first = 0, .count = cells, .activeOnly = false, .firstCell = 0, .lastCell = cells - 1},
                  nullptr, rows.values().data());
  return rows;
}

std::vector<std::int32_t> activityOf(const DeckGridRecord& grid) {
  std::vector<std::int32_t> activity = grid.iACTNUM;
  activity.resize(static_cast<std::size_t>(grid.nCells()), 1);
  return activity;
}

}  // namespace lumbarn
