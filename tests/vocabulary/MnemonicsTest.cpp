#include <string>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "vocabulary/Descriptions.h"
#include "vocabulary/Mnemonics.h"
#include "vocabulary/ScheduleItems.h"

namespace lumbarn {
namespace {

TEST(Mnemonics, TheClassComesFromTheLetters) {
  const std::pair<const char*, const char*> rows[] = {
      {"WOPR", "WELLS"},         {"  wopr  ", "WELLS"}, {"FOPR", "FIELD"},    {"GOPR", "GROUPS"},
      {"BPR", "BLOCKS"},         {"LWOPR", "LGR"},      {"AAQR", "AQUIFERS"}, {"COFR", "COMPLETIONS"},
      {"TIME", "MISCELLANEOUS"}, {"", "MISCELLANEOUS"}, {"ROPR", "REGIONS"},  {"ROFR", "IRF"},
      {"RGF     ", "IRF"},       {"RF", "REGIONS"},     {"SOFR", "SEGMENTS"}, {"SWA", "SEGMENTS"},
      {"STEPTYP", "SEGMENTS"},   {"NPR", "NODES"},      {"NTSX", "NODES"}};
  for (const auto& [key, word] : rows) {
    EXPECT_EQ(classOfKey(key), word) << key;
    EXPECT_FALSE(isMiscellaneousKey(key)) << key;
  }
  for (const auto* key : {"SOIL", "SGAS    ", "SWATX", "STEPTYPE", "NEWTON  ", "ngopas"}) {
    EXPECT_EQ(classOfKey(key), "MISCELLANEOUS");
    EXPECT_TRUE(isMiscellaneousKey(key)) << key;
  }
}

TEST(Mnemonics, AreSplitAndDescribed) {
  struct Row {
    const char *kind, *vector, *variable, *number, *description;
  };
  const char* const summary = "SUMMARY";
  const Row rows[] = {{summary, "WOPR", "OPR", "", "Oil production rate"},
                      {summary, "FOPR    ", "OPR", "", "Oil production rate"},
                      {summary, "AAQR", "AQR", "", "Aquifer influx rate"},
                      {summary, "SCMIT", "CMIT", "", "Component molar injectio total"},
                      {summary, "WZMF_12 ", "ZMF", "12", "Total mole fraction"},
                      {summary, "LWTPR_A_1", "TPR", "A_1", "Tracer production rate"},
                      {summary, "NPR", "NPR", "", "Solvent production rate"},
                      {summary, "TEMP", "TEMP", "", "Temperature"},
                      {summary, "FXYZ", "XYZ", "", "FXYZ"},
                      {summary, "LW", "", "", "LW"},
                      {summary, "W_1", "", "1", "W_1"},
                      {summary, "", "", "", ""},
                      {summary, "LCOFRL  ", "OFRL", "", "Oil flow rate (lumped)"},
                      {summary, "CTFRL_3", "TFRL", "3", "Tracer flow rate (lumped)"},
                      {summary, "CSOIL", "SOIL", "", "Oil saturation"},
                      {summary, "CL", "L", "", "CL"},
                      {summary, "LWOFRL", "OFRL", "", "LWOFRL"},
                      {"SEGBRAN", "SEGPRES", "PRES", "", "Pressure"},
                      {"SEGBRAN", "SEG     ", "SEG", "", "SEG"},
                      {"Table", "PCOW", "PCOW", "", "Capilliary pressure"},
                      {"SOLUTION", " SWAT ", "SWAT", "", "SWAT"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.vector);
    std::string variable = "old", number = "old", numberOut = "old";
    bool qOK = false;
    getEclipseVectorInfo(row.kind, row.vector, variable, number, qOK);
    EXPECT_EQ(variable, row.variable);
    EXPECT_EQ(number, row.number);
    EXPECT_EQ(getEclipseLongDescription(row.kind, row.vector, numberOut), row.description);
    EXPECT_EQ(numberOut, row.number);
  }
}

TEST(Streamlines, KnownColumnsAreDescribed) {
  EXPECT_EQ(getFrontSimLongDescription("BLOCK   "), "Grid block (I,J,K) ordering");
  EXPECT_EQ(getFrontSimLongDescription("WELL1"), "WELL1");
  EXPECT_EQ(getFrontSimVector("STREAM", " Tof "), "TOF");
}

TEST(ScheduleInfo, IsReadOffTheMnemonic) {
  using Info = std::tuple<std::int32_t, std::int32_t, std::int32_t, std::int32_t>;
  const auto infoOf = [](std::string& vector) {
    std::int32_t iClass = 0, iCode = 0, iPhase = 0, iNumber = 0;
    bool qOK = false;
    scheduleVectorInfo(vector, iClass, iCode, iPhase, iNumber, qOK);
    EXPECT_TRUE(qOK);
    return Info(iClass, iCode, iPhase, iNumber);
  };
  const std::tuple<const char*, int, int, int> rows[] = {
      {"WOPR", 9, 44, 1},    {"FGITH   ", 4, 40, 2}, {"WALQ", 9, 74, -1},  {"WMCTL", 9, 27, -1},
      {"LWWCTH", 9, 36, -1}, {"LFVIT", 4, 49, 2},    {"WOPRX", 9, -1, -1}, {"W", 9, -1, -1},
      {"WXMF_A", 9, 83, -1}, {"WXMF_", 9, 83, -1},   {"GOPR", 5, -1, -1},  {"AAQR", 1, -1, -1},
      {"CGIR_1", 3, -1, -1}, {"ROPR", 8, -1, -1},    {"SPR", 10, -1, -1},  {"NPR", 7, -1, -1},
      {"LBPR", 2, -1, -1},   {"LLWOPR", 6, -1, -1},  {"L", 7, -1, -1},     {"", 7, -1, -1}};
  for (const auto& [name, iClass, iCode, iPhase] : rows) {
    std::string vector = name;
    EXPECT_EQ(infoOf(vector), Info(iClass, iCode, iPhase, -1)) << name;
    EXPECT_EQ(vector, name);
  }
  const std::tuple<const char*, int, int, int, const char*> numbered[] = {
      {"WXMF_4294967297", 9, 83, -1, "WXMF_4294967297"},
      {"WXMF_2", 9, 83, 2, "XMF"},
      {"LWZMF_12  ", 9, 85, 12, "ZMF"},
      {"FTPR_3", 4, -1, 3, "TPR"}};
  for (const auto& [name, iClass, iCode, iNumber, after] : numbered) {
    std::string vector = name;
    EXPECT_EQ(infoOf(vector), Info(iClass, iCode, -1, iNumber)) << name;
    EXPECT_EQ(vector, after);
  }
}

}  // namespace
}  // namespace lumbarn
