#include "Units.h"

#include <algorithm>
#include <array>
#include <string>

#include "../support/Text.h"

namespace lumbarn {

namespace {

struct SystemOfWord {
  std::string_view word;
  std::int32_t system;
};

constexpr SystemOfWord lengths[] = {
    {"METRES", metricUnits},          {"METERS", metricUnits},          {"FEET", fieldUnits},
    {"CENTIMETRES", laboratoryUnits}, {"CENTIMETERS", laboratoryUnits},
};

/// Parts of unit texts that decide a unit system, the more specific first.
constexpr SystemOfWord parts[] = {
    {"STB", fieldUnits},   {"PSI", fieldUnits},  {"MSCF", fieldUnits},     {"RB", fieldUnits},
    {"FEET", fieldUnits},  {"FT3", fieldUnits},  {"ATM", atmosphereUnits}, {"SM3", metricUnits},
    {"BARS", metricUnits}, {"RM3", metricUnits}, {"METRES", metricUnits},  {"M3", metricUnits},
};

struct TimeUnit {
  std::string_view name;
  double perDay;
};
constexpr TimeUnit timeUnits[] = {
    {"HOURS", 24},         {"HOUR", 24},         {"HRS", 24},        {"HR", 24},
    {"MINUTES", 1440},     {"MINS", 1440},       {"SECONDS", 86400}, {"SECS", 86400},
    {"YEARS", 1 / 365.25}, {"YEAR", 1 / 365.25},
};

struct UnitRow {
  Quantity quantity;
  std::array<std::string_view, 4> texts;
};
using enum Quantity;
constexpr auto units = std::to_array<UnitRow>({
    {None, {}},
    {Time, {"DAYS", "DAYS", "HOURS", "DAYS"}},
    {Length, {"M", "FT", "CM", "M"}},
    {Volume, {"M3", "FT3", "CC", "M3"}},
    {Pressure, {"BARSA", "PSIA", "ATMA", "ATMA"}},
    {PressureDifference, {"BARS", "PSI", "ATM", "ATM"}},
    {Density, {"KG/M3", "LB/FT3", "GM/CC", "KG/M3"}},
    {Viscosity, {"CP", "CP", "CP", "CP"}},
    {Compressibility, {"1/BARS", "1/PSI", "1/ATM", "1/ATM"}},
    {LiquidVolumeFactor, {"RM3/SM3", "RB/STB", "RCC/SCC", "RM3/SM3"}},
    {GasVolumeFactor, {"RM3/SM3", "RB/MSCF", "RCC/SCC", "RM3/SM3"}},
    {GasInOil, {"SM3/SM3", "MSCF/STB", "SCC/SCC", "SM3/SM3"}},
    {OilInGas, {"SM3/SM3", "STB/MSCF", "SCC/SCC", "SM3/SM3"}},
    {LiquidRate, {"SM3/DAY", "STB/DAY", "SCC/HR", "SM3/DAY"}},
    {GasRate, {"SM3/DAY", "MSCF/DAY", "SCC/HR", "SM3/DAY"}},
    {ReservoirRate, {"RM3/DAY", "RB/DAY", "RCC/HR", "RM3/DAY"}},
    {ConnectionFactor, {"CPM3/D/BAR", "CPRB/D/PSI", "CPcc/H/A", "CPM3/D/ATM"}},
    {PermeabilityThickness, {"MD.M", "MD.FT", "MD.CM", "MD.M"}},
    {ArrayPressure, {"BARS", "PSI", "ATMOS"}},
    {ArrayLength, {"M", "FT", "cm"}},
    {ArrayGasInOil, {"SM3/SM3", "Mscf/Stb", "scc/scc"}},
    {ArrayOilInGas, {"SM3/SM3", "Stb/Mscf", "scc/scc"}},
    {ArrayPermeability, {"MDarcy", "MDarcy", "MDarcy"}},
    {ArrayPoreVolume, {"M3", "RB", "cc"}},
    {ArrayTransmissibility, {"CPM3/D/BAR", "CPRB/D/PSI", "CPcc/H/A"}},
});

/// `unitOf` takes the row by its number.
static_assert(std::ranges::adjacent_find(units, std::ranges::greater_equal(), &UnitRow::quantity) ==
                  units.end() &&
              units.front().quantity == Quantity(0) &&
              static_cast<std::size_t>(units.back().quantity) + 1 == units.size());

}  // namespace

std::int32_t UnitSystem(std::string_view zName) {
  const auto name = trim(zName);
  if (equalNoCase(name, "METRIC")) return metricUnits;
  if (equalNoCase(name, "LAB")) return laboratoryUnits;
  return fieldUnits;
}

std::int32_t WhichUnitSystem(std::string_view zName) {
  const auto row = std::ranges::find_if(
      lengths, [name = trim(zName)](const SystemOfWord& length) { return equalNoCase(length.word, name); });
  return row == std::end(lengths) ? -1 : row->system;
}

std::int32_t unitSystemOfNumber(std::int32_t number) {
  return number >= metricUnits && number <= atmosphereUnits ? number : 0;
}

std::int32_t unitSystemOfUnit(std::string_view unit) {
  const std::string text = upper(trim(unit));
  if (text == "HOURS") return laboratoryUnits;
  const auto part = std::ranges::find_if(
      parts, [&](const SystemOfWord& one) { return text.find(one.word) != std::string::npos; });
  return part == std::end(parts) ? 0 : part->system;
}

std::string_view unitSystemName(std::int32_t system) {
  constexpr std::string_view names[] = {"unknown", "metric", "field", "lab", "metric with atmospheres"};
  return names[unitSystemOfNumber(system)];
}

double unitsPerDay(std::string_view timeUnit) {
  const auto row = std::ranges::find_if(
      timeUnits, [name = trim(timeUnit)](const TimeUnit& unit) { return equalNoCase(unit.name, name); });
  return row == std::end(timeUnits) ? 1 : row->perDay;
}

double unitsPerDay(std::int32_t system) { return unitsPerDay(unitOf(Quantity::Time, system)); }

std::string_view unitOf(Quantity quantity, std::int32_t system) {
  if (unitSystemOfNumber(system) == 0) return {};
  return units[static_cast<std::size_t>(quantity)].texts[static_cast<std::size_t>(system) - 1];
}

}  // namespace lumbarn
