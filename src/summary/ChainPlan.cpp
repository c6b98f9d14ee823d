#include "ChainPlan.h"

#include <algorithm>
#include <utility>

namespace lumbarn {
namespace {

void copyConverted(std::span<const float> values, const ChainSource& source, std::span<float> out) {
  if (!source.converts()) {
    std::ranges::copy(values, out.begin());
    return;
  }
  std::ranges::transform(values, out.begin(), [&](float value) { return source.converted(value); });
}

}  // namespace

void ChainPlan::addNewest(std::size_t rows, std::size_t columns) {
  ChainPart part{.rows = rows, .sources = {}};
  for (std::size_t i = 1; i <= columns; ++i) part.sources.push_back({static_cast<std::int32_t>(i)});
  add(std::move(part));
}

void ChainPlan::add(ChainPart part) {
  rows_ += part.rows;
  columns_ = std::max(columns_, part.sources.size());
  parts_.push_back(std::move(part));
}

ChainSource ChainPlan::source(std::size_t run, std::size_t column) const {
  const auto& sources = parts_[run].sources;
  return column <= sources.size() ? sources[column - 1] : ChainSource{};
}

std::vector<bool> ChainPlan::rowsWithValues(std::size_t column) const {
  std::vector<bool> present;
  present.reserve(rows_);
  for (std::size_t run = parts_.size(); run-- > 0;) {
    present.insert(present.end(), parts_[run].rows, source(run, column).column != 0);
  }
  return present;
}

std::vector<std::size_t> ChainPlan::columnsWithGaps() const {
  std::vector<std::size_t> gaps;
  for (std::size_t column = 1; column <= columns_; ++column) {
    for (std::size_t run = 0; run < parts_.size(); ++run) {
      if (parts_[run].rows == 0 || source(run, column).column != 0) continue;
      gaps.push_back(column);
      break;
    }
  }
  return gaps;
}

void ChainPlan::fill(std::size_t column, std::span<const XYData* const> tables, std::span<float> out) const {
  for (std::size_t run = parts_.size(); run-- > 0;) {
    const std::size_t rows = parts_[run].rows;
    const auto part = out.first(rows);
    out = out.subspan(rows);
    const ChainSource from = source(run, column);
    if (from.column == 0 || rows == 0) {
      std::ranges::fill(part, 0.0F);
    } else {
      copyConverted(tables[run]->column(static_cast<std::size_t>(from.column)).first(rows), from, part);
    }
  }
}

std::size_t rowsBefore(std::span<const float> times, const ChainSource& scale,
                       std::optional<float> firstTime) {
  if (!firstTime) return times.size();
  const auto end =
      std::ranges::find_if(times, [&](float time) { return !(scale.converted(time) < *firstTime); });
  return static_cast<std::size_t>(end - times.begin());
}

}  // namespace lumbarn
