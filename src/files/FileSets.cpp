#include "FileSets.h"

#include <algorithm>
#include <span>
#include <utility>

#include "../support/Guarded.h"
#include "../support/Text.h"
#include "Extensions.h"
#include "SetSearch.h"

namespace lumbarn {
namespace {

FileKind kindOfWord(std::string_view zKind) {
  constexpr std::pair<std::string_view, FileKind> words[] = {{"SUMMARY", FileKind::Summary},
                                                             {"RESTART", FileKind::Restart},
                                                             {"SOLUTION", FileKind::Restart},
                                                             {"SAVE", FileKind::Save},
                                                             {"STREAMLINE", FileKind::Streamline}};
  for (const auto& [word, kind] : words) {
    if (equalNoCase(trim(zKind), word)) return kind;
  }
  return FileKind::Unknown;
}

/// Index, from 1, of the first file of that step or a later one; 0 when there is none.
std::size_t searchStep(std::span<const std::string> files, std::int32_t step) {
  const auto found =
      std::ranges::find_if(files, [&](const auto& file) { return GetNumericPartOfFileName(file) >= step; });
  return found == files.end() ? 0 : static_cast<std::size_t>(found - files.begin()) + 1;
}

/// Cuts the first `count` files of a list to steps; gives how many remain.
std::size_t cutToSteps(std::int32_t iStart, std::int32_t iEnd, std::size_t count,
                       std::vector<std::string>& files) {
  if (iEnd < 0) iEnd = iStart;
  if (iStart > iEnd) std::swap(iStart, iEnd);
  if (count == 0 || iStart < 0) return count;
  const auto listed = std::span<const std::string>(files).first(count);
  const std::size_t first = searchStep(listed, iStart);
  std::size_t last = iStart == iEnd ? first : searchStep(listed, iEnd);
  // Deliberate, as hosts know it: an end behind the last file means the first file alone, and a list that is
  // cut to nothing has one empty entry.
  if (last == 0) last = first;
  if (first == 0) {
    files.assign(1, std::string());
    return 0;
  }
  if (last - first + 1 == count) return count;
  files.resize(last);
  files.erase(files.begin(), files.begin() + static_cast<std::ptrdiff_t>(first - 1));
  return files.size();
}

}  // namespace

SetFileName fileNameOfKind(std::string_view zFile, std::string_view zKind, bool qUnified, bool qFormatted) {
  const FileName given(zFile);
  const ExtensionMeaning meaning = meaningOf(given.extension);
  const ExtensionSet* set =
      findExtensionSet(kindOfWord(zKind), qFormatted, meaning.set && meaning.set->shortNames);
  SetFileName found;
  if (set) {
    found.extension = qUnified ? std::string(set->unified) : set->extensionOf(std::max(meaning.step, 0));
  }
  if (found.extension.empty()) return {};
  if (isUpperCase(given.extension)) found.extension = upper(found.extension);
  found.name = given.folder + given.base + '.' + found.extension;
  return found;
}

void setEclipseFileName(std::string_view zFile, std::string_view zKind, std::string& zExtension,
                        bool qUnified, bool qFormatted, std::string& zName, bool& qOK) {
  auto found = fileNameOfKind(zFile, zKind, qUnified, qFormatted);
  qOK = !found.name.empty();
  zExtension = std::move(found.extension);
  zName = std::move(found.name);
}

void GetFileNamesToLoad(std::string_view zFile, std::int32_t iStart, std::int32_t iEnd, bool qUnified,
                        std::string_view zKind, std::int32_t& nFiles, std::vector<std::string>& zFiles,
                        bool& qOK, Session& session) {
  const FileName given(zFile);
  nFiles = 0;
  zFiles.clear();
  guarded(session, qOK, "FileSets", "GetFileNamesToLoad", [&] {
    const auto candidates = candidateSets(given.extension, kindOfWord(zKind));
    if (qUnified || candidates.empty()) return true;
    SetFiles found;
    const bool listed = findSetFiles(given, candidates, session, found);
    zFiles = std::move(found.steps);
    nFiles = static_cast<std::int32_t>(zFiles.size());
    if (listed && (iStart >= 0 || iEnd >= 0)) {
      nFiles = static_cast<std::int32_t>(cutToSteps(iStart, iEnd, zFiles.size(), zFiles));
    }
    return listed;
  });
}

void GetFileListUsingStartAndEnd(std::int32_t iStart, std::int32_t iEnd, bool /*qFormatted*/, bool qUnified,
                                 std::string_view /*zExtension*/, std::int32_t& nFiles,
                                 std::vector<std::string>& zFiles, bool& qOK) {
  nFiles = std::clamp<std::int32_t>(nFiles, 0, static_cast<std::int32_t>(zFiles.size()));
  if (!qUnified) {
    nFiles = static_cast<std::int32_t>(cutToSteps(iStart, iEnd, static_cast<std::size_t>(nFiles), zFiles));
  }
  qOK = true;
}

StepLimits stepLimits(std::string_view zKind, std::int32_t iStart, std::int32_t iEnd) {
  if (iStart >= 0) return {iStart, iEnd < 0 ? iStart : std::max(iEnd, iStart)};
  if (iEnd < 0) return {};
  const auto is = [&](std::string_view word) { return equalNoCase(trim(zKind), word); };
  // A summary has no step 0; restarts do.
  return {is("STREAMLINE") || is("SOLUTION") || is("SAVE") ? 0 : 1, iEnd};
}

void setEclipseSequenceLimits(std::string_view zKind, bool qUnified, std::int32_t iStart, std::int32_t iEnd,
                              std::int32_t& iFirst, std::int32_t& iLast, bool& qOK) {
  qOK = true;
  if (!qUnified) return;
  const StepLimits limits = stepLimits(zKind, iStart, iEnd);
  iFirst = limits.first;
  iLast = limits.last;
}

void checkSequence(bool qUnified, std::int32_t iStep, std::int32_t iFirst, std::int32_t iLast, bool& qUse,
                   bool& qPast, bool& qOK) {
  const StepLimits limits{iFirst, iLast};
  qUse = !qUnified || limits.contain(iStep);
  qPast = qUnified && limits.past(iStep);
  qOK = true;
}

void checkForExit(bool qUnified, std::int32_t iStep, std::int32_t iLast, bool& qExit, bool& qOK) {
  qExit = qUnified && StepLimits{-1, iLast}.endAt(iStep);
  qOK = true;
}

bool checkExit(bool qOK, bool qMore, bool& qResult) {
  if (qOK) return false;
  qResult = !qMore;
  return true;
}

std::string TypeStringFromNum(std::int32_t iType) {
  constexpr std::string_view words[] = {"INTE", "INTE", "REAL", "DOUB", "CHAR", "LOGI"};
  return iType >= 1 && iType <= 6 ? std::string(words[iType - 1]) : std::string();
}

}  // namespace lumbarn
