#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "../text/DeckRecords.h"
#include "Deck.h"

namespace lumbarn {

/// Cells from 1, both ends included.
struct DeckBox {
  std::array<std::int32_t, 3> from{1, 1, 1};
  std::array<std::int32_t, 3> to{0, 0, 0};

  std::int64_t cells() const;
};

using DeckGridSize = std::array<std::int32_t, 3>;

/// The sizes of a deck's grids: the global one ("ROOT"), by DIMENS or SPECGRID, and those of CARFIN,
/// RADFIN and RADFIN4.
std::map<std::string, DeckGridSize> gridSizes(const Deck& deck);

/// An integer item of a record; empty for a default and for text that is not a number.
std::optional<std::int32_t> wholeNumber(const DeckRecord& record, std::int64_t place);

/// The box given by six items starting at `item`; defaulted items are taken from `otherwise`. Empty if the
/// box is outside a grid of that size.
std::optional<DeckBox> boxOf(const DeckRecord& record, std::int64_t item, DeckBox otherwise,
                             const DeckGridSize& size);

/// Follows which grid and which box the keywords of a deck mean: BOX, ENDBOX, CARFIN, RADFIN, RADFIN4, REFINE
/// and ENDFIN. Each section starts with the complete global grid.
class BoxTracker {
 public:
  explicit BoxTracker(const Deck& deck) : deck_(&deck), sizes_(gridSizes(deck)) {}

  /// Takes note of the next keyword. False for a BOX that is not within its grid, which changes nothing.
  bool take(const DeckKeyword& keyword);

  const std::string& grid() const { return grid_; }
  /// Size of the current grid; zeros if the deck does not state it.
  DeckGridSize size() const;
  const DeckBox& box() const { return box_; }
  const std::map<std::string, DeckGridSize>& sizes() const { return sizes_; }

 private:
  void start(std::string grid);

  const Deck* deck_;
  std::map<std::string, DeckGridSize> sizes_;
  std::int32_t section_ = 0;
  std::string grid_ = "ROOT";
  DeckBox box_;
};

}  // namespace lumbarn
