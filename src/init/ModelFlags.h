#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "../support/Export.h"

namespace lumbarn {

/// What a run models, from the LOGIHEAD of its INIT file and the phases of its INTEHEAD.
struct ModelFlags {
  bool Oil = false;
  bool Water = false;
  bool Gas = false;
  bool DissolvedGas = false;
  bool VapourisedOil = false;
  bool DirectionalKR = false;
  bool ReversibleKR = false;
  bool qRadial = false;
  bool VerticalEquilibrium = false;
  bool Hysteresis = false;
  bool RockCompaction = false;
  bool ReversibleRockCompaction = false;
  bool APITracking = false;
  bool further = false;  ///< word 11
  bool Stone = false;
  bool Sudation = false;
  bool DualPorosity = false;
  bool DualPermeability = false;
  bool EndPointScaling = false;
  bool DirectionalEndScale = false;
  bool ReversibleEndScale = false;
  bool AlternativeEndScale = false;
  bool Polymer = false;
  bool Brine = false;
  bool CompressedVE = false;
  bool Solvent = false;
  bool Surfactant = false;
  bool CoalBedMethane = false;
  bool NewTransmissibility = false;
  bool Temperature = false;
  bool Foam = false;
  bool Miscible = false;
};

/// One flag that hosts ask for by name.
struct NamedFlag {
  std::string_view name;
  bool ModelFlags::*flag;
};
/// All flags that have a name, in the order of LOGIHEAD, phases first.
LUMBARN_API std::span<const NamedFlag> namedFlags();

/// Takes the words of LOGIHEAD, those that are there. Words 4 and 5 change places for `iProgram` 100.
LUMBARN_API void takeLogicalHeader(std::span<const std::int16_t> words, std::int32_t iProgram,
                                   ModelFlags& flags);

}  // namespace lumbarn
