#include "FileSets.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "../support/Guarded.h"
#include "../support/Text.h"
#include "Extensions.h"
#include "Folder.h"

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

// The sets that a file can stand for, the likeliest first.
std::vector<ExtensionSet> candidateSets(const std::string& extension, FileKind kind) {
  const ExtensionMeaning meaning = meaningOf(extension);
  if (meaning.multiple()) return {*meaning.set};
  const bool shortNames = meaning.set && meaning.set->shortNames;
  const bool indexOnly = meaning.kind == FileKind::Rsspec;
  if (meaning.set && (kind == meaning.set->kind || kind == FileKind::Unknown) && !indexOnly)
    return {*meaning.set};
  if (indexOnly && kind == FileKind::Unknown) kind = FileKind::Restart;
  std::vector<ExtensionSet> candidates;
  for (const bool formatted : {meaning.formatted, !meaning.formatted}) {
    if (const ExtensionSet* set = findExtensionSet(kind, formatted, shortNames)) candidates.push_back(*set);
  }
  return candidates;
}

struct Found {
  std::string name;
  std::size_t candidate;  // which set
  std::int32_t step;
  bool otherBase;  // differs from the given base name in case
  bool otherCase;  // its extension is not in the case of the given one
};

// Of all that matches keeps one set and one file of each step, in order of step, which is the order of
// patterns and, within a pattern, of digits.
void keepOneSet(std::vector<Found>& found) {
  const auto rank = [](const Found& file) { return std::pair(file.otherBase, file.candidate); };
  const auto best = std::ranges::min_element(found, {}, rank);
  if (best == found.end()) return;
  std::erase_if(found, [&, wanted = rank(*best)](const Found& file) { return rank(file) != wanted; });
  std::ranges::stable_sort(found, {}, [](const Found& file) { return std::pair(file.step, file.otherCase); });
  const auto sameStep = [](const Found& a, const Found& b) { return a.step == b.step; };
  found.erase(std::unique(found.begin(), found.end(), sameStep), found.end());
}

std::vector<Found> findStepFiles(const FileName& given, const std::vector<ExtensionSet>& candidates,
                                 Session& session, bool& qOK) {
  std::vector<Found> found;
  const auto wanted = [&](std::string_view name) {
    if (name.size() <= given.base.size() || !equalNoCase(name.substr(0, given.base.size()), given.base))
      return false;
    const FileName parts(name);
    if (parts.base.size() != given.base.size()) return false;
    return std::ranges::any_of(candidates,
                               [&](const auto& set) { return set.stepOf(parts.extension).has_value(); });
  };
  std::vector<std::string> names;
  std::string why;
  qOK = listFolder(given.folder, wanted, names, why);
  if (!qOK) {
    session.diagnose(Diagnosis{.path = given.folder.empty() ? "." : given.folder,
                               .problem = "the folder cannot be listed: " + why,
                               .action = "no step files were looked for"});
  }
  for (std::string& name : names) {
    const FileName parts(name);
    const bool otherCase = isUpperCase(parts.extension) != isUpperCase(given.extension);
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      if (const auto step = candidates[i].stepOf(parts.extension)) {
        found.push_back({name, i, *step, parts.base != given.base, otherCase});
        break;
      }
    }
  }
  keepOneSet(found);
  return found;
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
    std::vector<ExtensionSet> candidates = candidateSets(given.extension, kindOfWord(zKind));
    std::string letter;
    std::int32_t number = -1;
    if (const std::int32_t digits = checkMultipleExtension(given.extension, letter, number);
        digits > 0 && !meaningOf(given.extension).multiple()) {
      // A numbered file of a series that no table has: its own letter is the set.
      candidates = {{.kind = FileKind::Unknown, .digits = digits, .stems = {letter}}};
    }
    if (qUnified || candidates.empty()) return true;
    bool listed = false;
    for (const Found& file : findStepFiles(given, candidates, session, listed)) {
      zFiles.push_back(given.folder + file.name);
    }
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
