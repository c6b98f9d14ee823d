#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "../record/LineReader.h"  // checkIfCommentLine
#include "../support/Session.h"
#include "../vocabulary/Units.h"  // UnitSystem, WhichUnitSystem

namespace lumbarn {

/// Stands for an argument that is defaulted or no number.
inline constexpr std::int32_t deckDefault = -32768;

/// Whether a line of a deck, as it stands, is empty or begins with "--", "**" or "==", or is one character
/// CR, LF or tab. The other test, `checkIfCommentLine`, knows only "--"; both stay as they are.
bool checkifEclipseCommentLine(std::string_view zLine);

/// `processEclipseLine` for recognizing a deck: with the other test for comments, and always in upper case.
std::string processCaseLine(std::string_view zLine);

/// Makes one string of each record in the first iLines lines. A record that is not closed is dropped, if
/// there is one that is.
void compressEclipseArgLines(std::vector<std::string>& zLines, std::int32_t& iLines, bool& qOK,
                             Session& session = Session::process());

/// The value of an argument, or -32768.
float getSingleArgument(std::string_view zArg);
double getDoubleArgument(std::string_view zArg);
std::int32_t getIntegerArgument(std::string_view zArg);

/// The argument, or the default for an empty one, without quotes around it.
std::string UpdateEclipseStringArgument(std::string_view zArg, std::string_view zDefault);

/// 1 stopped, 2 open, 3 shut, 4 automatic; -1 for any other word.
std::int32_t getWellStatus(std::string_view zArg);
/// 1 oil, 2 water, 3 gas, 4 liquid; -1 for any other word.
std::int32_t getWellPhase(std::string_view zArg);
/// What controls a well: 1 ORAT, 2 WRAT, 3 "G", 4 LRAT, 5 RESV, 6 THP, 7 BHP, 8 GRUP, 9 WGRA, 10 TMRA, 11 to
/// 15 by the first letters of others; -1 for any other word. Deliberate: GRAT, too, is 8, by its second
/// letter.
std::int32_t getWellMode(std::string_view zArg);

}  // namespace lumbarn
