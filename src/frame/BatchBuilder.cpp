#include "BatchBuilder.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include "Error.h"

namespace lumbarn {

namespace {

std::size_t rounded(std::size_t bytes) {
  return (bytes + Block::alignment - 1) / Block::alignment * Block::alignment;
}

template <class T>
void store(std::byte* place, T value) {
  std::memcpy(place, &value, sizeof value);
}

void setBit(std::uint8_t& byte, std::size_t bit, bool value) {
  const auto mask = static_cast<std::uint8_t>(1U << bit);
  byte = static_cast<std::uint8_t>(value ? byte | mask : byte & ~mask);
}

}  // namespace

BatchBuilder::BatchBuilder(std::shared_ptr<const Schema> schema, BatchLimits limits)
    : schema_(std::move(schema)), limits_(limits), columns_(schema_->size()) {
  std::size_t width = 0;
  for (const Field& field : *schema_) width += std::max<std::size_t>(widthOf(field), 1);
  mostRows_ = std::clamp<std::size_t>(limits.bytes / std::max<std::size_t>(width, 1), 1,
                                      std::max<std::size_t>(limits.rows, 1));
}

bool BatchBuilder::full() const { return rows_ >= mostRows_ || (rows_ > 0 && textBytes_ >= limits_.bytes); }

std::size_t BatchBuilder::bytesFor(std::size_t column, std::size_t rows) const {
  const Field& field = (*schema_)[column];
  if (field.type == Type::Bool) return rounded((rows + 7) / 8);
  if (field.type == Type::Utf8) return rounded((rows + 1) * sizeof(std::int32_t));
  return rounded(rows * widthOf(field));
}

/// Moves the columns to a block with room for so many rows. Columns of one width stay at one distance.
void BatchBuilder::reserve(std::size_t rows) {
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < columns_.size(); ++i) bytes += bytesFor(i, rows);
  Block block(bytes);
  std::size_t offset = 0;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (capacity_ > 0)
      std::memcpy(block.data() + offset, block_.data() + columns_[i].offset, bytesFor(i, capacity_));
    columns_[i].offset = offset;
    offset += bytesFor(i, rows);
  }
  block_ = std::move(block);
  capacity_ = rows;
}

/// Where the value of the current row goes.
std::byte* BatchBuilder::place(std::size_t column) {
  if (rows_ == capacity_)
    reserve(std::min(std::max(4 * capacity_, firstRows), std::max(mostRows_, rows_ + 1)));
  ColumnState& state = columns_[column];
  state.setIn = rows_ + 1;
  const Field& field = (*schema_)[column];
  const std::size_t width = field.type == Type::Utf8 ? sizeof(std::int32_t) : widthOf(field);
  return block_.data() + state.offset + (field.type == Type::Bool ? rows_ / 8 : rows_ * width);
}

void BatchBuilder::refuse(std::size_t column, std::string_view value) const {
  throw Error(Error::Kind::BadRequest,
              {.message = Message::TableRequest,
               .problem = fmt::format("column {} takes no {}", (*schema_)[column].name, value)});
}

template <class Number>
requires std::floating_point<Number> || std::integral<Number>
void BatchBuilder::set(std::size_t column, Number value) {
  switch ((*schema_)[column].type) {
    case Type::Bool:
      setBit(*reinterpret_cast<std::uint8_t*>(place(column)), rows_ % 8, value != Number{});
      break;
    case Type::Int32:
    case Type::Dictionary:
      store(place(column), static_cast<std::int32_t>(value));
      break;
    case Type::Int64:
    case Type::Timestamp:
      store(place(column), static_cast<std::int64_t>(value));
      break;
    case Type::Float32:
      store(place(column), static_cast<float>(value));
      break;
    case Type::Float64:
      store(place(column), static_cast<double>(value));
      break;
    case Type::Utf8:
    case Type::FixedList:
      refuse(column, "single numbers");
  }
}
template void BatchBuilder::set(std::size_t, bool);
template void BatchBuilder::set(std::size_t, std::int32_t);
template void BatchBuilder::set(std::size_t, std::int64_t);
template void BatchBuilder::set(std::size_t, std::uint64_t);
template void BatchBuilder::set(std::size_t, float);
template void BatchBuilder::set(std::size_t, double);

void BatchBuilder::set(std::size_t column, std::string_view text) {
  if ((*schema_)[column].type != Type::Utf8) refuse(column, "texts");
  if (columns_[column].setIn == rows_ + 1) dropText(column);
  place(column);
  std::string& texts = columns_[column].texts;
  if (text.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()) - texts.size())
    refuse(column, "more than 2 GB of texts");
  texts += text;
  textBytes_ += text.size();
}

void BatchBuilder::set(std::size_t column, LocalMoment moment) {
  set(column, static_cast<std::int64_t>(moment.time_since_epoch().count()));
}

void BatchBuilder::set(std::size_t column, std::span<const float> values) {
  if (widthOf((*schema_)[column]) != values.size_bytes())
    refuse(column, fmt::format("{} values", values.size()));
  std::memcpy(place(column), values.data(), values.size_bytes());
}

void BatchBuilder::markNull(std::size_t column) {
  std::byte* at = place(column);
  ColumnState& state = columns_[column];
  const Field& field = (*schema_)[column];
  if (field.type == Type::Bool) setBit(*reinterpret_cast<std::uint8_t*>(at), rows_ % 8, false);
  std::memset(at, 0, widthOf(field));
  state.validity.resize(rows_ / 8 + 1, 0xFF);
  setBit(state.validity.back(), rows_ % 8, false);
  ++state.nulls;
}

void BatchBuilder::endRow() {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].setIn != rows_ + 1) markNull(i);
    if ((*schema_)[i].type == Type::Utf8) {
      store(place(i) + sizeof(std::int32_t), static_cast<std::int32_t>(columns_[i].texts.size()));
    }
  }
  ++rows_;
}

void BatchBuilder::dropRow() {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    ColumnState& state = columns_[i];
    if (state.setIn != rows_ + 1) continue;
    state.setIn = 0;
    if ((*schema_)[i].type == Type::Utf8) dropText(i);
  }
}

/// Removes the text of the current row.
void BatchBuilder::dropText(std::size_t column) {
  ColumnState& state = columns_[column];
  std::int32_t end = 0;
  std::memcpy(&end, block_.data() + state.offset + rows_ * sizeof end, sizeof end);
  textBytes_ -= state.texts.size() - static_cast<std::size_t>(end);
  state.texts.resize(static_cast<std::size_t>(end));
}

Batch BatchBuilder::finish() {
  dropRow();
  struct Memory {
    Block block;
    std::vector<ColumnState> columns;
  };
  if (capacity_ == 0) reserve(1);
  auto memory = std::make_shared<Memory>();
  memory->block = std::exchange(block_, Block());
  memory->columns = std::exchange(columns_, std::vector<ColumnState>(schema_->size()));
  auto data = std::make_shared<BatchData>();
  data->schema = schema_;
  data->rows = rows_;
  for (ColumnState& column : memory->columns) {
    ColumnBuffers buffers{.values = memory->block.data() + column.offset,
                          .texts = column.texts.data(),
                          .validity = nullptr,
                          .nulls = column.nulls};
    if (column.nulls > 0) {
      column.validity.resize((rows_ + 7) / 8, 0xFF);
      buffers.validity = column.validity.data();
    }
    data->columns.push_back(buffers);
  }
  data->owners.push_back(std::move(memory));
  capacity_ = rows_ = textBytes_ = 0;
  return Batch(std::move(data));
}

}  // namespace lumbarn
