#include "UserTestTable.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "../record/TextNumbers.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

/// Cuts the first word off a line; empty when there is none.
std::string_view takeWord(std::string_view& line) {
  line = trim(line);
  const std::string_view word = line.substr(0, line.find_first_of(" \t\r\n"));
  line.remove_prefix(word.size());
  return word;
}

}  // namespace

void UserTestTable::addHeaders(std::vector<std::string> words) {
  ++headerLines_;
  if (headerLines_ == 1) {
    names_ = std::move(words);
    rows_ = 0;
    findDepthColumn();
  } else if (headerLines_ == 2) {
    units_ = std::move(words);
  }
}

/// Several columns may be depths. A measured length along the well goes before a depth in a PLT.
void UserTestTable::findDepthColumn() {
  const auto groups = depthColumns(kind_);
  const auto isIn = [](const auto& group) {
    return [&group](std::string_view name) { return std::ranges::find(group, name) != group.end(); };
  };
  const auto lastOfBest = std::find_if(names_.rbegin(), names_.rend(), isIn(groups[0]));
  if (lastOfBest != names_.rend()) {
    depthColumn_ = static_cast<std::size_t>(names_.rend() - lastOfBest - 1);
    return;
  }
  for (std::size_t i = 1; i < groups.size(); ++i) {
    const auto first = std::ranges::find_if(names_, isIn(groups[i]));
    if (first == names_.end()) continue;
    depthColumn_ = static_cast<std::size_t>(first - names_.begin());
    return;
  }
}

UserTestTable::Row UserTestTable::addRow(std::string_view line) {
  Row row;
  ++rows_;
  if (names_.empty()) return row;
  cells_.resize(rows_ * columns());
  const auto cells = std::span(cells_).last(columns());
  while (row.numbers < columns()) {
    const std::string_view word = takeWord(line);
    if (word.empty()) break;
    float& cell = cells[row.numbers++];
    // "nan" and "inf" are words here, and so is "***".
    const std::size_t taken = beginsAsNumber(word) ? parseNumber(word, cell) : 0;
    if (taken == 0) cell = 0;
    if (taken != word.size() && !row.noNumber) row.noNumber = word;
  }
  return row;
}

std::string_view UserTestTable::units(std::size_t column) const {
  return place(column) < units_.size() ? std::string_view(units_[place(column)]) : std::string_view();
}

void UserTestTable::copyColumn(std::size_t column, std::span<float> out) const {
  for (std::size_t row = 0; row < rows(); ++row) out[row] = cells_[row * columns() + place(column)];
}

}  // namespace lumbarn
