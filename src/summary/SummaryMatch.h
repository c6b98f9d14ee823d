#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lumbarn {

/// The text by which a vector is matched: mnemonic, class, member, index, LGR name and class within the LGR,
/// each followed by a character 0, by which "P1", "12" and "P11", "2" differ.
using KeyParts = std::array<std::string_view, 6>;
std::string matchingKey(const KeyParts& parts);

/// Pairs equal texts of two lists, each used once at most. For each main text in order, the first open old
/// one at or behind the place after the last pair, then the first from the start; a text without partner
/// leaves the place as it is. So equal layouts pair up one to one, duplicates included, in one step each, and
/// a scrambled layout costs a sort.
struct TextPairs {
  std::vector<std::int32_t> iMatch;  ///< per main text the number, from 1, of its partner; 0 for none
  std::vector<std::int32_t> iNew;    ///< numbers, from 1, of the old texts without partner, in order
};
TextPairs pairTexts(const std::vector<std::string>& old, const std::vector<std::string>& main);

}  // namespace lumbarn
