#include "VectorData.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "../support/Fault.h"
#include "HeaderLayout.h"

namespace lumbarn {

namespace {

/// The 16-bit word of an attribute; nullptr for one that has none, as the index with its 32 bits.
constexpr std::int16_t VECTORDATA::*shortWord(std::int32_t iAttribute) {
  switch (iAttribute) {
    case attributeUnits:
      return &VECTORDATA::iUnits;
    case attributeSource:
      return &VECTORDATA::iSource;
    case attributeDataKind:
      return &VECTORDATA::iDataKind;
    case attributeClass:
      return &VECTORDATA::iClass;
    case attributeLGRName:
      return &VECTORDATA::iLGRName;
    case attributeLGRClass:
      return &VECTORDATA::iLGRClass;
    case attributeMember:
      return &VECTORDATA::iMember;
    case attributeVariable:
      return &VECTORDATA::iVariable;
    case attributeVerbose:
      return &VECTORDATA::iVerbose;
    case attributeLGRS:
      return &VECTORDATA::iLGRS;
    default:
      return nullptr;
  }
}

std::int16_t VECTORDATA::*checkedShortWord(std::int32_t iAttribute) {
  const auto word = shortWord(iAttribute);
  if (word == nullptr) throw Fault(FaultNumber::Subscript);
  return word;
}

std::int16_t asShort(std::int32_t iPointer) {
  using Limits = std::numeric_limits<std::int16_t>;
  if (iPointer < Limits::min() || iPointer > Limits::max()) throw Fault(FaultNumber::Overflow);
  return static_cast<std::int16_t>(iPointer);
}

}  // namespace

void InitVECTORDATA(VECTORDATA& xVector, bool& qOK) {
  xVector = {};
  qOK = true;
}

void InitVECTORDATAArray(std::vector<VECTORDATA>& xVectors, bool& qOK) {
  std::ranges::fill(xVectors, VECTORDATA{});
  qOK = true;
}

void redimVECTORDATAArray(std::int32_t nVectors, bool qKeep, std::vector<VECTORDATA>& xVectors, bool& qOK) {
  qOK = false;
  if (!qKeep) xVectors.clear();
  xVectors.resize(static_cast<std::size_t>(std::max(nVectors, 1)));
  qOK = true;
}

std::int32_t pointer(const VECTORDATA& xVector, std::int32_t iAttribute) {
  if (iAttribute == attributeIndex) return xVector.iIndex;
  return xVector.*checkedShortWord(iAttribute);
}

void setPointer(VECTORDATA& xVector, std::int32_t iAttribute, std::int32_t iPointer) {
  if (iAttribute == attributeIndex) {
    xVector.iIndex = iPointer;
  } else {
    xVector.*checkedShortWord(iAttribute) = asShort(iPointer);
  }
}

void setPointers(std::span<VECTORDATA> xVectors, std::int32_t iAttribute,
                 std::span<const std::int32_t> iPointers) {
  if (iPointers.size() > xVectors.size()) throw Fault(FaultNumber::Subscript);
  if (iAttribute == attributeIndex) {
    for (std::size_t i = 0; i < iPointers.size(); ++i) xVectors[i].iIndex = iPointers[i];
    return;
  }
  const auto word = checkedShortWord(iAttribute);
  for (std::size_t i = 0; i < iPointers.size(); ++i) xVectors[i].*word = asShort(iPointers[i]);
}

void getVECTORDATA(std::span<const VECTORDATA> xVectors, ByteTable& bPointers, bool& qOK) {
  qOK = false;
  bPointers = ByteTable(sizeof(VECTORDATA), xVectors.size());
  if (!xVectors.empty()) std::memcpy(bPointers.bytes().data(), xVectors.data(), xVectors.size_bytes());
  qOK = true;
}

void setVECTORDATA(const ByteTable& bPointers, std::vector<VECTORDATA>& xVectors, bool& qOK) {
  qOK = false;
  if (bPointers.width() != sizeof(VECTORDATA)) return;
  xVectors.resize(bPointers.entries());
  if (!xVectors.empty()) std::memcpy(xVectors.data(), bPointers.bytes().data(), bPointers.bytes().size());
  qOK = true;
}

}  // namespace lumbarn
