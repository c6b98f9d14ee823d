#include "ChainPlan.h"

#include <algorithm>
#include <utility>

#include "ScratchFile.h"

namespace lumbarn {
namespace {

constexpr std::size_t yieldInterval = 1000;  // columns

void copyConverted(std::span<const float> values, const ChainSource& source, std::span<float> out) {
  if (!source.converts()) {
    std::ranges::copy(values, out.begin());
    return;
  }
  std::ranges::transform(values, out.begin(), [&](float value) { return source.converted(value); });
}

}  // namespace

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

bool fillTable(Session& session, const ChainPlan& plan, std::span<const XYData* const> tables,
               XYData& merged) {
  merged = XYData(plan.rows(), plan.columns(), session);
  if (plan.rows() == 0) return true;
  for (std::size_t column = 1; column <= plan.columns(); ++column) {
    if (column % yieldInterval == 0 && session.yield()) return false;
    plan.fill(column, tables, merged.column(column));
  }
  return true;
}

bool fillScratchFile(Session& session, const ChainPlan& plan, std::span<const XYData* const> tables,
                     ScratchFile& scratch) {
  constexpr std::size_t atOnce = 1U << 18;  // values in one write, so that short columns share one
  std::vector<float> buffer;
  for (std::size_t column = 1; column <= plan.columns(); ++column) {
    if (column % yieldInterval == 0 && session.yield()) return false;
    const std::size_t end = buffer.size();
    buffer.resize(end + plan.rows());
    plan.fill(column, tables, std::span(buffer).subspan(end));
    if (buffer.size() >= atOnce || column == plan.columns()) {
      scratch.write(std::span<const float>(buffer));
      buffer.clear();
    }
  }
  scratch.finish();
  return true;
}

}  // namespace lumbarn
