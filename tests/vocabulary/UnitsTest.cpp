#include <utility>

#include <gmock/gmock.h>

#include "vocabulary/Segments.h"
#include "vocabulary/Units.h"

namespace lumbarn {
namespace {

using testing::ElementsAre;

TEST(Units, SystemsByTheirWords) {
  for (const auto& [word, number] :
       {std::pair{"METRIC", 1}, {"FIELD", 2}, {"LAB  ", 3}, {"PVT-M", 2}, {"", 2}})
    EXPECT_EQ(UnitSystem(word), number) << word;
  for (const auto& [word, number] :
       {std::pair{"METRES  ", 1}, {"feet", 2}, {"CENTIMETERS", 3}, {"METRE", -1}})
    EXPECT_EQ(WhichUnitSystem(word), number) << word;
  for (const auto& [unit, number] :
       {std::pair{" HOURS  ", 3}, {" stb/day", 2}, {"  ATMA  ", 4}, {"KG/M3", 1}, {"DAYS", 0}})
    EXPECT_EQ(unitSystemOfUnit(unit), number) << unit;
}

TEST(Units, TimesInDays) {
  for (const auto& [unit, perDay] :
       {std::pair{"  DAYS  ", 1.0}, {" HOURS ", 24.0}, {"hr", 24.0}, {"MINUTES", 1440.0}, {"", 1.0}})
    EXPECT_EQ(unitsPerDay(unit), perDay) << unit;
  EXPECT_EQ(unitsPerDay(laboratoryUnits), 24.0);
  EXPECT_EQ(unitsPerDay(atmosphereUnits), 1.0);
}

}  // namespace
}  // namespace lumbarn
