#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "../support/Fault.h"

namespace lumbarn {

/// A small table of two dimensions, table(iRow, iColumn), or three, table(iPlane, iRow, iColumn), all from 1
/// and checked (Fault 9). Column-major, as hosts keep it: the first index runs fastest.
template <class T>
class ColumnTable {
 public:
  ColumnTable() = default;
  ColumnTable(std::size_t rows, std::size_t columns, T fill = T())
      : rows_(rows), columns_(columns), values_(rows * columns, fill) {}
  /// Callers bound the sizes by what a file holds, so the product does not overflow.
  static ColumnTable threeDimensional(std::size_t planes, std::size_t rows, std::size_t columns,
                                      T fill = T()) {
    ColumnTable table(planes * rows, columns, fill);
    table.planes_ = planes;
    table.rows_ = rows;
    table.qPlanes_ = true;
    return table;
  }

  bool qThreeDimensional() const { return qPlanes_; }
  std::size_t planes() const { return planes_; }  ///< 1 for a table of two dimensions
  std::size_t rows() const { return rows_; }
  std::size_t columns() const { return columns_; }
  bool empty() const { return values_.empty(); }

  T& operator()(std::size_t iRow, std::size_t iColumn) { return values_[place(1, iRow, iColumn)]; }
  const T& operator()(std::size_t iRow, std::size_t iColumn) const {
    return values_[place(1, iRow, iColumn)];
  }
  T& operator()(std::size_t iPlane, std::size_t iRow, std::size_t iColumn) {
    return values_[place(iPlane, iRow, iColumn)];
  }
  const T& operator()(std::size_t iPlane, std::size_t iRow, std::size_t iColumn) const {
    return values_[place(iPlane, iRow, iColumn)];
  }
  std::span<const T> values() const { return values_; }

 private:
  std::size_t place(std::size_t iPlane, std::size_t iRow, std::size_t iColumn) const {
    const auto inside = [](std::size_t i, std::size_t count) { return i >= 1 && i <= count; };
    if (!inside(iPlane, planes_) || !inside(iRow, rows_) || !inside(iColumn, columns_)) {
      throw Fault(FaultNumber::Subscript);
    }
    return ((iColumn - 1) * rows_ + iRow - 1) * planes_ + iPlane - 1;
  }

  std::size_t planes_ = 1;
  std::size_t rows_ = 0;
  std::size_t columns_ = 0;
  bool qPlanes_ = false;
  std::vector<T> values_;
};

}  // namespace lumbarn
