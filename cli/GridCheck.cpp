#include "GridCheck.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

namespace lumbarn::cli {

std::optional<GridCheck::Finding> GridCheck::check(RecordCursor& cursor) {
  const RecordHeader& header = cursor.header();
  if (header.is("GRIDHEAD", ElementType::Integer)) {
    constexpr std::size_t reservoirsAt = 24;  // from 0; older files have no such word
    std::vector<std::int32_t> words(static_cast<std::size_t>(std::min<std::int64_t>(header.count, 25)));
    cursor.read(std::span(words));
    sizes_.reset();
    if (words.size() < 4) return Finding{"4 words or more", fmt::format("{}", words.size())};
    const std::int64_t reservoirs = words.size() > reservoirsAt ? std::max(words[reservoirsAt], 1) : 1;
    sizes_ = {words[1], words[2], words[3], reservoirs};
    if (std::ranges::all_of(*sizes_, [](std::int64_t size) { return size >= 1; })) return {};
    sizes_.reset();
    return Finding{"sizes of 1 or more", fmt::format("{} x {} x {}", words[1], words[2], words[3])};
  }
  if (!sizes_) return {};
  const auto [nx, ny, nz, reservoirs] = *sizes_;
  // As doubles, so that sizes that no grid can have do not overflow.
  const double cells = static_cast<double>(nx) * static_cast<double>(ny) * static_cast<double>(nz);
  double expected = 0;
  if (header.keyword == "COORD") {
    expected =
        6.0 * static_cast<double>(nx + 1) * static_cast<double>(ny + 1) * static_cast<double>(reservoirs);
  } else if (header.keyword == "ZCORN") {
    expected = 8 * cells;
  } else if (header.keyword == "ACTNUM" || header.keyword == "HOSTNUM") {
    expected = cells;
  } else {
    return {};
  }
  if (static_cast<double>(header.count) == expected) return {};
  return Finding{fmt::format("{:.0f} values", expected), fmt::format("{}", header.count)};
}

}  // namespace lumbarn::cli
