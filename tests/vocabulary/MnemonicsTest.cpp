#include <ostream>

#include <gtest/gtest.h>

#include "vocabulary/Descriptions.h"
#include "vocabulary/Mnemonics.h"

namespace lumbarn {
namespace {

struct KeyClass {
  const char* key;
  const char* word;
  bool miscellaneous = false;
};
std::ostream& operator<<(std::ostream& out, const KeyClass& row) { return out << '"' << row.key << '"'; }

class ClassOfKey : public testing::TestWithParam<KeyClass> {};

TEST_P(ClassOfKey, ComesFromItsLetters) {
  EXPECT_EQ(classOfKey(GetParam().key), GetParam().word);
  EXPECT_EQ(isMiscellaneousKey(GetParam().key), GetParam().miscellaneous);
}

INSTANTIATE_TEST_SUITE_P(Letters, ClassOfKey,
                         testing::Values(KeyClass{"WOPR", "WELLS"}, KeyClass{"  wopr  ", "WELLS"},
                                         KeyClass{"FOPR", "FIELD"}, KeyClass{"GOPR", "GROUPS"},
                                         KeyClass{"BPR", "BLOCKS"}, KeyClass{"LWOPR", "LGR"},
                                         KeyClass{"AAQR", "AQUIFERS"}, KeyClass{"COFR", "COMPLETIONS"},
                                         KeyClass{"TIME", "MISCELLANEOUS"}, KeyClass{"", "MISCELLANEOUS"},
                                         KeyClass{"        ", "MISCELLANEOUS"}));
INSTANTIATE_TEST_SUITE_P(Regions, ClassOfKey,
                         testing::Values(KeyClass{"ROPR", "REGIONS"}, KeyClass{"ROFR", "IRF"},
                                         KeyClass{"RGF     ", "IRF"}, KeyClass{"RF", "REGIONS"}));
INSTANTIATE_TEST_SUITE_P(
    SharedLetters, ClassOfKey,
    testing::Values(KeyClass{"SOFR", "SEGMENTS"}, KeyClass{"SOIL", "MISCELLANEOUS", true},
                    KeyClass{"SGAS    ", "MISCELLANEOUS", true}, KeyClass{"SWATX", "MISCELLANEOUS", true},
                    KeyClass{"SWA", "SEGMENTS"}, KeyClass{"STEPTYPE", "MISCELLANEOUS", true},
                    KeyClass{"STEPTYP", "SEGMENTS"}, KeyClass{"NPR", "NODES"},
                    KeyClass{"NEWTON  ", "MISCELLANEOUS", true}, KeyClass{"ngopas", "MISCELLANEOUS", true},
                    KeyClass{"NTSX", "NODES"}, KeyClass{"TCPU", "MISCELLANEOUS"}));

struct Described {
  const char* kind;
  const char* vector;
  const char* variable;
  const char* number;
  const char* description;
};
std::ostream& operator<<(std::ostream& out, const Described& row) {
  return out << row.kind << " \"" << row.vector << '"';
}

class Mnemonic : public testing::TestWithParam<Described> {};

TEST_P(Mnemonic, IsSplitAndDescribed) {
  const auto& row = GetParam();
  std::string variable = "old";
  std::string number = "old";
  bool qOK = false;
  getEclipseVectorInfo(row.kind, row.vector, variable, number, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(variable, row.variable);
  EXPECT_EQ(number, row.number);
  std::string numberOut = "old";
  EXPECT_EQ(getEclipseLongDescription(row.kind, row.vector, numberOut), row.description);
  EXPECT_EQ(numberOut, row.number);
}

INSTANTIATE_TEST_SUITE_P(
    Summary, Mnemonic,
    testing::Values(Described{"SUMMARY", "WOPR", "OPR", "", "Oil production rate"},
                    Described{"SUMMARY", "FOPR    ", "OPR", "", "Oil production rate"},
                    Described{"SUMMARY", "LWOPR", "OPR", "", "Oil production rate"},
                    Described{"SUMMARY", "AAQR", "AQR", "", "Aquifer influx rate"},
                    Described{"SUMMARY", "SCMIT", "CMIT", "", "Component molar injectio total"},
                    Described{"SUMMARY", "WZMF_12 ", "ZMF", "12", "Total mole fraction"},
                    Described{"SUMMARY", "LWTPR_A_1", "TPR", "A_1", "Tracer production rate"},
                    Described{"SUMMARY", "NPR", "NPR", "", "Solvent production rate"},
                    Described{"SUMMARY", "TEMP", "TEMP", "", "Temperature"},
                    Described{"SUMMARY", "FXYZ", "XYZ", "", "FXYZ"}, Described{"SUMMARY", "F", "F", "", "F"},
                    Described{"SUMMARY", "LW", "", "", "LW"}, Described{"SUMMARY", "W_1", "", "1", "W_1"},
                    Described{"SUMMARY", "", "", "", ""}));
INSTANTIATE_TEST_SUITE_P(
    Lumped, Mnemonic,
    testing::Values(Described{"SUMMARY", "COFRL", "OFRL", "", "Oil flow rate (lumped)"},
                    Described{"SUMMARY", "LCOFRL  ", "OFRL", "", "Oil flow rate (lumped)"},
                    Described{"SUMMARY", "CTFRL_3", "TFRL", "3", "Tracer flow rate (lumped)"},
                    Described{"SUMMARY", "CSOIL", "SOIL", "", "Oil saturation"},
                    Described{"SUMMARY", "CXYZL", "XYZL", "", "CXYZL"},
                    Described{"SUMMARY", "CL", "L", "", "CL"},
                    Described{"SUMMARY", "WOFRL", "OFRL", "", "WOFRL"},
                    Described{"SUMMARY", "LWOFRL", "OFRL", "", "LWOFRL"}));
INSTANTIATE_TEST_SUITE_P(OtherKinds, Mnemonic,
                         testing::Values(Described{"SEGBRAN", "SEGPRES", "PRES", "", "Pressure"},
                                         Described{"SEGBRAN", "SEGNO ", "NO", "", "Segment number"},
                                         Described{"SEGBRAN", "SEGXCORD", "XCORD", "", "SEGXCORD"},
                                         Described{"SEGBRAN", "SEG     ", "SEG", "", "SEG"},
                                         Described{"Table", "PCOW", "PCOW", "", "Capilliary pressure"},
                                         Described{"Table", "KRW", "KRW", "", "Relative permeability"},
                                         Described{"Table", "DEPTH", "DEPTH", "", "DEPTH"},
                                         Described{"SOLUTION", " SWAT ", "SWAT", "", "SWAT"}));

TEST(Streamlines, KnownColumnsAreDescribed) {
  EXPECT_EQ(getFrontSimLongDescription("BLOCK   "), "Grid block (I,J,K) ordering");
  EXPECT_EQ(getFrontSimLongDescription("WELL1"), "WELL1");
  EXPECT_EQ(getFrontSimVector("STREAM", " Tof "), "TOF");
}

}  // namespace
}  // namespace lumbarn
