#include "VectorData.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "../support/Fault.h"
#include "HeaderLayout.h"

namespace lumbarn {

namespace {

/// The fields in the order in which hosts have them; all but the last have 16 bits there.
constexpr std::array<std::int32_t VECTORDATA::*, 10> shortFields = {
    &VECTORDATA::iSource,   &VECTORDATA::iDataKind, &VECTORDATA::iClass,  &VECTORDATA::iUnits,
    &VECTORDATA::iLGRS,     &VECTORDATA::iVariable, &VECTORDATA::iMember, &VECTORDATA::iLGRName,
    &VECTORDATA::iLGRClass, &VECTORDATA::iVerbose};

/// One header as hosts have it.
struct PackedVector {
  std::array<std::int16_t, shortFields.size()> words;
  std::int32_t iIndex;
};
static_assert(sizeof(PackedVector) == vectorDataBytes);

std::int32_t VECTORDATA::*fieldOf(std::int32_t iAttribute) {
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
    case attributeIndex:
      return &VECTORDATA::iIndex;
    case attributeVariable:
      return &VECTORDATA::iVariable;
    case attributeVerbose:
      return &VECTORDATA::iVerbose;
    case attributeLGRS:
      return &VECTORDATA::iLGRS;
    default:
      throw Fault(FaultNumber::Subscript);
  }
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
  return xVector.*fieldOf(iAttribute);
}

void setPointer(VECTORDATA& xVector, std::int32_t iAttribute, std::int32_t iPointer) {
  xVector.*fieldOf(iAttribute) = iPointer;
}

void setPointers(std::span<VECTORDATA> xVectors, std::int32_t iAttribute,
                 std::span<const std::int32_t> iPointers) {
  if (iPointers.size() > xVectors.size()) throw Fault(FaultNumber::Subscript);
  const auto field = fieldOf(iAttribute);
  for (std::size_t i = 0; i < iPointers.size(); ++i) xVectors[i].*field = iPointers[i];
}

std::optional<ByteTable> packVectors(std::span<const VECTORDATA> xVectors) {
  ByteTable pointers(vectorDataBytes, xVectors.size());
  for (std::size_t i = 0; i < xVectors.size(); ++i) {
    PackedVector packed{{}, xVectors[i].iIndex};
    for (std::size_t k = 0; k < shortFields.size(); ++k) {
      const std::int32_t number = xVectors[i].*shortFields[k];
      if (!std::in_range<std::int16_t>(number)) return std::nullopt;
      packed.words[k] = static_cast<std::int16_t>(number);
    }
    std::memcpy(pointers.entry(i + 1).data(), &packed, sizeof packed);
  }
  return pointers;
}

std::optional<std::vector<VECTORDATA>> unpackVectors(const ByteTable& bPointers) {
  if (bPointers.width() != vectorDataBytes) return std::nullopt;
  std::vector<VECTORDATA> vectors(bPointers.entries());
  for (std::size_t i = 0; i < vectors.size(); ++i) {
    PackedVector packed;
    std::memcpy(&packed, bPointers.entry(i + 1).data(), sizeof packed);
    for (std::size_t k = 0; k < shortFields.size(); ++k) vectors[i].*shortFields[k] = packed.words[k];
    vectors[i].iIndex = packed.iIndex;
  }
  return vectors;
}

void getVECTORDATA(std::span<const VECTORDATA> xVectors, ByteTable& bPointers, bool& qOK) {
  qOK = false;
  auto packed = packVectors(xVectors);
  if (packed) bPointers = std::move(*packed);
  qOK = packed.has_value();
}

void setVECTORDATA(const ByteTable& bPointers, std::vector<VECTORDATA>& xVectors, bool& qOK) {
  qOK = false;
  auto vectors = unpackVectors(bPointers);
  if (vectors) xVectors = std::move(*vectors);
  qOK = vectors.has_value();
}

}  // namespace lumbarn
