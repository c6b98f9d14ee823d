#include "SummarySpec.h"

#include <algorithm>

#include "../support/Fault.h"

namespace lumbarn {

std::vector<VECTORDATA> SummarySpec::keptVectors() const {
  std::vector<VECTORDATA> kept;
  kept.reserve(xVectors.size());
  for (std::size_t i = 0; i < xVectors.size(); ++i) {
    if (qKeyMask[i]) kept.push_back(xVectors[i]);
  }
  return kept;
}

void SummarySpec::narrowMask(const std::vector<bool>& qMask) {
  qSelection = qMask;
  if (qMask.size() < 2) return;
  if (qMask.size() < static_cast<std::size_t>(std::ranges::count(qKeyMask, true))) {
    throw Fault(FaultNumber::Subscript);
  }
  std::size_t next = 0;
  for (std::size_t i = 0; i < qKeyMask.size(); ++i) {
    if (qKeyMask[i]) qKeyMask[i] = qMask[next++];
  }
  nKeysUsed = static_cast<std::int32_t>(std::ranges::count(qKeyMask, true));
}

std::optional<Moment> SummarySpec::start() const {
  const auto& word = iSTARTDAT;
  if (word.size() < 3) return std::nullopt;
  if (word.size() >= 6) {
    if (auto moment = makeMoment(word[2], word[1], word[0], word[3], word[4], word[5])) return moment;
  }
  return makeMoment(word[2], word[1], word[0]);
}

std::optional<std::array<std::int32_t, 3>> SummarySpec::gridSize() const {
  if (iDIMENS.size() < 4 ||
      std::ranges::any_of(iDIMENS.begin() + 1, iDIMENS.begin() + 4, [](std::int32_t n) { return n < 1; })) {
    return std::nullopt;
  }
  return std::array{iDIMENS[1], iDIMENS[2], iDIMENS[3]};
}

}  // namespace lumbarn
