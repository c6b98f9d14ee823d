#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "../support/Export.h"
#include "../support/Session.h"

namespace lumbarn {

/// Two-dimensional array of singles, one contiguous column-major block: the rows of one vector lie next to
/// each other. Rows and vectors count from 1. Move-only, as it can be large; `clone` copies.
class LUMBARN_API XYData {
 public:
  XYData() = default;
  XYData(XYData&& other) noexcept;
  XYData& operator=(XYData&& other) noexcept;
  /// A block of rows * columns values that are not initialised. Throws Fault 7 when it would pass the
  /// session's memory limit or there is no memory for it.
  XYData(std::size_t rows, std::size_t columns, const Session& session);

  std::size_t rows() const { return rows_; }
  std::size_t columns() const { return columns_; }
  bool empty() const { return rows_ == 0 || columns_ == 0; }

  /// Value of a row and a vector, both from 1. Throws Fault 9 outside.
  float& operator()(std::size_t iRow, std::size_t iVector) { return values_[place(iRow, iVector)]; }
  float operator()(std::size_t iRow, std::size_t iVector) const { return values_[place(iRow, iVector)]; }

  /// All rows of one vector, from 1. Throws Fault 9 outside.
  std::span<float> column(std::size_t iVector) { return {values_.get() + columnStart(iVector), rows_}; }
  std::span<const float> column(std::size_t iVector) const {
    return {values_.get() + columnStart(iVector), rows_};
  }
  /// The whole block, vector after vector.
  std::span<float> values() { return {values_.get(), rows_ * columns_}; }
  std::span<const float> values() const { return {values_.get(), rows_ * columns_}; }

  /// Keeps the first rows of each vector, in place; the memory of the others stays with the block.
  void cutRows(std::size_t rows);

  XYData clone(const Session& session) const;

 private:
  struct Free {
    std::size_t bytes;
    void operator()(float* values) const noexcept;
  };
  std::size_t place(std::size_t iRow, std::size_t iVector) const;
  std::size_t columnStart(std::size_t iVector) const;

  std::size_t rows_ = 0;
  std::size_t columns_ = 0;
  std::unique_ptr<float[], Free> values_{nullptr, Free{0}};
};

}  // namespace lumbarn
