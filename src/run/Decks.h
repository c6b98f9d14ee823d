#pragma once

#include "../deck/Deck.h"
#include "../deck/DeckEdit.h"
#include "../support/Export.h"
#include "Dense.h"
#include "Run.h"

namespace lumbarn {

/// The deck that a path means: a deck or a file that one includes, by its text, or that of a run.
LUMBARN_API Deck openDeck(const std::string& path, const ReadOptions& options = {});

/// An array of a grid as the simulator has it after all operations of the deck, in place, see `Deck::cells`.
/// Cells that the deck gives no value count as not active.
LUMBARN_API Dense deckArray(const Deck& deck, const std::string& name, const std::string& grid = "ROOT",
                            const ReadOptions& options = {});

}  // namespace lumbarn
