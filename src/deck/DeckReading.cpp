#include "DeckReading.h"

#include <algorithm>
#include <limits>

#include "../support/Guarded.h"
#include "../text/DeckLine.h"
#include "ECLCommonFunctions.h"
#include "EclipseDictionary.h"
#include "HostArray.h"
#include "HostNumbers.h"
#include "HostRecord.h"
#include "KeywordForms.h"
#include "qvEclipseData.h"
#include "qvEclipseKeys.h"

namespace lumbarn {

namespace {

std::int32_t countOf(std::size_t size) {
  return static_cast<std::int32_t>(
      std::min(size, static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())));
}

Diagnosis diagnosisAt(const DeckLines& deck, NamedMessage message, std::string_view found) {
  constexpr std::size_t shown = 40;
  return {.message = message,
          .path = deck.path(),
          .offset = deck.offset(),
          .line = deck.currentLine(),
          .found = std::string(found.substr(0, shown))};
}

}  // namespace

bool DeckReading::takesLine(DeckLines& deck, const Request& request, std::vector<std::string>& lines,
                            bool& last) {
  std::string line = processEclipseLine(deck.line(), request.upper);
  if (!checkifEclipseCommentLine(deck.line()) && !checkifEclipseCommentLine(line)) {
    // Deliberate: the field is that of the line with its comment, as for the keyword itself, so that
    // "OIL -- phase" is no keyword.
    const std::string key = ExtractKeyword(line);
    line.resize(trimBlanks(std::string_view(line).substr(0, commentAt(line))).size());
    const std::size_t slash = line.find('/');
    if (slash != line.npos) {
      const auto behindName = [&] { return slashBehindName(line).value_or(line.size() - 1) + 1; };
      line.resize(request.slashes == Slashes::BehindWords ? behindName() : endOfRecord(line, slash));
      if (request.terminator == "/") last = request.slashes == Slashes::Anywhere || line.ends_with('/');
    } else if (isDeckLetter(line[0])) {
      std::int32_t row = 0, keySection = 0, iClass = 0;
      bool qOK = false;
      lookupKeyword(key, row, keySection, iClass, iSection, qOK, *session_);
      if (row > 0) return false;
      reportUnknown(deck, line);
      lines.emplace_back();  // deliberate: such a line takes two slots
    }
  }
  captureLine(deck.line());
  lines.push_back(std::move(line));
  return true;
}

/// Tells of a keyword that is data here for want of a row in the dictionary.
void DeckReading::reportUnknown(const DeckLines& deck, const std::string& word) {
  if (!isKeywordWord(word) || KeywordForms::sectionsOf(word) == 0) return;
  Diagnosis diagnosis = diagnosisAt(deck, Message::DeckUnknownKeyword, word);
  diagnosis.action = "taken for data of the keyword before it";
  session_->diagnose(std::move(diagnosis));
}

bool DeckReading::readLines(DeckLines& deck, const Request& request, std::vector<std::string>& lines) {
  bool last = false;
  while (true) {
    deck.notePosition();
    if (!deck.next()) return false;
    if (!takesLine(deck, request, lines, last)) {
      deck.returnToPosition();
      return true;
    }
    deck.forgetPosition();
    if (last || !deck.hasMoreData()) return true;
    if (session_->cancelled()) return false;
  }
}

void DeckReading::readKeywordArguments(DeckLines& deck, std::vector<std::string>& zLines,
                                       std::int32_t& iLines, bool& qOK, std::string_view zTerminator,
                                       bool qUpper) {
  zLines.clear();
  guarded(*session_, qOK, className(), "readKeywordArguments", [&] {
    const bool complete = readLines(deck, {.terminator = zTerminator, .upper = qUpper}, zLines);
    if (complete) joinRecords(zLines);
    return complete;
  });
  iLines = countOf(zLines.size());
}

void DeckReading::readFileNameArguments(DeckLines& deck, std::vector<std::string>& zLines,
                                        std::int32_t& iLines, bool& qOK) {
  zLines.clear();
  guarded(*session_, qOK, className(), "readKeywordArguments", [&] {
    return readLines(deck, {.terminator = "/", .upper = false, .slashes = Slashes::BehindWords}, zLines);
  });
  iLines = countOf(zLines.size());
}

void DeckReading::ReadMultiLineKeywordArguments(DeckLines& deck, std::vector<std::string>& zLines,
                                                std::int32_t& iLines, bool& qOK, std::string_view zTerminator,
                                                bool qJoin) {
  zLines.clear();
  guarded(*session_, qOK, className(), "ReadMultiLineKeywordArguments", [&] {
    const bool complete = readLines(deck, {.terminator = zTerminator, .slashes = Slashes::Anywhere}, zLines);
    if (complete && qJoin) joinRecordsInPlace(zLines);
    return complete;
  });
  iLines = countOf(zLines.size());
}

void DeckReading::reportChanged(const DeckLines& deck, std::string_view word) {
  if (word.empty()) return;
  Diagnosis diagnosis = diagnosisAt(deck, Message::DeckValue, word);
  diagnosis.expected = "numbers divided by blanks";
  diagnosis.action = "read as far as it is a number, as 0 where it is none";
  session_->diagnose(std::move(diagnosis));
}

template <class T>
bool DeckReading::readArray(DeckLines& deck, std::int32_t count, std::vector<T>& array) {
  const auto end = static_cast<std::size_t>(std::max(count, 0));
  // A value takes two characters at least, unless it is repeated.
  const std::size_t left = (deck.size() - std::min(deck.offset(), deck.size())) / 2 + 1;
  HostArray<T> fill(array, 0, end, *session_, left);
  while (true) {
    if (!deck.next()) return false;
    const std::string_view line = trimBlanks(deck.line());
    captureLine(deck.line());
    if (line == "/") return true;
    if (!checkifEclipseCommentLine(line)) {
      try {
        fill.takeLine(line);
      } catch (...) {
        reportChanged(deck, fill.changed());
        throw;
      }
      reportChanged(deck, fill.changed());
      if (fill.full() || line.find('/') != line.npos) return true;
    }
    if (!deck.hasMoreData()) return true;
    if (session_->cancelled()) return false;
  }
}

void DeckReading::readEclipseSingleArray(DeckLines& deck, std::int32_t& iCount, std::vector<float>& sArray,
                                         bool& qOK) {
  sArray.clear();
  guarded(*session_, qOK, className(), "readEclipseSingleArray",
          [&] { return readArray(deck, iCount, sArray); });
  iCount = countOf(sArray.size());
}

void DeckReading::readEclipseDoubleArray(DeckLines& deck, std::int32_t& iCount, std::vector<double>& dArray,
                                         bool& qOK) {
  dArray.clear();
  guarded(*session_, qOK, className(), "readEclipseDoubleArray",
          [&] { return readArray(deck, iCount, dArray); });
  iCount = countOf(dArray.size());
}

void DeckReading::readEclipseLongArray(DeckLines& deck, std::int32_t& iCount,
                                       std::vector<std::int32_t>& lArray, bool& qOK) {
  lArray.clear();
  guarded(*session_, qOK, className(), "readEclipseLongArray",
          [&] { return readArray(deck, iCount, lArray); });
  iCount = countOf(lArray.size());
}

bool DeckReading::argumentsOf(DeckLines& deck, bool upper, std::vector<std::string>& arguments) {
  std::vector<std::string> lines;
  const bool complete = readLines(deck, {.terminator = "/", .upper = upper}, lines);
  if (!complete) return false;
  joinRecords(lines);
  RepeatBudget budget;
  for (const std::string& line : lines) {
    if (!checkifEclipseCommentLine(line)) splitRecord(line, arguments, budget);
  }
  return true;
}

void DeckReading::getArgumentList(DeckLines& deck, std::vector<std::string>& vArgs, std::int32_t& iArgs,
                                  bool& qOK, bool qUpper) {
  vArgs.clear();
  guarded(*session_, qOK, className(), "getArgumentList", [&] { return argumentsOf(deck, qUpper, vArgs); });
  iArgs = countOf(vArgs.size());
}

void DeckReading::ArgumentList(DeckLines& deck, std::string_view zKeyword, std::vector<std::string>& zMerged,
                               std::int32_t& iMerged, bool& qOK) {
  zMerged.clear();
  guarded(*session_, qOK, className(), "ArgumentList", [&] {
    std::vector<std::string> arguments;
    const bool complete = argumentsOf(deck, true, arguments);
    if (complete) zMerged = mergedArguments(arguments, defaultArguments(zKeyword));
    return complete;
  });
  iMerged = countOf(zMerged.size());
}

}  // namespace lumbarn
