#include "ActiveCells.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

#include "../support/Fault.h"

namespace lumbarn {
namespace {

using Numbers = std::vector<std::int32_t>;

bool beyondNumbers(std::int64_t cells) { return cells > std::numeric_limits<std::int32_t>::max(); }

/// The numbers of the cells whose word is not 0.
Numbers numbersOf(std::span<const std::int32_t> actnum) {
  Numbers numbers;
  for (std::size_t i = 0; i < actnum.size(); ++i) {
    if (actnum[i] != 0) numbers.push_back(static_cast<std::int32_t>(i) + 1);
  }
  return numbers;
}

/// The cells of ACTNUM; nothing where it is unknown or of another grid.
std::optional<Numbers> activeInActnum(const ActivityEvidence& evidence) {
  if (!evidence.actnum) return std::nullopt;
  auto words = *evidence.actnum;
  const auto cells = static_cast<std::size_t>(evidence.cells);
  if (words.empty()) words.assign(evidence.dualPorosity ? cells / 2 : cells, 1);
  if (2 * words.size() == cells) words = expandActnum(std::move(words), evidence.active);
  if (words.size() != cells) return std::nullopt;
  return numbersOf(words);
}

Numbers withHosts(const Numbers& numbers, const ActivityEvidence& evidence) {
  const std::int64_t half = evidence.dualPorosity ? evidence.cells / 2 : 0;
  Numbers hosts;
  for (const std::int32_t host : evidence.hosts) {
    if (host < 1 || host > evidence.cells - half) continue;
    hosts.push_back(host);
    if (half > 0) hosts.push_back(static_cast<std::int32_t>(host + half));
  }
  std::ranges::sort(hosts);
  hosts.erase(std::unique(hosts.begin(), hosts.end()), hosts.end());
  Numbers all;
  std::ranges::set_union(numbers, hosts, std::back_inserter(all));
  return all;
}

}  // namespace

ActiveCells ActiveCells::all(std::int64_t cells) {
  if (beyondNumbers(cells)) throw Fault(FaultNumber::Overflow);
  Numbers numbers(static_cast<std::size_t>(cells));
  std::iota(numbers.begin(), numbers.end(), 1);
  return {std::move(numbers), cells};
}

std::int32_t ActiveCells::cellOf(std::int64_t iActive) const {
  if (iActive < 1 || iActive > active()) throw Fault(FaultNumber::Subscript);
  return iA2N_[static_cast<std::size_t>(iActive - 1)];
}

std::int32_t ActiveCells::activeOf(std::int64_t iCell) const {
  if (iCell < 1 || iCell > cells_) throw Fault(FaultNumber::Subscript);
  const auto found = std::ranges::lower_bound(iA2N_, iCell);
  const bool isActive = found != iA2N_.end() && *found == iCell;
  return isActive ? static_cast<std::int32_t>(found - iA2N_.begin()) + 1 : 0;
}

std::vector<std::int32_t> expandActnum(std::vector<std::int32_t> actnum, std::int64_t active) {
  const std::size_t half = actnum.size();
  const bool ones = std::ranges::all_of(actnum, [](std::int32_t word) { return word == 0 || word == 1; });
  const bool bits = !ones || std::ranges::count(actnum, 1) == active;
  actnum.resize(2 * half);
  for (std::size_t n = 0; n < half; ++n) {
    const std::int32_t word = actnum[n];
    actnum[n] = bits ? word & 1 : word;
    actnum[n + half] = bits ? (word & 2) >> 1 : word;
  }
  return actnum;
}

std::optional<DecidedCells> decideActiveCells(const ActivityEvidence& evidence) {
  if (beyondNumbers(evidence.cells)) return std::nullopt;
  const auto agrees = [&](const Numbers& numbers) { return std::cmp_equal(numbers.size(), evidence.active); };
  const auto decided = [&](Numbers numbers) { return DecidedCells{{std::move(numbers), evidence.cells}}; };
  if (evidence.active < 1) return std::nullopt;
  if (evidence.active == evidence.cells) return DecidedCells{ActiveCells::all(evidence.cells)};
  const auto actnum = activeInActnum(evidence);
  for (const auto& numbers : {evidence.porous, actnum}) {
    if (numbers && agrees(*numbers)) return decided(*numbers);
  }
  for (const auto& numbers : {evidence.porous, actnum}) {
    if (!numbers || evidence.hosts.empty()) continue;
    if (auto all = withHosts(*numbers, evidence); agrees(all)) return decided(std::move(all));
  }
  if (!evidence.porous || std::cmp_less(evidence.porous->size(), evidence.active)) return std::nullopt;
  auto first = decided({evidence.porous->begin(), evidence.porous->begin() + evidence.active});
  first.certainty = Certainty::Guess;
  return first;
}

}  // namespace lumbarn
