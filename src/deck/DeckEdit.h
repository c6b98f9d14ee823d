#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "../support/Export.h"
#include "Deck.h"

namespace lumbarn {

class Sink;

/// One value of a deck and what it becomes.
struct LUMBARN_API DeckChange {
  std::string keyword;
  std::int64_t record = 1;  ///< among those of all keywords of that name, from 1
  std::int64_t item = 1;    ///< from 1
  std::string value;

  /// From "WELSPECS[3].5=2400". Throws Error BadRequest for anything else.
  static DeckChange parse(std::string_view text);
};

/// The file of the deck that a change is in. Throws Error NotFound when there is no such record.
LUMBARN_API std::string fileOfChange(const Deck& deck, const DeckChange& change);

/// Writes that file with one value changed; every other byte is copied. A default becomes a value, `3*1` is
/// expanded as far as needed, and a record that is too short is extended with defaults. The value is quoted
/// if it contains a blank or replaces a quoted one. Before anything is written the changed record is parsed
/// again and compared. Throws Error NotFound if there is no such record, BadRequest if the value cannot be
/// written as one item, and whatever the sink throws.
LUMBARN_API void writeChanged(const Deck& deck, const DeckChange& change, Sink& sink);

}  // namespace lumbarn
