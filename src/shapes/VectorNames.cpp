#include "VectorNames.h"

#include "ByteTable.h"

namespace lumbarn {

std::string_view cleanVectorName(std::string_view zName) {
  zName = fieldText(zName);
  while (!zName.empty() && (zName.front() < 'A' || zName.front() > 'Z')) zName.remove_prefix(1);
  return zName;
}

void CleanUpVectorNames(std::vector<std::string>& zNames, bool& qOK) {
  qOK = false;
  for (auto& zName : zNames) zName = std::string(cleanVectorName(zName));
  qOK = true;
}

}  // namespace lumbarn
