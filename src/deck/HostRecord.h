#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qvEclipseData.h"

namespace lumbarn {

/// What the routines of `qvEclipseData` do, as functions that give values and throw faults.

/// "3*0.5": how often, and what; 1 and the word for one that begins with a letter or a quote, "*" where
/// nothing follows. Nothing for a word in which no number precedes the "*".
struct HostRepeat {
  std::int32_t count = 1;
  std::string value;
};
std::optional<HostRepeat> hostRepeat(std::string_view word);

/// How much memory counts may still ask for beyond what the text of a record takes. Keeps a line of a few
/// bytes from taking all there is.
struct RepeatBudget {
  std::size_t bytes = std::size_t{8} << 20U;
  /// Throws Fault 7 when a value cannot be had that often.
  void take(std::size_t times, std::size_t size);
};

/// The arguments of a record, behind those that the list has; false for a line that has nothing to split.
bool splitRecord(std::string_view line, std::vector<std::string>& arguments, RepeatBudget& budget);

/// Where a line is cut for its comment, the first "--" outside quotes; its end when it has none.
std::size_t commentAt(std::string_view line);
/// Where a record ends, behind its "/", given the first "/" of the line: a "/" between quotes ends none.
std::size_t endOfRecord(std::string_view line, std::size_t slash);
/// Where the "/" is that ends a record with the name of a file: outside quotes, and in front of a blank, at
/// the end of the line, or behind a quote. Nothing when there is none.
std::optional<std::size_t> slashBehindName(std::string_view line);

/// Cuts a line behind a "/", given by its position from 1 or 0 for none, and gives the "/" that was found to
/// count: see `updateEclipseLine`.
std::size_t cutBehindSlash(std::string& line, std::size_t slash);

std::optional<std::string> includeFileName(std::span<const std::string> lines, const DeckAliases& aliases);
std::vector<std::string> mergedArguments(std::span<const std::string> arguments,
                                         std::span<const std::string> defaults);
/// One string for each record; the lines themselves when none is closed.
void joinRecords(std::vector<std::string>& lines);
/// The same in place: the slots of the other lines become empty.
void joinRecordsInPlace(std::vector<std::string>& lines);

}  // namespace lumbarn
