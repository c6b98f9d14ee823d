#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "record/TextNumbers.h"

namespace lumbarn {
namespace {

struct Case {
  const char* text;
  std::size_t taken;
  double value;
};

TEST(TextNumbers, RealsInEveryDress) {
  const Case cases[] = {
      {"0.10000000E+01", 14, 1.0},
      {"0.1D+01 ", 7, 1.0},
      {"-0.1d-1", 7, -0.01},
      {"0.1234-101", 10, 0.1234e-101},
      {"0.1234+101", 10, 0.1234e101},
      {"0.5-0.25", 3, 0.5},
      {"0.5E+00-0.25", 7, 0.5},
      {"0.5-101.5", 3, 0.5},
      {"0.5-1015", 3, 0.5},
      {"+2.5E1", 6, 25.0},
      {"7", 1, 7.0},
      {".5", 2, 0.5},
      {"1.D0", 4, 1.0},
      {"1.5D", 3, 1.5},
      {"0.17976931348623157+309", 23, 1.7976931348623157e308},
      {"x", 0, 0},
      {"", 0, 0},
      {"-", 0, 0},
      {"E+01", 0, 0},
      {"'A'", 0, 0},
  };
  for (const auto& [text, taken, value] : cases) {
    double result = 0;
    EXPECT_EQ(parseNumber(text, result), taken) << text;
    if (taken != 0) {
      EXPECT_EQ(result, value) << text;
    }
  }
  float single = 0;
  EXPECT_EQ(parseNumber("0.16777217E+08", single), 14U);
  EXPECT_EQ(single, 16777216.0F) << "rounded once, to nearest even";
  EXPECT_EQ(parseNumber("0.1-100", single), 7U);
  EXPECT_EQ(single, 0.0F);
  double stars = 0;
  EXPECT_EQ(parseNumber("*** 1", stars), 3U);
  EXPECT_TRUE(std::isnan(stars));
}

TEST(TextNumbers, IntegersThatDoNotFitAreRefused) {
  std::int32_t value = 0;
  EXPECT_EQ(parseNumber("-2147483648-5", value), 11U);
  EXPECT_EQ(value, std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(parseNumber("+12 ", value), 3U);
  EXPECT_EQ(parseNumber("2147483648", value), 0U);
  EXPECT_EQ(parseNumber("+-1", value), 0U);
  EXPECT_EQ(parseNumber("***", value), 0U);
}

}  // namespace
}  // namespace lumbarn
