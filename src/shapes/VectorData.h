#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "../support/Export.h"
#include "AttributeStore.h"
#include "ByteTable.h"

namespace lumbarn {

/// One header in compact form: string numbers into the attribute stores, -1 for not set. Hosts take it as 24
/// bytes with 16-bit words (see `getVECTORDATA`); here the words have 32 bits, as runs with more than 32,767
/// different names exist.
struct VECTORDATA {
  std::int32_t iSource = -1;    ///< attribute 4
  std::int32_t iDataKind = -1;  ///< attribute 5
  std::int32_t iClass = -1;     ///< attribute 6; the key for grouping by class
  std::int32_t iUnits = -1;     ///< attribute 2
  std::int32_t iLGRS = -1;      ///< attribute 14
  std::int32_t iVariable = -1;  ///< attribute 11
  std::int32_t iMember = -1;    ///< attribute 9
  std::int32_t iLGRName = -1;   ///< attribute 7
  std::int32_t iLGRClass = -1;  ///< attribute 8
  std::int32_t iVerbose = -1;   ///< attribute 12
  std::int32_t iIndex = -1;     ///< attribute 10

  bool operator==(const VECTORDATA&) const = default;
};

constexpr std::size_t vectorDataBytes = 24;  ///< of one header as hosts take it

/// Calling forms of making new ones.
LUMBARN_API void InitVECTORDATA(VECTORDATA& xVector, bool& qOK);
LUMBARN_API void InitVECTORDATAArray(std::vector<VECTORDATA>& xVectors, bool& qOK);
/// Resizes, to one entry for a size below 1; with qKeep the old entries stay and only new ones are
/// initialised.
LUMBARN_API void redimVECTORDATAArray(std::int32_t nVectors, bool qKeep, std::vector<VECTORDATA>& xVectors,
                                      bool& qOK);

/// The string number of an attribute, and setting it. Throws Fault 9 for an attribute that has no word.
LUMBARN_API std::int32_t pointer(const VECTORDATA& xVector, std::int32_t iAttribute);
LUMBARN_API void setPointer(VECTORDATA& xVector, std::int32_t iAttribute, std::int32_t iPointer);

/// The same for the first vectors, one number each, as a store's `StoreAddBlock` gives them. Throws Fault 9
/// for more numbers than vectors too.
LUMBARN_API void setPointers(std::span<VECTORDATA> xVectors, std::int32_t iAttribute,
                             std::span<const std::int32_t> iPointers);

/// `bPointers(1..24, 1..N)` in the machine's byte order: ten 16-bit words and the 32-bit index, in the order
/// of the fields. Nothing when a number does not fit its word.
LUMBARN_API std::optional<ByteTable> packVectors(std::span<const VECTORDATA> xVectors);
/// Reads them back. Nothing when an entry does not have 24 bytes. Numbers are not checked: one that its store
/// does not have reads as an empty text.
LUMBARN_API std::optional<std::vector<VECTORDATA>> unpackVectors(const ByteTable& bPointers);
/// Calling forms of the same. When qOK is False the results are as they were.
LUMBARN_API void getVECTORDATA(std::span<const VECTORDATA> xVectors, ByteTable& bPointers, bool& qOK);
LUMBARN_API void setVECTORDATA(const ByteTable& bPointers, std::vector<VECTORDATA>& xVectors, bool& qOK);

}  // namespace lumbarn
