#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "AttributeStore.h"
#include "ByteTable.h"

namespace lumbarn {

/// One header in compact form: string numbers into the attribute stores, -1 for not set. 24 bytes, without
/// padding, as hosts take it byte for byte.
struct VECTORDATA {
  std::int16_t iSource = -1;    ///< attribute 4
  std::int16_t iDataKind = -1;  ///< attribute 5
  std::int16_t iClass = -1;     ///< attribute 6; the key for grouping by class
  std::int16_t iUnits = -1;     ///< attribute 2
  std::int16_t iLGRS = -1;      ///< attribute 14
  std::int16_t iVariable = -1;  ///< attribute 11
  std::int16_t iMember = -1;    ///< attribute 9
  std::int16_t iLGRName = -1;   ///< attribute 7
  std::int16_t iLGRClass = -1;  ///< attribute 8
  std::int16_t iVerbose = -1;   ///< attribute 12
  std::int32_t iIndex = -1;     ///< attribute 10

  bool operator==(const VECTORDATA&) const = default;
};
static_assert(sizeof(VECTORDATA) == 24);

void InitVECTORDATA(VECTORDATA& xVector, bool& qOK);
void InitVECTORDATAArray(std::vector<VECTORDATA>& xVectors, bool& qOK);
/// Resizes, to one entry for a size below 1; with qKeep the old entries stay and only new ones are
/// initialised.
void redimVECTORDATAArray(std::int32_t nVectors, bool qKeep, std::vector<VECTORDATA>& xVectors, bool& qOK);

/// The string number of an attribute, and setting it. Throws Fault 6 for a number that does not fit the word,
/// Fault 9 for an attribute that has no word.
std::int32_t pointer(const VECTORDATA& xVector, std::int32_t iAttribute);
void setPointer(VECTORDATA& xVector, std::int32_t iAttribute, std::int32_t iPointer);

/// The same for the first vectors, one number each, as a store's `StoreAddBlock` gives them. Throws Fault 9
/// for more numbers than vectors too; the vectors before the one that failed are set.
void setPointers(std::span<VECTORDATA> xVectors, std::int32_t iAttribute,
                 std::span<const std::int32_t> iPointers);

/// Byte for byte into `bPointers(1..24, 1..N)`, in the machine's byte order.
void getVECTORDATA(std::span<const VECTORDATA> xVectors, ByteTable& bPointers, bool& qOK);
/// And back. qOK False, with the vectors as they were, when an entry has not 24 bytes. The numbers are taken
/// as they stand: one that its store does not have reads as an empty text.
void setVECTORDATA(const ByteTable& bPointers, std::vector<VECTORDATA>& xVectors, bool& qOK);

}  // namespace lumbarn
