#include "ArrowWriter.h"

#include <bit>
#include <cstdint>
#include <flatbuffers/flatbuffers.h>
#include <generated/ArrowMessages.h>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "BatchData.h"

namespace lumbarn {

namespace {

using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;
using Bytes = std::span<const std::byte>;

constexpr std::size_t alignment = 8;
constexpr std::byte zeros[alignment]{};
std::size_t padding(std::size_t bytes) { return (alignment - bytes % alignment) % alignment; }

template <class T>
Bytes bytesOf(const T* values, std::size_t count) {
  return std::as_bytes(std::span(values, count));
}

std::pair<arrow::Type, Offset<void>> typeOf(FlatBufferBuilder& out, const Field& field) {
  switch (field.type) {
    case Type::Bool:
      return {arrow::Type::Bool, arrow::CreateBool(out).Union()};
    case Type::Int32:
      return {arrow::Type::Int, arrow::CreateInt(out, 32, true).Union()};
    case Type::Int64:
      return {arrow::Type::Int, arrow::CreateInt(out, 64, true).Union()};
    case Type::Float32:
      return {arrow::Type::FloatingPoint, arrow::CreateFloatingPoint(out, arrow::Precision::Single).Union()};
    case Type::Float64:
      return {arrow::Type::FloatingPoint, arrow::CreateFloatingPoint(out, arrow::Precision::Double).Union()};
    case Type::Timestamp:
      return {arrow::Type::Timestamp, arrow::CreateTimestamp(out, arrow::TimeUnit::Microsecond).Union()};
    case Type::FixedList:
      return {arrow::Type::FixedSizeList, arrow::CreateFixedSizeList(out, field.listSize).Union()};
    case Type::Utf8:
    case Type::Dictionary:
      break;
  }
  return {arrow::Type::Utf8, arrow::CreateUtf8(out).Union()};
}

Offset<arrow::Field> describe(FlatBufferBuilder& out, const Field& field, std::int64_t dictionary) {
  std::vector<Offset<arrow::KeyValue>> metadata;
  for (const auto& [key, value] : allMetadata(field))
    metadata.push_back(arrow::CreateKeyValue(out, out.CreateString(key), out.CreateString(value)));
  std::vector<Offset<arrow::Field>> children;
  if (field.type == Type::FixedList)
    children.push_back(describe(out, {.name = "item", .type = Type::Float32}, dictionary));
  Offset<arrow::DictionaryEncoding> encoding;
  if (field.type == Type::Dictionary)
    encoding = arrow::CreateDictionaryEncoding(out, dictionary, arrow::CreateInt(out, 32, true));
  const auto [kind, type] = typeOf(out, field);
  return arrow::CreateField(out, out.CreateString(field.name), field.nullable, kind, type, encoding,
                            out.CreateVector(children), out.CreateVector(metadata));
}

Offset<arrow::Schema> describe(FlatBufferBuilder& out, const Schema& schema) {
  std::vector<Offset<arrow::Field>> fields;
  for (std::size_t i = 0; i < schema.size(); ++i)
    fields.push_back(describe(out, schema[i], static_cast<std::int64_t>(i)));
  const auto order =
      std::endian::native == std::endian::big ? arrow::Endianness::Big : arrow::Endianness::Little;
  return arrow::CreateSchema(out, order, out.CreateVector(fields));
}

/// The buffers of some columns, one behind the other, and what a message says of them.
class Body {
 public:
  void add(const Field& field, const ColumnBuffers& column, std::size_t rows) {
    node(rows, column.nulls);
    if (column.nulls > 0) {
      buffer(bytesOf(column.validity, (rows + 7) / 8));
    } else {
      buffer({});
    }
    if (field.type == Type::Bool) {
      buffer({column.values, (rows + 7) / 8});
    } else if (field.type == Type::Utf8) {
      const auto* ends = reinterpret_cast<const std::int32_t*>(column.values);
      buffer(bytesOf(ends, rows + 1));
      buffer(bytesOf(column.texts, static_cast<std::size_t>(ends[rows])));
    } else {
      if (field.type == Type::FixedList) {
        node(rows * static_cast<std::size_t>(field.listSize), 0);
        buffer({});
      }
      buffer({column.values, rows * widthOf(field)});
    }
  }
  Offset<arrow::RecordBatch> describe(FlatBufferBuilder& out, std::size_t rows) const {
    return arrow::CreateRecordBatch(out, static_cast<std::int64_t>(rows), out.CreateVectorOfStructs(nodes_),
                                    out.CreateVectorOfStructs(buffers_));
  }
  const std::vector<Bytes>& pieces() const { return pieces_; }
  std::int64_t size() const { return size_; }

 private:
  void node(std::size_t rows, std::size_t nulls) {
    nodes_.emplace_back(static_cast<std::int64_t>(rows), static_cast<std::int64_t>(nulls));
  }
  void buffer(Bytes bytes) {
    buffers_.emplace_back(size_, static_cast<std::int64_t>(bytes.size()));
    pieces_.push_back(bytes);
    size_ += static_cast<std::int64_t>(bytes.size() + padding(bytes.size()));
  }

  std::vector<arrow::FieldNode> nodes_;
  std::vector<arrow::Buffer> buffers_;
  std::vector<Bytes> pieces_;
  std::int64_t size_ = 0;
};

class ArrowWriter {
 public:
  ArrowWriter(Sink& sink, const Schema& schema) : sink_(sink), schema_(schema) {}

  void begin(bool file) {
    if (file) text(std::string_view("ARROW1\0\0", 8));
    FlatBufferBuilder out;
    const auto description = describe(out, schema_);
    message(out, arrow::MessageHeader::Schema, description.Union(), {});
    for (std::size_t i = 0; i < schema_.size(); ++i) {
      if (schema_[i].type == Type::Dictionary)
        dictionary(static_cast<std::int64_t>(i), *schema_[i].dictionary);
    }
  }
  void batch(const Batch& batch) {
    Body body;
    for (std::size_t i = 0; i < schema_.size(); ++i)
      body.add(schema_[i], batch.data()->columns[i], batch.rows());
    FlatBufferBuilder out;
    const auto header = body.describe(out, batch.rows());
    batches_.push_back(message(out, arrow::MessageHeader::RecordBatch, header.Union(), body));
  }
  void end(bool file) {
    const std::uint32_t mark[] = {continuation, 0};
    put(bytesOf(mark, 2));
    if (!file) return;
    FlatBufferBuilder out;
    const auto description = describe(out, schema_);
    const auto dictionaries = out.CreateVectorOfStructs(dictionaries_);
    out.Finish(arrow::CreateFooter(out, arrow::MetadataVersion::V5, description, dictionaries,
                                   out.CreateVectorOfStructs(batches_)));
    put(bytesOf(out.GetBufferPointer(), out.GetSize()));
    const auto size = static_cast<std::int32_t>(out.GetSize());
    put(bytesOf(&size, 1));
    text("ARROW1");
  }

 private:
  static constexpr std::uint32_t continuation = 0xFFFFFFFF;

  void dictionary(std::int64_t number, const std::vector<std::string>& words) {
    std::vector<std::int32_t> ends{0};
    std::string texts;
    for (const std::string& word : words) {
      texts += word;
      ends.push_back(static_cast<std::int32_t>(texts.size()));
    }
    Body body;
    body.add({.type = Type::Utf8},
             {.values = reinterpret_cast<const std::byte*>(ends.data()), .texts = texts.data()},
             words.size());
    FlatBufferBuilder out;
    const auto header = arrow::CreateDictionaryBatch(out, number, body.describe(out, words.size()));
    dictionaries_.push_back(message(out, arrow::MessageHeader::DictionaryBatch, header.Union(), body));
  }
  /// Writes a message and what follows it; gives where it is.
  arrow::Block message(FlatBufferBuilder& out, arrow::MessageHeader kind, Offset<void> header,
                       const Body& body) {
    out.Finish(arrow::CreateMessage(out, arrow::MetadataVersion::V5, kind, header, body.size()));
    const std::uint64_t at = written_;
    const std::size_t size = out.GetSize() + padding(out.GetSize());
    const std::uint32_t prefix[] = {continuation, static_cast<std::uint32_t>(size)};
    put(bytesOf(prefix, 2));
    padded(bytesOf(out.GetBufferPointer(), out.GetSize()));
    const auto length = static_cast<std::int32_t>(sizeof prefix + size);
    for (const Bytes piece : body.pieces()) padded(piece);
    return {static_cast<std::int64_t>(at), length, body.size()};
  }
  void padded(Bytes bytes) {
    put(bytes);
    put(Bytes(zeros, padding(bytes.size())));
  }
  void text(std::string_view characters) { put(bytesOf(characters.data(), characters.size())); }
  void put(Bytes bytes) {
    if (bytes.empty()) return;
    sink_.write(bytes);
    written_ += bytes.size();
  }

  Sink& sink_;
  const Schema& schema_;
  std::uint64_t written_ = 0;
  std::vector<arrow::Block> dictionaries_, batches_;
};

}  // namespace

void writeArrow(Stream&& stream, Sink& sink, bool file) {
  ArrowWriter writer(sink, stream.schema());
  writer.begin(file);
  while (auto batch = stream.next()) {
    writer.batch(*batch);
    sink.flush();
  }
  writer.end(file);
  sink.flush();
}

}  // namespace lumbarn
