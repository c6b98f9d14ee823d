#include "ArraySelection.h"

#include "../support/Pattern.h"
#include "../support/Text.h"

namespace lumbarn {

ArraySelection::ArraySelection(std::span<const std::string> only, std::span<const std::string> except)
    : only_(itemsOf(only)), except_(itemsOf(except)) {}

std::vector<ArraySelection::Item> ArraySelection::itemsOf(std::span<const std::string> lists) {
  std::vector<Item> items;
  for (const auto& list : lists) {
    for (const auto& pattern : split(list, ',')) {
      if (!trim(pattern).empty()) items.push_back({std::string(trim(pattern))});
    }
  }
  return items;
}

bool ArraySelection::matchesAny(std::vector<Item>& items, std::string_view zName) {
  bool any = false;
  for (auto& item : items) {
    const bool fits = matchesPattern(zName, item.pattern);
    item.met = item.met || fits;
    any = any || fits;
  }
  return any;
}

bool ArraySelection::choosesDerived(std::string_view zName) {
  const bool wanted = only_.empty() || matchesAny(only_, zName);
  return wanted && !matchesAny(except_, zName);
}

bool ArraySelection::chooses(std::string_view zName) {
  if (choosesDerived(zName)) return true;
  const bool source = zName == "SWAT" || zName == "SGAS";
  return source && !only_.empty() && choosesDerived("SOIL");
}

std::vector<std::string> ArraySelection::unmatched() const {
  std::vector<std::string> texts;
  for (const auto* items : {&only_, &except_}) {
    for (const auto& item : *items) {
      if (!item.met) texts.push_back(item.pattern);
    }
  }
  return texts;
}

}  // namespace lumbarn
