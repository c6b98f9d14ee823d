#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "CellGeometryOfGrid.h"
#include "Hadrick.h"

namespace lumbarn {

/// Finds the cell of a grid that holds a point. The columns of cells are sorted into square bins by where
/// they lie in x and y; small columns into small bins and long ones (of pillars that lean far) into larger
/// ones, so that each column stands in one bin and a look-up visits four bins of each size. Boxes of columns
/// and depths of cells are kept in 16 bits, relative to the extent of the grid, and leave one or two cells
/// for the exact test.
///
/// Takes less than 16 bytes for each cell of a grid with one layer, and little over 4 with many. Building
/// visits each cell twice. A look-up takes about a microsecond in a grid that is sound; when a few cells lie
/// absurdly far away, it grows, as all others then share few bins, but stays right.
///
/// Refers to the grid, which must stay as it is while this lives. Look-ups may run in several threads.
class PointLocator {
 public:
  /// Throws std::bad_alloc.
  explicit PointLocator(const Hadrick& grid, CellChoice choice = CellChoice::Active);

  /// The number, from 1, of the cell that holds the point (`cellContains`); the lowest of them when damaged
  /// cells overlap; 0 when there is none.
  std::int32_t find(const Point& point) const;

  /// The box round all cells that can be found; empty when there are none.
  const Box& extent() const { return extent_; }
  /// Bytes that the index takes, without the grid.
  std::size_t memoryUsed() const;

 private:
  /// A range of one coordinate in steps of the extent, ends included; low above high for none.
  struct Range {
    std::uint16_t low = 0xffff;
    std::uint16_t high = 0;
    bool has(std::uint32_t step) const { return step >= low && step <= high; }
  };
  struct ColumnBox {
    Range x;
    Range y;
  };
  /// Bins of one size.
  struct Level {
    unsigned shiftX = 0;  // from a step to a bin
    unsigned shiftY = 0;
    std::uint32_t binsAcross = 1;
    std::size_t firstBin = 0;
  };

  void measure();
  void makeLevels();
  void sortColumns();
  void takeDepths();
  std::size_t binOf(const ColumnBox& box) const;
  std::int32_t findInColumn(std::uint32_t column, std::uint32_t depth, const Point& point) const;
  bool holds(std::int32_t iCell, const Point& point) const;

  const Hadrick& grid_;
  CellChoice choice_;
  std::size_t columns_;
  Box extent_;
  std::vector<ColumnBox> boxes_;       // of each column
  std::vector<Level> levels_;          // small bins first
  std::vector<std::uint32_t> starts_;  // of each bin in `sorted_`, and the end of the last
  std::vector<std::uint32_t> sorted_;  // columns, bin by bin
  std::vector<Range> depths_;          // of each cell, column by column; none when there is one layer
};

}  // namespace lumbarn
