#include "RecordHeader.h"

namespace lumbarn {

namespace {

/// Four letters as one number: the type is looked up for every record.
constexpr std::uint32_t wordOf(std::string_view letters) {
  std::uint32_t word = 0;
  for (const char c : letters) word = word << 8 | static_cast<unsigned char>(c);
  return word;
}

}  // namespace

TypeInfo typeInfo(std::string_view typeWord) {
  if (typeWord.size() != 4) return {};
  switch (wordOf(typeWord)) {
    case wordOf("INTE"):
      return {ElementType::Integer, 4};
    case wordOf("REAL"):
      return {ElementType::Single, 4};
    case wordOf("DOUB"):
      return {ElementType::Double, 8};
    case wordOf("CHAR"):
      return {ElementType::Text, 8};
    case wordOf("LOGI"):
      return {ElementType::Logical, 4};
    case wordOf("INT2"):
      return {ElementType::Short, 2};
    case wordOf("MESS"):
      return {ElementType::None, 0};
    default:
      break;
  }
  if (typeWord[0] == 'C') {
    int width = 0;
    for (const char c : typeWord.substr(1)) {
      if (c < '0' || c > '9') return {};
      width = 10 * width + (c - '0');
    }
    if (width > 0) return {ElementType::Text, width};
  }
  return {};
}

}  // namespace lumbarn
