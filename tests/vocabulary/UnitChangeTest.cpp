#include <gtest/gtest.h>

#include "vocabulary/UnitChange.h"

namespace lumbarn {
namespace {

TEST(UnitChanges, EachWordBecomesThatOfTheSystem) {
  constexpr struct {
    const char* unit;
    Units to;
    const char* quantity;
    const char* expected;
    double before, after;
  } cases[] = {
      {"PSIA", Units::Metric, "FPR", "BARSA", 4796.636, 330.716412},
      {"PSIA", Units::SI, "FPR", "PA", 1, 6894.757293168361},
      {"ATMA", Units::Field, "", "PSIA", 1, 14.695948775513},
      {"psi", Units::Metric, "", "BARS", 14.5037737730, 1},
      {"PSIG", Units::Metric, "", "BARG", 14.5037737730, 1},
      {"STB/DAY", Units::Metric, "FOPR", "SM3/DAY", 20000, 3179.74589856},
      {" Stb / Day ", Units::Lab, "", "SCC/HR", 24, 158987.294928},
      {"SM3/DAY", Units::Field, "WGPR", "MSCF/DAY", 28.316846592, 1},
      {"SM3/D", Units::Field, "oil rate", "STB/D", 0.158987294928, 1},
      {"MSCF/STB", Units::Metric, "", "SM3/SM3", 1, 178.107606679},
      {"SM3/SM3", Units::Field, "WGOR", "MSCF/STB", 178.107606679, 1},
      {"SM3/SM3", Units::Field, "WOGR", "STB/MSCF", 1, 178.107606679},
      {"SM3/SM3", Units::Field, "FWCT", "STB/STB", 0.25, 0.25},
      {"RM3/SM3", Units::Field, "BG", "RB/MSCF", 1, 178.107606679},
      {"LB/CU FT", Units::Metric, "", "KG/M3", 62.4279605761, 1000},
      {"M3", Units::Field, "PORV", "RB", 0.158987294928, 1},
      {"CPRB/D/PSI", Units::Metric, "", "CPM3/D/BARS", 1, 2.305916},
      {"CPcc/H/A", Units::Metric, "", "CPM3/D/BARS", 1e6, 24 / 1.01325},
      {"MD.FT", Units::Metric, "", "MD.M", 1, 0.3048},
      {"mDarcy", Units::SI, "PERMX", "mDarcy", 5, 5},
      {"CP", Units::SI, "", "PA.S", 1000, 1},
      {"DEGF", Units::Metric, "", "DEGC", 212, 100},
      {"C", Units::SI, "", "K", 0, 273.15},
      {"DEGF/FT", Units::Metric, "", "DEGC/M", 1, 5 / 9.0 / 0.3048},
      {"BTU/LB-M", Units::Metric, "", "KJ/KG-M", 1, 2.326},
      {"HOURS", Units::Metric, "TIME", "DAYS", 36, 1.5},
      {"YEARS", Units::SI, "", "YEARS", 3, 3},
      {"MSCF/STB", Units::Field, "", "MSCF/STB", 2, 2},
      {"METRES", Units::Metric, "", "METRES", 2, 2},
      {"", Units::Field, "", "", 2, 2},
  };
  for (const auto& one : cases) {
    const auto change = unitChange(one.unit, one.to, one.quantity);
    ASSERT_TRUE(change) << one.unit;
    EXPECT_EQ(change->unit, one.expected) << one.unit;
    EXPECT_NEAR(change->of(one.before), one.after, 1e-6 * one.after + 1e-12)
        << one.unit << ' ' << one.quantity;
  }
  EXPECT_EQ(static_cast<float>(unitChange("PSIA", Units::Metric)->of(4796.636F)), 330.71643F);
  for (const char* unknown : {"STB/DAY/", "PARSECS", "STB//DAY", "/DAY", "SM3/FORTNIGHT"})
    EXPECT_FALSE(unitChange(unknown, Units::Metric)) << unknown;
}

TEST(UnitChanges, BetweenUnitsOfOneKind) {
  EXPECT_NEAR(unitChange("BARSA", "psia")->of(1), 14.503773773, 1e-8);
  EXPECT_NEAR(unitChange("MSCF/DAY", "SM3/DAY")->of(1), 28.316846592, 1e-12);
  EXPECT_FALSE(unitChange(" DAYS", "DAYS")->changesValues());
  EXPECT_FALSE(unitChange("BARSA", "SM3"));
  EXPECT_FALSE(unitChange("DAY/SM3", "SM3/DAY"));
  EXPECT_FALSE(unitChange("FURLONGS", "M"));
}

}  // namespace
}  // namespace lumbarn
