#include "HeaderLayout.h"

#include <array>

namespace lumbarn {

namespace {

/// By attribute, from 1. Attributes 1, 3 and 13 have no field; byte 233 belongs to none.
constexpr std::array<HeaderField, 14> fields{{
    {},
    {41, 16},  // units
    {},
    {1, 32},    // source
    {33, 8},    // data kind
    {57, 16},   // class
    {113, 16},  // LGR name
    {129, 16},  // class inside the LGR
    {73, 40},   // member
    {145, 16},  // index
    {161, 16},  // variable
    {177, 40},  // verbose
    {},
    {217, 16},  // LGR name as in the LGRS record
}};

}  // namespace

HeaderField headerField(std::int32_t iAttribute) {
  if (iAttribute < 1 || static_cast<std::size_t>(iAttribute) > fields.size()) return {};
  return fields[static_cast<std::size_t>(iAttribute) - 1];
}

void InitAttributes(bool& qOK) { qOK = true; }

std::string ExtractAttribute(std::int32_t iAttribute, std::string_view zRecord) {
  const auto field = headerField(iAttribute);
  if (field.width == 0 || field.firstByte > zRecord.size()) return {};
  return std::string(fieldText(zRecord.substr(field.firstByte - 1, field.width)));
}

std::string ExtractAttribute(std::int32_t iAttribute, const ByteTable& bHeaders, std::size_t iVector) {
  const auto field = headerField(iAttribute);
  if (field.width == 0) return {};
  return std::string(bHeaders.get(iVector, field.firstByte, field.width));
}

void setAttribute(std::int32_t iAttribute, ByteTable& bHeaders, std::size_t iVector, std::string_view text) {
  const auto field = headerField(iAttribute);
  if (field.width != 0) bHeaders.put(iVector, field.firstByte, field.width, text);
}

}  // namespace lumbarn
