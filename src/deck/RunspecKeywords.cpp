#include <algorithm>
#include <array>
#include <string>

#include "../support/Fault.h"
#include "../support/Text.h"
#include "../vocabulary/Units.h"
#include "DeckScheduleStore.h"
#include "KeywordParsers.h"

namespace lumbarn {

namespace {

using Words = std::vector<std::string>;

constexpr std::int32_t runspecSection = 1, propsSection = 4;

void store(const HostKeyword& keyword, const Words& words, std::int32_t iSection = runspecSection) {
  keyword.deck.keywords.add(keyword.zKeyword, iSection, words);
}

template <std::size_t count>
void takeWords(const Words& words, std::array<std::int32_t, count>& values) {
  for (std::size_t i = 0; i < count; ++i) takeInteger(words, i, values[i]);
}

void parseDIMENS(const HostKeyword& keyword) {
  const Words words = keyword.arguments();
  if (words.size() < 3) return;
  DeckRunspec& runspec = keyword.runspec();
  std::int32_t* const sizes[] = {&runspec.iNX, &runspec.iNY, &runspec.iNZ};
  for (std::size_t i = 0; i < 3; ++i) {
    if (const std::int32_t size = integerAt(words, i); size > 0) *sizes[i] = size;
  }
}

void takeLarger(const Words& words, std::size_t place, std::int32_t& value) {
  value = std::max(value, integerAt(words, place));
}

void parseTABDIMS(const HostKeyword& keyword) {
  const Words words = keyword.mergedArguments();
  store(keyword, words);
  DeckTableSizes& sizes = keyword.runspec().tables;
  takeInteger(words, 0, sizes.saturation);
  takeInteger(words, 1, sizes.pvt);
  takeInteger(words, 2, sizes.saturationNodes);
  takeInteger(words, 3, sizes.pvtNodes);
  takeLarger(words, 4, sizes.regions);
  takeInteger(words, 5, sizes.rvNodes);
  takeLarger(words, 7, sizes.endPoint);
  takeInteger(words, 8, sizes.eosReservoir);
  takeInteger(words, 9, sizes.eosSurface);
  takeInteger(words, 10, sizes.miscible);
  takeInteger(words, 11, sizes.miscibleNodes);
  takeInteger(words, 12, sizes.rockCompaction);
  sizes.eosSurface = std::max(sizes.eosSurface, sizes.eosReservoir);
  sizes.pvt = std::max(sizes.pvt, sizes.eosSurface);
  if (keyword.schedule()) keyword.schedule()->tableSizes(sizes);
}

void parseREGDIMS(const HostKeyword& keyword) {
  const Words words = keyword.mergedArguments();
  store(keyword, words);
  takeLarger(words, 0, keyword.runspec().tables.regions);
  for (const std::size_t place : {1U, 2U, 3U, 5U, 9U})
    takeInteger(words, place, keyword.runspec().iREGDIMS[place + 1]);
}

void parseWELLDIMS(const HostKeyword& keyword) {
  const Words words = keyword.mergedArguments();
  store(keyword, words);
  auto& sizes = keyword.runspec().iWELLDIMS;
  takeWords(words, sizes);
  DeckScheduleStore* const schedule = keyword.schedule();
  if (schedule && sizes[0] > 0) schedule->wellCount(sizes[0]);
  if (schedule && sizes[2] > 0) schedule->groupCount(sizes[2]);
}

void parseEQLDIMS(const HostKeyword& keyword) {
  const Words words = keyword.mergedArguments();
  store(keyword, words);
  takeWords(words, keyword.runspec().iEQLDIMS);
}

void parseVFPDIMS(const HostKeyword& keyword) {
  const Words words = keyword.mergedArguments();
  store(keyword, words);
  DeckRunspec& runspec = keyword.runspec();
  if (keyword.zKeyword == "VFPPDIMS") {
    takeWords(words, runspec.iVFPPDIMS);
  } else {
    takeWords(words, runspec.iVFPIDIMS);
    runspec.nInjectionRows = runspec.iVFPIDIMS[1] + 3;
  }
}

/// Deliberate: there are no defaults, and a record that is too short is a fault, with the words before its
/// end kept.
void parseSCDPDIMS(const HostKeyword& keyword) {
  const Words words = keyword.mergedArguments();
  takeWords(words, keyword.runspec().iSCDPDIMS);
  if (words.size() < keyword.runspec().iSCDPDIMS.size()) throw Fault(FaultNumber::Subscript);
  store(keyword, words);
}

void parseMISCIBLE(const HostKeyword& keyword) {
  const Words words = keyword.mergedArguments();
  store(keyword, words);
  DeckRunspec& runspec = keyword.runspec();
  takeInteger(words, 0, runspec.tables.miscible);
  takeInteger(words, 1, runspec.tables.miscibleNodes);
  runspec.zMixing = textAt(words, 2);
  runspec.qMiscible = true;
}

void parseROCKCOMP(const HostKeyword& keyword) {
  const Words words = keyword.mergedArguments();
  store(keyword, words, propsSection);
  takeInteger(words, 1, keyword.runspec().tables.rockCompaction);
  keyword.runspec().qRockCompaction = true;
}

void parseROCKCOPTS(const HostKeyword& keyword) { store(keyword, keyword.mergedArguments(), propsSection); }

void parsePARTTRAC(const HostKeyword& keyword) {
  const Words words = keyword.mergedArguments();
  store(keyword, words);
  takeWords(words, keyword.runspec().iPARTTRAC);
}

void parsePHASE(const HostKeyword& keyword) {
  struct Phase {
    std::string_view zKeyword;
    bool DeckPhases::*flag;
    bool told;
  };
  // POLYMER is deliberately not among them: the host form never sees it.
  static constexpr Phase phases[] = {
      {"OIL", &DeckPhases::Oil, true},
      {"GAS", &DeckPhases::Gas, true},
      {"WATER", &DeckPhases::Water, true},
      {"DISGAS", &DeckPhases::DissolvedGas, true},
      {"VAPOIL", &DeckPhases::VapourisedOil, true},
      {"BRINE", &DeckPhases::Brine, false},
      {"SOLVENT", &DeckPhases::Solvent, false},
      {"SURFACT", &DeckPhases::Surfactant, false},
      {"COAL", &DeckPhases::CoalBedMethane, false},
      {"FOAM", &DeckPhases::Foam, false},
  };
  for (const Phase& phase : phases) {
    if (phase.zKeyword != keyword.zKeyword) continue;
    keyword.runspec().phases.*phase.flag = true;
    if (phase.told && keyword.schedule()) keyword.schedule()->phase(phase.zKeyword);
  }
}

void parseBLACKOIL(const HostKeyword& keyword) {
  DeckRunspec& runspec = keyword.runspec();
  runspec.qIsBlackOil = runspec.phases.Gas = runspec.phases.DissolvedGas = true;
  runspec.qNoRestartGather = true;
  if (keyword.schedule()) keyword.schedule()->phase(keyword.zKeyword);
}

void parseUNITS(const HostKeyword& keyword) { keyword.runspec().iUnitSystem = UnitSystem(keyword.zKeyword); }

/// Deliberate: without a schedule store the keyword has no effect.
void parseFMT(const HostKeyword& keyword) {
  if (!keyword.schedule()) return;
  keyword.schedule()->fileForm(keyword.zKeyword, keyword.deck.lines.nSchedule());
  DeckRunspec& runspec = keyword.runspec();
  if (keyword.zKeyword == "FMTIN") runspec.qFMTIN = true;
  if (keyword.zKeyword == "FMTOUT") runspec.qFMTOUT = true;
  if (keyword.zKeyword == "FMTSAVE") runspec.qFMTSAVE = true;
}

void parseDualPorosity(const HostKeyword& keyword) {
  DeckRunspec& runspec = keyword.runspec();
  if (keyword.zKeyword == "DUALPORO") runspec.qDualPorosity = true;
  if (keyword.zKeyword == "DUALPERM") runspec.qDualPermeability = true;
  if (keyword.zKeyword == "NODPPM") runspec.qNODPPM = true;
}

void parseSTART(const HostKeyword& keyword) {
  getEclipseDate(keyword.arguments(), keyword.runspec().start);
  if (keyword.schedule()) keyword.schedule()->startDate(keyword.runspec().start);
}

/// The next line as it stands, be it a comment or empty.
void parseTITLE(const HostKeyword& keyword) {
  std::string line;
  if (keyword.file.readLine(line)) keyword.runspec().zTitle = line;
}

void parseCOMPS(const HostKeyword& keyword) {
  DeckRunspec& runspec = keyword.runspec();
  runspec.qNoRestartGather = true;
  const std::int32_t count = integerAt(keyword.arguments(), 0);
  if (count < 1 || count > 99 || count == runspec.nComponents) return;
  runspec.nComponents = count;
  runspec.zComponents.resize(static_cast<std::size_t>(count));
  if (keyword.schedule()) keyword.schedule()->componentCount(count);
}

void parseCNAMES(const HostKeyword& keyword) {
  DeckRunspec& runspec = keyword.runspec();
  Words words = keyword.arguments();
  if (words.empty()) return;
  if (runspec.nComponents == 0) runspec.nComponents = static_cast<std::int32_t>(words.size());
  if (words.size() != static_cast<std::size_t>(runspec.nComponents)) return;
  runspec.zComponents = std::move(words);
  if (keyword.schedule()) keyword.schedule()->componentNames(runspec.zComponents);
}

void parseNUMRES(const HostKeyword& keyword) {
  // More reservoirs than there can be layers have no meaning, and would take memory for nothing.
  constexpr std::int32_t most = 10'000;
  const std::int32_t count = integerAt(keyword.arguments(), 0);
  if (count > 1 && count <= most) keyword.runspec().iNumRes = count;
  auto& reservoirs = keyword.grids().reservoirs;
  reservoirs.resize(std::max(reservoirs.size(), static_cast<std::size_t>(keyword.runspec().iNumRes)));
}

void parsePARALLEL(const HostKeyword& keyword) {
  const Words words = keyword.arguments();
  const std::int32_t domains = integerAt(words, 0);
  if (domains >= 1 && !equalNoCase(textAt(words, 1), "SERIAL") && keyword.schedule())
    keyword.schedule()->domainCount(domains);
}

void parseSingleArgumentKeyword(const HostKeyword& keyword) {
  DeckRunspec& runspec = keyword.runspec();
  const Words words = keyword.arguments();
  if (keyword.zKeyword == "FAULTDIM") {
    if (const std::int32_t count = integerAt(words, 0); count >= 1) runspec.nFaultSegments = count;
    return;
  }
  float& value = keyword.zKeyword == "DZMTRX"  ? runspec.sDZMTRX
                 : keyword.zKeyword == "SIGMA" ? runspec.sSIGMA
                                               : runspec.sSIGMAGD;
  if (const float given = singleAt(words, 0); given >= 0) value = given;
}

/// The first argument; a negative one is dropped, as with the keywords above.
void parseDRSDT(const HostKeyword& keyword) {
  const float given = singleAt(keyword.arguments(), 0);
  if (given >= 0) keyword.runspec().sDRSDT = given;
}

void parseDRVDT(const HostKeyword& keyword) {
  const float given = singleAt(keyword.arguments(), 0);
  if (given >= 0) keyword.runspec().sDRVDT = given;
}

void parseEQUIL(const HostKeyword& keyword) {
  auto& regions = keyword.runspec().equilibration;
  const auto most = static_cast<std::size_t>(std::max(keyword.runspec().iEQLDIMS[0], 1));
  regions.clear();
  for (const Words& words : keyword.records()) {
    if (regions.size() == most) break;
    std::vector<float> values(words.size());
    for (std::size_t i = 0; i < words.size(); ++i) values[i] = singleAt(words, i);
    if (values.empty() && !regions.empty()) values = regions.back();
    regions.push_back(std::move(values));
  }
}

constexpr ParserRow rows[] = {
    {"parseBLACKOIL", parseBLACKOIL},
    {"parseCNAMES", parseCNAMES},
    {"parseCOMPS", parseCOMPS},
    {"parseDIMENS", parseDIMENS},
    {"parseDRSDT", parseDRSDT},
    {"parseDRVDT", parseDRVDT},
    {"parseDualPorosity", parseDualPorosity},
    {"parseEQLDIMS", parseEQLDIMS},
    {"parseEQUIL", parseEQUIL},
    {"parseFMT", parseFMT},
    {"parseMISCIBLE", parseMISCIBLE},
    {"parseNUMRES", parseNUMRES},
    {"parsePARALLEL", parsePARALLEL},
    {"parsePARTTRAC", parsePARTTRAC},
    {"parsePHASE", parsePHASE},
    {"parseREGDIMS", parseREGDIMS},
    {"parseRESTART", parseRESTART},
    {"parseROCKCOMP", parseROCKCOMP},
    {"parseROCKCOPTS", parseROCKCOPTS},
    {"parseSCDPDIMS", parseSCDPDIMS},
    {"parseSTART", parseSTART},
    {"parseSingleArgumentKeyword", parseSingleArgumentKeyword},
    {"parseTABDIMS", parseTABDIMS},
    {"parseTITLE", parseTITLE},
    {"parseUNITS", parseUNITS},
    {"parseVFPDIMS", parseVFPDIMS},
    {"parseWELLDIMS", parseWELLDIMS},
};

}  // namespace

std::span<const ParserRow> runspecParsers() { return rows; }

std::string DeckDate::text() const {
  return std::to_string(iDay) + ' ' + std::to_string(iMonth) + ' ' + std::to_string(iYear);
}

}  // namespace lumbarn
