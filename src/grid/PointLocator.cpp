#include "PointLocator.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace lumbarn {
namespace {

constexpr unsigned stepBits = 16;
constexpr std::uint32_t lastStep = (1u << stepBits) - 1;

/// Where a coordinate lies between two ends, in steps. Rounding can put it off by one step.
std::uint32_t stepOf(double value, double low, double high) {
  const double share = high > low ? (value - low) / (high - low) : 0;
  return static_cast<std::uint32_t>(std::clamp(share, 0.0, 1.0) * lastStep);
}

/// The box round a column of cells while it is being measured. Corners are singles, so nothing is lost.
struct Outline {
  float lowX = INFINITY, lowY = INFINITY, highX = -INFINITY, highY = -INFINITY;

  void add(const Box& box) {
    lowX = std::min(lowX, static_cast<float>(box.low.x));
    lowY = std::min(lowY, static_cast<float>(box.low.y));
    highX = std::max(highX, static_cast<float>(box.high.x));
    highY = std::max(highY, static_cast<float>(box.high.y));
  }
};

/// The steps from one coordinate to another, with one more at each end to be on the safe side of rounding.
template <class Range>
Range stepsBetween(double from, double to, double low, double high) {
  const std::uint32_t first = stepOf(from, low, high);
  const std::uint32_t last = stepOf(to, low, high);
  return {static_cast<std::uint16_t>(first == 0 ? 0 : first - 1),
          static_cast<std::uint16_t>(std::min(last + 1, lastStep))};
}

}  // namespace

PointLocator::PointLocator(const Hadrick& grid, CellChoice choice)
    : grid_(grid),
      choice_(choice),
      columns_(static_cast<std::size_t>(grid.Nx()) * static_cast<std::size_t>(grid.Ny())) {
  measure();
  if (extent_.empty()) return;
  makeLevels();
  sortColumns();
  if (grid_.Nz() > 1) takeDepths();
}

/// The extent of the grid and the boxes of its columns.
void PointLocator::measure() {
  std::vector<Outline> outlines(columns_);
  forEachCell(grid_, choice_, [&](std::int32_t iCell, CellCorners corners) {
    const Box box = cellBox(corners);
    outlines[static_cast<std::size_t>(iCell - 1) % columns_].add(box);
    extent_.add(box);
  });
  boxes_.resize(columns_);
  for (std::size_t column = 0; column < columns_; ++column) {
    const Outline& outline = outlines[column];
    if (!(outline.lowX <= outline.highX)) continue;
    boxes_[column] = {stepsBetween<Range>(outline.lowX, outline.highX, extent_.low.x, extent_.high.x),
                      stepsBetween<Range>(outline.lowY, outline.highY, extent_.low.y, extent_.high.y)};
  }
}

/// Bins of the lowest level are about as large as two to eight columns, which keeps the index small. Their
/// numbers along both axes are powers of two that follow the shape of the grid, and halve from level to
/// level.
void PointLocator::makeLevels() {
  const auto bits = static_cast<int>(std::bit_width(std::max<std::size_t>(columns_ / 2, 1))) - 1;
  const double width = std::max(extent_.high.x - extent_.low.x, 1e-30);
  const double length = std::max(extent_.high.y - extent_.low.y, 1e-30);
  const auto uneven = static_cast<int>(std::lround(std::clamp(std::log2(width / length), -64.0, 64.0)));
  const int most = stepBits;
  int across = std::clamp((bits + uneven) / 2, 0, std::min(bits, most));
  int along = std::min(bits - across, most);
  std::size_t firstBin = 0;
  while (true) {
    levels_.push_back({stepBits - static_cast<unsigned>(across), stepBits - static_cast<unsigned>(along),
                       1u << across, firstBin});
    firstBin += std::size_t{1} << (across + along);
    if (across == 0 && along == 0) break;
    across = std::max(across - 1, 0);
    along = std::max(along - 1, 0);
  }
  starts_.resize(firstBin + 1);
}

/// The bin of the lowest level that is at least as large as the box, by where the box begins.
std::size_t PointLocator::binOf(const ColumnBox& box) const {
  const auto fits = [&](const Level& level) {
    return box.x.high - box.x.low <= 1 << level.shiftX && box.y.high - box.y.low <= 1 << level.shiftY;
  };
  const Level& level = *std::ranges::find_if(levels_, fits);  // the last one holds anything
  return level.firstBin + (std::size_t{box.y.low} >> level.shiftY) * level.binsAcross +
         (std::size_t{box.x.low} >> level.shiftX);
}

void PointLocator::sortColumns() {
  const auto there = [&](std::size_t column) { return boxes_[column].x.low <= boxes_[column].x.high; };
  for (std::size_t column = 0; column < columns_; ++column) {
    if (there(column)) ++starts_[binOf(boxes_[column])];
  }
  std::uint32_t end = 0;
  for (std::uint32_t& start : starts_) start = end += start;  // for now the end of each bin
  sorted_.resize(end);
  for (std::size_t column = columns_; column-- > 0;) {
    if (there(column)) sorted_[--starts_[binOf(boxes_[column])]] = static_cast<std::uint32_t>(column);
  }
}

void PointLocator::takeDepths() {
  const auto layers = static_cast<std::size_t>(grid_.Nz());
  depths_.resize(columns_ * layers);
  forEachCell(grid_, choice_, [&](std::int32_t iCell, CellCorners corners) {
    const Box box = cellBox(corners);
    if (box.empty()) return;
    const auto cell = static_cast<std::size_t>(iCell - 1);
    depths_[cell % columns_ * layers + cell / columns_] =
        stepsBetween<Range>(box.low.z, box.high.z, extent_.low.z, extent_.high.z);
  });
}

std::int32_t PointLocator::find(const Point& point) const {
  if (!extent_.contains(point)) return 0;
  const std::uint32_t x = stepOf(point.x, extent_.low.x, extent_.high.x);
  const std::uint32_t y = stepOf(point.y, extent_.low.y, extent_.high.y);
  const std::uint32_t z = stepOf(point.z, extent_.low.z, extent_.high.z);
  std::int32_t found = 0;
  for (const Level& level : levels_) {
    const std::uint32_t lastX = x >> level.shiftX;
    const std::uint32_t lastY = y >> level.shiftY;
    // A box that reaches the point begins in the point's bin or in the one before.
    const std::uint32_t firstX = lastX - (lastX > 0);
    for (std::uint32_t binY = lastY - (lastY > 0); binY <= lastY; ++binY) {
      const std::size_t row = level.firstBin + std::size_t{binY} * level.binsAcross;
      for (std::uint32_t i = starts_[row + firstX]; i < starts_[row + lastX + 1]; ++i) {
        const std::uint32_t column = sorted_[i];
        if (!boxes_[column].x.has(x) || !boxes_[column].y.has(y)) continue;
        const std::int32_t here = findInColumn(column, z, point);
        if (here > 0 && (found == 0 || here < found)) found = here;
      }
    }
  }
  return found;
}

std::int32_t PointLocator::findInColumn(std::uint32_t column, std::uint32_t depth, const Point& point) const {
  const auto layers = static_cast<std::size_t>(grid_.Nz());
  for (std::size_t layer = 0; layer < layers; ++layer) {
    if (!depths_.empty() && !depths_[column * layers + layer].has(depth)) continue;
    const auto iCell = static_cast<std::int32_t>(column + layer * columns_ + 1);
    if (holds(iCell, point)) return iCell;
  }
  return 0;
}

bool PointLocator::holds(std::int32_t iCell, const Point& point) const {
  if (choice_ == CellChoice::Active && grid_.activeOf(iCell) == 0) return false;
  std::array<float, Hadrick::rowItems> row;
  return grid_.corners(iCell, row) && cellContains(row, point);
}

std::size_t PointLocator::memoryUsed() const {
  return boxes_.capacity() * sizeof(ColumnBox) + levels_.capacity() * sizeof(Level) +
         (starts_.capacity() + sorted_.capacity()) * sizeof(std::uint32_t) +
         depths_.capacity() * sizeof(Range);
}

}  // namespace lumbarn
