#include "ArrayUnits.h"

#include <algorithm>
#include <initializer_list>

#include "../vocabulary/Units.h"

namespace lumbarn {

namespace {

bool isAnyOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::ranges::find(names, name) != names.end();
}

bool holds(std::string_view name, std::string_view part) { return name.find(part) != std::string_view::npos; }

Quantity quantityOf(std::string_view name) {
  using enum Quantity;
  if (name == "PRESSURE") return ArrayPressure;
  if (isAnyOf(name, {"DX", "DY", "DZ", "DR", "TOPS", "DEPTH"})) return ArrayLength;
  if (name == "RS") return ArrayGasInOil;
  if (name == "RV") return ArrayOilInGas;
  // Before transmissibilities, deliberately: a name that holds both words is a permeability.
  if (holds(name, "PERM")) return ArrayPermeability;
  if (isAnyOf(name, {"PORV", "MINPV", "MINPVV"})) return ArrayPoreVolume;
  if (holds(name, "TRAN")) return ArrayTransmissibility;
  return None;
}

}  // namespace

std::string_view arrayUnit(std::string_view zName, std::int32_t iUnits) {
  return unitOf(quantityOf(zName), iUnits);
}

}  // namespace lumbarn
