#pragma once

#include <functional>

#include "../support/Diagnosis.h"
#include "../support/Session.h"
#include "Deck.h"

namespace lumbarn {

/// Everything that is irregular in a deck: what the scan noted, each unknown keyword once; arrays with
/// another count of numbers than their box has cells, with words that are no numbers, or that repeat one more
/// often; boxes outside of their grid; dates that do not come later. Reads all arrays.
void checkDeck(const Deck& deck, Session& session, const std::function<void(Diagnosis)>& report);

}  // namespace lumbarn
