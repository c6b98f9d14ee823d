#include "Units.h"

#include "../support/Text.h"

namespace lumbarn {

namespace {

constexpr std::int32_t metric = 1;
constexpr std::int32_t field = 2;
constexpr std::int32_t laboratory = 3;

}  // namespace

std::int32_t UnitSystem(std::string_view zName) {
  const auto name = trim(zName);
  if (equalNoCase(name, "METRIC")) return metric;
  if (equalNoCase(name, "LAB")) return laboratory;
  return field;
}

std::int32_t WhichUnitSystem(std::string_view zName) {
  const auto name = trim(zName);
  if (equalNoCase(name, "METRES") || equalNoCase(name, "METERS")) return metric;
  if (equalNoCase(name, "FEET")) return field;
  if (equalNoCase(name, "CENTIMETRES") || equalNoCase(name, "CENTIMETERS")) return laboratory;
  return -1;
}

}  // namespace lumbarn
