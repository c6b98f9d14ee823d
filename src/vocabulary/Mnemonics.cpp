#include "Mnemonics.h"

#include <algorithm>
#include <array>

#include "../support/Text.h"
#include "Descriptions.h"
#include "LookUp.h"

namespace lumbarn {

namespace {

using namespace std::string_view_literals;

constexpr std::array solverStatistics = {
    "NEWTON"sv,   "NLINEARS"sv, "NAIMFRAC"sv, "NBAKFL"sv, "NBYTOT"sv, "NCPRLINS"sv, "NEWTFL"sv,
    "NLINEARP"sv, "NLINSMIN"sv, "NLINSMAX"sv, "NNUMFL"sv, "NNUMST"sv, "NLRESSUM"sv, "NLRESMAX"sv,
    "NTS"sv,      "NTSPCL"sv,   "NTSMCL"sv,   "NTSECL"sv, "NGOPAS"sv,
};

constexpr auto classWords = std::to_array<KeyedText>({
    {"A", "AQUIFERS"},
    {"B", "BLOCKS"},
    {"C", "COMPLETIONS"},
    {"F", "FIELD"},
    {"G", "GROUPS"},
    {"L", "LGR"},
    {"N", "NODES"},
    {"R", "REGIONS"},
    {"S", "SEGMENTS"},
    {"W", "WELLS"},
});
static_assert(keysRise<classWords>);

VectorParts splitSummaryVector(std::string_view vector) {
  if (vector.size() < 2) return {vector, {}};
  std::size_t prefix = 0;
  if (vector[0] == 'L') {
    prefix = 2;
  } else if ("ABC,FGRSW"sv.find(vector[0]) != std::string_view::npos) {
    // The comma is a class letter here as in the pattern "[A-C,F-G,R,S,W]". "N" is none: the variables of
    // nodes and those of solvent share their names.
    prefix = 1;
  }
  vector.remove_prefix(prefix);
  const auto underscore = vector.find('_');
  if (underscore == std::string_view::npos) return {vector, {}};
  return {vector.substr(0, underscore), vector.substr(underscore + 1)};
}

}  // namespace

bool isMiscellaneousKey(std::string_view zKey) {
  const auto key = trim(zKey);
  if (key.starts_with('S')) {
    const auto phase = key.substr(1, 3);
    return key == "STEPTYPE" || phase == "OIL" || phase == "GAS" || phase == "WAT";
  }
  if (key.starts_with('N') || key.starts_with('n')) {
    return std::ranges::any_of(solverStatistics, [&](auto name) { return equalNoCase(name, key); });
  }
  return false;
}

std::string_view classOfKey(std::string_view zKey) {
  const auto key = trim(zKey);
  const KeyedText* row = findRow(classWords, upper(key.substr(0, 1)));
  if (!row || isMiscellaneousKey(key)) return "MISCELLANEOUS";
  return row->key == "R" && key.size() >= 3 && key[2] == 'F' ? "IRF" : row->text;
}

VectorParts splitVector(std::string_view zKind, std::string_view zVector) {
  const auto kind = trim(zKind);
  const auto vector = trim(zVector);
  if (kind == "SUMMARY") return splitSummaryVector(vector);
  if (kind == "SEGBRAN" && vector.size() > 3) return {vector.substr(3), {}};
  return {vector, {}};
}

void getEclipseVectorInfo(std::string_view zKind, std::string_view zVector, std::string& zVariable,
                          std::string& zNumber, bool& qOK) {
  qOK = false;
  const auto parts = splitVector(zKind, zVector);
  zVariable = parts.variable;
  zNumber = parts.number;
  qOK = true;
}

std::string getEclipseLongDescription(std::string_view zKind, std::string_view zVector,
                                      std::string& zNumberOut) {
  const auto kind = trim(zKind);
  const auto vector = trim(zVector);
  const auto parts = splitVector(kind, vector);
  zNumberOut = parts.number;
  if (kind == "SUMMARY") return getSummaryLongDescription(vector, parts.variable);
  if (kind == "SEGBRAN") return getBranchLongDescription(vector, parts.variable, BranchTable::Segments);
  if (kind == "Table") return getBranchLongDescription(vector, parts.variable, BranchTable::Saturation);
  return std::string(vector);
}

}  // namespace lumbarn
