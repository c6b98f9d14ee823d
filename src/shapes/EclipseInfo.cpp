#include "EclipseInfo.h"

#include <algorithm>
#include <unordered_map>

#include "../support/Fault.h"
#include "HeaderLayout.h"

namespace lumbarn {

namespace {

constexpr std::array<std::string_view, nClassSlots> classWords{
    "AQUIFERS",      "BLOCKS",  "COMPLETIONS", "FIELD",    "GROUPS", "LGR",
    "MISCELLANEOUS", "REGIONS", "WELLS",       "SEGMENTS", "",       "NODES"};

/// Class slots of the vectors: their class strings are looked up once each, not once for each vector.
class VectorSlots {
 public:
  explicit VectorSlots(const AttributeStore& classes) : slots_(static_cast<std::size_t>(classes.count())) {
    for (std::size_t i = 0; i < slots_.size(); ++i) {
      slots_[i] = getClassIndex(classes.item(static_cast<std::int32_t>(i) + 1));
    }
  }
  std::span<const std::int32_t> all() const { return slots_; }
  /// 0 for a vector of no class; hosts hand in numbers that no store has.
  std::int32_t of(const VECTORDATA& xVector) const {
    const auto number = static_cast<std::size_t>(xVector.iClass);
    return xVector.iClass >= 1 && number <= slots_.size() ? slots_[number - 1] : 0;
  }

 private:
  std::vector<std::int32_t> slots_;
};

/// The count table nCount(iClass, iMember), one number for each class slot and member number.
class MemberCells {
 public:
  MemberCells(const VectorSlots& slots, std::span<const VECTORDATA> xVectors) : slots_(slots) {
    for (const auto& xVector : xVectors) {
      if (xVector.iMember > 0) members_ = std::max(members_, static_cast<std::size_t>(xVector.iMember));
    }
    cells_.resize(nClassSlots * members_);
  }
  /// The cells of a class, by member number less 1.
  std::span<std::int32_t> row(std::int32_t iClass) {
    return std::span(cells_).subspan(slot(iClass) * members_, members_);
  }
  /// nullptr for a vector of no class or no member.
  std::int32_t* of(const VECTORDATA& xVector) {
    const auto iClass = slots_.of(xVector);
    if (iClass == 0 || xVector.iMember < 1) return nullptr;
    return &row(iClass)[static_cast<std::size_t>(xVector.iMember) - 1];
  }

 private:
  const VectorSlots& slots_;
  std::size_t members_ = 0;
  std::vector<std::int32_t> cells_;
};

/// Makes the members that occur from their counts, and turns each count into the member's place in the class.
void makeMembers(const AttributeStores& xStore, std::span<std::int32_t> counts, ECLIPSECLASS& xClass) {
  xClass.xMember.clear();
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] == 0) continue;
    auto& xMember = xClass.xMember.emplace_back();
    xMember.zMember = xStore(attributeMember).item(static_cast<std::int32_t>(i) + 1);
    xMember.nMemberVectors = counts[i];
    xMember.iPointers.resize(static_cast<std::size_t>(counts[i]));
    xMember.iVectors.reserve(static_cast<std::size_t>(counts[i]));
    counts[i] = static_cast<std::int32_t>(xClass.xMember.size()) - 1;
  }
  xClass.nMembers = static_cast<std::int32_t>(xClass.xMember.size());
  xClass.qMemberChosen.assign(xClass.xMember.size(), true);
}

/// Target's place of a class word among those not chosen yet, nClassSlots when there is none.
std::size_t findFreeClass(std::string_view zClass, ECLIPSEINFO& xTarget) {
  std::size_t i = 0;
  for (; i < xTarget.xClass.size(); ++i) {
    if (xTarget.qClassChosen[i]) continue;
    if (xTarget.xClass[i].zClass == zClass) break;
    xTarget.xClass[i].nMembers = 0;  // deliberate: hosts see the classes passed end without members
  }
  return i;
}

/// True when some member of the target ends chosen.
bool copyChosenMembers(const ECLIPSECLASS& xSource, ECLIPSECLASS& xTarget) {
  std::unordered_map<std::string_view, std::size_t> places;
  for (std::size_t i = 0; i < xTarget.members(); ++i) places.try_emplace(xTarget.xMember[i].zMember, i);
  xTarget.qMemberChosen.assign(xTarget.qMemberChosen.size(), false);
  bool any = false;
  for (std::size_t i = 0; i < xSource.members(); ++i) {
    if (!xSource.qMemberChosen[i]) continue;
    const auto found = places.find(xSource.xMember[i].zMember);
    if (found == places.end()) continue;
    xTarget.qMemberChosen[found->second] = true;
    any = true;
  }
  return any;
}

void exclude(std::span<const std::int32_t> iVectors, std::int32_t nVectors, std::vector<bool>& mask) {
  const auto used = std::min(iVectors.size(), static_cast<std::size_t>(std::max(nVectors, 0)));
  for (const auto iVector : iVectors.first(used)) {
    if (iVector < 1 || static_cast<std::size_t>(iVector) > mask.size()) throw Fault(FaultNumber::Subscript);
    mask[static_cast<std::size_t>(iVector) - 1] = false;
  }
}

}  // namespace

std::size_t ECLIPSECLASS::members() const {
  return std::min({static_cast<std::size_t>(std::max(nMembers, 0)), xMember.size(), qMemberChosen.size()});
}

std::array<ECLIPSECLASS, nClassSlots> namedClasses() {
  std::array<ECLIPSECLASS, nClassSlots> classes;
  for (std::size_t i = 0; i < classes.size(); ++i) classes[i].zClass = classWords[i];
  return classes;
}

std::int32_t getClassIndex(std::string_view zClass) {
  if (zClass.empty()) return 0;
  const auto found = std::ranges::find(classWords, zClass);
  return found == classWords.end() ? 0 : static_cast<std::int32_t>(found - classWords.begin()) + 1;
}

std::string_view classWord(std::int32_t iClass) {
  return iClass >= 1 && iClass <= nClassSlots ? classWords[static_cast<std::size_t>(iClass) - 1]
                                              : std::string_view();
}

std::size_t slot(std::int32_t iClass) {
  if (iClass < 1 || iClass > nClassSlots) throw Fault(FaultNumber::Subscript);
  return static_cast<std::size_t>(iClass) - 1;
}

void fillClasses(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors, ECLIPSEINFO& xInfo) {
  xInfo.nVectors = static_cast<std::int32_t>(xVectors.size());
  if (!xStore.has(attributeClass) || xStore(attributeClass).count() == 0) {
    xInfo.qValid = false;
    return;
  }
  const VectorSlots slots(xStore(attributeClass));
  std::array<std::size_t, nClassSlots + 1> counts{};
  for (const auto& xVector : xVectors) ++counts[static_cast<std::size_t>(slots.of(xVector))];

  xInfo.qClassPresent.fill(false);
  xInfo.qClassChosen.fill(false);
  xInfo.xClass = namedClasses();
  for (const auto iClass : slots.all()) {
    if (iClass == 0) continue;
    xInfo.qClassPresent[slot(iClass)] = xInfo.qClassChosen[slot(iClass)] = true;
    auto& xClass = xInfo.xClass[slot(iClass)];
    const auto count = counts[static_cast<std::size_t>(iClass)];
    xClass.nVectors = static_cast<std::int32_t>(count);
    if (count == 0) continue;
    xClass.iVectors.clear();
    xClass.iVectors.reserve(count);
    xClass.qVectors.assign(count, true);
  }
  for (std::size_t i = 0; i < xVectors.size(); ++i) {
    const auto iClass = slots.of(xVectors[i]);
    if (iClass != 0) xInfo.xClass[slot(iClass)].iVectors.push_back(static_cast<std::int32_t>(i) + 1);
  }
  xInfo.nClasses = xStore(attributeClass).count();
  xInfo.qAllClasses = true;
  xInfo.qValid = true;
}

void fillMembers(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors, ECLIPSEINFO& xInfo) {
  if (!xInfo.qValid) return;
  const VectorSlots slots(xStore(attributeClass));
  MemberCells cells(slots, xVectors);
  for (const auto& xVector : xVectors) {
    if (auto* count = cells.of(xVector)) ++*count;
  }
  for (std::int32_t iClass = 1; iClass <= nClassSlots; ++iClass) {
    makeMembers(xStore, cells.row(iClass), xInfo.xClass[slot(iClass)]);
  }
  for (std::size_t i = 0; i < xVectors.size(); ++i) {
    const auto* place = cells.of(xVectors[i]);
    if (place == nullptr) continue;
    auto& xClass = xInfo.xClass[slot(slots.of(xVectors[i]))];
    xClass.xMember[static_cast<std::size_t>(*place)].iVectors.push_back(static_cast<std::int32_t>(i) + 1);
  }
}

void carrySelection(const ECLIPSEINFO& xSource, ECLIPSEINFO& xTarget, bool qCopyMembers) {
  const bool copyMembers = qCopyMembers && !xSource.qAllMembers;
  if (copyMembers) xTarget.qAllMembers = false;  // else nothing would look at the members carried over
  xTarget.qClassChosen.fill(false);
  for (std::size_t i = 0; i < xSource.xClass.size(); ++i) {
    if (!xSource.qClassChosen[i]) continue;
    const auto found = findFreeClass(xSource.xClass[i].zClass, xTarget);
    if (found == xTarget.xClass.size()) continue;
    xTarget.qClassChosen[found] = !copyMembers || copyChosenMembers(xSource.xClass[i], xTarget.xClass[found]);
  }
  noteAllClasses(xTarget);
}

std::vector<bool> vectorMask(ECLIPSEINFO& xInfo) {
  if (!xInfo.qValid) return {true};
  std::vector<bool> mask(static_cast<std::size_t>(std::max(xInfo.nVectors, 0)), true);
  for (std::size_t i = 0; i < xInfo.xClass.size(); ++i) {
    if (!xInfo.qClassPresent[i]) continue;
    if (i == slot(miscellaneousSlot)) {  // deliberate: always taken, with all its members, as TIME is in it
      xInfo.qClassChosen[i] = true;
      continue;
    }
    const auto& xClass = xInfo.xClass[i];
    if (!xInfo.qClassChosen[i]) {
      exclude(xClass.iVectors, xClass.nVectors, mask);
    } else if (!xInfo.qAllMembers) {
      for (std::size_t member = 0; member < xClass.members(); ++member) {
        const auto& xMember = xClass.xMember[member];
        if (!xClass.qMemberChosen[member]) exclude(xMember.iVectors, xMember.nMemberVectors, mask);
      }
    }
  }
  noteAllClasses(xInfo);
  return mask;
}

void noteAllClasses(ECLIPSEINFO& xInfo) {
  xInfo.qAllClasses = true;
  for (std::size_t i = 0; i < xInfo.xClass.size(); ++i) {
    if (xInfo.qClassPresent[i] && !xInfo.qClassChosen[i]) xInfo.qAllClasses = false;
  }
}

void InitEclipseINFO(ECLIPSEINFO& xInfo, bool& qOK) {
  qOK = false;
  xInfo = {};
  qOK = true;
}

void InitECLIPSECLASS(ECLIPSECLASS& xClass, bool& qOK) {
  qOK = false;
  xClass = {};
  qOK = true;
}

void setByteECLIPSEINFO(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                        ECLIPSEINFO& xInfo, bool& qOK) {
  qOK = false;
  fillClasses(xStore, xVectors, xInfo);
  qOK = true;
}

void setByteECLIPSECLASS(const AttributeStores& xStore, std::span<const VECTORDATA> xVectors,
                         ECLIPSEINFO& xInfo, bool& qOK) {
  qOK = false;
  fillMembers(xStore, xVectors, xInfo);
  qOK = true;
}

void setPlotClassList(const ECLIPSEINFO& xSource, ECLIPSEINFO& xTarget, bool& qOK, bool qCopyMembers) {
  qOK = false;
  carrySelection(xSource, xTarget, qCopyMembers);
  qOK = true;
}

}  // namespace lumbarn
