#include "UnitChange.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "../support/Text.h"

namespace lumbarn {

namespace {

/// What a part of a unit measures.
enum class Kind : std::uint8_t {
  Number,
  Time,
  Length,
  Area,
  Volume,
  ReservoirVolume,
  SurfaceVolume,
  Pressure,
  GaugePressure,
  Mass,
  Amount,
  Energy,
  Temperature,
  Viscosity,
  Permeability,
  FlowCapacity,          // permeability and length in one word
  ViscosityTimesVolume,  // the first word of a connection factor
};

constexpr double pascalsPerPsi = 6894.757293168361;
constexpr double pascalsPerAtmosphere = 101325;
constexpr double barrel = 0.158987294928;
constexpr double foot = 0.3048;
constexpr double cubicFoot = foot * foot * foot;
constexpr double pound = 0.45359237;
constexpr double darcy = 9.869232667160130e-13;
constexpr double centipoise = 1e-3;

/// A word of units, with how many of the SI's unit it is.
struct Word {
  std::string_view name;
  Kind kind;
  double size;
  double zero = 0;  // of a temperature, in kelvin
};
using enum Kind;
constexpr auto words = std::to_array<Word>({
    {"1", Number, 1},
    {"FRACTION", Number, 1},
    {"DIMENSIONLESS", Number, 1},
    {"DAY", Time, 86400},
    {"DAYS", Time, 86400},
    {"D", Time, 86400},
    {"HOUR", Time, 3600},
    {"HOURS", Time, 3600},
    {"HR", Time, 3600},
    {"HRS", Time, 3600},
    {"H", Time, 3600},
    {"MINUTES", Time, 60},
    {"MINS", Time, 60},
    {"MIN", Time, 60},
    {"SECONDS", Time, 1},
    {"SECS", Time, 1},
    {"SEC", Time, 1},
    {"S", Time, 1},
    {"YEAR", Time, 365.25 * 86400},
    {"YEARS", Time, 365.25 * 86400},
    {"M", Length, 1},
    {"METRES", Length, 1},
    {"METERS", Length, 1},
    {"METRE", Length, 1},
    {"METER", Length, 1},
    {"FT", Length, foot},
    {"FEET", Length, foot},
    {"CM", Length, 0.01},
    {"CENTIMETRES", Length, 0.01},
    {"CENTIMETERS", Length, 0.01},
    {"M2", Area, 1},
    {"FT2", Area, foot* foot},
    {"SQFT", Area, foot* foot},
    {"CM2", Area, 1e-4},
    {"M3", Volume, 1},
    {"FT3", Volume, cubicFoot},
    {"CUFT", Volume, cubicFoot},
    {"CC", Volume, 1e-6},
    {"CM3", Volume, 1e-6},
    {"RM3", ReservoirVolume, 1},
    {"RB", ReservoirVolume, barrel},
    {"RCC", ReservoirVolume, 1e-6},
    {"SM3", SurfaceVolume, 1},
    {"KSM3", SurfaceVolume, 1e3},
    {"STB", SurfaceVolume, barrel},
    {"MSTB", SurfaceVolume, 1e3 * barrel},
    {"MMSTB", SurfaceVolume, 1e6 * barrel},
    {"SCF", SurfaceVolume, cubicFoot},
    {"MSCF", SurfaceVolume, 1e3 * cubicFoot},
    {"MMSCF", SurfaceVolume, 1e6 * cubicFoot},
    {"SCC", SurfaceVolume, 1e-6},
    {"BARSA", Pressure, 1e5},
    {"BARA", Pressure, 1e5},
    {"BARS", Pressure, 1e5},
    {"BAR", Pressure, 1e5},
    {"PSIA", Pressure, pascalsPerPsi},
    {"PSI", Pressure, pascalsPerPsi},
    {"ATMA", Pressure, pascalsPerAtmosphere},
    {"ATM", Pressure, pascalsPerAtmosphere},
    {"ATMS", Pressure, pascalsPerAtmosphere},
    {"ATMOS", Pressure, pascalsPerAtmosphere},
    {"A", Pressure, pascalsPerAtmosphere},  // in "CPcc/H/A"
    {"PA", Pressure, 1},
    {"KPA", Pressure, 1e3},
    {"BARSG", GaugePressure, 1e5},
    {"BARG", GaugePressure, 1e5},
    {"PSIG", GaugePressure, pascalsPerPsi},
    {"ATMG", GaugePressure, pascalsPerAtmosphere},
    {"PAG", GaugePressure, 1},
    {"KG", Mass, 1},
    {"LB", Mass, pound},
    {"LBM", Mass, pound},
    {"GM", Mass, 1e-3},
    {"G", Mass, 1e-3},
    {"KG-M", Amount, 1e3},
    {"KGMOL", Amount, 1e3},
    {"LB-M", Amount, 1e3 * pound},
    {"LBMOL", Amount, 1e3 * pound},
    {"GM-M", Amount, 1},
    {"MOL", Amount, 1},
    {"KJ", Energy, 1e3},
    {"BTU", Energy, 1055.05585262},
    {"J", Energy, 1},
    {"DEGC", Temperature, 1, 273.15},
    {"C", Temperature, 1, 273.15},
    {"DEGF", Temperature, 5 / 9.0, 459.67 * 5 / 9},
    {"F", Temperature, 5 / 9.0, 459.67 * 5 / 9},
    {"DEGK", Temperature, 1},
    {"K", Temperature, 1},
    {"DEGR", Temperature, 5 / 9.0},
    {"CP", Viscosity, centipoise},
    {"CPOISE", Viscosity, centipoise},
    {"PA.S", Viscosity, 1},
    {"MD", Permeability, darcy / 1000},
    {"MDARCY", Permeability, darcy / 1000},
    {"MDM", FlowCapacity, darcy / 1000},
    {"MD-M", FlowCapacity, darcy / 1000},
    {"MDFT", FlowCapacity, darcy / 1000 * foot},
    {"MD-FT", FlowCapacity, darcy / 1000 * foot},
    {"MDCM", FlowCapacity, darcy / 1000 * 0.01},
    {"MD-CM", FlowCapacity, darcy / 1000 * 0.01},
    {"CPM3", ViscosityTimesVolume, centipoise},
    {"CPRM3", ViscosityTimesVolume, centipoise},
    {"CPRB", ViscosityTimesVolume, centipoise* barrel},
    {"CPCC", ViscosityTimesVolume, centipoise * 1e-6},
    {"CPRCC", ViscosityTimesVolume, centipoise * 1e-6},
});

const Word* find(std::string_view name) {
  const auto* found = std::ranges::find(words, name, &Word::name);
  return found == words.end() ? nullptr : found;
}

/// A word where it stands in a unit.
struct Part {
  const Word* word;
  char before;  // '/', '.', '*', or 0 for the first
  bool below = false;
  bool alone = false;
};

/// The words of a unit; none if one is not known. All behind the first "/" is below the line, as
/// "STB/DAY/PSI" is written; "PA.S" is one word.
std::vector<Part> partsOf(std::string_view unit) {
  std::string text = upper(unit);
  std::erase(text, ' ');
  std::vector<Part> parts;
  char before = 0;
  bool below = false;
  for (std::string_view rest = text; !rest.empty() || before != 0;) {
    std::size_t end = std::min(rest.find_first_of("/.*"), rest.size());
    if (rest.starts_with("PA.S") && (rest.size() == 4 || rest[4] == '/')) end = 4;
    const Word* word = find(rest.substr(0, end));
    if (!word) return {};
    below = below || before == '/';
    parts.push_back({.word = word, .before = before, .below = below});
    before = end < rest.size() ? rest[end] : '\0';
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  if (parts.size() == 1) parts.front().alone = true;
  return parts;
}

/// Words of the four systems, in their order in `Units`.
using OfSystems = std::array<std::string_view, 4>;

/// Whether a surface volume is of gas: by its word or, as metric and laboratory units have one for all, by
/// what is measured.
bool isGas(const Part& part, bool ratio, std::string_view quantity) {
  if (part.word->name.ends_with("SCF")) return true;
  if (part.word->name.ends_with("STB")) return false;
  const std::string text = upper(quantity);
  const auto holds = [&](std::string_view some) { return text.find(some) != text.npos; };
  if (!ratio) return holds("GAS") || (text.size() > 1 && text[1] == 'G');  // FGPR, WGIT, BGIP
  const bool gasAbove = holds("GOR") || holds("GLR") || text == "RS" || holds("GAS-OIL") || holds("GAS IN");
  const bool gasBelow = holds("OGR") || holds("WGR") || text == "RV" || holds("OIL-GAS") || holds("IN GAS");
  return gasAbove ? !part.below : gasBelow && part.below;
}

OfSystems timeWords(const Part& part) {
  if (part.alone) return {"DAYS", "DAYS", "HOURS", "SECONDS"};
  if (part.word->name.size() == 1) return {"D", "D", "H", "S"};
  return {"DAY", "DAY", "HR", "S"};
}

OfSystems pressureWords(const Part& part) {
  const bool absolute = part.word->name != "A" && part.word->name.back() == 'A' && part.word->name != "PA" &&
                        part.word->name != "KPA";
  if (absolute) return {"BARSA", "PSIA", "ATMA", "PA"};
  return {"BARS", "PSI", "ATM", "PA"};
}

OfSystems volumeWords(bool withMass) {
  // Of rock and fluids, field units count barrels; of densities, feet.
  return {withMass ? "M3" : "RM3", withMass ? "FT3" : "RB", withMass ? "CC" : "RCC", "M3"};
}

OfSystems wordsFor(const Part& part, const std::vector<Part>& parts, std::string_view quantity) {
  const auto has = [&](Kind kind) {
    return std::ranges::any_of(parts, [&](const Part& one) { return one.word->kind == kind; });
  };
  switch (part.word->kind) {
    case Number:
    case Permeability:
      return {part.word->name, part.word->name, part.word->name, part.word->name};
    case Time:
      return timeWords(part);
    case Length:
      return {"M", "FT", "CM", "M"};
    case Area:
      return {"M2", "FT2", "CM2", "M2"};
    case Volume:
      return volumeWords(has(Mass) || has(Energy) || has(Amount));
    case ReservoirVolume:
      return {"RM3", "RB", "RCC", "RM3"};
    case SurfaceVolume: {
      const bool ratio =
          std::ranges::count_if(parts, [](const Part& one) { return one.word->kind == SurfaceVolume; }) > 1;
      return {"SM3", isGas(part, ratio, quantity) ? "MSCF" : "STB", "SCC", "SM3"};
    }
    case Pressure:
      return pressureWords(part);
    case GaugePressure:
      return {"BARG", "PSIG", "ATMG", "PAG"};
    case Mass:
      return {"KG", "LB", "GM", "KG"};
    case Amount:
      return {"KG-M", "LB-M", "GM-M", "MOL"};
    case Energy:
      return {"KJ", "BTU", "J", "J"};
    case Temperature:
      return {"DEGC", "DEGF", "DEGC", "K"};
    case Viscosity:
      return {"CP", "CP", "CP", "PA.S"};
    case FlowCapacity:
      return {"MD.M", "MD.FT", "MD.CM", "MD.M"};
    case ViscosityTimesVolume:
      return {"CPM3", "CPRB", "CPCC", "PA.S.M3"};
  }
  return {};
}

/// The words that all systems share as they are: times that no report of a simulator counts in.
bool staysAsItIs(const Part& part) {
  return part.alone && part.word->kind == Time && part.word->size != 86400 && part.word->size != 3600;
}

/// Size and zero of what a unit stands for.
UnitChange toSI(const std::vector<Part>& parts) {
  UnitChange change;
  for (const Part& part : parts)
    change.factor = part.below ? change.factor / part.word->size : change.factor * part.word->size;
  if (parts.size() == 1) change.offset = parts.front().word->zero;
  return change;
}

UnitChange between(const std::vector<Part>& from, const std::vector<Part>& to, std::string unit) {
  const UnitChange old = toSI(from), young = toSI(to);
  // Equal sizes are no change at all, whatever the order of the factors.
  UnitChange change{.unit = std::move(unit)};
  if (std::abs(old.factor - young.factor) > 1e-14 * std::abs(old.factor))
    change.factor = old.factor / young.factor;
  if (old.offset != young.offset) change.offset = (old.offset - young.offset) / young.factor;
  return change;
}

std::vector<std::pair<Kind, bool>> kindsOf(const std::vector<Part>& parts) {
  std::vector<std::pair<Kind, bool>> kinds;
  for (const Part& part : parts) {
    if (part.word->kind != Number) kinds.emplace_back(part.word->kind, part.below);
  }
  std::ranges::sort(kinds);
  return kinds;
}

}  // namespace

std::optional<UnitChange> unitChange(std::string_view unit, Units units, std::string_view quantity) {
  UnitChange same{.unit = std::string(unit)};
  if (units == Units::File || trim(unit).empty()) return same;
  const auto parts = partsOf(unit);
  if (parts.empty()) return std::nullopt;
  if (staysAsItIs(parts.front())) return same;
  std::string text;
  bool known = true;  // each word is one of the system already
  for (const Part& part : parts) {
    const std::string_view word = wordsFor(part, parts, quantity)[static_cast<std::size_t>(units) - 1];
    const Word* plain = find(word);
    known = known && plain && plain->size == part.word->size && plain->zero == part.word->zero;
    if (part.before != 0) text += part.before;
    text += word;
  }
  if (known) return same;
  const auto wanted = partsOf(text);
  return between(parts, wanted, std::move(text));
}

std::optional<UnitChange> unitChange(std::string_view from, std::string_view to) {
  UnitChange same{.unit = std::string(to)};
  if (equalNoCase(trim(from), trim(to))) return same;
  const auto old = partsOf(from), young = partsOf(to);
  if (old.empty() || young.empty() || kindsOf(old) != kindsOf(young)) return std::nullopt;
  return between(old, young, std::string(to));
}

bool isPerTime(std::string_view unit) {
  return std::ranges::any_of(partsOf(unit),
                             [](const Part& part) { return part.below && part.word->kind == Time; });
}

}  // namespace lumbarn
