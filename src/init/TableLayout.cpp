#include "TableLayout.h"

#include <algorithm>
#include <array>

namespace lumbarn {

namespace {

using enum Quantity;

constexpr auto layouts = std::to_array<TableLayout>({
    {"ROCK", "", 2, 0, 0, 3},
    {"ROCKTAB", "", 4, 0, 5, 6},
    {"PVTO", "", 7, 9, 10, 11},
    {"PVDO", "", 7, 0, 10, 11},
    {"PVCDO", "", 7, 0, 10, 11},
    {"RS", "PVTO", 8, 0, 9, 11},
    {"PVTW", "", 12, 0, 0, 13},
    {"PVTG", "", 14, 16, 17, 18},
    {"PVDG", "", 14, 0, 17, 18},
    {"PGAS", "PVTG", 15, 0, 16, 18},
    {"DENSITY", "", 19, 0, 0, 20},
    {"SWFN", "", 21, 0, 22, 23},
    {"SGFN", "", 24, 0, 25, 26},
    {"SOF2", "", 27, 0, 29, 30},
    {"SOF3", "", 27, 0, 29, 30},
    {"EQUIL", "", 31, 0, 0, 32},
    {"RSVD", "", 33, 0, 34, 35},
    {"RVVD", "", 36, 0, 37, 38},
});

struct NamedColumns {
  std::string_view table;
  std::int32_t count = 0;
  std::array<TableColumn, 10> columns;
};

constexpr auto columnTables = std::to_array<NamedColumns>({
    {"SWFN", 3, {{{"SW", "", None}, {"KRW", "", None}, {"PCOW", "", PressureDifference}}}},
    {"SGFN", 3, {{{"SG", "", None}, {"KRG", "", None}, {"PCOG", "", PressureDifference}}}},
    {"SOF2", 2, {{{"SO", "", None}, {"KRO", "", None}}}},
    {"SOF3", 3, {{{"SO", "", None}, {"KROW", "", None}, {"KROG", "", None}}}},
    {"PVTO",
     3,
     {{{"P", "", Pressure}, {"BO", "1/BO", LiquidVolumeFactor}, {"MUO", "1/(BO*MUO)", Viscosity}}}},
    {"PVDO",
     3,
     {{{"P", "", Pressure}, {"BO", "1/BO", LiquidVolumeFactor}, {"MUO", "1/(BO*MUO)", Viscosity}}}},
    {"RS", 1, {{{"RS", "", GasInOil}}}},
    {"PVTG", 3, {{{"RV", "", OilInGas}, {"BG", "1/BG", GasVolumeFactor}, {"MUG", "1/(BG*MUG)", Viscosity}}}},
    {"PVDG", 3, {{{"P", "", Pressure}, {"BG", "1/BG", GasVolumeFactor}, {"MUG", "1/(BG*MUG)", Viscosity}}}},
    {"PGAS", 1, {{{"PG", "", Pressure}}}},
    {"PVTW",
     5,
     {{{"PREF", "", Pressure},
       {"BW", "1/BW", LiquidVolumeFactor},
       {"CW", "", Compressibility},
       {"MUW", "1/(BW*MUW)", Viscosity},
       {"CV", "CW-CV", Compressibility}}}},
    {"PVCDO",
     5,
     {{{"PREF", "", Pressure},
       {"BO", "1/BO", LiquidVolumeFactor},
       {"CO", "", Compressibility},
       {"MUO", "1/(BO*MUO)", Viscosity},
       {"CVO", "CO-CVO", Compressibility}}}},
    {"ROCK", 2, {{{"PREF", "", Pressure}, {"CR", "", Compressibility}}}},
    {"ROCKTAB", 3, {{{"P", "", Pressure}, {"PVMULT", "", None}, {"TRMULT", "", None}}}},
    {"DENSITY", 3, {{{"OIL", "", Density}, {"WATER", "", Density}, {"GAS", "", Density}}}},
    {"RSVD", 4, {{{"DEPTH", "", Length}, {"RS", "", GasInOil}}}},
    {"RVVD", 4, {{{"DEPTH", "", Length}, {"RV", "", OilInGas}}}},
    {"PBVD", 2, {{{"DEPTH", "", Length}, {"PB", "", Pressure}}}},
    {"PDVD", 2, {{{"DEPTH", "", Length}, {"PD", "", Pressure}}}},
    {"EQUIL",
     10,
     {{{"DEPTH", "", Length},
       {"P", "", Pressure},
       {"WOC", "", Length},
       {"PCOW", "", PressureDifference},
       {"GOC", "", Length},
       {"PCOG", "", PressureDifference},
       {"RSTYPE", "", None},
       {"RVTYPE", "", None},
       {"ACCURACY", "", None},
       {"ITEM10", "", None}}}},
});

}  // namespace

std::span<const TableLayout> tableLayouts() { return layouts; }

const TableLayout* tableLayout(std::string_view zTable) {
  const auto* row = std::ranges::find(layouts, zTable, &TableLayout::name);
  return row == layouts.end() ? nullptr : row;
}

std::span<const TableColumn> tableColumns(std::string_view zTable) {
  const auto* row = std::ranges::find(columnTables, zTable, &NamedColumns::table);
  if (row == columnTables.end()) return {};
  return std::span(row->columns).first(static_cast<std::size_t>(row->count));
}

std::int32_t GRAFTableColumns(std::string_view zTable) {
  return static_cast<std::int32_t>(tableColumns(zTable).size());
}

std::string_view tableUnit(Quantity quantity, std::int32_t iUnits, std::int32_t iProgram) {
  const bool converted = quantity == Pressure || quantity == PressureDifference || quantity == GasInOil;
  return unitOf(quantity, iProgram == simulatorOfMetricTables && converted ? metricUnits : iUnits);
}

std::string_view relatedTable(std::string_view zTable) {
  if (zTable == "PVTG") return "PGAS";
  if (zTable == "PVTO" || zTable == "PVCO") return "RS";
  return {};
}

}  // namespace lumbarn
