#include "OnlyList.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_map>
#include <utility>

#include "../support/Guarded.h"
#include "../support/Pattern.h"
#include "../support/Text.h"
#include "VectorNames.h"

namespace lumbarn {

namespace {

constexpr const char* className = "qvOnlyList";
constexpr std::int32_t restartType = 11;
constexpr std::int32_t summaryType = 13;
constexpr std::int32_t initType = 15;
constexpr std::string_view allMembers = "ALL";
constexpr std::size_t memberFirst = onlyNameWidth + 1;
constexpr std::size_t memberWidth = onlyWidth - onlyNameWidth;

/// One entry of a list; the texts are those of the record that it was made from.
struct Entry {
  std::string_view zName;
  std::string_view zMember;
};

/// Entries for the members of a class that are chosen, or with `keep` False those that are not: "ALL" when
/// that is all of them.
void addMemberEntries(const ECLIPSECLASS& xClass, bool qAllMembers, bool keep, std::vector<Entry>& entries) {
  const auto members = xClass.members();
  std::vector<std::string_view> listed;
  for (std::size_t i = 0; i < members; ++i) {
    if (xClass.qMemberChosen[i] == keep) listed.push_back(xClass.xMember[i].zMember);
  }
  const bool wholeClass = listed.size() == members && (keep || members > 0);
  if (!wholeClass) {
    for (const auto zMember : listed) entries.push_back({xClass.zClass, zMember});
  } else if ((!xClass.zClass.empty() && qAllMembers) || !listed.empty()) {
    // deliberate: a class without members has no entry once some other class has lost a member
    entries.push_back({xClass.zClass, allMembers});
  }
}

std::vector<Entry> summaryEntries(const ECLIPSEINFO& xInfo, bool keep) {
  std::vector<Entry> entries;
  for (std::size_t i = 0; i < xInfo.xClass.size(); ++i) {
    if (!xInfo.qClassPresent[i]) continue;
    if (xInfo.qClassChosen[i]) {
      addMemberEntries(xInfo.xClass[i], xInfo.qAllMembers, keep, entries);
    } else if (!keep) {
      entries.push_back({xInfo.xClass[i].zClass, allMembers});
    }
  }
  return entries;
}

/// Solution vectors, but no more than the record really describes.
std::size_t solutionVectors(const ECLIPSEINFO& xInfo) {
  return std::min({static_cast<std::size_t>(std::max(xInfo.nSolutionVectors, 0)),
                   xInfo.bSolutionNames.entries(), xInfo.qSolutionChosen.size()});
}

std::string_view solutionName(const ECLIPSEINFO& xInfo, std::size_t place) {
  return xInfo.bSolutionNames.get(place + 1, 1, xInfo.bSolutionNames.width());
}

std::vector<Entry> solutionEntries(const ECLIPSEINFO& xInfo, bool keep) {
  std::vector<Entry> entries;
  for (std::size_t i = 0; i < solutionVectors(xInfo); ++i) {
    if (xInfo.qSolutionChosen[i] == keep) entries.push_back({solutionName(xInfo, i), {}});
  }
  return entries;
}

/// Counting and writing both come from here, so that they cannot disagree.
std::vector<Entry> listEntries(std::int32_t iType, ECLIPSEINFO& xInfo, bool keep) {
  if (iType == summaryType) return summaryEntries(xInfo, keep);
  if (iType == restartType) CheckDerivedSaturations(xInfo);
  if (iType == restartType || iType == initType) return solutionEntries(xInfo, keep);
  return {};
}

bool writeEntries(const std::vector<Entry>& entries, ByteTable& bOnly) {
  if (bOnly.width() < onlyWidth) return false;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (i == bOnly.entries()) return false;
    std::ranges::fill(bOnly.entry(i + 1), ' ');
    bOnly.put(i + 1, 1, onlyNameWidth, entries[i].zName);
    bOnly.put(i + 1, memberFirst, memberWidth, entries[i].zMember);
  }
  return true;
}

Entry entryAt(const ByteTable& bOnly, std::size_t iEntry) {
  return {bOnly.get(iEntry, 1, onlyNameWidth), bOnly.get(iEntry, memberFirst, memberWidth)};
}

/// Chooses members of one class by name, without walking all of them for each of the thousands that a list
/// may name.
class MemberChooser {
 public:
  explicit MemberChooser(ECLIPSECLASS& xClass) : xClass_(xClass) {
    for (std::size_t i = 0; i < xClass.members(); ++i) places_.emplace(upper(listedName(i)), i);
  }

  void choose(std::string_view zMember, bool chosen) {
    const auto [first, last] = places_.equal_range(upper(zMember));
    for (auto found = first; found != last; ++found) xClass_.qMemberChosen[found->second] = chosen;
    if (!hasWildcard(zMember)) return;
    for (std::size_t i = 0; i < xClass_.members(); ++i) {
      if (matchesPattern(xClass_.xMember[i].zMember, zMember) || matchesPattern(listedName(i), zMember)) {
        xClass_.qMemberChosen[i] = chosen;
      }
    }
  }

 private:
  /// What a list can hold of the name.
  std::string_view listedName(std::size_t place) const {
    return fieldText(std::string_view(xClass_.xMember[place].zMember).substr(0, memberWidth));
  }

  ECLIPSECLASS& xClass_;
  std::unordered_multimap<std::string, std::size_t> places_;
};

class ListApplier {
 public:
  ListApplier(ECLIPSEINFO& xInfo, bool qOnly) : xInfo_(xInfo), qOnly_(qOnly) {
    xInfo.qClassChosen.fill(!qOnly);
    for (auto& xClass : xInfo.xClass) xClass.qMemberChosen.assign(xClass.qMemberChosen.size(), !qOnly);
  }

  void apply(const Entry& entry) {
    if (entry.zName.empty() || entry.zMember.empty()) return;
    const auto place = slot(getClassIndex(entry.zName));  // deliberate: an unknown class word is a fault
    auto& xClass = xInfo_.xClass[place];
    if (qOnly_) xInfo_.qClassChosen[place] = true;
    if (entry.zMember != allMembers && entry.zMember != "*") {
      xInfo_.qAllMembers = false;
      if (!choosers_[place]) choosers_[place].emplace(xClass);
      choosers_[place]->choose(entry.zMember, qOnly_);
    } else if (qOnly_) {
      xClass.qMemberChosen.assign(xClass.qMemberChosen.size(), true);
    } else {
      xInfo_.qClassChosen[place] = false;
    }
  }

 private:
  ECLIPSEINFO& xInfo_;
  bool qOnly_;
  std::array<std::optional<MemberChooser>, nClassSlots> choosers_;
};

std::string joined(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (auto part : parts) {
    part = fieldText(part);
    if (part.empty()) continue;
    if (!text.empty()) text += ' ';
    text += part;
  }
  return text;
}

}  // namespace

ByteTable emptyOnlyList() { return ByteTable(onlyWidth, 1); }

bool isEmptyOnlyList(const ByteTable& bOnly) {
  return bOnly.width() < onlyNameWidth || bOnly.entries() == 0 || bOnly.get(1, 1, onlyNameWidth).empty();
}

ChosenList makeOnlyList(std::int32_t iType, ECLIPSEINFO& xInfo) {
  const auto only = listEntries(iType, xInfo, true);
  const auto except = listEntries(iType, xInfo, false);
  const bool qOnly = only.size() <= except.size();
  const auto& shorter = qOnly ? only : except;
  ChosenList list{ByteTable(onlyWidth, std::max<std::size_t>(shorter.size(), 1)), qOnly};
  writeEntries(shorter, list.bOnly);
  return list;
}

void CreateOnlyList(std::int32_t iType, ECLIPSEINFO& xInfo, ByteTable& bOnly, bool& qOnly, bool& qOK) {
  qOK = false;
  auto list = makeOnlyList(iType, xInfo);
  bOnly = std::move(list.bOnly);
  qOnly = list.qOnly;
  qOK = true;
}

std::int32_t ActualInOnlyList(std::int32_t iType, ECLIPSEINFO& xInfo) {
  return static_cast<std::int32_t>(listEntries(iType, xInfo, true).size());
}

std::int32_t ActualInExceptList(std::int32_t iType, ECLIPSEINFO& xInfo) {
  return static_cast<std::int32_t>(listEntries(iType, xInfo, false).size());
}

void OnlyList(std::int32_t iType, ECLIPSEINFO& xInfo, ByteTable& bOnly, bool& qOK) {
  qOK = false;
  qOK = writeEntries(listEntries(iType, xInfo, true), bOnly);
}

void ExceptList(std::int32_t iType, ECLIPSEINFO& xInfo, ByteTable& bOnly, bool& qOK) {
  qOK = false;
  qOK = writeEntries(listEntries(iType, xInfo, false), bOnly);
}

bool selectByOnlyList(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                      const ByteTable& bOnly, bool qOnly, ECLIPSEINFO& xInfo) {
  xInfo = {};
  fillClasses(xStore, xVectors, xInfo);
  return applyOnlyList(xStore, xVectors, bOnly, qOnly, xInfo);
}

bool applyOnlyList(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                   const ByteTable& bOnly, bool qOnly, ECLIPSEINFO& xInfo) {
  return inRoutine(className, "ExpandOnlyList", [&] {
    if (isEmptyOnlyList(bOnly)) return true;
    if (bOnly.width() < onlyWidth) return false;
    if (checkMembersInOnly(bOnly)) fillMembers(xStore, xVectors, xInfo);
    ListApplier applier(xInfo, qOnly);
    for (std::size_t iEntry = 1; iEntry <= bOnly.entries(); ++iEntry) applier.apply(entryAt(bOnly, iEntry));
    noteAllClasses(xInfo);
    return true;
  });
}

void setECLIPSEINFOFromOnly(Session& session, const AttributeStores& xStore,
                            std::span<const VECTORDATA> xVectors, const ByteTable& bOnly, bool qOnly,
                            ECLIPSEINFO& xInfo, bool& qOK) {
  guarded(session, qOK, className, "setECLIPSEINFOFromOnly",
          [&] { return selectByOnlyList(xStore, xVectors, bOnly, qOnly, xInfo); });
}

void ExpandOnlyList(Session& session, const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                    const ByteTable& bOnly, bool qOnly, ECLIPSEINFO& xInfo, bool& qOK) {
  guarded(session, qOK, className, "ExpandOnlyList",
          [&] { return applyOnlyList(xStore, xVectors, bOnly, qOnly, xInfo); });
}

bool checkMembersInOnly(const ByteTable& bOnly) {
  if (bOnly.width() < onlyWidth) return false;
  for (std::size_t iEntry = 1; iEntry <= bOnly.entries(); ++iEntry) {
    const auto zMember = entryAt(bOnly, iEntry).zMember;
    if (!zMember.empty() && zMember != allMembers) return true;
  }
  return false;
}

bool CheckDerivedSaturations(ECLIPSEINFO& xInfo) {
  constexpr std::array<std::string_view, 3> saturations{"SOIL", "SGAS", "SWAT"};
  std::array<std::optional<std::size_t>, 3> firstPlace;
  std::array<bool, 3> chosen{};
  for (std::size_t i = 0; i < solutionVectors(xInfo); ++i) {
    const auto found = std::ranges::find(saturations, cleanVectorName(solutionName(xInfo, i)));
    if (found == saturations.end()) continue;
    const auto which = static_cast<std::size_t>(found - saturations.begin());
    if (!firstPlace[which]) firstPlace[which] = i;
    if (xInfo.qSolutionChosen[i]) chosen[which] = true;
  }
  if (std::ranges::find(chosen, true) == chosen.end()) return true;
  for (std::size_t which = 0; which < saturations.size(); ++which) {
    if (!chosen[which] && firstPlace[which]) xInfo.qSolutionChosen[*firstPlace[which]] = true;
  }
  return true;
}

void setEclipseONLYList(Session& session, std::span<const std::string> zOnly, bool qOnly) {
  auto& state = session.part<SelectionState>();
  state.zOnly = std::vector<std::string>(zOnly.begin(), zOnly.end());  // it may be the state's own list
  state.qOnly = qOnly;
  state.nOnly = static_cast<std::int32_t>(state.zOnly.size());
  state.placeOf.clear();
  for (std::size_t i = 0; i < state.zOnly.size(); ++i) {
    const auto zName = fieldText(state.zOnly[i]);
    if (!zName.empty()) state.placeOf.try_emplace(std::string(zName), i);
  }
}

void getEclipseONLYList(Session& session, std::vector<std::string>& zOnly, bool& qOnly) {
  const auto& state = session.part<SelectionState>();
  zOnly = state.zOnly;
  qOnly = state.qOnly;
}

bool checkEclipseONLYList(Session& session, std::string_view zName) {
  const auto& state = session.part<SelectionState>();
  if (state.nOnly < 1 || state.placeOf.empty()) return true;
  const auto found = state.placeOf.find(fieldText(zName));
  const bool listed = found != state.placeOf.end() && found->second < static_cast<std::size_t>(state.nOnly);
  return listed == state.qOnly;
}

std::string AddToOnlyList(const OnlyItem& item) {
  if (item.zClass == "AQUIFERS") return joined({item.zName, "AQUIFER", item.zIndex});
  if (item.zClass == "COMPLETIONS") return joined({item.zName, "CELL", item.zIndex, item.zMember});
  if (item.zClass == "REGIONS") return joined({item.zName, "REGN", item.zIndex});
  if (item.zClass == "BLOCKS") return joined({item.zName, "CELL", item.zIndex});
  if (item.zClass == "FIELD") return joined({item.zName});
  if (item.zClass == "WELLS" || item.zClass == "MISCELLANEOUS" || item.zClass == "GROUPS") {
    return joined({item.zName, item.zMember});
  }
  if (item.zClass == "LGR") {
    if (item.zLGRClass == "BLOCKS") {
      return joined({item.zName, "LGR", item.zLGR, "LOCAL", item.zIndex});
    }
    if (item.zLGRClass == "COMPLETIONS") {
      return joined({item.zName, "LGR", item.zLGR, "LOCAL", item.zIndex, item.zMember});
    }
    return joined({item.zName, "LGR", item.zLGR, item.zMember});
  }
  return joined({item.zName, item.zMember, item.zIndex});
}

}  // namespace lumbarn
