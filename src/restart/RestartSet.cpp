#include "RestartSet.h"

#include <utility>

#include "../support/Fault.h"

namespace lumbarn {

qvEclipseSEQUENCE& RestartSet::step(std::int32_t iSeqnum) {
  return const_cast<qvEclipseSEQUENCE&>(std::as_const(*this).step(iSeqnum));
}

const qvEclipseSEQUENCE& RestartSet::step(std::int32_t iSeqnum) const {
  if (iSeqnum < 1 || iSeqnum > NumSequences()) throw Fault(FaultNumber::Subscript);
  return *xSEQ[static_cast<std::size_t>(iSeqnum) - 1];
}

std::vector<RestartStep> RestartSet::steps() const {
  std::vector<RestartStep> all;
  for (std::int32_t i = 1; i <= NumSequences(); ++i) {
    const auto& one = step(i);
    const auto& global = one.grid(1);
    all.push_back({one.iSeqnum, global.dTime, global.iDay, global.iMonth, global.iYear, global.zDate,
                   one.nGrids, one.FileName});
  }
  return all;
}

}  // namespace lumbarn
