#include "FileSets.h"

#include <algorithm>
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

// Index, from 1, of the first file of that step or a later one; 0 when there is none.
std::int32_t searchStep(const std::vector<std::string>& zFiles, std::int32_t nFiles, std::int32_t step) {
  for (std::int32_t i = 0; i < nFiles; ++i) {
    if (GetNumericPartOfFileName(zFiles[static_cast<std::size_t>(i)]) >= step) return i + 1;
  }
  return 0;
}

}  // namespace

void setEclipseFileName(std::string_view zFile, std::string_view zKind, std::string& zExtension,
                        bool qUnified, bool qFormatted, std::string& zName, bool& qOK) {
  const FileName given(zFile);
  const ExtensionMeaning meaning = meaningOf(given.extension);
  const ExtensionSet* set =
      findExtensionSet(kindOfWord(zKind), qFormatted, meaning.set && meaning.set->shortNames);
  zExtension.clear();
  zName.clear();
  if (set) zExtension = qUnified ? std::string(set->unified) : set->extensionOf(std::max(meaning.step, 0));
  qOK = !zExtension.empty();
  if (!qOK) return;
  if (isUpperCase(given.extension)) zExtension = upper(zExtension);
  zName = given.folder + given.base + '.' + zExtension;
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
    if (!listed || (iStart < 0 && iEnd < 0)) return listed;
    bool cut = false;
    GetFileListUsingStartAndEnd(iStart, iEnd, candidates[0].formatted, qUnified, given.extension, nFiles,
                                zFiles, cut);
    return cut;
  });
}

void GetFileListUsingStartAndEnd(std::int32_t iStart, std::int32_t iEnd, bool /*qFormatted*/, bool qUnified,
                                 std::string_view /*zExtension*/, std::int32_t& nFiles,
                                 std::vector<std::string>& zFiles, bool& qOK) {
  qOK = true;
  nFiles = std::clamp<std::int32_t>(nFiles, 0, static_cast<std::int32_t>(zFiles.size()));
  if (iEnd < 0) iEnd = iStart;
  if (iStart > iEnd) std::swap(iStart, iEnd);
  if (nFiles == 0 || iStart < 0 || qUnified) return;
  const std::int32_t first = searchStep(zFiles, nFiles, iStart);
  std::int32_t last = iStart == iEnd ? first : searchStep(zFiles, nFiles, iEnd);
  // Deliberate, as hosts know it: an end behind the last file means the first file alone, and a list that is
  // cut to nothing has one empty entry.
  if (last == 0) last = first;
  if (first == 0) {
    nFiles = 0;
    zFiles.assign(1, std::string());
    return;
  }
  if (last - first + 1 == nFiles) return;
  zFiles.resize(static_cast<std::size_t>(last));
  zFiles.erase(zFiles.begin(), zFiles.begin() + (first - 1));
  nFiles = static_cast<std::int32_t>(zFiles.size());
}

void setEclipseSequenceLimits(std::string_view zKind, bool qUnified, std::int32_t iStart, std::int32_t iEnd,
                              std::int32_t& iFirst, std::int32_t& iLast, bool& qOK) {
  qOK = true;
  if (!qUnified) return;
  if (iStart >= 0) {
    iFirst = iStart;
    iLast = iEnd < 0 ? iStart : std::max(iEnd, iFirst);
    return;
  }
  iFirst = iLast = -1;
  if (iEnd < 0) return;
  const auto is = [&](std::string_view word) { return equalNoCase(trim(zKind), word); };
  // A summary has no step 0; restarts do.
  iFirst = is("STREAMLINE") || is("SOLUTION") || is("SAVE") ? 0 : 1;
  iLast = iEnd;
}

void checkSequence(bool qUnified, std::int32_t iStep, std::int32_t iFirst, std::int32_t iLast, bool& qUse,
                   bool& qPast, bool& qOK) {
  const bool before = qUnified && iFirst >= 0 && iStep < iFirst;
  qPast = qUnified && !before && iLast >= 0 && iStep > iLast;
  qUse = !before && !qPast;
  qOK = true;
}

void checkForExit(bool qUnified, std::int32_t iStep, std::int32_t iLast, bool& qExit, bool& qOK) {
  qExit = qUnified && iLast >= 0 && iStep >= iLast;
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
