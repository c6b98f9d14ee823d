#include "ReaderLoad.h"

namespace lumbarn {

std::vector<WellRecord> qvEclipseReader::RestartWells(std::int32_t iSeqnum, std::int32_t iGrid,
                                                      bool& qOK) const {
  std::vector<WellRecord> wells;
  perform("RestartWells", qOK, [&] {
    const RESTARTGRID* grid = RestartGrid(iSeqnum, iGrid);
    if (grid) wells = wellRecords(*grid);
    return grid != nullptr;
  });
  return wells;
}

}  // namespace lumbarn
