#pragma once

#include <algorithm>
#include <functional>
#include <string_view>

namespace lumbarn {

/// A text that is known by a key; the row type of most tables of this directory.
struct KeyedText {
  std::string_view key;
  std::string_view text;
};

/// True when the rows' keys rise strictly, so that `findRow` finds each of them. For static_assert beside
/// the table.
template <const auto& rows>
constexpr bool keysRise = std::ranges::adjacent_find(rows, std::ranges::greater_equal(), [](const auto& row) {
                            return row.key;
                          }) == std::ranges::end(rows);

/// The row with exactly this key, or nullptr.
template <class Rows>
constexpr auto findRow(const Rows& rows, std::string_view key) {
  const auto row = std::ranges::lower_bound(rows, key, {}, [](const auto& r) { return r.key; });
  return row != std::ranges::end(rows) && row->key == key ? &*row : nullptr;
}

}  // namespace lumbarn
