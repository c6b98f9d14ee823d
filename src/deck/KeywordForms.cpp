#include "KeywordForms.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "../support/Text.h"
#include "DictionaryRows.h"

namespace lumbarn {

namespace {

constexpr std::uint32_t bit(std::int32_t section) { return 1U << static_cast<unsigned>(section - 1); }
constexpr std::uint32_t anySection = 0xFF;
constexpr std::int32_t summary = 7, schedule = 8;

/// Keywords with their form, separated by blanks. Section 0: every section that has the keyword.
struct FormRow {
  DeckForm form;
  std::int32_t records;
  std::int32_t section;
  std::string_view keywords;
};

// Forms that the dictionary does not state. Keywords in neither table have records up to the next keyword.
constexpr FormRow formRows[] = {
    {DeckForm::Line, 0, 0, "TITLE"},
    {DeckForm::None, 0, 0,
     "RUNSPEC GRID EDIT PROPS REGIONS SOLUTION SUMMARY SCHEDULE END ENDINC ECHO NOECHO SKIP SKIP100 SKIP300 "
     "ENDSKIP WARN NOWARN FORMFEED ENDBOX ENDFIN ENDACTIO ENDNUM OPENACT INIT NOGGF NEWTRAN OLDTRAN OLDTRANR "
     "OIL WATER GAS DISGAS VAPOIL BRINE SOLVENT POLYMER SURFACT FOAM COAL FIELD METRIC LAB UNIFIN UNIFOUT "
     "UNIFOUTS UNIFSAVE MULTIN MULTOUT MULTOUTS MULTSAVE FMTIN FMTOUT FMTSAVE FMTHMD NOSIM DUALPORO DUALPERM "
     "NODPPM BLACKOIL CART RADIAL IMPLICIT IMPES AIM FULLIMP API DIFFUSE TEMP THERMAL NOINSPEC NORSSPEC "
     "INSPEC RSSPEC DEADOIL BIGMODEL FRONTSIM SKIPREST MONITOR NOMONITO PINCHOUT INRAD0 GRAVDR GASWAT "
     "CO2STORE "
     "H2STORE STONE STONE1 STONE2 FILLEPS"},
    {DeckForm::Records, 1, 0,
     "DIMENS START TABDIMS EQLDIMS REGDIMS WELLDIMS WSEGDIMS VFPPDIMS VFPIDIMS AQUDIMS UDQDIMS UDTDIMS "
     "FAULTDIM "
     "ACTDIMS SCDPDIMS PARTTRAC MISCIBLE ROCKCOMP ENDSCALE SATOPTS EHYSTR EHYSTRR NUMRES TRACERS SMRYDIMS "
     "GRIDOPTS NSTACK COMPS NCOMPS CNAMES PARALLEL NETWORK LGR MEMORY PIMTDIMS OPTIONS OPTIONS3 EQLOPTS "
     "GRIDUNIT "
     "MAPUNITS MAPAXES GDORIENT MINPV MINPORV PINCH BOX SPECGRID INRAD DXV DYV DZV DRV DTHETAV THETA GDFILE "
     "JFUNC TOLCRIT EOS PRCORR FIELDSEP NEXTSTEP NEXT ROCKOPTS RESTART SAVE GETSOL VAPPARS DRSDT DRVDT "
     "DRSDTR "
     "SUMTHIN EXTRAPMS FILEUNIT COLUMNS UDADIMS DZMTRX SIGMA SIGMAGD RESVNUM WPAVE NUPCOL NETBALAN "
     "LIFTOPT GUIDERAT DATUM RTEMP IMPORT PORVMIN CARFIN RADFIN RADFIN4 HXFIN HYFIN HZFIN NXFIN "
     "NYFIN NZFIN HMRREF TEMPNODE PARAOPTS WHISTCTL ZIPPY2 SEPVALS LICENSES MULTSIG AUTOSAVE MESSOPTS"},
    {DeckForm::Records, 2, 0, "PYACTION ACTION"},
    {DeckForm::Records, 3, schedule, "TUNING TUNINGL TUNINGH TUNINGDP"},
    {DeckForm::Records, 1, schedule, "TSTEP TIME"},
    {DeckForm::Words, 0, 0,
     "RPTGRID RPTGRIDL RPTINIT RPTPROPS RPTREGS RPTRST RPTSCHED RPTSOL RPTSMRY RPTRUNSP "
     "RPTPRINT RPTISOL MESSAGES MESSAGE DEBUG DEBUG3 OUTSOL OUTRAD RPTSLN CVCRIT"},
    {DeckForm::List, 0, 0,
     "PATHS FAULTS MULTFLT MULTREGT MULTREGP EQUALS ADD COPY MULTIPLY OPERATE OPERATER EQUALREG ADDREG "
     "MULTIREG "
     "COPYREG MINVALUE MAXVALUE COPYBOX NNC EDITNNC EDITNNCR AQUCON AQUANCON AQUCT AQUFET AQUNUM AQUNNC "
     "AQUFETP AQANTRC "
     "COORDSYS PINCHREG THPRES TRACER COMPORD AMALGAM COARSEN FLUXREG BOUNDARY = +"},
    {DeckForm::Tables, 0, 0,
     "EQUIL PVTW PVDG PVDO PVCDO ROCK DENSITY GRAVITY SWOF SGOF SWFN SGFN SOF2 SOF3 "
     "SLGOF SGWFN SOF1 RSVD RVVD PBVD PDVD TRACITVD TRACTVD AQUTAB VISCREF "
     "WATVISCT OILVISCT GASVISCT SPECHEAT SPECROCK TEMPVD RTEMPVD ROCKTAB ROCKTABH ROCK2D "
     "ROCK2DTR ROCKWNOD OVERBURD PLYVISC PLYROCK PLYADS PLYMAX PLYSHEAR SALINITY"},
    {DeckForm::Tables, 0, schedule, "VFPPROD VFPINJ"},
    {DeckForm::Branches, 0, 0, "PVTO PVTG PVCO PVTWSALT"},
    {DeckForm::Text, 0, schedule, "UDQ"},
    {DeckForm::List, 0, schedule,
     "WELSPECS WELSPECL WELLSPEC COMPDAT COMPDATL COMPDATM COMPORD COMPLUMP COMPLMPL WCONPROD WCONHIST "
     "WCONINJE "
     "WCONINJH WCONINJ WCONINJP WELLPROD WELLINJE WELTARG WELOPEN WELOPENL WELLOPEN WELLSHUT WEFAC GEFAC "
     "WECON "
     "WECONINJ WTEST WELPI WPIMULT WPIMULTL WTMULT WLIST GRUPTREE GRUPNET GCONPROD GCONINJE GCONSALE "
     "GCONSUMP GECON "
     "GRUPTARG GPMAINT DATES COMPVE WPLUG WTRACER WSALT WTEMP WPOLYMER WSOLVENT WSURFACT WFOAM WALKALIN WRFT "
     "WRFTPLT WELDRAW WCYCLE WDFAC WDFACCOR WELCNTL WELPRI WGRUPCON WINJMULT WVFPDP WVFPEXP WHEDREFD "
     "WNETCTRL "
     "WSEGVALV WSEGSICD WSEGAICD WSEGITER WSEGTABL WSEGFLIM WSEGFMOD WSEGPROP WSEGSEP WSEGMULT WSEGWELL "
     "WSEGLINK "
     "COMPIMB COMPRP COMPINJK COMPFLSH COMPKRI WINJGAS WELLSTRE WINJORD WSEPCOND SEPCOND WELLCOMP WLIFTOPT "
     "GLIFTOPT "
     "BRANPROP NODEPROP WAPI WDRILPRI WDRILTIM WGASPROD WLIMTOL WCUTBACK GCUTBACK PRIORITY QDRILL WELEVNT "
     "WPITAB "
     "WELTRAJ COMPTRAJ WTRACTEMP ACTIONX ACTIONW ACTIONG ACTIONR ACTIONS DCQDEFN GASYEAR GUIDECAL NEFAC "
     "NCONSUMP "
     "LGRON LGROFF LGRLOCK LGRFREE WBHGLR WCONPRI GCONPRI GSATPROD GSATINJE WWPAVE WPAVEDEP"},
    {DeckForm::List, 0, schedule, "WELSEGS COMPSEGS COMPSEGL WFRICTN WFRICTNL WFRICSEG"},
    {DeckForm::Array, 0, 0,
     "COORD ZCORN ACTNUM TOPS DX DY DZ DR DTHETA PORO PERMX PERMY PERMZ PERMR PERMTHT NTG MULTX MULTY MULTZ "
     "MULTX- "
     "MULTY- MULTZ- MULTPV PORV SATNUM PVTNUM EQLNUM FIPNUM IMBNUM ROCKNUM MULTNUM FLUXNUM OPERNUM PINCHNUM "
     "SWATINIT SWL SWCR SWU SGL SGCR SGU SOWCR SOGCR KRW KRO KRG PCW PCG PRESSURE SWAT SGAS RS RV"},
    {DeckForm::None, 0, summary,
     "ALL RUNSUM RPTONLY RPTONLYO SEPARATE NARROW EXCEL LOTUS OFM DATE DAY MONTH YEAR YEARS TIME TIMESTEP "
     "ELAPSED "
     "NEWTON NLINEARS MLINEARS MSUMLINS MSUMNEWT PERFORMA STEPTYPE TCPU TCPUDAY TCPUTS TCPUH TCPUTSH TELAPTS "
     "TELAPLIN TELAPDAY MAXDPR MAXDSO MAXDSW MAXDSG MAXDE NAIMFRAC NLINSMIN NLINSMAX NNUMFL NNUMST NTS "
     "NTSPCL "
     "NTSMCL NTSECL ZIPEFF ZIPEFFC HLINEARS NLRESSUM NLRESMAX ALL300 GMWSET PERFORM WNEWTON NBAKFL"},
};

struct KnownKeyword {
  std::uint32_t sections = 0;
  std::int32_t number = 1;  // class
};

struct Tables {
  std::map<std::string, KnownKeyword, std::less<>> keywords;
  std::map<std::string, std::vector<const FormRow*>, std::less<>> forms;

  Tables() {
    for (const DictionaryGroup& group : dictionaryGroups) {
      const std::int32_t section = sectionOfDeck(group.section);
      for (std::string& name : words(group.keywords)) {
        if (section > 0) keywords[std::move(name)].sections |= bit(section);
      }
    }
    for (const DictionaryClass& row : dictionaryClasses) {
      for (const std::string& name : words(row.keywords)) keywords[name].number = row.number;
    }
    for (const FormRow& row : formRows) {
      for (const std::string& name : words(row.keywords)) forms[name].push_back(&row);
    }
  }
};

const Tables& tables() {
  static const Tables all;
  return all;
}

const FormRow* rowOf(std::string_view name, std::int32_t section) {
  const auto found = tables().forms.find(name);
  if (found == tables().forms.end()) return nullptr;
  for (const FormRow* row : found->second) {
    if (row->section == section || row->section == 0 || section == 0) return row;
  }
  return nullptr;
}

/// The row of a family of names: FIPxxxxx, TNUMxxxx, TBLKxxxx, TVDPxxxx.
std::string_view familyOf(std::string_view name) {
  for (const std::string_view family : {"TNUM", "TBLK", "TVDP", "FIP"}) {
    if (name.size() > family.size() && name.starts_with(family)) return family;
  }
  return {};
}

/// Keywords of SUMMARY by their letters.
std::optional<DeckKeywordForm> mnemonicForm(std::string_view name) {
  if (name.size() < 2) return std::nullopt;
  switch (name[0]) {
    case 'F':
    case 'M':
      return DeckKeywordForm{DeckForm::None};
    case 'W':
    case 'G':
    case 'A':
    case 'N':
      return DeckKeywordForm{DeckForm::Words};
    case 'R':  // flow between two regions: records of two numbers
      if (name.size() > 3 && name[2] == 'F' && (name[3] == 'T' || name[3] == 'R'))
        return DeckKeywordForm{DeckForm::List};
      return DeckKeywordForm{DeckForm::Words};
    case 'B':
    case 'C':
    case 'L':
    case 'S':
      return DeckKeywordForm{DeckForm::List};
    default:
      return std::nullopt;
  }
}

/// Keywords that are valid in every section.
bool isEverywhere(std::string_view name) {
  constexpr std::string_view everywhere[] = {
      "RUNSPEC", "GRID",   "EDIT",     "PROPS",   "REGIONS", "SOLUTION", "SUMMARY",  "SCHEDULE",
      "END",     "ENDINC", "ECHO",     "NOECHO",  "SKIP",    "SKIP100",  "SKIP300",  "ENDSKIP",
      "WARN",    "NOWARN", "INCLUDE",  "PATHS",   "MESSAGE", "MESSAGES", "FORMFEED", "COLUMNS",
      "DEBUG",   "DEBUG3", "EXTRAPMS", "OPTIONS", "OPTIONS3"};
  return std::find(std::begin(everywhere), std::end(everywhere), name) != std::end(everywhere);
}

}  // namespace

std::uint32_t KeywordForms::sectionsOf(std::string_view name) {
  if (isEverywhere(name)) return anySection;
  const auto& keywords = tables().keywords;
  auto found = keywords.find(name);
  if (found == keywords.end()) found = keywords.find(familyOf(name));
  std::uint32_t sections = found == keywords.end() ? 0 : found->second.sections;
  // Keywords beyond the dictionary are valid in the sections of their form.
  const bool beyond = sections == 0;
  if (const auto row = tables().forms.find(name); row != tables().forms.end()) {
    for (const FormRow* form : row->second) {
      if (form->section > 0) sections |= bit(form->section);
      if (form->section == 0 && beyond) sections |= anySection;
    }
  }
  return sections;
}

bool KeywordForms::isCellArray(std::string_view name) {
  const auto& keywords = tables().keywords;
  auto found = keywords.find(name);
  if (found == keywords.end()) found = keywords.find(familyOf(name));
  const FormRow* row = rowOf(name, 0);
  if (row) return row->form == DeckForm::Array && name != "COORD" && name != "ZCORN";
  return found != keywords.end() && (found->second.number == 1000 || found->second.number == 1001);
}

std::optional<DeckKeywordForm> KeywordForms::find(std::string_view name, std::int32_t section) const {
  const std::uint32_t sections = sectionsOf(name);
  const bool here = section == 0 ? sections != 0 : (sections & bit(section)) != 0;
  if (section == summary) {
    if (const FormRow* row = rowOf(name, section);
        row && (row->section == summary || isEverywhere(name) || !mnemonicForm(name)))
      return DeckKeywordForm{row->form, row->records};
    if (const auto form = mnemonicForm(name)) return form;
    return here ? std::optional(DeckKeywordForm{}) : std::nullopt;
  }
  if (!here) return std::nullopt;
  if (const FormRow* row = rowOf(name, section)) return DeckKeywordForm{row->form, row->records};
  const auto& keywords = tables().keywords;
  auto found = keywords.find(name);
  if (found == keywords.end()) found = keywords.find(familyOf(name));
  switch (found == keywords.end() ? 1 : found->second.number) {
    case 2:
      return DeckKeywordForm{DeckForm::Tables};
    case 1000:
    case 1001:
    case 1002:
      return DeckKeywordForm{DeckForm::Array};
    default:
      return DeckKeywordForm{};
  }
}

}  // namespace lumbarn
