#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "../support/Session.h"
#include "Deck.h"

namespace lumbarn {

/// The global grid of a deck as pillars and depths, whichever way the deck describes it.
struct DeckGeometry {
  std::array<std::int32_t, 3> size{};
  bool radial = false;               ///< x and y are r and theta, in degrees
  std::vector<float> coord;          ///< 6 for each pillar: top and bottom
  std::vector<float> zcorn;          ///< 8 for each cell, plane by plane as in a deck
  std::vector<std::int32_t> actnum;  ///< of each cell, empty where all are active

  /// Eight corners of each cell, 24 singles, in natural order.
  std::vector<float> corners() const;
};

/// Of COORD and ZCORN; or of DX, DY, DZ or DXV, DYV, DZV and TOPS, where pillars are upright and cells are
/// boxes; or of INRAD, DRV or DR, DTHETAV or DTHETA. A layer without TOPS lies on the one above it. Throws
/// Error NotFound, with the keyword that is missing, BadRequest without the grid's size, and Damaged.
DeckGeometry deckGeometry(const Deck& deck, Session& session);

}  // namespace lumbarn
