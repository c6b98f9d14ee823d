#include "qvEclipseDat.h"

#include <algorithm>

#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "DeckIncludes.h"
#include "DeckLoader.h"
#include "DeckRecognition.h"

namespace lumbarn {

namespace {

constexpr const char* name = "qvEclipseDat";

std::int32_t countOf(std::size_t size) { return static_cast<std::int32_t>(size); }

/// Lines for a host whose arrays have an element at least.
void giveLines(const std::vector<std::string>& from, std::vector<std::string>& zLines, std::int32_t& nLines) {
  zLines = from;
  nLines = countOf(from.size());
  if (zLines.empty()) zLines.emplace_back();
}

}  // namespace

bool qvEclipseDat::CheckifEclipseFile(const std::string& zFile) const {
  bool qDeck = false;
  guarded(session(), qDeck, name, "CheckifEclipseFile", [&] { return recogniseHostDeck(zFile, session()); });
  return qDeck;
}

void qvEclipseDat::LoadEclipseDataFile(bool& qOK) {
  guarded(session(), qOK, name, "LoadEclipseDataFile",
          [&] { return DeckLoader(deck_, *this, *this, session()).load(zDeckFile); });
}

void qvEclipseDat::readDeck(std::shared_ptr<const ByteSource> source, bool& qOK) {
  guarded(session(), qOK, name, "readDeck",
          [&] { return DeckLoader(deck_, *this, *this, session()).load(std::move(source)); });
}

void qvEclipseDat::LoadEclipseData(const std::string& zPath, const std::string& zName, bool& qOK,
                                   bool qInclude) {
  guarded(session(), qOK, name, "LoadEclipseData",
          [&] { return DeckLoader(deck_, *this, *this, session()).loadFile(zPath, zName, qInclude); });
}

void qvEclipseDat::ExcludeFile(const std::string& zName, bool& qOK, bool& qExcluded) const {
  guarded(session(), qOK, name, "ExcludeFile", [&] { qExcluded = isExcluded(zName, zExcludes); });
}

void qvEclipseDat::getEclipseKeyWord(std::int32_t iOfSection, std::string_view zKeyWord,
                                     std::vector<std::string>& zArguments, std::int32_t& nArguments,
                                     bool& qOK) const {
  guarded(session(), qOK, name, "getEclipseKeyWord", [&] {
    const DeckKeywordRecord* record = deck_.keywords.find(zKeyWord, iOfSection);
    nArguments = record ? record->nArgs : 0;
    zArguments = record ? record->zArgs : std::vector<std::string>();
    return record != nullptr;
  });
}

void qvEclipseDat::getEclipseKeyWordList(std::int32_t iOfSection, std::vector<std::string>& zKeyWords,
                                         std::int32_t& nKeyWords, bool& qOK) const {
  guarded(session(), qOK, name, "getEclipseKeyWordList", [&] {
    zKeyWords = deck_.keywords.names(iOfSection);
    nKeyWords = countOf(zKeyWords.size());
  });
}

DeckScalar qvEclipseDat::getKeywordArgument(std::string_view zKeyWord) const {
  const DeckRunspec& runspec = deck_.runspec;
  if (zKeyWord == "TITLE") return runspec.zTitle;
  if (zKeyWord == "DRSDT") return runspec.sDRSDT;
  if (zKeyWord == "DRVDT") return runspec.sDRVDT;
  if (zKeyWord == "DZMTRX") return runspec.sDZMTRX;
  if (zKeyWord == "SIGMA") return runspec.sSIGMA;
  if (zKeyWord == "SIGMAGD") return runspec.sSIGMAGD;
  return static_cast<float>(noDeckValue);
}

bool qvEclipseDat::IsKeyWord(std::string_view zKeyWord) const {
  return (zKeyWord == "COORD" && deck_.grids.qCOORD) || (zKeyWord == "ZCORN" && deck_.grids.qZCORN);
}

DeckScalar qvEclipseDat::getModelProperty(std::int32_t iProperty) const {
  const DeckRunspec& runspec = deck_.runspec;
  const DeckPhases& phases = runspec.phases;
  switch (iProperty) {
    case 1:
      return runspec.iNX;
    case 2:
      return runspec.iNY;
    case 3:
      return runspec.iNZ;
    case 5:
      return phases.Oil;
    case 6:
      return phases.Gas;
    case 7:
      return phases.Water;
    case 8:
      return phases.DissolvedGas;
    case 9:
      return phases.VapourisedOil;
    case 11:
      return phases.Foam;
    case 12:
      return phases.Surfactant;
    case 21:
      return 0;
    case 22:
      return runspec.iUnitSystem;
    case 24:
      return runspec.qDualPorosity;
    case 25:
      return runspec.qDualPermeability;
    case 26:
      return phases.Brine;
    case 27:
      return phases.Solvent;
    case 28:
      return runspec.qNODPPM;
    case 29:
      return runspec.qMiscible;
    case 30:
      return phases.CoalBedMethane;
    case 34:
      return runspec.start.iDay;
    case 35:
      return runspec.start.iMonth;
    case 36:
      return runspec.qRockCompaction;
    // Deliberate: what would set these is never parsed, or does not exist.
    case 4:
    case 10:
    case 13:
    case 15:
    case 16:
    case 17:
    case 18:
    case 19:
    case 31:
    case 33:
      return false;
    default:
      return std::string();
  }
}

void qvEclipseDat::getIntegerKeyword(std::string_view zKeyWord, std::vector<std::int32_t>& iArgs,
                                     std::int32_t& nArgs, bool& qOK) const {
  guarded(session(), qOK, name, "getIntegerKeyword", [&] {
    const DeckRunspec& runspec = deck_.runspec;
    const DeckTableSizes& tables = runspec.tables;
    iArgs.clear();
    if (zKeyWord == "DIMENS") {
      iArgs = {runspec.iNX, runspec.iNY, runspec.iNZ};
    } else if (zKeyWord == "TABDIMS") {
      iArgs = {tables.saturation, tables.pvt,     tables.saturationNodes,
               tables.pvtNodes,   tables.regions, tables.rvNodes};
    }
    nArgs = countOf(iArgs.size());
    return nArgs > 0;
  });
}

void qvEclipseDat::getEQUIL(std::int32_t iRegion, std::vector<float>& sValues, bool& qOK) const {
  guarded(session(), qOK, name, "getEQUIL", [&] {
    const auto& regions = deck_.runspec.equilibration;
    if (iRegion < 1 || iRegion > countOf(regions.size())) return false;
    sValues = regions[static_cast<std::size_t>(iRegion) - 1];
    return true;
  });
}

void qvEclipseDat::GetScheduleLines(std::vector<std::string>& zSchedule, std::int32_t& nSchedule,
                                    bool& qOK) const {
  guarded(session(), qOK, name, "GetScheduleLines",
          [&] { giveLines(deck_.lines.zSchedule, zSchedule, nSchedule); });
}

void qvEclipseDat::GetScheduleLinesWithPointers(std::vector<std::string>& zSchedule, std::int32_t& nSchedule,
                                                std::vector<std::int32_t>& iPointers, std::int32_t& nPointers,
                                                bool& qOK) const {
  guarded(session(), qOK, name, "GetScheduleLinesWithPointers", [&] {
    giveLines(deck_.lines.zSchedule, zSchedule, nSchedule);
    iPointers.assign(deck_.lines.iSectionLine.begin(), deck_.lines.iSectionLine.end());
    nPointers = countOf(iPointers.size());
  });
}

void qvEclipseDat::GetEDITLines(std::vector<std::string>& zLines, std::int32_t& nLines, bool& qOK) const {
  guarded(session(), qOK, name, "GetEDITLines", [&] { giveLines(deck_.lines.zEDIT, zLines, nLines); });
}

void qvEclipseDat::getIncFileExcludes(std::vector<std::string>& zFiles, std::int32_t& nFiles,
                                      bool& qOK) const {
  guarded(session(), qOK, name, "getIncFileExcludes", [&] {
    zFiles = zExcludes;
    nFiles = countOf(zFiles.size());
  });
}

void qvEclipseDat::setIncFileExcludes(const std::vector<std::string>& zFiles, bool& qOK) {
  guarded(session(), qOK, name, "setIncFileExcludes", [&] { zExcludes = zFiles; });
}

void qvEclipseDat::getIncludeFiles(std::vector<std::string>& zFiles, std::int32_t& nFiles, bool& qOK) const {
  guarded(session(), qOK, name, "getIncludeFiles", [&] {
    zFiles = deck_.zIncludes;
    nFiles = countOf(zFiles.size());
  });
}

}  // namespace lumbarn
