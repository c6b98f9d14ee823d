#include "XYData.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "../support/Fault.h"
#include "../support/System.h"

namespace lumbarn {

XYData::XYData(std::size_t rows, std::size_t columns, const Session& session)
    : rows_(rows), columns_(columns) {
  if (empty()) return;
  if (rows > std::numeric_limits<std::size_t>::max() / sizeof(float) / columns) {
    throw Fault(FaultNumber::OutOfMemory);
  }
  const std::size_t bytes = rows * columns * sizeof(float);
  session.checkMemory(bytes);
  try {
    values_ = {static_cast<float*>(allocateLarge(bytes)), Free{bytes}};
  } catch (const std::bad_alloc&) {
    throw Fault(FaultNumber::OutOfMemory);
  }
}

XYData::XYData(XYData&& other) noexcept
    : rows_(std::exchange(other.rows_, 0)),
      columns_(std::exchange(other.columns_, 0)),
      values_(std::move(other.values_)) {}

XYData& XYData::operator=(XYData&& other) noexcept {
  rows_ = std::exchange(other.rows_, 0);
  columns_ = std::exchange(other.columns_, 0);
  values_ = std::move(other.values_);
  return *this;
}

void XYData::Free::operator()(float* values) const noexcept { freeLarge(values, bytes); }

std::size_t XYData::columnStart(std::size_t iVector) const {
  if (iVector < 1 || iVector > columns_) throw Fault(FaultNumber::Subscript);
  return (iVector - 1) * rows_;
}

std::size_t XYData::place(std::size_t iRow, std::size_t iVector) const {
  if (iRow < 1 || iRow > rows_) throw Fault(FaultNumber::Subscript);
  return columnStart(iVector) + iRow - 1;
}

void XYData::cutRows(std::size_t rows) {
  if (rows >= rows_) return;
  for (std::size_t j = 1; j < columns_; ++j) {
    std::copy_n(values_.get() + j * rows_, rows, values_.get() + j * rows);
  }
  rows_ = rows;
}

XYData XYData::clone(const Session& session) const {
  XYData copy(rows_, columns_, session);
  std::ranges::copy(values(), copy.values().begin());
  return copy;
}

}  // namespace lumbarn
