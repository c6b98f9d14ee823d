#include "HeaderWords.h"

#include "../support/Fault.h"
#include "ActiveCount.h"

namespace lumbarn {

std::int64_t cellCount(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz) {
  std::int64_t cells = 0;
  if (__builtin_mul_overflow(std::int64_t{Nx} * Ny, std::int64_t{Nz}, &cells)) {
    throw Fault(FaultNumber::Overflow);
  }
  return cells;
}

void PreprocessINTEHEAD(const HeaderWords& iHeader, std::int32_t& nActive, std::int64_t& nCells) {
  nActive = static_cast<std::int32_t>(statedActiveCells(iHeader, false).active);
  nCells = cellCount(iHeader(9), iHeader(10), iHeader(11));
}

}  // namespace lumbarn
