#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "../support/Export.h"

namespace lumbarn {

/// Units of an answer; File: as the file has them.
enum class Units : std::uint8_t { File, Metric, Field, Lab, SI };

/// How values change with their unit: new = old * factor + offset.
struct UnitChange {
  double factor = 1;
  double offset = 0;  ///< of temperatures only
  std::string unit{};

  bool changesValues() const { return factor != 1 || offset != 0; }
  double of(double value) const { return value * factor + offset; }
};

/// The change from a unit, in any letter case and with blanks anywhere, to the one that a system of units has
/// in its place: "STB/DAY" to "SM3/DAY". Each part of the unit is replaced by itself, so "PSI/FT" becomes
/// "BARS/M". Nothing for a text that is not understood completely, as one that a file cut after 8 characters;
/// no change for units without dimension and for what all systems share: millidarcies, viscosities but in SI,
/// years, and seconds of computing.
///
/// Pressures keep what they refer to: absolute ones ("PSIA"), ones without a word of it ("PSI", of which
/// differences are made) and those above the atmosphere ("PSIG") change by the same factor, and no offset.
/// Temperatures have their offset where the unit is nothing but degrees; a gradient has none.
///
/// `quantity` is a mnemonic, a name or a description: standard cubic metres become MSCF where it says gas,
/// otherwise STB. Volumes at standard conditions are converted as volumes; the conditions of systems differ
/// slightly.
LUMBARN_API std::optional<UnitChange> unitChange(std::string_view unit, Units units,
                                                 std::string_view quantity = {});

/// The change from one unit to another of the same kind; nothing where one is not known or they differ in
/// kind.
LUMBARN_API std::optional<UnitChange> unitChange(std::string_view from, std::string_view to);

/// Whether a unit counts something per time, as "STB/DAY" does; false for a text that is not understood.
LUMBARN_API bool isPerTime(std::string_view unit);

}  // namespace lumbarn
