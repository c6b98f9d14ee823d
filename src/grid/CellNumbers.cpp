#include "CellNumbers.h"

#include <algorithm>

namespace lumbarn {

std::optional<CellNumbers> numberActiveCells(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz,
                                             std::span<std::int32_t> activity) {
  const auto cells =
      static_cast<std::size_t>(Nx) * static_cast<std::size_t>(Ny) * static_cast<std::size_t>(Nz);
  if (Nx < 1 || Ny < 1 || Nz < 1 || activity.size() < cells) return std::nullopt;
  activity = activity.first(cells);
  CellNumbers numbers;
  numbers.count =
      static_cast<std::int32_t>(std::ranges::count_if(activity, [](std::int32_t v) { return v > 0; }));
  numbers.cells.assign(static_cast<std::size_t>(std::max(numbers.count, 1)), 0);
  std::int32_t n = 0;
  for (std::size_t cell = 0; cell < cells; ++cell) {
    if (activity[cell] <= 0) continue;
    numbers.cells[static_cast<std::size_t>(n)] = static_cast<std::int32_t>(cell) + 1;
    activity[cell] = ++n;
  }
  return numbers;
}

template <class Value>
bool spreadOverAngles(std::int32_t Nr, std::int32_t nThetaFine, std::int32_t Nz, std::int32_t nThetaFile,
                      std::size_t nItems, std::span<const Value> source, std::vector<Value>& result) {
  if (nThetaFile > nThetaFine) return false;
  if (nThetaFile < 1 || nThetaFile == nThetaFine) {
    if (source.size() < nItems) return false;
    if (result.size() < nItems) result.resize(nItems);
    std::ranges::copy(source.first(nItems), result.begin());
    return true;
  }
  if (Nr < 1 || Nz < 1 || nThetaFine % nThetaFile != 0) return false;
  const auto nr = static_cast<std::size_t>(Nr);
  const auto sectors = static_cast<std::size_t>(nThetaFile) * static_cast<std::size_t>(Nz);
  const auto ratio = static_cast<std::size_t>(nThetaFine / nThetaFile);
  if (source.size() < nr * sectors) return false;
  result.resize(nr * sectors * ratio);
  auto* out = result.data();
  // A layer's sectors follow each other in both arrays, so that layers need no loop of their own.
  for (std::size_t sector = 0; sector < sectors; ++sector) {
    for (std::size_t m = 0; m < ratio; ++m) out = std::copy_n(source.data() + sector * nr, nr, out);
  }
  return true;
}
template bool spreadOverAngles(std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::size_t,
                               std::span<const float>, std::vector<float>&);
template bool spreadOverAngles(std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::size_t,
                               std::span<const std::int32_t>, std::vector<std::int32_t>&);

}  // namespace lumbarn
