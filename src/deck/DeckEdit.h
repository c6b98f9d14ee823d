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

/// Writes that file with the one value changed and every other byte as it is: a default becomes a value, a
/// value that stands for several is divided, and a record that is too short gets defaults in between. A value
/// with blanks, or in place of one in quotes, gets quotes. Throws Error NotFound, and what the sink throws.
LUMBARN_API void writeChanged(const Deck& deck, const DeckChange& change, Sink& sink);

}  // namespace lumbarn
