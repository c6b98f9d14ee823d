#include "ECLCommonFunctions.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "HostNumbers.h"
#include "HostRecord.h"

namespace lumbarn {

namespace {

/// A row of codes: words that begin with `begin`, or are it.
struct WordCode {
  std::string_view begin;
  bool whole;
  std::int32_t code;
};

template <std::size_t Size>
std::int32_t codeOf(std::string_view word, const WordCode (&codes)[Size]) {
  const std::string text = upper(word);
  const auto* found = std::find_if(std::begin(codes), std::end(codes), [&](const WordCode& row) {
    return row.whole ? text == row.begin : text.starts_with(row.begin);
  });
  return found == std::end(codes) ? -1 : found->code;
}

}  // namespace

bool checkifEclipseCommentLine(std::string_view zLine) {
  if (zLine.size() < 2) return zLine.empty() || zLine == "\r" || zLine == "\n" || zLine == "\t";
  return zLine.starts_with("--") || zLine.starts_with("**") || zLine.starts_with("==");
}

std::string processCaseLine(std::string_view zLine) {
  if (checkIfCommentLine(zLine)) return std::string(zLine);
  std::string line = upper(zLine);
  std::replace(line.begin(), line.end(), '\t', ' ');
  return std::string(trimBlanks(line));
}

void compressEclipseArgLines(std::vector<std::string>& zLines, std::int32_t& iLines, bool& qOK,
                             Session& session) {
  guarded(session, qOK, "ECLCommonFunctions", "compressEclipseArgLines", [&] {
    const auto count = static_cast<std::size_t>(std::max(iLines, 0));
    if (count > zLines.size()) throw Fault(FaultNumber::Subscript);
    zLines.resize(count);
    joinRecords(zLines);
    iLines = static_cast<std::int32_t>(zLines.size());
  });
}

float getSingleArgument(std::string_view zArg) {
  constexpr double largest = std::numeric_limits<float>::max();
  const auto number = hostNumber(zArg);
  if (!number || std::abs(*number) > largest) return static_cast<float>(deckDefault);
  return static_cast<float>(*number);
}

double getDoubleArgument(std::string_view zArg) { return hostNumber(zArg).value_or(deckDefault); }

std::int32_t getIntegerArgument(std::string_view zArg) {
  const auto number = hostNumber(zArg);
  const double rounded = number ? std::nearbyint(*number) : deckDefault;
  if (rounded < std::numeric_limits<std::int32_t>::min() ||
      rounded > std::numeric_limits<std::int32_t>::max())
    return deckDefault;
  return static_cast<std::int32_t>(rounded);
}

std::string UpdateEclipseStringArgument(std::string_view zArg, std::string_view zDefault) {
  std::string_view value = zArg.empty() ? zDefault : zArg;
  const bool quoted = value.size() > 1 && value.front() == '\'' && value.back() == '\'';
  return std::string(quoted ? value.substr(1, value.size() - 2) : value);
}

std::int32_t getWellStatus(std::string_view zArg) {
  static constexpr WordCode codes[] = {{"O", false, 2}, {"ST", false, 1}, {"SH", false, 3}, {"A", false, 4}};
  return codeOf(zArg, codes);
}

std::int32_t getWellPhase(std::string_view zArg) {
  static constexpr WordCode codes[] = {{"O", false, 1}, {"W", false, 2}, {"G", false, 3}, {"L", false, 4}};
  return codeOf(zArg, codes);
}

std::int32_t getWellMode(std::string_view zArg) {
  static constexpr WordCode codes[] = {
      {"O", false, 1}, {"WG", false, 9},  {"W", false, 2},    {"GR", false, 8},   {"G", false, 3},
      {"L", false, 4}, {"RE", false, 5},  {"R", false, 15},   {"B", false, 7},    {"TM", false, 10},
      {"T", false, 6}, {"ST", false, 11}, {"SATP", true, 12}, {"SATT", true, 13}, {"C", false, 14}};
  return codeOf(zArg, codes);
}

}  // namespace lumbarn
