#include "qvEclipseKeys.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "../support/Guarded.h"
#include "../support/Text.h"
#include "../vocabulary/Units.h"

namespace lumbarn {

namespace {

constexpr const char* module = "qvEclipseKeys";

// clang-format off
constexpr std::string_view acceptedKeywords =
    "ACF ACFS ACTNUM APIVD AQUDIMS AQUTAB BDENSITY BIC BICS BLACKOIL BOX BRINE CARFIN CNAMES COAL "
    "COALADS COALPP COMPS COORD COORDSYS DATES DENSITY DIMENS DISGAS DREF DREFS DRSDT DRVDT DUALPERM "
    "DUALPORO DZMTRX EHYSTRR ENDBOX ENDSCALE ENPCVD ENPTVD ENPTVDX ENPTVDX- ENPTVDY ENPTVDY- ENPTVDZ "
    "ENPTVDZ- EOS EOSS EQLDIMS EQUIL FAULTDIM FAULTS FIELD FIELDSEP FMTIN FMTOUT FMTSAVE FOAM FOAMADS "
    "FOAMDCYO FOAMDCYW FOAMFSO FOAMFST FOAMFSW FOAMMOB FOAMMOBP FOAMMOBS FOAMROCK FVST GAS GIALL "
    "GINODE GRAVITY GREF GREFS GRID GRIDUNIT GRUPTREE INCLUDE LAB LANGMUIR LANGSOLV LIFTOPT MAPAXES "
    "MAPUNITS METRIC MISCIBLE MULTFLT MW MWS NCOMPS NODPPM NUMRES OIL OILVISCT OMEGAA OMEGAAS OMEGAB "
    "OMEGABS OVERBURD PARACHOR PARACHORS PARALLEL PARTTRAC PBVD PCRIT PCRITS PDVD PINCH PINCHOUT "
    "PINCHXY PINCREG PLMIXPAR PLYADS PLYESAL PLYMAX PLYROCK PLYSHEAR PLYVISC PLYVISCS PRCORR PREF "
    "PREFS PVCDO PVDG PVDO PVDS QHRATING RADFIN REGDIMS RESTART RESVNUM RIRXSEC RKPVMNMX ROCKCOMP "
    "ROCKOPTS ROCKTAB ROCKTABH ROCKTSIG RSCONST RSCONSTT RSVD RTEMP RVCONST RVCONSTT RVVD SALTVD "
    "SATOPTS SCDATAB SCDATABG SCDPDIMS SCVD SEPCOND SGF3 SGFN SGOF SGWFN SIGMA SIGMAGD SOF2 SOF3 "
    "SOLIDADS SOLIDMMC SOLIDMMS SOLVENT SOMGAS SOMWAT SORWMIS SSFN SSHIFT SSHIFTS START STONE1EX "
    "SURFACT SURFADDW SURFADS SURFCAPD SURFESAL SURFROCK SURFST SURFVISC SWF3 SWFN SWOF TABDIMS TBOIL "
    "TBOILS TCRIT TCRITS TITLE TLMIXPAR TPAMEPS TPAMEPSS TRACERKP TREF TREFS TSTEP VAPOIL VCRIT VCRITS "
    "VFPIDIMS VFPINJ VFPPDIMS VFPPROD WATER WCONHIST WCONINJ WCONINJE WCONINJH WCONPROD WEFAC WELDRAW "
    "WELLDIMS WELLINJE WELLOPEN WELLPROD WELLSHUT WELLSPEC WELOPEN WELOPENL WELSPECL WELSPECS WELTARG "
    "WHISTCTL WLIST WLISTNAM WSEPCOND ZCORN ZCRIT ZCRITS";
// clang-format on

/// Accepted, and then taken to no parser: three for want of a call, GREF and SSHIFTS because the dispatch
/// names another keyword in their place.
constexpr std::string_view ignoredKeywords = "AQUDIMS ENDSCALE SATOPTS GREF SSHIFTS WELTARG WLISTNAM";
/// These have parsers that nothing is taken to.
constexpr std::string_view unreachedKeywords = "ASPWETF SCDPTAB";

/// Keywords that are not parsed by the routine of their own name, as "parse" and the keyword.
struct ParserRow {
  std::string_view parser;
  std::string_view keywords;
};
constexpr ParserRow parserRows[] = {
    {"parsePHASE", "BRINE COAL DISGAS FOAM GAS OIL SOLVENT SURFACT VAPOIL WATER"},
    {"parseUNITS", "FIELD METRIC LAB"},
    {"parseFMT", "FMTIN FMTOUT FMTSAVE"},
    {"parseDualPorosity", "DUALPORO DUALPERM NODPPM"},
    {"parseGRAVITY", "DENSITY GRAVITY"},
    {"parseDATES", "DATES TSTEP"},
    {"parseCOMPS", "COMPS NCOMPS"},
    {"parseSEPCOND", "SEPCOND FIELDSEP"},
    {"parseGRIDMAPUNITS", "GRIDUNIT MAPUNITS"},
    {"parseSingleArgumentKeyword", "DZMTRX FAULTDIM SIGMA SIGMAGD"},
    {"parseVFPDIMS", "VFPIDIMS VFPPDIMS"},
    {"parseWELLSPECS", "WELSPECS WELSPECL WELLSPEC"},
    {"parseWELLPROD", "WCONPROD WCONHIST WELLPROD WELOPEN WELOPENL WELLOPEN WELLSHUT"},
    {"parseWELLINJE", "WCONINJ WCONINJE WCONINJH WELLINJE"},
    {"parseWELLEFAC", "WEFAC"},
    {"parseENPTVD", "ENPTVD ENPTVDX ENPTVDX- ENPTVDY ENPTVDY- ENPTVDZ ENPTVDZ-"},
    {"parseEOS", "EOS EOSS"},
    {"parseBIC", "BIC BICS"},
    {"parsePINCH", "PINCH PINCHOUT PINCREG PINCHXY"},
    {"parseACF", "ACF ACFS"},
    {"parseMW", "MW MWS"},
    {"parseOMEGAA", "OMEGAA OMEGAAS"},
    {"parseOMEGAB", "OMEGAB OMEGABS"},
    {"parsePARACHOR", "PARACHOR PARACHORS"},
    {"parsePCRIT", "PCRIT PCRITS"},
    {"parseTCRIT", "TCRIT TCRITS"},
    {"parseVCRIT", "VCRIT VCRITS"},
    {"parseZCRIT", "ZCRIT ZCRITS"},
    {"parseTBOIL", "TBOIL TBOILS"},
    {"parseTREF", "TREF TREFS"},
    {"parsePREF", "PREF PREFS"},
    {"parseDREF", "DREF DREFS"},
    {"parseGREF", "GREFS"},
    {"parseRESNUM", "RESVNUM"},
    {"parseROCKCOPTS", "ROCKOPTS"},
    {"parseRIVRXSEC", "RIRXSEC"},
    {"parseFOAMDYW", "FOAMDCYW"},
};

using KeywordSet = std::set<std::string, std::less<>>;

KeywordSet keywordSet(std::string_view keywords) {
  auto list = words(keywords);
  return {std::make_move_iterator(list.begin()), std::make_move_iterator(list.end())};
}

const KeywordSet& accepted() {
  static const KeywordSet keywords = keywordSet(acceptedKeywords);
  return keywords;
}

using Parsers = std::map<std::string, std::string, std::less<>>;

Parsers parsers() {
  Parsers result;
  for (const ParserRow& row : parserRows) {
    for (std::string& keyword : words(row.keywords)) result.emplace(std::move(keyword), row.parser);
  }
  for (const std::string& keyword : accepted()) result.emplace(keyword, "parse" + keyword);
  for (const std::string& keyword : words(unreachedKeywords)) result.emplace(keyword, "parse" + keyword);
  for (const std::string& keyword : words(ignoredKeywords)) result.erase(keyword);
  return result;
}

/// Arguments, divided by commas. As lists for several keywords are alike, one row may serve several.
struct DefaultRow {
  std::string_view keywords;
  std::string_view arguments;
};
constexpr DefaultRow defaultRows[] = {
    {"TABDIMS", "1,1,20,20,1,20,20,1,1,-1,10,1,-1,0,0"},
    {"REGDIMS", "1,1,0,0,0,1,0,0,0,1"},
    {"WELLDIMS", "10,0,5,10,5,10,5,4,3,0"},
    {"EQLDIMS", "1,100,20,1,20"},
    {"MISCIBLE", "1,20,"},
    {"ENDSCALE", "NODIR,REVERS,1,20"},
    {"SATOPTS", ",,,"},
    {"VFPPDIMS", "0,0,0,0,0,0"},
    {"VFPIDIMS PARTTRAC", "0,0,0"},
    {"ROCKOPTS", "PRESSURE,NOSTORE,PVTNUM,DEFLATION"},
    {"PINCH PINCHOUT PINCREG", "0.001,GAP,1E+20,TOPBOT,TOP"},
    {"PINCHXY", "0.001,0.001"},
    {"WEFAC", "*,1,YES"},
    {"WELDRAW", "*,-32768,*,NO,AVG"},
    {"GRAVITY", "45.5,1,0.7773"},
    {"WELSPECS", "*,*,*,*,*,*,0.0,STD,WELLSHUT,YES,0,SEG,0,*,*,*"},
    {"WELSPECL", "*,*,*,*,*,*,*,0.0,STD,WELLSHUT,YES,0,SEG,0,*,*"},
    {"WELLSPEC", "*,FIELD,*,*,*,*,0"},
    {"WCONHIST", "*,OPEN, ,1.0E+20,1.0E+20,1.0E+20,0,0,0,0,0"},
    {"WCONPROD", "*,*,*,1.0E+20,1.0E+20,1.0E+20,1.0E+20,1.0E+20,*,*,0,0,*,*,*,*"},
    {"WELLPROD", "*,*,1.0E+20,1.0E+20,1.0E+20,1.0E+20,1.0E+20,*,*,*,*,*,*,*,*,*,*,*"},
    {"WCONINJ", "*,*,OPEN,4,1.0E+20,1.0E+20,*,*,*,1.0E+20,1.0E+20,0"},
    {"WCONINJE", "*,*,OPEN,4,1.0E+20,1.0E+20,1.0E+20,1.0E+20,0,0"},
    {"WCONINJH", "*,*,OPEN,1.0E+20,1.0E+20,1.0E+20,0,0"},
    {"WELOPEN", "*,OPEN,-32768,-32768,-32768,-32768,-32768"},
    {"WELOPENL", "*,,OPEN,-32768,-32768,-32768,-32768,-32768"},
    {"SEPCOND", "*,*,*,*,*,*,*,*,*,*,*,*"},
    {"FIELDSEP", "*,*,*,*,*,*,*,*,*,*"},
};

using Defaults = std::map<std::string, std::vector<std::string>, std::less<>>;

Defaults defaults() {
  Defaults result;
  for (const DefaultRow& row : defaultRows) {
    for (std::string& keyword : words(row.keywords))
      result.emplace(std::move(keyword), split(row.arguments, ','));
  }
  result.emplace("DENSITY", defaultDensities(fieldUnits));  // where no unit system is given
  return result;
}

void hand(const std::vector<std::string>& list, std::vector<std::string>& vArgs, std::int32_t& nArgs) {
  vArgs = list;
  nArgs = static_cast<std::int32_t>(list.size());
}

}  // namespace

bool processEclipseKeyword(std::string_view zKey) { return accepted().contains(zKey); }

std::string_view parserOfKeyword(std::string_view zKey) {
  static const Parsers table = parsers();
  const auto found = table.find(zKey);
  return found == table.end() ? std::string_view() : std::string_view(found->second);
}

const std::vector<std::string>& defaultArguments(std::string_view key) {
  static const Defaults table = defaults();
  static const std::vector<std::string> none;
  const auto found = table.find(key);
  return found == table.end() ? none : found->second;
}

const std::vector<std::string>& defaultDensities(std::int32_t unitSystem) {
  static const std::array<std::vector<std::string>, 3> densities = {
      {{"600", "999.014", "1"}, {"37.457", "62.366", "0.062428"}, {"0.6", "0.999014", "0.001"}}};
  const bool known = unitSystem == metricUnits || unitSystem == laboratoryUnits;
  return densities[static_cast<std::size_t>((known ? unitSystem : fieldUnits) - 1)];
}

void getDefaultArguments(std::string_view zKey, std::vector<std::string>& vArgs, std::int32_t& nArgs,
                         bool& qOK, Session& session) {
  guarded(session, qOK, module, "getDefaultArguments", [&] { hand(defaultArguments(zKey), vArgs, nArgs); });
}

void getDefaultUnitArguments(std::int32_t iUnits, std::vector<std::string>& vArgs, std::int32_t& nArgs,
                             bool& qOK, Session& session) {
  guarded(session, qOK, module, "getDefaultUnitArguments",
          [&] { hand(defaultDensities(iUnits), vArgs, nArgs); });
}

}  // namespace lumbarn
