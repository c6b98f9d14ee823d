#include "Descriptions.h"

#include <array>

#include "../support/Text.h"
#include "SummaryDescriptions.h"

namespace lumbarn {

namespace {

/// "XCOORD" and "YCOORD" meet no vector, as the segment vectors are spelt "SEGXCORD" and "SEGYCORD". They
/// stay, and so do those vectors' names for a description: hosts know them so.
constexpr auto segmentDescriptions = std::to_array<KeyedText>({
    {"BRNO", "Branch number"},
    {"DEPTH", "Depth"},
    {"GHF", "Gas holdup fraction"},
    {"GRAT", "Gas flow rate"},
    {"GRATS", "Scaled gas flow rate"},
    {"GVEL", "Gas flow velocity"},
    {"LENEN", "Length at segment end"},
    {"LENST", "Length at segment start"},
    {"LENTH", "Length"},
    {"MD", "Measured depth"},
    {"NO", "Segment number"},
    {"NXT", "Neighbour segment number"},
    {"OHF", "Oil holdup fraction"},
    {"ORAT", "Oil flow rate"},
    {"ORATS", "Scaled oil flow rate"},
    {"OVEL", "Oil flow velocity"},
    {"PRES", "Pressure"},
    {"WHF", "Water holdup fraction"},
    {"WRAT", "Water flow rate"},
    {"WRATS", "Scaled water flow rate"},
    {"WVEL", "Water flow velocity"},
    {"XCOORD", "X position"},
    {"YCOORD", "Y position"},
});
static_assert(keysRise<segmentDescriptions>);

/// "Capilliary" is the spelling that hosts know.
constexpr auto tableDescriptions = std::to_array<KeyedText>({
    {"KRO", "Relative permeability"},
    {"KROG", "Relative permeability"},
    {"KROW", "Relative permeability"},
    {"KRW", "Relative permeability"},
    {"PCOG", "Capilliary pressure"},
    {"PCOW", "Capilliary pressure"},
    {"PCWG", "Capilliary pressure"},
});
static_assert(keysRise<tableDescriptions>);

constexpr auto streamlineDescriptions = std::to_array<KeyedText>({
    {"BLOCK", "Grid block (I,J,K) ordering"},
    {"DRT", "Drainage time"},
    {"SGAS", "Gas saturation"},
    {"SOIL", "Oil saturation"},
    {"SWAT", "Water saturation"},
    {"TOF", "Time of flight"},
    {"X-COORD", "X coordinate position"},
    {"Y-COORD", "Y coordinate position"},
    {"Z-COORD", "Z coordinate position"},
});
static_assert(keysRise<streamlineDescriptions>);

template <class Rows>
std::string textOr(const Rows& rows, std::string_view key, std::string_view otherwise) {
  const KeyedText* row = findRow(rows, key);
  return std::string(row ? row->text : otherwise);
}

bool isLumped(std::string_view vector, std::string_view variable) {
  return (vector.starts_with("C") || vector.starts_with("LC")) && variable.size() > 1 &&
         variable.ends_with('L');
}

}  // namespace

std::string getSummaryLongDescription(std::string_view zVector, std::string_view zVariable) {
  const auto vector = trim(zVector);
  const auto variable = trim(zVariable);
  if (const KeyedText* row = findRow(summaryDescriptions, variable)) return std::string(row->text);
  if (isLumped(vector, variable)) {
    const KeyedText* row = findRow(summaryDescriptions, variable.substr(0, variable.size() - 1));
    if (row) return std::string(row->text).append(" (lumped)");
  }
  return std::string(vector);
}

std::string getBranchLongDescription(std::string_view zVector, std::string_view zVariable,
                                     BranchTable table) {
  const auto vector = trim(zVector);
  const auto variable = trim(zVariable);
  return table == BranchTable::Segments ? textOr(segmentDescriptions, variable, vector)
                                        : textOr(tableDescriptions, variable, vector);
}

std::string getFrontSimLongDescription(std::string_view zName) {
  const auto name = trim(zName);
  return textOr(streamlineDescriptions, name, name);
}

std::string getFrontSimVector(std::string_view /*zKind*/, std::string_view zName) {
  return upper(trim(zName));
}

}  // namespace lumbarn
