#pragma once

#include <optional>
#include <string>
#include <vector>

#include "frame/Column.h"
#include "frame/Write.h"

namespace lumbarn::cli {

/// One array of a list, in words.
struct ListedArray {
  std::string grid, array, type, unit;
  std::int64_t count = 0;
  std::optional<float> least, most;
  bool operator==(const ListedArray&) const = default;
};

/// A row of what `Run::arrays` gives.
ListedArray listedArray(const Batch& batch, std::size_t row);
/// For people: a table of arrays, with their grid where there are several, and with their smallest and
/// largest value on request.
void writeArrayList(const std::vector<ListedArray>& arrays, bool ranges, Sink& sink);
void writeText(Sink& sink, const std::string& text);

}  // namespace lumbarn::cli
