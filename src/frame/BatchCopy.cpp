#include "BatchCopy.h"

#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "BatchData.h"

namespace lumbarn {

namespace {

void appendBits(std::vector<std::uint8_t>& to, std::size_t at, const std::uint8_t* from, std::size_t first,
                std::size_t count) {
  to.resize((at + count + 7) / 8, 0);
  for (std::size_t i = 0; i < count; ++i) {
    if (from == nullptr || bitAt(from, first + i))
      to[(at + i) / 8] |= static_cast<std::uint8_t>(1U << ((at + i) % 8));
  }
}

const std::uint8_t* bitsOf(const ColumnBuffers& column) {
  return reinterpret_cast<const std::uint8_t*>(column.values);
}

/// One column of what is copied, with the memory that it takes.
struct CopiedColumn {
  Block values;
  std::vector<std::uint8_t> bits, validity;
  std::string texts;
  std::size_t nulls = 0;
  std::size_t rows = 0;

  void append(const Field& field, const BatchRows& range, std::size_t column) {
    const ColumnBuffers& from = range.batch.data()->columns[column];
    if (from.nulls > 0) {
      for (std::size_t i = 0; i < range.count; ++i) nulls += bitAt(from.validity, range.first + i) ? 0U : 1U;
    }
    if (nulls > 0) {
      if (validity.empty()) appendBits(validity, 0, nullptr, 0, rows);
      appendBits(validity, rows, from.validity, range.first, range.count);
    }
    if (field.type == Type::Bool) {
      appendBits(bits, rows, bitsOf(from), range.first, range.count);
    } else if (field.type == Type::Utf8) {
      appendTexts(range.batch[column], range);
    } else if (range.count > 0) {
      const std::size_t width = widthOf(field);
      std::memcpy(values.data() + rows * width, from.values + range.first * width, range.count * width);
    }
    rows += range.count;
  }
  void appendTexts(const Column& from, const BatchRows& range) {
    for (std::size_t i = 0; i < range.count; ++i) {
      texts += from.text(range.first + i);
      if (texts.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        throw std::bad_alloc();
      const auto end = static_cast<std::int32_t>(texts.size());
      std::memcpy(values.data() + (rows + i + 1) * sizeof end, &end, sizeof end);
    }
  }
  ColumnBuffers buffers(Type type) const {
    return {.values = type == Type::Bool ? reinterpret_cast<const std::byte*>(bits.data()) : values.data(),
            .texts = texts.data(),
            .validity = nulls > 0 ? validity.data() : nullptr,
            .nulls = nulls};
  }
};

}  // namespace

Batch copied(const std::shared_ptr<const Schema>& schema, std::span<const BatchRows> ranges) {
  auto data = std::make_shared<BatchData>();
  data->schema = schema;
  for (const BatchRows& range : ranges) data->rows += range.count;
  auto columns = std::make_shared<std::vector<CopiedColumn>>(schema->size());
  for (std::size_t c = 0; c < schema->size(); ++c) {
    const Field& field = (*schema)[c];
    CopiedColumn& column = (*columns)[c];
    column.values = Block(field.type == Type::Utf8 ? (data->rows + 1) * sizeof(std::int32_t)
                                                   : data->rows * widthOf(field));
    for (const BatchRows& range : ranges) column.append(field, range, c);
    data->columns.push_back(column.buffers(field.type));
  }
  data->owners.push_back(std::move(columns));
  return Batch(std::move(data));
}

void setFrom(BatchBuilder& rows, std::size_t to, const Column& from, std::size_t row) {
  if (!from.valid(row)) return;
  switch (from.field().type) {
    case Type::Bool:
      return rows.set(to, from.boolean(row));
    case Type::Int32:
    case Type::Dictionary:
      return rows.set(to, from.values<std::int32_t>()[row]);
    case Type::Int64:
    case Type::Timestamp:
      return rows.set(to, from.values<std::int64_t>()[row]);
    case Type::Float32:
      return rows.set(to, from.values<float>()[row]);
    case Type::Float64:
      return rows.set(to, from.values<double>()[row]);
    case Type::Utf8:
      return rows.set(to, from.text(row));
    case Type::FixedList: {
      const auto size = static_cast<std::size_t>(from.field().listSize);
      return rows.set(to, from.values<float>().subspan(row * size, size));
    }
  }
}

double numberAt(const Column& column, std::size_t row) {
  switch (column.field().type) {
    case Type::Int32:
      return column.values<std::int32_t>()[row];
    case Type::Int64:
      return static_cast<double>(column.values<std::int64_t>()[row]);
    case Type::Float32:
      return column.values<float>()[row];
    default:
      return column.values<double>()[row];
  }
}

bool isNumeric(Type type) {
  return type == Type::Int32 || type == Type::Int64 || type == Type::Float32 || type == Type::Float64;
}

BatchMaker::BatchMaker(std::shared_ptr<const Schema> schema, std::size_t rows)
    : data_(std::make_shared<BatchData>()) {
  data_->schema = std::move(schema);
  data_->rows = rows;
}

void BatchMaker::share(const Batch& batch, std::size_t column) {
  data_->columns.push_back(batch.data()->columns[column]);
  if (data_->owners.empty() || data_->owners.back() != batch.data()) data_->owners.push_back(batch.data());
}

void BatchMaker::add(Block values, const Batch* batch, std::size_t column) {
  auto owner = std::make_shared<const Block>(std::move(values));
  ColumnBuffers buffers{.values = owner->data()};
  data_->owners.push_back(std::move(owner));
  if (batch) {
    buffers.validity = batch->data()->columns[column].validity;
    buffers.nulls = batch->data()->columns[column].nulls;
    data_->owners.push_back(batch->data());
  }
  data_->columns.push_back(buffers);
}

void BatchMaker::addNulls() {
  const Field& field = (*data_->schema)[data_->columns.size()];
  const std::size_t rows = data_->rows;
  const std::size_t bytes = field.type == Type::Utf8   ? (rows + 1) * sizeof(std::int32_t)
                            : field.type == Type::Bool ? (rows + 7) / 8
                                                       : rows * widthOf(field);
  auto values = std::make_shared<const Block>(bytes);
  auto validity = std::make_shared<const Block>((rows + 7) / 8);
  data_->columns.push_back({.values = values->data(),
                            .texts = "",
                            .validity = reinterpret_cast<const std::uint8_t*>(validity->data()),
                            .nulls = rows});
  data_->owners.push_back(std::move(values));
  data_->owners.push_back(std::move(validity));
}

Batch BatchMaker::finish() { return Batch(std::exchange(data_, nullptr)); }

}  // namespace lumbarn
