#include "HeaderWords.h"

#include "../support/Fault.h"

namespace lumbarn {

std::int32_t cellCount(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz) {
  std::int32_t layer = 0;
  std::int32_t cells = 0;
  if (__builtin_mul_overflow(Nx, Ny, &layer) || __builtin_mul_overflow(layer, Nz, &cells)) {
    throw Fault(FaultNumber::Overflow);
  }
  return cells;
}

std::int32_t activeCellsOfInit(const HeaderWords& iHeader) {
  return iHeader(iHeader.isE300() && iHeader(4) > 0 ? 4 : 12);
}

void PreprocessINTEHEAD(const HeaderWords& iHeader, std::int32_t& nActive, std::int32_t& nCells) {
  const bool ownCount = iHeader.isE300() && iHeader(4) > 0 && iHeader(96) < 1;
  nActive = iHeader(ownCount ? 4 : 12);
  nCells = cellCount(iHeader(9), iHeader(10), iHeader(11));
}

}  // namespace lumbarn
