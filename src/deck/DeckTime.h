#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "../support/Dates.h"
#include "../text/DeckRecords.h"
#include "Deck.h"

namespace lumbarn {

/// A date of a deck, as "1 JLY 2010 06:30:15.5": day, month, year and a time of day from an item on. Nothing
/// when it is none.
std::optional<Moment> dateOf(const DeckRecord& record, std::int64_t item = 0);

/// The date of START; 1 January 1983 without it, as simulators take it.
Moment startOf(const Deck& deck);

/// One report step that DATES or TSTEP ask for.
struct DeckStep {
  std::size_t keyword = 0;  ///< index into `Deck::keywords`
  std::int64_t line = 0;
  std::uint32_t file = 0;
  double days = 0;  ///< since the start
};
/// The report steps of SCHEDULE, in order, as far as their records can be read; steps of no length and dates
/// that do not come later are none, see `wrong`.
struct DeckCalendar {
  Moment start;
  std::vector<DeckStep> steps;
  std::vector<DeckStep> wrong;  ///< records that are no dates or no times, or go back
};
DeckCalendar calendarOf(const Deck& deck);

}  // namespace lumbarn
