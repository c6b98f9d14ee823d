#include <cmath>
#include <cstdlib>
#include <limits>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "record/TextNumbers.h"

namespace lumbarn {
namespace {

TEST(TextNumbers, RealsInEveryDress) {
  const std::tuple<const char*, std::size_t, double> cases[] = {
      {"0.10000000E+01", 14, 1.0},
      {"-0.1d-1", 7, -0.01},
      {"0.1234-101", 10, 0.1234e-101},
      {"0.5-0.25", 3, 0.5},
      {"0.5E+00-0.25", 7, 0.5},
      {"0.5-101.5", 3, 0.5},
      {"+2.5E1", 6, 25.0},
      {"1.D0", 4, 1.0},
      {"1.5D", 3, 1.5},
      {"0.17976931348623157+309", 23, 1.7976931348623157e308},
      {"x", 0, 0},
      {"", 0, 0},
      {"E+01", 0, 0},
      {"'A'", 0, 0}};
  for (const auto& [text, taken, value] : cases) {
    double result = 0;
    EXPECT_EQ(parseNumber(text, result), taken) << text;
    EXPECT_EQ(result, value) << text;
  }
  float single = 0;
  EXPECT_EQ(parseNumber("0.16777217E+08", single), 14U);
  EXPECT_EQ(single, 16777216.0F) << "rounded once, to nearest even";
  EXPECT_EQ(parseNumber("*** 1", single), 3U);
  EXPECT_TRUE(std::isnan(single));
}

TEST(TextNumbers, TheUsualDressOfAllSizesIsRoundedLikeAnyOther) {
  std::uint64_t state = 1;
  for (int i = 0; i < 20000; ++i) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    const auto digits = (state >> 16) % 100'000'000'000'000U;
    const int exponent = static_cast<int>((state >> 8) % 77) - 38;
    const auto minus = i % 2 == 0 ? "-" : "";
    const auto single = fmt::format("{}0.{:08}E{:+03}", minus, digits % 100'000'000U, exponent);
    const auto real = fmt::format("{}0.{:014}D{:+03}", minus, digits, exponent);
    const auto plain = fmt::format("{}0.{:014}E{:+03}", minus, digits, exponent);
    float f = 0;
    double d = 0;
    ASSERT_EQ(parseNumber(single + " 1", f), single.size());
    ASSERT_EQ(parseNumber(real, d), real.size());
    ASSERT_EQ(f, std::strtof(single.c_str(), nullptr)) << single;
    ASSERT_EQ(d, std::strtod(plain.c_str(), nullptr)) << real;
  }
  double nothing = 0;
  parseNumber("-0.00000000000000D+00", nothing);
  EXPECT_TRUE(std::signbit(nothing));
  float single = 0;
  for (const auto& [text, taken] : {std::pair{"0.1234567 E+01", 9U},
                                    {"0.12345678E+012", 15U},
                                    {"0.12345678E+0", 13U},
                                    {"0.12345678-101", 14U},
                                    {"0.1234567/E+01", 9U},
                                    {"0.123456:8E+01", 8U}})
    EXPECT_EQ(parseNumber(text, single), taken) << text;
}

}  // namespace
}  // namespace lumbarn
