#include "Segments.h"

#include <array>
#include <string_view>
#include <utility>

#include "../support/Text.h"

namespace lumbarn {

namespace {

/// Places of units in a test's array of texts, from 1.
constexpr std::size_t length = 4;
constexpr std::size_t pressure = 5;
constexpr std::size_t liquidRate = 8;
constexpr std::size_t gasRate = 9;
constexpr std::size_t velocity = 11;

struct SegmentVector {
  std::string_view name;
  std::size_t unit = 0;     ///< 0: the vector has no unit
  std::size_t perUnit = 0;  ///< what the rate is scaled by
};

constexpr auto segmentVectors = std::to_array<SegmentVector>({
    {"SEGMD", length},
    {"SEGDEPTH", length},
    {"SEGLENST", length},
    {"SEGLENEN", length},
    {"SEGLENTH", length},
    {"SEGXCORD", length},
    {"SEGYCORD", length},
    {"SEGPRES", pressure},
    {"SEGORAT", liquidRate},
    {"SEGWRAT", liquidRate},
    {"SEGGRAT", gasRate},
    {"SEGORATS", liquidRate, length},
    {"SEGWRATS", liquidRate, length},
    {"SEGGRATS", gasRate, length},
    {"SEGOVEL", velocity},
    {"SEGWVEL", velocity},
    {"SEGGVEL", velocity},
    {"SEGOHF"},
    {"SEGWHF"},
    {"SEGGHF"},
    {"SEGBRNO"},
    {"SEGNXT"},
    {"SEGNO"},
    {"SEGCORAT", liquidRate},
    {"SEGCWRAT", liquidRate},
    {"SEGCGRAT", gasRate},
    {"SEGCORTS", liquidRate, length},
    {"SEGCWRTS", liquidRate, length},
    {"SEGCGRTS", gasRate, length},
    {"SEGWCUT"},
    {"SEGGOR"},
});
static_assert(segmentVectors.size() == 31);

std::string_view unitText(std::span<const std::string> zUnits, std::size_t place) {
  return place >= 1 && place <= zUnits.size() ? trim(zUnits[place - 1]) : std::string_view{};
}

std::string unitOf(const SegmentVector& vector, std::span<const std::string> zUnits) {
  std::string text(unitText(zUnits, vector.unit));
  if (vector.perUnit == 0) return text;
  const auto per = unitText(zUnits, vector.perUnit);
  if (text.empty() || per.empty()) return {};
  return text.append("/").append(per);
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
