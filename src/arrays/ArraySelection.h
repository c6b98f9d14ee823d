#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumbarn {

/// Which arrays of a restart or INIT file a host wants, by name: patterns of `matchesPattern` in lists with
/// commas between, without regard to case. Keeps what fits a pattern of `only`, or everything when that is
/// empty, less what fits one of `except`. Whoever asks for "SOIL" gets "SWAT" and "SGAS" too, as it may have
/// to be worked out from them.
class ArraySelection {
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
