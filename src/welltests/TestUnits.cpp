#include "TestUnits.h"

#include <algorithm>
#include <array>

namespace lumbarn {

namespace {

/// Units of columns, by places of WELLETC.
struct ColumnUnit {
  std::string_view name;
  WelletcPlace unit;
  bool perLength = false;
};
constexpr auto columnUnits = std::to_array<ColumnUnit>({
    {"DEPTH", welletcLength},
    {"PRESSURE", welletcPressure},
    {"CONDEPTH", welletcLength},
    {"CONMD", welletcLength},
    {"CONLENST", welletcLength},
    {"CONLENEN", welletcLength},
    {"CONLENTH", welletcLength},
    {"CONBDEPH", welletcLength},
    {"CONPRES", welletcPressure},
    {"CONBPRES", welletcPressure},
    {"CONORAT", welletcLiquidRate},
    {"CONWRAT", welletcLiquidRate},
    {"CONOTUB", welletcLiquidRate},
    {"CONWTUB", welletcLiquidRate},
    {"CONVTUB", welletcLiquidRate},
    {"CONGRAT", welletcGasRate},
    {"CONGTUB", welletcGasRate},
    {"CONORATS", welletcLiquidRate, true},
    {"CONWRATS", welletcLiquidRate, true},
    {"CONGRATS", welletcGasRate, true},
});

}  // namespace

std::string connectionUnit(std::string_view zName, const TextArray& welletc) {
  const auto found = std::ranges::find(columnUnits, zName, &ColumnUnit::name);
  if (found == columnUnits.end()) return {};
  std::string unit(welletc.textOf(found->unit));
  if (!found->perLength) return unit;
  const auto length = welletc.textOf(welletcLength);
  if (unit.empty() || length.empty()) return {};
  return unit.append("/").append(length);
}

}  // namespace lumbarn
