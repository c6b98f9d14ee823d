#pragma once

#include <string>

#include "../support/Session.h"

namespace lumbarn {

/// Whether hosts take a file for a deck: by a score of the keywords in its first 1000 lines. It refuses decks
/// that `Deck` reads: one with its RUNSPEC in an include, or with a thousand lines of comments in front.
/// False for a file that cannot be opened. Throws LoadCanceled, and BadRecord when reading fails.
bool recogniseHostDeck(const std::string& path, Session& session);

}  // namespace lumbarn
