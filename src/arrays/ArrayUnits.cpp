#include "ArrayUnits.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>

namespace lumbarn {

namespace {

using UnitTexts = std::array<std::string_view, 3>;

constexpr UnitTexts pressure{"BARS", "PSI", "ATMOS"};
constexpr UnitTexts length{"M", "FT", "cm"};
constexpr UnitTexts solutionGas{"SM3/SM3", "Mscf/Stb", "scc/scc"};
constexpr UnitTexts vapourOil{"SM3/SM3", "Stb/Mscf", "scc/scc"};
constexpr UnitTexts permeability{"MDarcy", "MDarcy", "MDarcy"};
constexpr UnitTexts poreVolume{"M3", "RB", "cc"};
constexpr UnitTexts transmissibility{"CPM3/D/BAR", "CPRB/D/PSI", "CPcc/H/A"};

bool isAnyOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::ranges::find(names, name) != names.end();
}

bool holds(std::string_view name, std::string_view part) { return name.find(part) != std::string_view::npos; }

const UnitTexts* unitTexts(std::string_view name) {
  if (name == "PRESSURE") return &pressure;
  if (isAnyOf(name, {"DX", "DY", "DZ", "DR", "TOPS", "DEPTH"})) return &length;
  if (name == "RS") return &solutionGas;
  if (name == "RV") return &vapourOil;
  // Before transmissibilities, deliberately: a name that holds both words is a permeability.
  if (holds(name, "PERM")) return &permeability;
  if (isAnyOf(name, {"PORV", "MINPV", "MINPVV"})) return &poreVolume;
  if (holds(name, "TRAN")) return &transmissibility;
  return nullptr;
}

}  // namespace

std::string_view arrayUnit(std::string_view zName, std::int32_t iUnits) {
  const UnitTexts* texts = unitTexts(zName);
  if (!texts || iUnits < 1 || iUnits > 3) return {};
  return (*texts)[static_cast<std::size_t>(iUnits) - 1];
}

}  // namespace lumbarn
