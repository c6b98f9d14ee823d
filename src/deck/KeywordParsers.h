#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Session.h"
#include "DeckContents.h"
#include "DeckReading.h"

namespace lumbarn {

/// What the parser of a keyword works with. A parser reads the keyword's data from the deck and keeps what
/// they say; it throws Fault 9 for places that do not exist.
struct HostKeyword {
  std::string_view zKeyword;
  DeckContents& deck;
  const DeckLoadOptions& options;
  DeckReading& reading;
  DeckLines& file;
  Session& session;
  const std::string& zDeckPath;  ///< the folder of the deck, with its separator

  DeckRunspec& runspec() const { return deck.runspec; }
  DeckGrids& grids() const { return deck.grids; }
  /// Null when there is none, or the schedule is not read.
  DeckScheduleStore* schedule() const { return options.RecordScheduleDeck ? options.schedule : nullptr; }

  // A deck that ends within the data gives what it has.
  std::vector<std::string> arguments(bool qUpper = true) const;  ///< of the one record
  std::vector<std::string> mergedArguments() const;              ///< the same, with the keyword's defaults
  /// The arguments of each record up to the next keyword. Records without arguments are empty lists.
  std::vector<std::vector<std::string>> records() const;
};

using KeywordParser = void (*)(const HostKeyword&);
struct ParserRow {
  std::string_view zRoutine;  ///< as `parserOfKeyword` names it
  KeywordParser parse;
};
/// Parsers of the keywords of RUNSPEC and of single options, and of those of the grid.
std::span<const ParserRow> runspecParsers();
std::span<const ParserRow> gridParsers();
/// By the name of the routine. Null for those that are not read here: tables, wells and their controls, and
/// components. Their data are then lines that name no keyword.
const ParserRow* findParser(std::string_view zRoutine);

/// An argument, from 0, as a number; `noDeckValue` behind the end of the list, and for none.
std::int32_t integerAt(std::span<const std::string> arguments, std::size_t place);
float singleAt(std::span<const std::string> arguments, std::size_t place);
/// Takes the argument unless it is not given.
void takeInteger(std::span<const std::string> arguments, std::size_t place, std::int32_t& value);
/// The text of an argument, or `otherwise` when it is not given.
std::string textAt(std::span<const std::string> arguments, std::size_t place, std::string otherwise = {});

/// Takes day, month and year where they can be ones: a day from 1 to 31, the name of a month, a year from 1
/// on. The other parts keep what they have, as do all when there are fewer than three arguments.
void getEclipseDate(std::span<const std::string> arguments, DeckDate& date);

/// Reads one F or W keyword of SUMMARY into the list of these: an F keyword as it stands, a W keyword with
/// the wells of its record (none: all wells).
void parseSUMMARYKeyWord(const HostKeyword& keyword);

/// RESTART: where the run begins. With a schedule store that knows the restart file, the date of the step is
/// read from it.
void parseRESTART(const HostKeyword& keyword);

}  // namespace lumbarn
