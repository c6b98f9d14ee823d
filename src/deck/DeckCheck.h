#pragma once

#include <functional>

#include "../support/Diagnosis.h"
#include "../support/Session.h"
#include "Deck.h"

namespace lumbarn {

/// Reports all irregularities of a deck: the notes of the scan, with each unknown keyword once; arrays whose
/// count of numbers differs from the cells of their box, or that contain words that are not numbers; boxes
/// outside their grid; report steps that do not advance in time. Reads all arrays.
void checkDeck(const Deck& deck, Session& session, const std::function<void(Diagnosis)>& report);

}  // namespace lumbarn
