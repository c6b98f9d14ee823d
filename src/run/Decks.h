#pragma once

#include "../deck/Deck.h"
#include "../deck/DeckEdit.h"
#include "../support/Export.h"
#include "Dense.h"
#include "Run.h"

namespace lumbarn {

/// Opens the deck that a path refers to: a deck or an included file, recognized by its contents, or the deck
/// of a run.
LUMBARN_API Deck openDeck(const std::string& path, const ReadOptions& options = {});

/// An array of a grid as the simulator has it after all operations of the deck, in place, see `Deck::cells`.
/// Cells that the deck gives no value count as not active.
LUMBARN_API Dense deckArray(const Deck& deck, const std::string& name, const std::string& grid = "ROOT",
                            const ReadOptions& options = {});

/// The corners of all cells of the deck's global grid, 24 single-precision values per cell as in
/// `Run::cornerArray`. Throws Error NotFound, naming the missing keyword, when the deck does not describe its
/// geometry.
LUMBARN_API Dense deckCorners(const Deck& deck, const ReadOptions& options = {});

}  // namespace lumbarn
