#include "BlankRows.h"

#include <algorithm>

namespace lumbarn {

namespace {

std::size_t sizeOf(const std::vector<std::int32_t>& iDimens, std::size_t place) {
  return place < iDimens.size() ? static_cast<std::size_t>(std::max(iDimens[place], 0)) : 1;
}

/// Keeps those slices of one size, the `place`th, in which some value is not blank.
template <class Blank>
void compressSize(std::vector<float>& values, std::vector<std::int32_t>& iDimens, std::size_t place,
                  Blank blank) {
  std::size_t inner = 1;
  for (std::size_t i = 0; i < place; ++i) inner *= sizeOf(iDimens, i);
  const std::size_t size = sizeOf(iDimens, place);
  std::vector<bool> keep(size);
  for (std::size_t at = 0; at < values.size(); ++at) {
    if (!blank(values[at])) keep[at / inner % size] = true;
  }
  std::size_t kept = 0;
  for (std::size_t at = 0; at < values.size(); ++at) {
    if (keep[at / inner % size]) values[kept++] = values[at];
  }
  values.resize(kept);
  iDimens[place] = static_cast<std::int32_t>(std::ranges::count(keep, true));
}

/// The last size is that of the columns, which stay.
template <class Blank>
bool compress(std::vector<float>& values, std::vector<std::int32_t>& iDimens, Blank blank) {
  std::size_t product = iDimens.empty() ? 0 : 1;
  for (std::size_t i = 0; i < iDimens.size(); ++i) product *= sizeOf(iDimens, i);
  if (product != values.size() || iDimens.size() > 3) return false;
  if (values.empty()) return true;
  for (std::size_t place = 0; place + 1 < iDimens.size(); ++place)
    compressSize(values, iDimens, place, blank);
  return true;
}

}  // namespace

void compressTable(std::vector<float>& dTable, std::vector<std::int32_t>& iDimens, bool& qOK) {
  qOK = compress(dTable, iDimens, [](float value) { return isBlank(value); });
}

void compressTableCheckAllLines(std::vector<float>& dTable, std::vector<std::int32_t>& iDimens, double sHigh,
                                double sLow, bool& qOK) {
  qOK = iDimens.size() == 2 &&
        compress(dTable, iDimens, [=](float value) { return value >= sHigh || value <= sLow; });
}

}  // namespace lumbarn
