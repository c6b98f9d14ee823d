#include "Segments.h"

#include <array>
#include <string_view>
#include <utility>

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

SegmentHeaders segmentHeaders(std::span<const std::string> zUnits) {
  SegmentHeaders headers;
  for (const auto& vector : segmentVectors) {
    headers.zNames.emplace_back(vector.name);
    headers.zUnits.push_back(unitOf(vector, zUnits));
  }
  return headers;
}

void setSEGHeaders(std::span<const std::string> zUnits, std::vector<std::string>& zNames,
                   std::vector<std::string>& zUnitsOut, std::int32_t& nNames, bool& qOK) {
  qOK = false;
  auto headers = segmentHeaders(zUnits);
  zNames = std::move(headers.zNames);
  zUnitsOut = std::move(headers.zUnits);
  nNames = static_cast<std::int32_t>(zNames.size());
  qOK = true;
}

}  // namespace lumbarn
