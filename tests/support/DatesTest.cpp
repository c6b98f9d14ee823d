#include <array>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "support/Dates.h"

namespace lumbarn {
namespace {

using namespace std::chrono_literals;

TEST(Dates, TextsHaveNoMoreThanTheMoment) {
  const auto moment = *makeMoment(987, 6, 5, 4, 3, 2'010'000);
  EXPECT_EQ(isoText(moment, true), "0987-06-05T04:03:02.01");
  EXPECT_EQ(isoText(*makeMoment(1969, 12, 31, 23, 59, 59'000'001)), "1969-12-31T23:59:59.000001");
  EXPECT_EQ(isoText(*makeMoment(2003, 7, 15, 6, 30), true), "2003-07-15T06:30:00");
  EXPECT_EQ(isoText(*makeMoment(2003, 7, 15)), "2003-07-15T00:00:00");
  EXPECT_EQ(isoText(*makeMoment(2003, 7, 15), true), "2003-07-15");
  EXPECT_EQ(dayMonthYear(moment), "5 JUN 0987");
  EXPECT_EQ(dayMonthYear(*makeMoment(2003, 7, 15, 23)), "15 JUL 2003");
}

const Moment start = *makeMoment(2001, 7, 1);

TEST(MomentAfter, IsTheRoundestThatTheFloatAllows) {
  struct Row {
    Moment start;
    float elapsed;
    const char* shown;
    double unitsPerDay = 1;
  };
  const auto midYear = *makeMoment(2001, 7, 1, 6, 30);
  const Row rows[] = {{start, 744.2708F, "2003-07-15T06:30:00"},
                      {start, 744.2708F + 1.0F / 16384, "2003-07-15T06:30:04"},
                      {*makeMoment(2004, 2, 1), 29, "2004-03-01T00:00:00"},
                      {midYear, 1, "2001-07-02T06:30:00"},
                      {midYear, 0.72916667F, "2001-07-02T00:00:00"},
                      {start, 1.0F / 3, "2001-07-01T08:00:00"},
                      {start, 1.5e-11F, "2001-07-01T00:00:00.000001"},
                      {start, 1e-30F, "2001-07-01T00:00:00"},
                      {*makeMoment(1970, 1, 1), -1.0F / 3, "1969-12-31T16:00:00"},
                      {*makeMoment(1, 1, 1), 3652058, "9999-12-31T00:00:00"},
                      {start, 0.1F, "2001-07-01T00:06:00", 24},
                      {start, 1000.5F, "2001-08-11T16:30:00", 24}};
  for (const auto& row : rows) {
    const auto moment = momentAfter(row.start, row.elapsed, row.unitsPerDay);
    ASSERT_TRUE(moment) << row.shown;
    EXPECT_EQ(isoText(*moment), row.shown);
  }
}

TEST(MomentAfter, NothingBeyondTheCalendar) {
  const float infinite = std::numeric_limits<float>::infinity();
  for (const float elapsed : {infinite, -infinite, std::nanf(""), 3e6F, -1e6F, 3e38F})
    EXPECT_FALSE(momentAfter(start, elapsed)) << elapsed;
  EXPECT_FALSE(momentAfter(*makeMoment(9999, 12, 31), 1));
  EXPECT_FALSE(momentAfter(*makeMoment(1, 1, 1), -0.5F));
  for (const double unitsPerDay : {0.0, -1.0, std::nan("")}) EXPECT_FALSE(momentAfter(start, 1, unitsPerDay));
  EXPECT_FALSE(momentAfter(Moment::max(), 1));
}

}  // namespace
}  // namespace lumbarn
