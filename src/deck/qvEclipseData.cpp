#include "qvEclipseData.h"

#include <algorithm>

#include "../support/Fault.h"
#include "../support/Guarded.h"
#include "../support/Text.h"
#include "ECLCommonFunctions.h"
#include "HostArray.h"
#include "HostNumbers.h"
#include "HostRecord.h"

namespace lumbarn {

namespace {

constexpr const char* module = "qvEclipseData";

/// The first `count` entries of a list, as a caller states them.
std::span<const std::string> firstOf(const std::vector<std::string>& list, std::int32_t count) {
  const auto size = static_cast<std::size_t>(std::max(count, 0));
  if (size > list.size()) throw Fault(FaultNumber::Subscript);
  return std::span(list).first(size);
}

template <class T>
void copyWords(const std::vector<std::string>& words, std::int32_t& count, std::int32_t offset,
               std::vector<T>& array, const char* routine, bool& qOK, Session& session) {
  guarded(session, qOK, module, routine, [&] {
    const auto given = firstOf(words, count);
    count = 0;
    if (offset < 0) throw Fault(FaultNumber::Subscript);
    const auto at = static_cast<std::size_t>(offset);
    HostArray<T> fill(array, at, array.size(), session);
    const auto placed = [&] { return static_cast<std::int32_t>(fill.placed() - at); };
    for (const std::string& word : given) {
      fill.takeWord(word);
      count = placed();
    }
  });
}

/// Cells of a box, from 1.
struct CellBox {
  std::int64_t i1, i2, j1, j2, k1, k2;
};

}  // namespace

std::string processEclipseLine(std::string_view zLine, bool qUpper) {
  if (checkifEclipseCommentLine(zLine)) return std::string(zLine);
  std::string line = qUpper ? upper(zLine) : std::string(zLine);
  std::replace(line.begin(), line.end(), '\t', ' ');
  return std::string(trimBlanks(line));
}

std::string processSlashes(std::string_view zLine) {
  const std::size_t slash = zLine.find('/');
  if (slash == zLine.npos) return std::string(zLine);
  // Deliberate: the place is one of the line with its blanks in front.
  const std::string_view line = trimBlanks(zLine);
  return std::string(line.substr(0, endOfRecord(line, slash)));
}

void updateEclipseLine(std::string& zLine, std::int32_t& iSlash, std::int32_t& iLength, bool& qOK,
                       Session& session) {
  guarded(session, qOK, module, "updateEclipseLine", [&] {
    iSlash = static_cast<std::int32_t>(cutBehindSlash(zLine, static_cast<std::size_t>(std::max(iSlash, 0))));
    iLength = static_cast<std::int32_t>(zLine.size());
  });
}

std::string ExtractKeyword(std::string_view zLine) {
  constexpr std::size_t columns = 8;
  return std::string(trimBlanks(zLine.substr(0, columns)));
}

void processEclipseArgumentLine(std::string_view zLine, std::vector<std::string>& vArgs, std::int32_t& iArgs,
                                bool& qOK, Session& session) {
  vArgs.clear();
  guarded(session, qOK, module, "processEclipseArgumentLine", [&] {
    RepeatBudget budget;
    return splitRecord(zLine, vArgs, budget);
  });
  iArgs = static_cast<std::int32_t>(vArgs.size());
}

void processNumericEclipseArgumentLine(std::string_view zLine, std::vector<float>& sValues,
                                       std::int32_t& iValues, bool& qOK, Session& session) {
  iValues = 0;
  guarded(session, qOK, module, "processNumericEclipseArgumentLine", [&] {
    if (sValues.empty()) sValues.resize(1);
    RepeatBudget budget;
    std::vector<std::string> words;
    if (!splitRecord(zLine, words, budget)) return false;
    if (sValues.size() < words.size()) sValues.resize(words.size());
    bool whole = true;
    for (const std::string& word : words) {
      sValues[static_cast<std::size_t>(iValues)] = hostSingle(word, whole);
      ++iValues;
    }
    return true;
  });
}

void InterpretMultipleArgs(std::string_view zToken, std::vector<std::string>& zList, std::int32_t& iCount,
                           bool& qOK, Session& session) {
  guarded(session, qOK, module, "InterpretMultipleArgs", [&] {
    const auto repeat = hostRepeat(zToken);
    if (!repeat) return;  // deliberate: the caller finds what the last word left
    const auto count = static_cast<std::size_t>(std::max(repeat->count, 0));
    RepeatBudget().take(count, repeat->value.size());
    if (zList.size() < count) zList.resize(count);
    std::fill_n(zList.begin(), count, repeat->value);
    iCount = repeat->count;
  });
}

void copyEclipseLongArrayLine(const std::vector<std::string>& zWords, std::int32_t& iWords,
                              std::int32_t iOffset, std::vector<std::int32_t>& xArray, bool& qOK,
                              Session& session) {
  copyWords(zWords, iWords, iOffset, xArray, "copyEclipseLongArrayLine", qOK, session);
}

void copyEclipseSingleArrayLine(const std::vector<std::string>& zWords, std::int32_t& iWords,
                                std::int32_t iOffset, std::vector<float>& xArray, bool& qOK,
                                Session& session) {
  copyWords(zWords, iWords, iOffset, xArray, "copyEclipseSingleArrayLine", qOK, session);
}

void copyEclipseDoubleArrayLine(const std::vector<std::string>& zWords, std::int32_t& iWords,
                                std::int32_t iOffset, std::vector<double>& xArray, bool& qOK,
                                Session& session) {
  copyWords(zWords, iWords, iOffset, xArray, "copyEclipseDoubleArrayLine", qOK, session);
}

void getEclipseLongArray(const std::vector<std::string>& zLines, std::int32_t iLines, std::int32_t iCount,
                         std::vector<std::int32_t>& xArray, bool& qOK, Session& session) {
  xArray.clear();
  guarded(session, qOK, module, "getEclipseLongArray", [&] {
    HostArray<std::int32_t> fill(xArray, 0, static_cast<std::size_t>(std::max(iCount, 0)), session);
    for (const std::string& whole : firstOf(zLines, iLines)) {
      const std::string_view line = trimBlanks(whole);
      if (line == "/") return;
      if (checkifEclipseCommentLine(line)) continue;
      fill.takeLine(line);
      if (line.find('/') != line.npos || fill.full()) return;
    }
  });
}

void copyBOXIntoLongArray(const std::vector<std::int32_t>& xSource, std::int32_t iCount, std::int32_t iI1,
                          std::int32_t iI2, std::int32_t iJ1, std::int32_t iJ2, std::int32_t iK1,
                          std::int32_t iK2, std::int32_t iNX, std::int32_t iNY,
                          std::vector<std::int32_t>& xTarget, bool& qOK, Session& session) {
  guarded(session, qOK, module, "copyBOXIntoLongArray", [&] {
    const CellBox box{iI1, iI2, iJ1, iJ2, iK1, iK2};
    const auto count = static_cast<std::size_t>(std::max(iCount, 0));
    std::size_t used = 0;
    for (std::int64_t k = box.k1; k <= box.k2 && used < count && box.i1 <= box.i2 && box.j1 <= box.j2; ++k) {
      for (std::int64_t j = box.j1; j <= box.j2 && used < count; ++j) {
        for (std::int64_t i = box.i1; i <= box.i2 && used < count; ++i) {
          const std::int64_t cell = ((k - 1) * iNY + (j - 1)) * iNX + i;
          if (used >= xSource.size() || cell < 1 || static_cast<std::size_t>(cell) > xTarget.size())
            throw Fault(FaultNumber::Subscript);
          xTarget[static_cast<std::size_t>(cell - 1)] = xSource[used++];
        }
      }
    }
  });
}

void getIncludeFileName(const std::vector<std::string>& zLines, std::int32_t iLines, std::string& zName,
                        bool& qOK, bool qBackslash, const DeckAliases& aliases, Session& session) {
  zName.clear();
  guarded(session, qOK, module, "getIncludeFileName", [&] {
    auto name = includeFileName(firstOf(zLines, iLines), aliases);
    if (!name) return false;
    if (qBackslash) std::replace(name->begin(), name->end(), '/', '\\');
    zName = std::move(*name);
    return true;
  });
}

void mergeArguments(const std::vector<std::string>& vArgs, std::int32_t iArgs,
                    const std::vector<std::string>& vDefaults, std::int32_t iDefaults,
                    std::vector<std::string>& zMerged, std::int32_t& iMerged, bool& qOK, Session& session) {
  zMerged.clear();
  iMerged = 0;
  guarded(session, qOK, module, "mergeArguments", [&] {
    zMerged = mergedArguments(firstOf(vArgs, iArgs), firstOf(vDefaults, iDefaults));
    iMerged = static_cast<std::int32_t>(zMerged.size());
  });
}

}  // namespace lumbarn
