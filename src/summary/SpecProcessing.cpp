#include "SpecProcessing.h"

#include <algorithm>
#include <limits>

#include "../shapes/HeaderLayout.h"
#include "../support/Fault.h"
#include "../support/Text.h"
#include "../vocabulary/Mnemonics.h"
#include "../vocabulary/Units.h"

namespace lumbarn {
namespace {

constexpr std::string_view dummyName = ":+:+:+:+";
constexpr std::int32_t pairBase = 32768;  // a region pair (b, a) is coded as b + (a + pairOffset) * pairBase
constexpr std::int32_t pairOffset = 10;

std::string threeNumbers(std::int32_t a, std::int32_t b, std::int32_t c) {
  return std::to_string(a) + ' ' + std::to_string(b) + ' ' + std::to_string(c);
}

bool endsInNumber(std::string_view name, std::string_view number) {
  if (number.empty() || !name.ends_with(number)) return false;
  const std::string_view before = name.substr(0, name.size() - number.size());
  return before.empty() || before.back() < '0' || before.back() > '9';
}

}  // namespace

std::string createVectorIndex(char c, std::int32_t n, std::span<const std::int32_t> iDIMENS) {
  if (c == 'R' || c == 'A' || c == 'S') return std::to_string(n);
  if ((c != 'B' && c != 'C') || iDIMENS.size() < 4 || n < 1) return {};
  const std::int64_t nx = iDIMENS[1], ny = iDIMENS[2], nz = iDIMENS[3];
  if (nx < 1 || ny < 1 || nz < 1) return {};
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  if (nx * ny > most || nx * ny * nz > most || n > nx * ny * nz) return {};
  const std::int64_t cell = n - 1;
  return threeNumbers(static_cast<std::int32_t>(cell % nx + 1), static_cast<std::int32_t>(cell / nx % ny + 1),
                      static_cast<std::int32_t>(cell / (nx * ny) + 1));
}

bool SpecProcessing::processSPECRecords() {
  const auto vectors = spec_.xVectors.size();
  spec_.qKeyMask.assign(vectors, true);
  const std::int32_t kind = spec_.xStore(attributeDataKind).add("Summary");
  for (VECTORDATA& xVector : spec_.xVectors) setPointer(xVector, attributeDataKind, kind);
  setUnitSystem();
  dummy_ = spec_.xStore(attributeMember).find(dummyName);

  for (std::size_t i = 0; i < vectors; ++i) {
    vector(i);
    if ((i + 1) % 10000 == 0 && session_.yield()) return false;
  }

  spec_.nKeysUsed = static_cast<std::int32_t>(std::ranges::count(spec_.qKeyMask, true));
  blankDummies();
  adjustClassCounts();
  for (auto* array : {&spec_.iNUMS, &spec_.iNUMLX, &spec_.iNUMLY, &spec_.iNUMLZ}) *array = {};
  for (const std::int32_t iAttribute : {attributeClass, attributeIndex, attributeVerbose, attributeDataKind,
                                        attributeLGRName, attributeLGRClass}) {
    spec_.xStore(iAttribute).shrink();
  }
  return true;
}

std::int32_t SpecProcessing::add(std::int32_t iAttribute, Last& last, std::string_view text) {
  if (last.text != text) {
    last.text = text;
    last.number = spec_.xStore(iAttribute).add(text);
  }
  return last.number;
}

void SpecProcessing::setMnemonic(std::int32_t number) {
  Mnemonic next;
  next.number = number;
  next.zKey = spec_.xStore(attributeVariable).item(number);
  const std::string_view zKey = next.zKey;
  next.miscellaneous = isMiscellaneousKey(zKey);
  next.zClass = next.miscellaneous ? "MISCELLANEOUS" : classOfKey(zKey);
  next.letter = next.miscellaneous ? 'M' : upperLetter(zKey.empty() ? ' ' : zKey[0]);
  if (next.letter == 'L' && zKey.size() > 1) {
    next.inLGR = true;
    next.letter = upperLetter(zKey[1]);
  }
  if (next.zClass == "LGR") {
    next.iLGRClass = spec_.xStore(attributeLGRClass).add(classOfKey(zKey.substr(1)).substr(0, 16));
  }
  std::string numberText;
  const std::string description = getEclipseLongDescription("SUMMARY", zKey, numberText);
  if (!description.empty()) {
    next.iVerbose = spec_.xStore(attributeVerbose).add(std::string_view(description).substr(0, 40));
  }
  mnemonic_ = std::move(next);
}

std::string SpecProcessing::index(std::size_t i) const {
  if (mnemonic_.miscellaneous) return {};
  if (mnemonic_.inLGR) return threeNumbers(spec_.iNUMLX[i], spec_.iNUMLY[i], spec_.iNUMLZ[i]);
  return createVectorIndex(mnemonic_.letter, spec_.iNUMS[i], spec_.iDIMENS);
}

void SpecProcessing::vector(std::size_t i) {
  VECTORDATA& xVector = spec_.xVectors[i];
  if (mnemonic_.number != xVector.iVariable) setMnemonic(xVector.iVariable);
  setPointer(xVector, attributeVerbose, mnemonic_.iVerbose);

  const char c = mnemonic_.letter;
  std::string zIndex = index(i);
  std::string_view zClass = mnemonic_.zClass;
  if (zClass == "IRF" && spec_.iNUMS[i] > 0) {
    const std::int32_t pair = spec_.iNUMS[i];
    zIndex = std::to_string(pair % pairBase) + '-' + std::to_string(pair / pairBase - pairOffset);
    zClass = "REGIONS";
  }
  if (zClass == "LGR") {
    setLGRName(xVector);
    setPointer(xVector, attributeLGRClass, mnemonic_.iLGRClass);
  }
  setClass(xVector, zClass);
  setMember(i, zIndex);
  if (mnemonic_.miscellaneous || zClass == "MISCELLANEOUS") return;

  if (std::string_view("ABCRS").find(c) != std::string_view::npos) {
    xVector.iIndex = add(attributeIndex, index_, zIndex);
  }
  if (c == 'S' && toInteger(zIndex).value_or(1) < 1) spec_.qKeyMask[i] = false;
}

void SpecProcessing::setClass(VECTORDATA& xVector, std::string_view zClass) {
  const std::int32_t number = add(attributeClass, class_, zClass.substr(0, 16));
  setPointer(xVector, attributeClass, number);
  const auto slot = static_cast<std::size_t>(number);
  if (slot >= classUses_.size()) classUses_.resize(slot + 1);
  ++classUses_[slot];
}

void SpecProcessing::setLGRName(VECTORDATA& xVector) {
  const std::string_view name = spec_.text(xVector, attributeLGRS);
  setPointer(xVector, attributeLGRName, add(attributeLGRName, lgrName_, name.substr(0, 16)));
}

void SpecProcessing::setMember(std::size_t i, std::string_view zIndex) {
  VECTORDATA& xVector = spec_.xVectors[i];
  const auto owner = std::ranges::find(dummies_, mnemonic_.letter, &DummyCount::letter);
  if (mnemonic_.miscellaneous || owner == dummies_.end()) {
    if (!distinguishes(i, zIndex)) xVector.iMember = -1;
    return;
  }
  if (owner->letter == 'C') spec_.qPerforations = true;
  if (dummy_ > 0 && xVector.iMember == dummy_) {
    spec_.qKeyMask[i] = false;
    ++owner->count;
  }
}

/// Whether the name of a vector whose class has no wells, groups, segments or nodes belongs to it: writers
/// invent mnemonics ("#WSTATH1") that occur once for each well. Names that only repeat the class or the
/// vector's own number ("FIELD", "REGION 3") do not count.
bool SpecProcessing::distinguishes(std::size_t i, std::string_view zIndex) const {
  const std::int32_t number = spec_.xVectors[i].iMember;
  if (number < 1 || number == dummy_) return false;
  const std::string_view name = spec_.xStore(attributeMember).item(number);
  if (name.empty() || equalNoCase(name, "FIELD")) return false;
  if (mnemonic_.miscellaneous || std::string_view("ABR").find(mnemonic_.letter) == std::string_view::npos) {
    return true;
  }
  return !endsInNumber(name, std::to_string(spec_.iNUMS[i])) && !endsInNumber(name, zIndex);
}

/// Dummies read as blank from here on, and so do the members of vectors that have none.
void SpecProcessing::blankDummies() {
  AttributeStore& members = spec_.xStore(attributeMember);
  members.replace(dummyName, "");
  const std::int32_t blank = members.find("");
  for (std::size_t i = 0; i < spec_.xVectors.size(); ++i) {
    VECTORDATA& xVector = spec_.xVectors[i];
    if (spec_.qKeyMask[i] && xVector.iMember < 0) setPointer(xVector, attributeMember, blank);
  }
}

/// The use count of a class becomes the number of its vectors, less those of dummies. A dummy within an LGR
/// lowers the class that its letter stands for, though the vector is of class LGR: deliberate.
void SpecProcessing::adjustClassCounts() {
  AttributeStore& classes = spec_.xStore(attributeClass);
  for (std::int32_t number = 1; number <= classes.count(); ++number) {
    const std::int32_t uses = classUses_[static_cast<std::size_t>(number)];
    classes.adjustCount(classes.item(number), uses - classes.useCount(number));
  }
  for (const DummyCount& dummy : dummies_) {
    if (dummy.count > 0) classes.adjustCount(dummy.zClass, -dummy.count);
  }
}

void SpecProcessing::setUnitSystem() {
  const AttributeStore& units = spec_.xStore(attributeUnits);
  std::vector<std::int32_t> systems(static_cast<std::size_t>(units.count()) + 1);
  for (std::int32_t number = 1; number <= units.count(); ++number) {
    systems[static_cast<std::size_t>(number)] = unitSystemOfUnit(units.item(number));
  }
  for (const VECTORDATA& xVector : spec_.xVectors) {
    if (xVector.iUnits < 1) continue;
    const std::int32_t system = systems[static_cast<std::size_t>(xVector.iUnits)];
    if (system != 0) spec_.iUnitSystem = system;
    if (system > metricUnits) return;  // metric units occur in files of the other systems too
  }
}

}  // namespace lumbarn
