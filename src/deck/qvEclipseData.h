#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Session.h"

namespace lumbarn {

/// The routines that take lines of a deck apart as hosts expect it. They hold no state. Where they differ
/// from what simulators do, the difference is kept on purpose: hosts build on these results. What a deck says
/// is asked of `Deck`. Positions count characters from 1, and 0 stands for none. A blank is U+0020 only.
///
/// Badly formed text is no failure: it gives short lists, zeros and -32768.

/// The cleaned line: in upper case with qUpper, quoted text included, each tab a blank, without blanks at
/// both ends. A comment comes back as it is.
std::string processEclipseLine(std::string_view zLine, bool qUpper);

/// The line up to the "/" that ends its record. A "/" between quotes ends none.
std::string processSlashes(std::string_view zLine);

/// Cuts a line behind iSlash, its first "/", which moves on when a quote follows it.
void updateEclipseLine(std::string& zLine, std::int32_t& iSlash, std::int32_t& iLength, bool& qOK,
                       Session& session = Session::process());

/// The field of a keyword: the first 8 characters of a line of 9 or more, otherwise the line; trimmed.
std::string ExtractKeyword(std::string_view zLine);

/// The arguments of one record. qOK False with none of them for a line that has nothing to split.
void processEclipseArgumentLine(std::string_view zLine, std::vector<std::string>& vArgs, std::int32_t& iArgs,
                                bool& qOK, Session& session = Session::process());

/// The same with values; sValues only grows.
void processNumericEclipseArgumentLine(std::string_view zLine, std::vector<float>& sValues,
                                       std::int32_t& iValues, bool& qOK,
                                       Session& session = Session::process());

/// Expands "3*0.5". Neither zList nor iCount change, with qOK True, where what precedes "*" is no number.
void InterpretMultipleArgs(std::string_view zToken, std::vector<std::string>& zList, std::int32_t& iCount,
                           bool& qOK, Session& session = Session::process());

/// Puts the words of one line behind the first iOffset values of an array. iWords takes the number of values.
/// The form for integers enlarges the array; the others end in a subscript fault at its end.
void copyEclipseLongArrayLine(const std::vector<std::string>& zWords, std::int32_t& iWords,
                              std::int32_t iOffset, std::vector<std::int32_t>& xArray, bool& qOK,
                              Session& session = Session::process());
void copyEclipseSingleArrayLine(const std::vector<std::string>& zWords, std::int32_t& iWords,
                                std::int32_t iOffset, std::vector<float>& xArray, bool& qOK,
                                Session& session = Session::process());
void copyEclipseDoubleArrayLine(const std::vector<std::string>& zWords, std::int32_t& iWords,
                                std::int32_t iOffset, std::vector<double>& xArray, bool& qOK,
                                Session& session = Session::process());

/// The values of an array of up to iCount integers from the first iLines lines. xArray ends at the last value
/// that the lines have.
void getEclipseLongArray(const std::vector<std::string>& zLines, std::int32_t iLines, std::int32_t iCount,
                         std::vector<std::int32_t>& xArray, bool& qOK, Session& session = Session::process());

/// Spreads iCount values over a box of a cell array of iNX by iNY by any number of cells. A list that runs
/// out leaves the other cells.
void copyBOXIntoLongArray(const std::vector<std::int32_t>& xSource, std::int32_t iCount, std::int32_t iI1,
                          std::int32_t iI2, std::int32_t iJ1, std::int32_t iJ2, std::int32_t iK1,
                          std::int32_t iK2, std::int32_t iNX, std::int32_t iNY,
                          std::vector<std::int32_t>& xTarget, bool& qOK,
                          Session& session = Session::process());

/// What the records of PATHS define: folders by alias.
using DeckAliases = std::map<std::string, std::string, std::less<>>;

/// The file that the first line that is no comment names; qOK False when there is none. With qBackslash each
/// "/" becomes "\". "$ALIAS" in front is replaced by its folder; one that is not in `aliases` is left out,
/// with the separator behind it.
void getIncludeFileName(const std::vector<std::string>& zLines, std::int32_t iLines, std::string& zName,
                        bool& qOK, bool qBackslash, const DeckAliases& aliases = {},
                        Session& session = Session::process());

/// Lays the first iArgs arguments of a record over the first iDefaults defaults.
void mergeArguments(const std::vector<std::string>& vArgs, std::int32_t iArgs,
                    const std::vector<std::string>& vDefaults, std::int32_t iDefaults,
                    std::vector<std::string>& zMerged, std::int32_t& iMerged, bool& qOK,
                    Session& session = Session::process());

}  // namespace lumbarn
