#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "../support/Export.h"

namespace lumbarn {

/// What the elements of a record are.
enum class ElementType : std::uint8_t {
  Integer,  ///< INTE
  Single,   ///< REAL
  Double,   ///< DOUB
  Text,     ///< CHAR and C0nn
  Logical,  ///< LOGI
  Short,    ///< INT2
  None,     ///< MESS: no data
  Unknown,  ///< any other word; such data can be skipped but not read
};

/// One record header, as the reader sees it.
struct RecordHeader {
  std::string keyword;   ///< trimmed, upper case
  std::string typeWord;  ///< the four letters in the file: "REAL", "C032"
  ElementType type = ElementType::None;
  std::int64_t count = 0;      ///< elements; beyond 2^31 - 1 when an X231 header stands in front
  std::int32_t width = 0;      ///< bytes of one element in an unformatted file; characters of a text
  std::uint64_t headerAt = 0;  ///< byte offset of the header record, from 0; of the X231 one if any
  std::uint64_t dataAt = 0;    ///< byte offset of what follows the header record, from 0
  std::uint64_t key = 0;       ///< `keywordKey` of the keyword, where the header was read from a file

  /// As new, but with the room that the texts have.
  void clear() {
    keyword.clear();
    key = 0;
    typeWord.clear();
    type = ElementType::None;
    count = 0;
    width = 0;
    headerAt = dataAt = 0;
  }
  bool is(std::string_view name, ElementType ofType) const { return type == ofType && keyword == name; }
};

/// Type and element width of a type word.
struct TypeInfo {
  ElementType type = ElementType::Unknown;
  std::int32_t width = 0;
};
LUMBARN_API TypeInfo typeInfo(std::string_view typeWord);

/// Elements in one block of an unformatted record and of a formatted one: 105 strings whatever their width,
/// 1000 of anything else.
constexpr std::int64_t elementsPerBlock(ElementType type) { return type == ElementType::Text ? 105 : 1000; }

}  // namespace lumbarn
