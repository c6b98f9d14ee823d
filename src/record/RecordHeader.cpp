#include "RecordHeader.h"

namespace lumbarn {

TypeInfo typeInfo(std::string_view typeWord) {
  if (typeWord == "INTE") return {ElementType::Integer, 4};
  if (typeWord == "REAL") return {ElementType::Single, 4};
  if (typeWord == "DOUB") return {ElementType::Double, 8};
  if (typeWord == "CHAR") return {ElementType::Text, 8};
  if (typeWord == "LOGI") return {ElementType::Logical, 4};
  if (typeWord == "INT2") return {ElementType::Short, 2};
  if (typeWord == "MESS") return {ElementType::None, 0};
  if (typeWord.size() == 4 && typeWord[0] == 'C') {
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
