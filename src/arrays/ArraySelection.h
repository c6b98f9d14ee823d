#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

/// Selects arrays of a restart or INIT file by name: comma-separated lists of patterns for `matchesPattern`,
/// in any letter case. Keeps arrays that match a pattern of `only`, or all if that is empty, except those
/// that match a pattern of `except`. "SOIL" also selects "SWAT" and "SGAS", from which it may have to be
/// derived.
class LUMBARN_API ArraySelection {
 public:
  ArraySelection() = default;
  ArraySelection(std::span<const std::string> only, std::span<const std::string> except);

  /// Whether an array with that name is wanted; notes which patterns have met a name.
  bool chooses(std::string_view zName);
  /// The same for a derived array, for which nobody asked by asking for its sources.
  bool choosesDerived(std::string_view zName);
  /// Patterns that no name has met, as given.
  std::vector<std::string> unmatched() const;

 private:
  struct Item {
    std::string pattern;
    bool met = false;
  };
  static std::vector<Item> itemsOf(std::span<const std::string> lists);
  static bool matchesAny(std::vector<Item>& items, std::string_view zName);

  std::vector<Item> only_;
  std::vector<Item> except_;
};

}  // namespace lumbarn
