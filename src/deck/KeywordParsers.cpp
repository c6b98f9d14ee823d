#include "KeywordParsers.h"

#include <algorithm>
#include <utility>

#include "../support/Dates.h"
#include "ECLCommonFunctions.h"
#include "qvEclipseData.h"

namespace lumbarn {

namespace {

constexpr std::string_view defaulted = "*";

bool given(std::span<const std::string> arguments, std::size_t place) {
  return place < arguments.size() && arguments[place] != defaulted;
}

}  // namespace

std::vector<std::string> HostKeyword::arguments(bool qUpper) const {
  std::vector<std::string> list;
  std::int32_t count = 0;
  bool qOK = false;
  reading.getArgumentList(file, list, count, qOK, qUpper);
  list.resize(static_cast<std::size_t>(std::max(count, 0)));
  return list;
}

std::vector<std::string> HostKeyword::mergedArguments() const {
  std::vector<std::string> list;
  std::int32_t count = 0;
  bool qOK = false;
  reading.ArgumentList(file, zKeyword, list, count, qOK);
  list.resize(static_cast<std::size_t>(std::max(count, 0)));
  return list;
}

std::vector<std::vector<std::string>> HostKeyword::records() const {
  std::vector<std::string> lines;
  std::int32_t count = 0;
  bool qOK = false;
  reading.readKeywordArguments(file, lines, count, qOK, "", true);
  lines.resize(static_cast<std::size_t>(std::max(count, 0)));
  std::vector<std::vector<std::string>> records;
  for (const std::string& line : lines) {
    if (checkifEclipseCommentLine(line)) continue;
    std::vector<std::string> list;
    processEclipseArgumentLine(line, list, count, qOK, session);
    list.resize(qOK ? static_cast<std::size_t>(std::max(count, 0)) : 0);
    records.push_back(std::move(list));
  }
  return records;
}

const ParserRow* findParser(std::string_view zRoutine) {
  for (const auto& rows : {runspecParsers(), gridParsers()}) {
    for (const ParserRow& row : rows) {
      if (row.zRoutine == zRoutine) return &row;
    }
  }
  return nullptr;
}

std::int32_t integerAt(std::span<const std::string> arguments, std::size_t place) {
  return place < arguments.size() ? getIntegerArgument(arguments[place]) : noDeckValue;
}

float singleAt(std::span<const std::string> arguments, std::size_t place) {
  return place < arguments.size() ? getSingleArgument(arguments[place]) : static_cast<float>(noDeckValue);
}

void takeInteger(std::span<const std::string> arguments, std::size_t place, std::int32_t& value) {
  if (const std::int32_t number = integerAt(arguments, place); number != noDeckValue) value = number;
}

std::string textAt(std::span<const std::string> arguments, std::size_t place, std::string otherwise) {
  return given(arguments, place) ? arguments[place] : std::move(otherwise);
}

void getEclipseDate(std::span<const std::string> arguments, DeckDate& date) {
  constexpr std::int32_t lastDay = 31;
  if (arguments.size() < 3) return;
  const std::int32_t day = integerAt(arguments, 0), year = integerAt(arguments, 2);
  const int month = monthNumber(textAt(arguments, 1));
  if (day >= 1 && day <= lastDay) date.iDay = day;
  if (month >= 1) date.iMonth = month;
  if (year >= 1) date.iYear = year;
}

void parseSUMMARYKeyWord(const HostKeyword& keyword) {
  DeckKeywordRecord record{.zName = std::string(keyword.zKeyword), .iSection = 7, .zArgs = {}, .nArgs = 0};
  // WARN is the one of them that has no data, and would take those of the keyword behind it.
  if (keyword.zKeyword.starts_with('W') && keyword.zKeyword != "WARN") record.zArgs = keyword.arguments();
  record.nArgs = static_cast<std::int32_t>(record.zArgs.size());
  keyword.deck.summary.push_back(std::move(record));
}

}  // namespace lumbarn
