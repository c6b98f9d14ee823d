#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "../support/Export.h"
#include "ByteTable.h"

namespace lumbarn {

/// Attribute numbers of a vector header.
enum Attribute : std::int32_t {
  attributeUnits = 2,
  attributeSource = 4,
  attributeDataKind = 5,
  attributeClass = 6,
  attributeLGRName = 7,
  attributeLGRClass = 8,
  attributeMember = 9,
  attributeIndex = 10,
  attributeVariable = 11,
  attributeVerbose = 12,
  attributeLGRS = 14,
};

constexpr std::size_t headerWidth = 233;  ///< bytes of one record of `bHeaders`

/// Place of an attribute in a header record: first byte, from 1, and width. Both 0 for an attribute with no
/// field.
struct HeaderField {
  std::size_t firstByte = 0;
  std::size_t width = 0;
};
LUMBARN_API HeaderField headerField(std::int32_t iAttribute);

/// Builds the attribute table. It is a constant here, so this only says that it is there.
LUMBARN_API void InitAttributes(bool& qOK);

/// Text of a field of one whole record: cut at the first character 0, blanks trimmed on both sides. Of a
/// field that the record breaks off in, what is there (hosts trim records); empty when the attribute has no
/// field.
LUMBARN_API std::string ExtractAttribute(std::int32_t iAttribute, std::string_view zRecord);
/// The same from column iVector (from 1) of a `bHeaders` array. Throws Fault 9 for a column that is not
/// there or too short for the field.
LUMBARN_API std::string ExtractAttribute(std::int32_t iAttribute, const ByteTable& bHeaders,
                                         std::size_t iVector);
/// Puts a text into its field, cut at the field's width; no effect when the attribute has no field. The field
/// is taken to be blank before. Throws Fault 9 for a column that is not there.
LUMBARN_API void setAttribute(std::int32_t iAttribute, ByteTable& bHeaders, std::size_t iVector,
                              std::string_view text);

}  // namespace lumbarn
