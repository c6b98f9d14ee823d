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

/// The sizes of a deck's grids: the global one ("ROOT"), by DIMENS or SPECGRID, and those of CARFIN and
/// RADFIN.
std::map<std::string, DeckGridSize> gridSizes(const Deck& deck);

/// A whole number of a record; nothing for a default, and for what is none.
std::optional<std::int32_t> wholeNumber(const DeckRecord& record, std::int64_t place);

/// The box of six numbers from an item on; those that are left out are those of another box. Nothing if it is
/// not within a grid of that size.
std::optional<DeckBox> boxOf(const DeckRecord& record, std::int64_t item, DeckBox otherwise,
                             const DeckGridSize& size);

/// Follows which grid and which box the keywords of a deck mean: BOX, ENDBOX, CARFIN, RADFIN, ENDFIN, and a
/// section that begins anew with the whole global grid.
class BoxTracker {
 public:
  explicit BoxTracker(const Deck& deck) : deck_(&deck), sizes_(gridSizes(deck)) {}

  /// Takes note of the next keyword. False for a BOX that is not within its grid, which changes nothing.
  bool take(const DeckKeyword& keyword);

  const std::string& grid() const { return grid_; }
  /// Of the grid; zeros where the deck does not tell.
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
