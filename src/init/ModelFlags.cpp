#include "ModelFlags.h"

#include <array>
#include <utility>

namespace lumbarn {

namespace {

using Flags = ModelFlags;

// The words 12, 23, 24, 25, 29 and 30 say nothing here.
constexpr auto byWord = std::to_array<std::pair<int, bool Flags::*>>({
    {1, &Flags::DissolvedGas},
    {2, &Flags::VapourisedOil},
    {3, &Flags::DirectionalKR},
    {4, &Flags::qRadial},
    {5, &Flags::ReversibleKR},
    {6, &Flags::VerticalEquilibrium},
    {7, &Flags::Hysteresis},
    {8, &Flags::RockCompaction},
    {9, &Flags::ReversibleRockCompaction},
    {10, &Flags::APITracking},
    {11, &Flags::further},
    {13, &Flags::Stone},
    {14, &Flags::Sudation},
    {15, &Flags::DualPorosity},
    {16, &Flags::DualPermeability},
    {17, &Flags::EndPointScaling},
    {18, &Flags::DirectionalEndScale},
    {19, &Flags::ReversibleEndScale},
    {20, &Flags::AlternativeEndScale},
    {21, &Flags::Polymer},
    {22, &Flags::Brine},
    {26, &Flags::CompressedVE},
    {27, &Flags::Solvent},
    {28, &Flags::Surfactant},
    {31, &Flags::CoalBedMethane},
    {32, &Flags::NewTransmissibility},
    {33, &Flags::Temperature},
    {34, &Flags::Foam},
    {35, &Flags::Miscible},
});

constexpr auto names = std::to_array<NamedFlag>({
    {"Oil", &Flags::Oil},
    {"Water", &Flags::Water},
    {"Gas", &Flags::Gas},
    {"DissolvedGas", &Flags::DissolvedGas},
    {"VapourisedOil", &Flags::VapourisedOil},
    {"DirectionalKR", &Flags::DirectionalKR},
    {"Radial", &Flags::qRadial},
    {"ReversibleKR", &Flags::ReversibleKR},
    {"VerticalEquilibrium", &Flags::VerticalEquilibrium},
    {"Hysteresis", &Flags::Hysteresis},
    {"RockCompaction", &Flags::RockCompaction},
    {"ReversibleRockCompaction", &Flags::ReversibleRockCompaction},
    {"APITracking", &Flags::APITracking},
    {"Stone", &Flags::Stone},
    {"Sudation", &Flags::Sudation},
    {"DualPorosity", &Flags::DualPorosity},
    {"DualPermeability", &Flags::DualPermeability},
    {"EndPointScaling", &Flags::EndPointScaling},
    {"DirectionalEndScale", &Flags::DirectionalEndScale},
    {"ReversibleEndScale", &Flags::ReversibleEndScale},
    {"AlternativeEndScale", &Flags::AlternativeEndScale},
    {"Polymer", &Flags::Polymer},
    {"Brine", &Flags::Brine},
    {"CompressedVE", &Flags::CompressedVE},
    {"Solvent", &Flags::Solvent},
    {"Surfactant", &Flags::Surfactant},
    {"CoalBedMethane", &Flags::CoalBedMethane},
    {"NewTransmissibility", &Flags::NewTransmissibility},
    {"Temperature", &Flags::Temperature},
    {"Foam", &Flags::Foam},
    {"Miscible", &Flags::Miscible},
});

}  // namespace

std::span<const NamedFlag> namedFlags() { return names; }

void takeLogicalHeader(std::span<const std::int16_t> words, std::int32_t iProgram, ModelFlags& flags) {
  constexpr int radialWord = 4, reversibleWord = 5;
  constexpr std::int32_t programThatSwaps = 100;
  for (auto [word, flag] : byWord) {
    // Deliberate: this simulator has the two words the other way round.
    if (iProgram == programThatSwaps && word == radialWord) {
      flag = &Flags::ReversibleKR;
    } else if (iProgram == programThatSwaps && word == reversibleWord) {
      flag = &Flags::qRadial;
    }
    if (std::cmp_less_equal(word, words.size())) flags.*flag = words[static_cast<std::size_t>(word) - 1] != 0;
  }
}

}  // namespace lumbarn
