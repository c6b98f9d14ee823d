#include "Segments.h"

#include <array>
#include <string_view>

#include "../support/Text.h"
#include "TestUnits.h"

namespace lumbarn {

namespace {

std::string unitOf(const TestVector& vector, std::span<const std::string> zUnits) {
  return unitText(vector, [&](WelletcText position) {
    const auto i = static_cast<std::size_t>(position);
    return i >= 1 && i <= zUnits.size() ? trim(zUnits[i - 1]) : std::string_view{};
  });
}

}  // namespace

void setSEGHeaders(std::span<const std::string> zUnits, std::vector<std::string>& zNames,
                   std::vector<std::string>& zUnitsOut, std::int32_t& nNames, bool& qOK) {
  qOK = false;
  zNames.clear();
  zUnitsOut.clear();
  for (const auto& vector : segmentVectors) {
    zNames.emplace_back(vector.name);
    zUnitsOut.push_back(unitOf(vector, zUnits));
  }
  nNames = static_cast<std::int32_t>(segmentVectors.size());
  qOK = true;
}

}  // namespace lumbarn
