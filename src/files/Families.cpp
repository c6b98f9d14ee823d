#include "Families.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <tuple>
#include <utility>

#include "../support/Text.h"
#include "Folder.h"
#include "Recogniser.h"

namespace lumbarn {
namespace {

using enum FileKind;
using Families = std::map<std::string, RunFamily>;  // by base name

bool isUpperCasePath(const std::string& path) { return isUpperCase(FileName(path).extension); }

// The form of the given file, when it is one that others share.
std::optional<bool> sharedForm(const RunMember* given) {
  if (!given || given->kind == Deck || given->kind == Rsm || given->kind == Unknown) return std::nullopt;
  return given->formatted;
}

// Smaller is better.
auto preference(const RunMember& member, const RunMember* given) {
  const std::optional<bool> form = sharedForm(given);
  const bool shortNames = member.set && member.set->shortNames;
  const bool otherCase = given && isUpperCasePath(member.path) != isUpperCasePath(given->path);
  return std::tuple(&member != given, form && *form != member.formatted, member.formatted, member.multiple(),
                    shortNames, otherCase, member.step);
}

template <class Filter>
const RunMember* best(const RunFamily& family, Filter filter) {
  const RunMember* chosen = nullptr;
  for (const RunMember& member : family.members) {
    if (!filter(member)) continue;
    if (!chosen || preference(member, family.givenMember()) < preference(*chosen, family.givenMember())) {
      chosen = &member;
    }
  }
  return chosen;
}

/// Whether the summary of a specification is there: some writers leave SMSPEC and FSMSPEC, and data in one
/// form.
bool hasData(const RunFamily& family, const RunMember& specification) {
  return std::ranges::any_of(family.members, [&](const RunMember& member) {
    return member.kind == Summary && member.set == specification.set;
  });
}

void sortMembers(RunFamily& family) {
  std::ranges::sort(family.members, [](const RunMember& a, const RunMember& b) {
    const bool shortA = a.set && a.set->shortNames;
    const bool shortB = b.set && b.set->shortNames;
    return std::tie(a.kind, a.formatted, shortA, a.step, a.path) <
           std::tie(b.kind, b.formatted, shortB, b.step, b.path);
  });
}

// The text of a deck's grid section is often in a file named as a GRID file; it is no file of the run.
bool isInclude(const std::string& path, FileKind kind) {
  return kind == Grid && recogniseFile(path).kind == Deck;
}

// The families in a folder whose base name `takes` accepts.
template <class Takes>
Families collect(const std::string& folder, Takes takes, std::string& why) {
  const auto wanted = [&](std::string_view name) {
    const FileName parts(name);
    return meaningOf(parts.extension).kind != Unknown && takes(parts.base);
  };
  std::vector<std::string> names;
  Families families;
  if (!listFolder(folder, wanted, names, why)) return families;
  for (const std::string& name : names) {
    const FileName parts(name);
    const ExtensionMeaning meaning = meaningOf(parts.extension);
    if (isInclude(folder + name, meaning.kind)) continue;
    RunFamily& family = families[parts.base];
    family.members.push_back({folder + name, meaning.kind, meaning.formatted, meaning.step, meaning.set});
  }
  for (auto& [base, family] : families) {
    family.folder = folder;
    family.base = base;
    sortMembers(family);
  }
  return families;
}

bool leftResults(const RunFamily& family) {
  return std::ranges::any_of(family.members, [](const RunMember& member) {
    return member.kind != Deck && member.kind != Rsm && member.kind != Save;
  });
}

// The family that spells the base name so, or else all that differ in case only.
std::vector<RunFamily> pick(const Families& families, const std::string& base) {
  if (const auto exact = families.find(base); exact != families.end()) return {exact->second};
  std::vector<RunFamily> picked;
  for (const auto& [name, family] : families) {
    if (equalNoCase(name, base)) picked.push_back(family);
  }
  return picked;
}

std::vector<RunFamily> runsInFolder(const std::string& path, std::string& why) {
  const bool ended = folderSeparators().find(path.back()) != std::string_view::npos;
  std::vector<RunFamily> runs;
  for (auto& [base, family] : collect(
           ended ? path : path + '/', [](const auto&) { return true; }, why)) {
    if (leftResults(family)) runs.push_back(std::move(family));
  }
  return runs;
}

// Makes the file the family's given one; as a further member if its name did not make it one.
void setGiven(RunFamily& family, const std::string& path) {
  auto member = std::ranges::find(family.members, path, &RunMember::path);
  if (member == family.members.end()) {
    // Only where the system itself takes names without regard to case.
    member = std::ranges::find_if(family.members, [&](const auto& m) { return equalNoCase(m.path, path); });
  }
  if (member == family.members.end()) {
    const ExtensionMeaning meaning = meaningOf(FileName(path).extension);
    RunMember added{path, meaning.kind, meaning.formatted, meaning.step, meaning.set};
    if (added.kind == Unknown || added.kind == Grid) {
      const Recognised recognised = recogniseFile(path);
      added.kind = recognised.kind;
      added.formatted = recognised.form && recognised.form->formatted();
    }
    family.members.push_back(std::move(added));
    sortMembers(family);
    member = std::ranges::find(family.members, path, &RunMember::path);
  }
  family.given = static_cast<std::size_t>(member - family.members.begin());
}

std::vector<RunFamily> runOfFile(const std::string& path, const FileName& parts, const std::string& name) {
  // A name without a telling extension may be a base name with a dot in it.
  const std::string whole = meaningOf(parts.extension).kind == Unknown ? name : parts.base;
  const auto takes = [&](const std::string& base) {
    return equalNoCase(base, parts.base) || equalNoCase(base, whole);
  };
  std::string unlisted;  // a folder that cannot be listed leaves the file itself
  const Families families = collect(parts.folder, takes, unlisted);
  std::vector<RunFamily> runs = pick(families, whole);
  if (runs.empty()) runs = pick(families, parts.base);
  if (runs.empty()) runs.push_back({parts.folder, parts.base, {}, {}});
  runs.resize(1);
  setGiven(runs[0], path);
  return runs;
}

std::vector<RunFamily> runsOfRoot(const FileName& parts, const std::string& name, std::string& why) {
  const std::string bare = name.ends_with('.') ? name.substr(0, name.size() - 1) : name;
  const Families families = collect(
      parts.folder,
      [&](const std::string& base) {
        return equalNoCase(base, name) || equalNoCase(base, bare) || equalNoCase(base, parts.base);
      },
      why);
  for (const std::string& base : {name, bare}) {
    if (auto runs = pick(families, base); !runs.empty()) return runs;
  }
  for (const auto& [base, family] : families) {
    for (const RunMember& member : family.members) {
      if (!equalNoCase(member.path.substr(parts.folder.size()), name)) continue;
      RunFamily run = family;
      setGiven(run, member.path);
      return {run};
    }
  }
  return {};
}

}  // namespace

const RunMember* RunFamily::find(FileKind kind) const {
  const RunMember* found = best(*this, [&](const RunMember& member) { return member.kind == kind; });
  if (kind != SummarySpec || !found || found == givenMember() || hasData(*this, *found)) return found;
  const RunMember* other =
      best(*this, [&](const RunMember& member) { return member.kind == kind && hasData(*this, member); });
  return other ? other : found;
}

std::vector<const RunMember*> RunFamily::steps(FileKind kind) const {
  std::vector<const RunMember*> files;
  const RunMember* leader =
      best(*this, [&](const RunMember& member) { return member.kind == kind && member.multiple(); });
  if (!leader) return files;
  for (const RunMember& member : members) {
    if (member.kind != kind || !member.multiple() || member.set != leader->set) continue;
    const bool again = !files.empty() && files.back()->step == member.step;
    if (!again) {
      files.push_back(&member);
    } else if (preference(member, givenMember()) < preference(*files.back(), givenMember())) {
      files.back() = &member;
    }
  }
  return files;
}

std::vector<RunFamily> findRuns(const std::string& path, std::string& why) {
  why.clear();
  const FileName parts(path);
  const std::string name = path.substr(parts.folder.size());
  if (isFile(path)) return runOfFile(path, parts, name);

  const bool folder = isFolder(path);
  std::vector<RunFamily> runs;
  if (folder) runs = runsInFolder(path, why);
  if (!name.empty() && name != "." && name != "..") {
    std::string unlisted;
    std::ranges::move(runsOfRoot(parts, name, folder ? unlisted : why), std::back_inserter(runs));
  }
  if (runs.empty() && why.empty()) why = folder ? "the folder holds no run" : "no such file, folder or run";
  if (!runs.empty()) why.clear();
  return runs;
}

}  // namespace lumbarn
