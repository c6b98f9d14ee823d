#include "TestUnits.h"

#include <algorithm>

namespace lumbarn {

using enum WelletcText;

constexpr std::array<TestVector, 31> segmentVectors{{
    {"SEGMD", Length},
    {"SEGDEPTH", Length},
    {"SEGLENST", Length},
    {"SEGLENEN", Length},
    {"SEGLENTH", Length},
    {"SEGXCORD", Length},
    {"SEGYCORD", Length},
    {"SEGPRES", Pressure},
    {"SEGORAT", LiquidRate},
    {"SEGWRAT", LiquidRate},
    {"SEGGRAT", GasRate},
    {"SEGORATS", LiquidRate, Length},
    {"SEGWRATS", LiquidRate, Length},
    {"SEGGRATS", GasRate, Length},
    {"SEGOVEL", Velocity},
    {"SEGWVEL", Velocity},
    {"SEGGVEL", Velocity},
    {"SEGOHF"},
    {"SEGWHF"},
    {"SEGGHF"},
    {"SEGBRNO"},
    {"SEGNXT"},
    {"SEGNO"},
    {"SEGCORAT", LiquidRate},
    {"SEGCWRAT", LiquidRate},
    {"SEGCGRAT", GasRate},
    {"SEGCORTS", LiquidRate, Length},
    {"SEGCWRTS", LiquidRate, Length},
    {"SEGCGRTS", GasRate, Length},
    {"SEGWCUT"},
    {"SEGGOR"},
}};

namespace {

constexpr auto connectionVectors = std::to_array<TestVector>({
    {"DEPTH", Length},
    {"PRESSURE", Pressure},
    {"CONDEPTH", Length},
    {"CONMD", Length},
    {"CONLENST", Length},
    {"CONLENEN", Length},
    {"CONLENTH", Length},
    {"CONBDEPH", Length},
    {"CONPRES", Pressure},
    {"CONBPRES", Pressure},
    {"CONORAT", LiquidRate},
    {"CONWRAT", LiquidRate},
    {"CONOTUB", LiquidRate},
    {"CONWTUB", LiquidRate},
    {"CONVTUB", LiquidRate},
    {"CONGRAT", GasRate},
    {"CONGTUB", GasRate},
    {"CONORATS", LiquidRate, Length},
    {"CONWRATS", LiquidRate, Length},
    {"CONGRATS", GasRate, Length},
});

}  // namespace

const TestVector* testVector(std::string_view name) {
  const auto find = [name](const auto& vectors) {
    const auto found = std::ranges::find(vectors, name, &TestVector::name);
    return found == vectors.end() ? nullptr : &*found;
  };
  const TestVector* found = find(connectionVectors);
  return found ? found : find(segmentVectors);
}

}  // namespace lumbarn
