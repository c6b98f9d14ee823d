#include "KeywordItems.h"

#include <algorithm>
#include <map>

namespace lumbarn {

namespace {

/// A keyword and its items, with blanks between: NAME, then ":" and the kind (i whole number, f number, u
/// number or user-defined quantity, else text), then for numbers "@" and the quantity, then "=" and what a
/// default stands for. "|" divides the first record from the others, "..." stands behind items of any number.
struct ItemRow {
  std::string_view keywords;
  std::string_view items;
};

constexpr ItemRow itemRows[] = {
    {"DIMENS", "NX:i NY:i NZ:i"},
    {"SPECGRID", "NX:i NY:i NZ:i RESERVOIRS:i=1 COORD_TYPE=F"},
    {"TABDIMS",
     "NTSFUN:i=1 NTPVT:i=1 NSSFUN:i=20 NPPVT:i=20 NTFIP:i=1 NRPVT:i=20 NRVPVT:i=20 NTENDP:i=1 NMEOSR:i=1 "
     "NMEOSS:i NDRGBL:i=10 NTALKR:i=1 NTGEOR:i NSSWTR:i NSSGTR:i"},
    {"EQLDIMS", "NTEQUL:i=1 NDPRVD:i=100 NDRXVD:i=20 NTTRVD:i=1 NSTRVD:i=20"},
    {"REGDIMS",
     "NTFIP:i=1 NMFIPR:i=1 NRFREG:i=0 NTFREG:i=0 MAXNUM_ACTIVE:i=0 NMPLUM:i=0 NMSETA:i=0 NMSETC:i=0 "
     "NMSETS:i=0 "
     "NPLMIX:i=1"},
    {"WELLDIMS",
     "MAXWELLS:i=0 MAXCONN:i=0 MAXGROUPS:i=0 MAX_GROUP_SIZE:i=0 MAX_STAGES:i=5 MAX_STREAMS:i=10 "
     "MAX_MIXTURES:i=5 MAX_SEPARATORS:i=4 MAX_MIXTURE_ITEMS:i=3 COMPLEX:i=0 MAX_WELL_LISTS:i=1 "
     "MAX_DYNAMIC_LISTS:i=1"},
    {"WSEGDIMS", "NSWLMX:i=0 NSEGMX:i=1 NLBRMX:i=1 NICDMX:i=0"},
    {"VFPPDIMS", "MXMFLO:i=0 MXMTHP:i=0 MXMWFR:i=0 MXMGFR:i=0 MXMALQ:i=0 NMMVFT:i=0"},
    {"VFPIDIMS", "MXSFLO:i=0 MXSTHP:i=0 NMSVFT:i=0"},
    {"AQUDIMS", "MXNAQN:i=1 MXNAQC:i=1 NIFTBL:i=1 NRIFTB:i=36 NANAQU:i=1 NCAMAX:i=1 MXNALI:i=0 MXAAQL:i=0"},
    {"UDQDIMS",
     "MAX_FUNCTIONS:i=16 MAX_ITEMS:i=16 MAX_CONNECTIONS:i=0 MAX_FIELD:i=0 MAX_GROUP:i=0 MAX_REGION:i=0 "
     "MAX_SEGMENT:i=0 MAX_WELL:i=0 MAX_AQUIFER:i=0 MAX_BLOCK:i=0 RESTART_NEW_SEED=N"},
    {"ACTDIMS", "MAX_ACTIONS:i=2 MAX_LINES:i=50 MAX_CHARACTERS:i=80 MAX_CONDITIONS:i=3"},
    {"FAULTDIM", "MFSEGS:i=0"},
    {"START", "DAY:i=1 MONTH=JAN YEAR:i=1983 TIME=00:00:00"},
    {"RESTART", "ROOT STEP:i SAVE FORMATTED"},
    {"GRIDOPTS", "TRANMULT=NO NRMULT:i=0 NRPINC:i=0"},
    {"FAULTS", "FAULT I1:i I2:i J1:i J2:i K1:i K2:i FACE"},
    {"MULTFLT", "FAULT TRANSMISSIBILITY:f=1 DIFFUSIVITY:f=1"},
    {"EQUALS ADD MULTIPLY MINVALUE MAXVALUE", "ARRAY VALUE:f I1:i I2:i J1:i J2:i K1:i K2:i"},
    {"COPY", "FROM TO I1:i I2:i J1:i J2:i K1:i K2:i"},
    {"OPERATE", "ARRAY I1:i I2:i J1:i J2:i K1:i K2:i OPERATION SOURCE A:f B:f"},
    {"EQUALREG ADDREG MULTIREG", "ARRAY VALUE:f REGION:i REGION_ARRAY=M"},
    {"COPYREG", "FROM TO REGION:i REGION_ARRAY=M"},
    {"OPERATER", "ARRAY REGION:i OPERATION SOURCE A:f B:f REGION_ARRAY=OPERNUM"},
    {"BOX", "I1:i I2:i J1:i J2:i K1:i K2:i"},
    {"CARFIN", "LGR I1:i I2:i J1:i J2:i K1:i K2:i NX:i NY:i NZ:i MAXWELLS:i=0 PARENT=GLOBAL"},
    {"RADFIN", "LGR I:i J:i K1:i K2:i NR:i NTHETA:i NZ:i MAXWELLS:i=0 INNER:f@length OUTER:f@length"},
    {"RADFIN4", "LGR I1:i I2:i J1:i J2:i K1:i K2:i NR:i NTHETA:i NZ:i MAXWELLS:i=0"},
    {"REFINE", "LGR"},
    {"MAPAXES", "X1:f Y1:f X0:f Y0:f X2:f Y2:f"},
    {"PINCH", "THRESHOLD:f@length=0.001 GAP=GAP MAX_GAP:f@length TRANSMISSIBILITY=TOPBOT MULTIPLIER=TOP"},
    {"MINPV", "PORE_VOLUME:f@reservoir_volume=1E-6"},
    {"NNC", "I1:i J1:i K1:i I2:i J2:i K2:i TRANSMISSIBILITY:f@transmissibility=0"},
    {"MULTREGT", "FROM:i TO:i MULTIPLIER:f=1 DIRECTIONS=XYZ NNC=ALL REGION_ARRAY=M"},
    {"EQUIL",
     "DATUM:f@length=0 PRESSURE:f@pressure OWC:f@length=0 PCOW:f@pressure=0 GOC:f@length=0 PCOG:f@pressure=0 "
     "RSVD:i=0 RVVD:i=0 ACCURACY:i=-5"},
    {"DENSITY", "OIL:f@density WATER:f@density GAS:f@density"},
    {"PVTW",
     "PRESSURE:f@pressure BW:f COMPRESSIBILITY:f@compressibility VISCOSITY:f@viscosity=0.5 "
     "VISCOSIBILITY:f@compressibility=0"},
    {"ROCK", "PRESSURE:f@pressure COMPRESSIBILITY:f@compressibility=0"},
    {"AQUCT",
     "AQUIFER:i DATUM:f@length PRESSURE:f@pressure PERMEABILITY:f@permeability POROSITY:f=1 "
     "COMPRESSIBILITY:f@compressibility RADIUS:f@length THICKNESS:f@length ANGLE:f=360 PVTW:i=1 TABLE:i=1 "
     "SALT:f=0 TEMPERATURE:f@temperature"},
    {"AQUANCON", "AQUIFER:i I1:i I2:i J1:i J2:i K1:i K2:i FACE INFLUX:f MULTIPLIER:f=1 ADJOINING=NO"},
    {"WELSPECS",
     "WELL GROUP I:i J:i DEPTH:f@length PHASE DRAINAGE:f@length=0 INFLOW=STD SHUT=SHUT CROSSFLOW=YES PVT:i=0 "
     "DENSITY=SEG FIP:i=0 STREAMLINE1 STREAMLINE2 TYPE=STD POLYMER:i"},
    {"WELSPECL",
     "WELL GROUP LGR I:i J:i DEPTH:f@length PHASE DRAINAGE:f@length=0 INFLOW=STD SHUT=SHUT CROSSFLOW=YES "
     "PVT:i=0 DENSITY=SEG FIP:i=0"},
    {"COMPDAT",
     "WELL I:i J:i K1:i K2:i STATUS=OPEN SATNUM:i=0 FACTOR:f@transmissibility DIAMETER:f@length "
     "KH:f@permeability_thickness SKIN:f=0 DFACTOR:f DIRECTION=Z RADIUS:f@length"},
    {"COMPDATL",
     "WELL LGR I:i J:i K1:i K2:i STATUS=OPEN SATNUM:i=0 FACTOR:f@transmissibility DIAMETER:f@length "
     "KH:f@permeability_thickness SKIN:f=0 DFACTOR:f DIRECTION=Z RADIUS:f@length"},
    {"COMPSEGS",
     "WELL | I:i J:i K:i BRANCH:i START:f@length END:f@length DIRECTION END_IJK:i CENTER_DEPTH:f@length "
     "THERMAL_LENGTH:f@length SEGMENT:i"},
    {"WELSEGS",
     "WELL TOP_DEPTH:f@length TOP_LENGTH:f@length=0 TOP_VOLUME:f@reservoir_volume LENGTHS=INC PRESSURE=HFA "
     "FLOW=HO TOP_X:f@length=0 TOP_Y:f@length=0 | SEGMENT1:i SEGMENT2:i BRANCH:i OUTLET:i LENGTH:f@length "
     "DEPTH:f@length DIAMETER:f@length ROUGHNESS:f@length AREA:f VOLUME:f@reservoir_volume X:f@length "
     "Y:f@length"},
    {"WCONPROD",
     "WELL STATUS=OPEN CONTROL ORAT:u@liquid_rate WRAT:u@liquid_rate GRAT:u@gas_rate LRAT:u@liquid_rate "
     "RESV:u@reservoir_rate BHP:u@pressure THP:u@pressure VFP:i=0 ALQ:u=0"},
    {"WCONHIST",
     "WELL STATUS=OPEN CONTROL ORAT:f@liquid_rate=0 WRAT:f@liquid_rate=0 GRAT:f@gas_rate=0 VFP:i=0 ALQ:f=0 "
     "THP:f@pressure=0 BHP:f@pressure=0 WGASRAT:f@gas_rate=0 NGLRAT:f"},
    {"WCONINJE",
     "WELL PHASE STATUS=OPEN CONTROL RATE:u RESV:u@reservoir_rate BHP:u@pressure THP:u@pressure VFP:i=0 "
     "VAPORISED:f=0"},
    {"WCONINJH",
     "WELL PHASE STATUS=OPEN RATE:f BHP:f@pressure=0 THP:f@pressure=0 VFP:i=0 VAPORISED:f=0 OIL_FRACTION:f=0 "
     "WATER_FRACTION:f=0 GAS_FRACTION:f=0 CONTROL=RATE"},
    {"WELTARG", "WELL CONTROL VALUE:u"},
    {"WEFAC", "WELL EFFICIENCY:f=1 NETWORK=YES"},
    {"GEFAC", "GROUP EFFICIENCY:f=1 NETWORK=YES"},
    {"WECON",
     "WELL ORAT:f@liquid_rate=0 GRAT:f@gas_rate=0 WCT:f GOR:f WGR:f WORKOVER=NONE END_RUN=NO FOLLOW_ON "
     "QUANTITY=RATE SECONDARY_WCT:f SECONDARY_WORKOVER"},
    {"WELOPEN", "WELL STATUS=OPEN I:i J:i K:i FIRST:i LAST:i"},
    {"WTEST", "WELL INTERVAL:f@time REASON TIMES:i=0 START_UP:f@time=0"},
    {"WPIMULT", "WELL MULTIPLIER:f=1 I:i J:i K:i FIRST:i LAST:i"},
    {"WELPI", "WELL INDEX:f"},
    {"WTMULT", "WELL CONTROL MULTIPLIER:u NUMBER:i=1"},
    {"WTRACER", "WELL TRACER CONCENTRATION:u=0"},
    {"COMPLUMP", "WELL I:i J:i K1:i K2:i COMPLETION:i"},
    {"COMPORD", "WELL ORDER=TRACK"},
    {"GRUPTREE", "GROUP PARENT=FIELD"},
    {"GCONPROD",
     "GROUP CONTROL=NONE ORAT:u@liquid_rate WRAT:u@liquid_rate GRAT:u@gas_rate LRAT:u@liquid_rate "
     "PROCEDURE=NONE HIGHER=YES GUIDE:u GUIDE_PHASE WATER_PROCEDURE GAS_PROCEDURE LIQUID_PROCEDURE "
     "RESV:u@reservoir_rate BALANCE:f"},
    {"GCONINJE",
     "GROUP PHASE CONTROL=NONE RATE:u RESV:u@reservoir_rate REINJECTION:u VOIDAGE:u HIGHER=YES GUIDE:u "
     "GUIDE_PHASE REINJECTION_GROUP VOIDAGE_GROUP"},
    {"GECON",
     "GROUP ORAT:f@liquid_rate=0 GRAT:f@gas_rate=0 WCT:f GOR:f WGR:f WORKOVER=NONE END_RUN=NO MAX_OPEN:i=0"},
    {"WLIST", "LIST ACTION WELL..."},
    {"DATES", "DAY:i MONTH=JAN YEAR:i TIME=00:00:00"},
    {"TSTEP", "STEP:f@time..."},
    {"RPTRST RPTSCHED RPTSOL", "MNEMONIC..."},
    {"UDQ", "ACTION NAME WORD..."},
    {"ACTIONX", "ACTION TIMES:i=1 INTERVAL:f@time=0 | WORD..."},
    {"PATHS", "ALIAS PATH"},
    {"GRIDUNIT", "UNIT=METRES MAP"},
};

ItemInfo itemFrom(std::string_view word) {
  ItemInfo item;
  if (word.ends_with("...")) word.remove_suffix(3);
  const auto cut = [&](char mark) {
    const std::size_t at = word.find(mark);
    if (at == word.npos) return std::string_view();
    const std::string_view behind = word.substr(at + 1);
    word = word.substr(0, at);
    return behind;
  };
  item.otherwise = cut('=');
  item.unit = cut('@');
  const std::string_view kind = cut(':');
  item.kind = kind == "i"   ? ItemInfo::Kind::Whole
              : kind == "f" ? ItemInfo::Kind::Number
              : kind == "u" ? ItemInfo::Kind::Either
                            : ItemInfo::Kind::Text;
  item.name = word;
  return item;
}

template <class Visit>
void forWords(std::string_view text, Visit visit) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    if (end > 0) visit(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

std::map<std::string_view, KeywordItems> allItems() {
  std::map<std::string_view, KeywordItems> all;
  for (const ItemRow& row : itemRows) {
    KeywordItems items;
    forWords(row.items, [&](std::string_view word) {
      if (word == "|") {
        items.first = std::move(items.items);
        items.items.clear();
        return;
      }
      items.many = word.ends_with("...");
      items.items.push_back(itemFrom(word));
    });
    forWords(row.keywords, [&](std::string_view keyword) { all[keyword] = items; });
  }
  return all;
}

}  // namespace

const KeywordItems* itemsOf(std::string_view keyword) {
  static const std::map<std::string_view, KeywordItems> all = allItems();
  const auto found = all.find(keyword);
  return found == all.end() ? nullptr : &found->second;
}

}  // namespace lumbarn
