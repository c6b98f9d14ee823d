#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lumbarn {

/// One item of a keyword's records.
struct ItemInfo {
  enum class Kind : std::uint8_t {
    Text,
    Whole,
    Number,
    Either,  ///< a number, or the name of a quantity that the user defines
  };
  std::string_view name;
  Kind kind = Kind::Text;
  std::string_view unit;       ///< quantity, as "length" or "liquid rate"; empty: none
  std::string_view otherwise;  ///< what simulators take for a default; empty: nothing, or it depends
};

/// The items of a keyword. `first` are those of its first record where that is of another kind than the rest,
/// as in WELSEGS. Where `many`, the last item may occur any number of times.
struct KeywordItems {
  std::vector<ItemInfo> first;
  std::vector<ItemInfo> items;
  bool many = false;
};

/// Those of a keyword whose items have names; null for others.
const KeywordItems* itemsOf(std::string_view keyword);

}  // namespace lumbarn
