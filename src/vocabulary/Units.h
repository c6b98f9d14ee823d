#pragma once

#include <cstdint>
#include <string_view>

#include "../support/Export.h"

namespace lumbarn {

/// Unit systems by number, as headers state them. Words and unit texts may be padded with blanks on either
/// side (some writers center them in their 8 characters) and are accepted in any letter case.
inline constexpr std::int32_t metricUnits = 1;
inline constexpr std::int32_t fieldUnits = 2;
inline constexpr std::int32_t laboratoryUnits = 3;
inline constexpr std::int32_t atmosphereUnits = 4;  ///< metric with pressures in atmospheres (PVT-M)

/// From the word of a deck, "METRIC", "FIELD" or "LAB"; 2 for any other.
LUMBARN_API std::int32_t UnitSystem(std::string_view zName);
/// From a unit of length: "METRES", "FEET" or "CENTIMETRES", the first and the last also in their spelling
/// with "ERS"; -1 for any other.
LUMBARN_API std::int32_t WhichUnitSystem(std::string_view zName);
/// From the number in a header (word 1 of INTEHEAD of a summary specification, word 3 in restart and INIT
/// files): the number itself if it is a unit system, otherwise 0.
LUMBARN_API std::int32_t unitSystemOfNumber(std::int32_t number);
/// From the unit of a vector, such as "SM3/DAY" or " HOURS "; 0 if the unit occurs in several systems. Metric
/// units occur in files of the other systems too, so a vector in metric units does not decide the system as
/// long as any other vector may.
LUMBARN_API std::int32_t unitSystemOfUnit(std::string_view unit);
/// "metric", "field", "lab", "metric with atmospheres"; "unknown" for any other number.
LUMBARN_API std::string_view unitSystemName(std::int32_t system);

/// How many of a unit of time make a day: 1 for days, 24 for hours. A text that names no unit of time counts
/// as days, in which times are given unless the file states otherwise.
LUMBARN_API double unitsPerDay(std::string_view timeUnit);
/// The same for the unit of time of a unit system: hours in laboratory units, days in all others.
LUMBARN_API double unitsPerDay(std::int32_t system);

/// What a number measures; the Array* rows have the texts that hosts expect for the arrays of restart and
/// INIT files.
enum class Quantity : std::uint8_t {
  None,
  Time,
  Length,
  Volume,
  Pressure,
  PressureDifference,
  Density,
  Viscosity,
  Compressibility,
  LiquidVolumeFactor,
  GasVolumeFactor,
  GasInOil,
  OilInGas,
  LiquidRate,
  GasRate,
  ReservoirRate,
  ConnectionFactor,
  PermeabilityThickness,
  ArrayPressure,
  ArrayLength,
  ArrayGasInOil,
  ArrayOilInGas,
  ArrayPermeability,
  ArrayPoreVolume,
  ArrayTransmissibility,
};
/// The unit of a quantity in a unit system; empty for a number without dimension and for any other system.
LUMBARN_API std::string_view unitOf(Quantity quantity, std::int32_t system);

}  // namespace lumbarn
