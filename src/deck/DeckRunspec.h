#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

/// What an argument has when a deck gives no value for it.
inline constexpr std::int32_t noDeckValue = -32768;

/// A date as the host form keeps it: each part by itself, so that 30 FEB is possible.
struct LUMBARN_API DeckDate {
  std::int32_t iDay = 1;
  std::int32_t iMonth = 1;
  std::int32_t iYear = 1980;

  std::string text() const;  ///< "1 7 2001"
  bool operator==(const DeckDate&) const = default;
};

struct LUMBARN_API DeckPhases {
  bool Oil = false, Gas = false, Water = false, DissolvedGas = false, VapourisedOil = false;
  bool Brine = false, Solvent = false, Surfactant = false, CoalBedMethane = false, Foam = false;
};

/// Counts of TABDIMS. Keywords that share a count overwrite each other, the later one counts.
struct LUMBARN_API DeckTableSizes {
  std::int32_t saturation = 1;  ///< tables of saturation functions
  std::int32_t pvt = 1;         ///< of fluid properties; at least eosSurface
  std::int32_t saturationNodes = 20;
  std::int32_t pvtNodes = 20;
  std::int32_t regions = 1;  ///< of fluid in place, the largest of TABDIMS and REGDIMS
  std::int32_t rvNodes = 20;
  std::int32_t endPoint = 1;  ///< tables of end points by depth; never shrinks
  std::int32_t eosReservoir = 1;
  std::int32_t eosSurface = 1;  ///< at least eosReservoir; the equations of state that are kept
  std::int32_t miscible = 10;   ///< first word of MISCIBLE, or word 11 of TABDIMS
  std::int32_t miscibleNodes = 1;
  std::int32_t rockCompaction = -1;  ///< second word of ROCKCOMP, or word 13 of TABDIMS
};

/// In which form files of one kind are read or written.
enum class DeckFileForm : std::uint8_t { NotGiven, Multiple, Unified };

struct LUMBARN_API DeckRestartSource {
  std::string zRoot;  ///< with its folder, `\` between the parts
  std::int32_t iStep = 0;
  bool qIsSave = false;
  bool qFormatted = false;
};

/// What the keywords of RUNSPEC say, and the options of other sections that are single values. The defaults
/// are those of a deck that says nothing.
struct LUMBARN_API DeckRunspec {
  std::string zTitle;
  bool qIsFrontSim = false;
  bool qIsBlackOil = false;
  bool qNoRestartGather = false;  ///< the host gathers no restart information for this deck
  DeckPhases phases;
  std::int32_t iNX = 0, iNY = 0, iNZ = 0;
  std::int32_t iUnitSystem = 2;  ///< 1 metric, 2 field, 3 laboratory
  DeckDate start;
  std::int32_t iNumRes = 1;
  bool qDualPorosity = false, qDualPermeability = false, qNODPPM = false;
  bool qMiscible = false, qRockCompaction = false;  ///< MISCIBLE, ROCKCOMP was read
  std::string zMixing;                              ///< third word of MISCIBLE
  float sDZMTRX = noDeckValue, sSIGMA = noDeckValue, sSIGMAGD = noDeckValue;
  /// Largest rates of change of Rs and Rv. Records of SCHEDULE follow one another; the last one is kept.
  float sDRSDT = noDeckValue, sDRVDT = noDeckValue;
  std::int32_t nFaultSegments = 0;
  std::int32_t nComponents = 0;
  std::vector<std::string> zComponents;

  DeckTableSizes tables;
  /// Words 2, 3, 4, 6 and 10 of REGDIMS, at these places. Word 1 is `tables.regions`.
  std::array<std::int32_t, 11> iREGDIMS{0, 1, 1, 0, 0, 0, 1, 0, 0, 0, 1};
  std::array<std::int32_t, 10> iWELLDIMS{10, 0, 5, 10, 5, 10, 5, 4, 3, 0};
  std::array<std::int32_t, 5> iEQLDIMS{1, 100, 20, 1, 20};
  /// Largest sizes of lift tables: axes of flow, THP, WFR, GFR and ALQ, and the count of tables.
  std::array<std::int32_t, 6> iVFPPDIMS{};
  std::array<std::int32_t, 3> iVFPIDIMS{};
  std::int32_t nInjectionRows = 0;  ///< rows of an injection table: word 2 of VFPIDIMS and 3 more
  std::array<std::int32_t, 7> iSCDPDIMS{};
  /// Partitioned tracers, their tables and the rows of these. The first is the count of tables of TRACERKP.
  std::array<std::int32_t, 3> iPARTTRAC{};

  bool qFMTIN = false, qFMTOUT = false, qFMTSAVE = false;  ///< only ever set with a schedule store
  struct OutputForm {
    DeckFileForm form = DeckFileForm::NotGiven;
    std::int32_t iLine = 0;  ///< the schedule line that it was said at
  };
  OutputForm input, output, summaryOutput, save;  ///< MULTIN, UNIFIN; ..OUT; ..OUTS; ..SAVE
  std::int32_t iSAVELine = 0, iRPTRSTLine = 0, iSKIPRESTLine = 0;
  std::optional<DeckRestartSource> restart;
  /// The records of EQUIL, at most as many as EQLDIMS says, as the words were given: `noDeckValue` for one
  /// that is not. A record without words is that of the region before.
  std::vector<std::vector<float>> equilibration;
};

}  // namespace lumbarn
