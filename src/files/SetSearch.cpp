#include "SetSearch.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "../support/Text.h"
#include "Folder.h"

namespace lumbarn {
namespace {

constexpr std::int32_t unifiedFile = -1;

struct Found {
  std::string name;
  std::size_t candidate;  // which set
  std::int32_t step;      // or `unifiedFile`
  bool otherBase;         // differs from the given base name in letter case
  bool otherCase;         // its extension is not in the letter case of the given one
};

std::optional<std::int32_t> stepIn(const ExtensionSet& set, const std::string& extension) {
  if (!set.unified.empty() && equalNoCase(set.unified, extension)) return unifiedFile;
  return set.stepOf(extension);
}

// Of all files that match, keeps one set and one file of each step, in order of step.
void keepOneSet(std::vector<Found>& found) {
  const auto rank = [](const Found& file) { return std::pair(file.otherBase, file.candidate); };
  const auto best = std::ranges::min_element(found, {}, rank);
  if (best == found.end()) return;
  std::erase_if(found, [&, wanted = rank(*best)](const Found& file) { return rank(file) != wanted; });
  std::ranges::stable_sort(found, {}, [](const Found& file) { return std::pair(file.step, file.otherCase); });
  const auto sameStep = [](const Found& a, const Found& b) { return a.step == b.step; };
  found.erase(std::unique(found.begin(), found.end(), sameStep), found.end());
}

bool listNames(const FileName& given, Session& session, std::vector<std::string>& names) {
  const auto wanted = [&](std::string_view name) {
    const bool longer = name.size() > given.base.size();
    return longer && name[given.base.size()] == '.' &&
           equalNoCase(name.substr(0, given.base.size()), given.base) &&
           FileName(name).base.size() == given.base.size();
  };
  std::string why;
  if (listFolder(given.folder, wanted, names, why)) return true;
  session.diagnose(Diagnosis{.message = Message::FolderList,
                             .path = given.folder.empty() ? "." : given.folder,
                             .found = why,
                             .action = "no step files were looked for"});
  return false;
}

}  // namespace

std::vector<ExtensionSet> candidateSets(const std::string& extension, FileKind kind) {
  const ExtensionMeaning meaning = meaningOf(extension);
  if (meaning.multiple()) return {*meaning.set};
  std::string letter;
  std::int32_t number = -1;
  if (const std::int32_t digits = checkMultipleExtension(extension, letter, number); digits > 0) {
    // A numbered file of a series that is in no table: its own letter is the set.
    const std::string_view stem = std::string_view(extension).substr(0, letter.size());
    return {{.kind = FileKind::Unknown, .digits = digits, .stems = {stem}}};
  }
  const bool shortNames = meaning.set && meaning.set->shortNames;
  const bool indexOnly = meaning.kind == FileKind::Rsspec;
  if (meaning.set && (kind == meaning.set->kind || kind == FileKind::Unknown) && !indexOnly)
    return {*meaning.set};
  if (indexOnly && kind == FileKind::Unknown) kind = FileKind::Restart;
  const bool formatted = meaning.formatted && !isText(meaning.kind);
  std::vector<ExtensionSet> candidates;
  for (const bool generation : {shortNames, !shortNames}) {
    for (const bool form : {formatted, !formatted}) {
      if (const ExtensionSet* set = findExtensionSet(kind, form, generation)) candidates.push_back(*set);
    }
  }
  return candidates;
}

bool findSetFiles(const FileName& given, const std::vector<ExtensionSet>& candidates, Session& session,
                  SetFiles& files) {
  files = {};
  std::vector<std::string> names;
  if (!listNames(given, session, names)) return false;
  std::vector<Found> found;
  for (std::string& name : names) {
    const FileName parts(name);
    const bool otherCase = isUpperCase(parts.extension) != isUpperCase(given.extension);
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      if (const auto step = stepIn(candidates[i], parts.extension)) {
        found.push_back({std::move(name), i, *step, parts.base != given.base, otherCase});
        break;
      }
    }
  }
  keepOneSet(found);
  for (const Found& file : found) {
    if (file.step == unifiedFile) {
      files.unified = given.folder + file.name;
    } else {
      files.steps.push_back(given.folder + file.name);
    }
  }
  return true;
}

}  // namespace lumbarn
