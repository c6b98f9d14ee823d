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
  const std::vector<std::string> units{"  DAYS", "W1",       "",         " METRES", "  BARSA", "MULTISEG",
                                       "SEG",    " SM3/DAY", "MSM3/DAY", "RM3/DAY", " M/SEC"};
  std::vector<std::string> names{"old"};
  std::vector<std::string> of;
  std::int32_t count = 0;
  bool qOK = false;
  setSEGHeaders(units, names, of, count, qOK);
  EXPECT_TRUE(qOK);
  EXPECT_EQ(count, 31);
  ASSERT_EQ(names.size(), 31U);
  EXPECT_EQ(names[6], "SEGYCORD");
  EXPECT_EQ(names[26], "SEGCORTS");
  EXPECT_THAT((std::vector{of[0], of[7], of[8], of[10], of[11], of[13], of[14], of[17]}),
              ElementsAre("METRES", "BARSA", "SM3/DAY", "MSM3/DAY", "SM3/DAY/METRES", "MSM3/DAY/METRES",
                          "M/SEC", ""));
  const std::vector<std::string> few{"DAYS", "W1", "", "FEET", "PSIA", "RFT", "STANDARD", "STB/DAY"};
  setSEGHeaders(few, names, of, count, qOK);
  EXPECT_EQ(names[30], "SEGGOR");
  EXPECT_EQ(of[11], "STB/DAY/FEET");
  EXPECT_EQ(of[13] + of[14], "") << "no gas rate: not \"/FEET\"";
}

}  // namespace
}  // namespace lumbarn
