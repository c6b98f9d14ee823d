#include "Refinement.h"

#include <algorithm>

namespace lumbarn {

namespace {

/// The cells of a box that the head of the local grid gives. The index block has the last K and I in words 5
/// and 7.
std::vector<std::int32_t> boxOf(const Hadrick& parent, const Hadrick& local) {
  const auto& index = local.iIndex;
  const std::array first{index[1], index[2], index[3]};
  const std::array last{index[6], index[5], index[4]};
  std::vector<std::int32_t> cells;
  if (parent.cellAt(first[0], first[1], first[2]) == 0 || parent.cellAt(last[0], last[1], last[2]) == 0)
    return cells;
  for (std::int32_t k = first[2]; k <= last[2]; ++k) {
    for (std::int32_t j = first[1]; j <= last[1]; ++j) {
      for (std::int32_t i = first[0]; i <= last[0]; ++i) cells.push_back(parent.cellAt(i, j, k));
    }
  }
  return cells;
}

}  // namespace

std::vector<std::int32_t> hostsOf(const Hadrick& parent, const Hadrick& local) {
  std::vector<std::int32_t> hosts(local.hostCells().begin(), local.hostCells().end());
  std::ranges::sort(hosts);
  hosts.erase(std::unique(hosts.begin(), hosts.end()), hosts.end());
  std::erase_if(hosts, [&](std::int32_t iCell) { return iCell < 1 || iCell > parent.nCells(); });
  return hosts.empty() ? boxOf(parent, local) : hosts;
}

std::vector<std::uint8_t> refinedCells(std::span<const std::shared_ptr<Hadrick>> grids, std::int32_t iGrid) {
  std::vector<std::uint8_t> refined;
  const Hadrick& parent = *grids[static_cast<std::size_t>(iGrid) - 1];
  for (const auto& local : grids) {
    if (local->iParent != iGrid) continue;
    for (const std::int32_t iCell : hostsOf(parent, *local)) {
      if (refined.empty()) refined.resize(static_cast<std::size_t>(parent.nCells()));
      refined[static_cast<std::size_t>(iCell) - 1] = 1;
    }
  }
  return refined;
}

std::int32_t countRefined(const Hadrick& grid, std::span<const std::uint8_t> refined) {
  std::int32_t count = 0;
  for (std::size_t cell = 0; cell < refined.size(); ++cell) {
    if (refined[cell] != 0 && grid.activeOf(static_cast<std::int32_t>(cell) + 1) > 0) ++count;
  }
  return count;
}

}  // namespace lumbarn
