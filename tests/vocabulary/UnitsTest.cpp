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

TEST(SegmentVectors, TakeTheirUnitsFromTheTest) {
  std::vector<std::string> names{"old"}, units;
  std::int32_t count = 0;
  bool qOK = false;
  setSEGHeaders(std::vector<std::string>{"  DAYS", "W1", "", " METRES", "  BARSA", "MULTISEG", "SEG",
                                         " SM3/DAY", "MSM3/DAY", "RM3/DAY", " M/SEC"},
                names, units, count, qOK);
  EXPECT_TRUE(qOK && count == 31 && names.size() == 31);
  EXPECT_EQ(names[6] + names[26] + names[30], "SEGYCORDSEGCORTSSEGGOR");
  EXPECT_THAT(
      (std::vector{units[0], units[7], units[8], units[10], units[11], units[13], units[14], units[17]}),
      ElementsAre("METRES", "BARSA", "SM3/DAY", "MSM3/DAY", "SM3/DAY/METRES", "MSM3/DAY/METRES", "M/SEC",
                  ""));
  setSEGHeaders(std::vector<std::string>{"DAYS", "W1", "", "FEET", "PSIA", "RFT", "STANDARD", "STB/DAY"},
                names, units, count, qOK);
  EXPECT_EQ(units[11] + units[13] + units[14], "STB/DAY/FEET") << "no gas rate: not \"/FEET\"";
}

}  // namespace
}  // namespace lumbarn
