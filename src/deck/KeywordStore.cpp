#include "KeywordStore.h"

#include <algorithm>

#include "../support/Text.h"

namespace lumbarn {

const DeckKeywordRecord* KeywordStore::find(std::string_view zName, std::int32_t iSection) const {
  const auto found = std::find_if(records_.begin(), records_.end(), [&](const DeckKeywordRecord& record) {
    return (iSection == anySection || record.iSection == iSection) && equalNoCase(record.zName, zName);
  });
  return found == records_.end() ? nullptr : &*found;
}

void KeywordStore::add(std::string_view zName, std::int32_t iSection, std::span<const std::string> zArgs) {
  const DeckKeywordRecord* held = find(zName, iSection);
  if (!held) {
    records_.push_back({.zName = std::string(zName), .iSection = iSection, .zArgs = {}, .nArgs = 0});
    held = &records_.back();
  }
  DeckKeywordRecord& record = records_[static_cast<std::size_t>(held - records_.data())];
  if (zArgs.size() > record.zArgs.size()) record.zArgs.resize(zArgs.size());
  std::copy(zArgs.begin(), zArgs.end(), record.zArgs.begin());
  record.nArgs = static_cast<std::int32_t>(record.zArgs.size());
}

std::vector<std::string> KeywordStore::names(std::int32_t iSection) const {
  std::vector<std::string> names;
  for (const DeckKeywordRecord& record : records_) {
    if (iSection < 1 || record.iSection == iSection) names.push_back(record.zName);
  }
  return names;
}

}  // namespace lumbarn
