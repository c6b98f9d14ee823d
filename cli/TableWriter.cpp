#include "TableWriter.h"

#include <algorithm>

#include "Console.h"
#include "Facts.h"
#include "Failure.h"
#include "frame/NumberText.h"
#include "support/Text.h"

namespace lumbarn::cli {
namespace {

constexpr std::size_t bufferBytes = std::size_t{64} << 10;

class CsvWriter final : public TableWriter {
 public:
  using TableWriter::TableWriter;

 private:
  void begin() override {
    for (std::size_t i = 0; i < columns_.size(); ++i) put(i, Cell::Text, columns_[i].name);
    endRow();
  }
  void put(std::size_t column, Cell cell, std::string_view value) override {
    if (column > 0) buffer_ += ',';
    if (cell == Cell::NotFinite && value.find("nan") != value.npos) return;
    if (cell == Cell::Number || value.find_first_of(",\"\r\n") == value.npos) {
      buffer_ += value;
      return;
    }
    buffer_ += '"';
    for (const char c : value) {
      if (c == '"') buffer_ += '"';
      buffer_ += c;
    }
    buffer_ += '"';
  }
  void endRow() override { buffer_ += "\r\n"; }
};

class JsonWriter final : public TableWriter {
 public:
  using TableWriter::TableWriter;

 private:
  void begin() override {
    buffer_ += '[';
    for (const Column& column : columns_) keys_.push_back(quotedJson(column.name) + ':');
  }
  void put(std::size_t column, Cell cell, std::string_view value) override {
    if (column > 0) buffer_ += ',';
    if (column == 0) buffer_ += anyRow_ ? ",\n{" : "\n{";
    buffer_ += keys_[column];
    if (cell == Cell::Text) {
      buffer_ += quotedJson(value);
    } else {
      buffer_ += cell == Cell::Number ? value : "null";
    }
  }
  void endRow() override { buffer_ += '}'; }
  void end() override { buffer_ += anyRow_ ? "\n]\n" : "]\n"; }

  std::vector<std::string> keys_;
};

class ReadableWriter final : public TableWriter {
 public:
  using TableWriter::TableWriter;

 private:
  void begin() override {
    bool units = false;
    for (Column& column : columns_) {
      column.width = std::max({column.width, displayWidth(column.name), displayWidth(column.units)});
      units = units || !column.units.empty();
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) put(i, Cell::Text, columns_[i].name);
    endRow();
    if (!units) return;
    for (std::size_t i = 0; i < columns_.size(); ++i) put(i, Cell::Text, columns_[i].units);
    endRow();
  }
  void put(std::size_t column, Cell, std::string_view value) override {
    if (column > 0) buffer_ += "  ";
    const std::size_t width = displayWidth(value);
    const std::size_t padding = columns_[column].width - std::min(columns_[column].width, width);
    if (columns_[column].number) buffer_.append(padding, ' ');
    buffer_ += printable(value);
    if (!columns_[column].number) buffer_.append(padding, ' ');
  }
  void endRow() override {
    while (!buffer_.empty() && buffer_.back() == ' ') buffer_.pop_back();
    buffer_ += '\n';
  }
};

}  // namespace

std::size_t displayWidth(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

std::unique_ptr<TableWriter> TableWriter::make(Format format, std::vector<Column> columns,
                                               std::ostream& out) {
  std::unique_ptr<TableWriter> writer;
  switch (format) {
    case Format::Csv:
      writer = std::make_unique<CsvWriter>(std::move(columns), out);
      break;
    case Format::Json:
      writer = std::make_unique<JsonWriter>(std::move(columns), out);
      break;
    case Format::Table:
      writer = std::make_unique<ReadableWriter>(std::move(columns), out);
      break;
    default:
      throw Failure(Usage, "this table can be written as table, csv or json");
  }
  for (Column& column : writer->columns_) {
    column.name = toUtf8(column.name);
    column.units = toUtf8(column.units);
  }
  writer->forPeople_ = format == Format::Table;
  writer->begin();
  return writer;
}

void TableWriter::add(Cell cell, std::string_view value) {
  put(next_, cell, value);
  if (++next_ < columns_.size()) return;
  next_ = 0;
  endRow();
  anyRow_ = true;
  if (buffer_.size() >= bufferBytes) flush();
}

void TableWriter::text(std::string_view value) { add(Cell::Text, toUtf8(value)); }
void TableWriter::empty() { add(Cell::Empty, {}); }

template <class Number>
requires std::floating_point<Number> || std::integral<Number>
void TableWriter::number(Number value) {
  bool finite = true;
  if constexpr (std::floating_point<Number>) finite = std::isfinite(value);
  add(finite ? Cell::Number : Cell::NotFinite, NumberText(value, forPeople_).view());
}
template void TableWriter::number(float);
template void TableWriter::number(double);
template void TableWriter::number(std::int32_t);
template void TableWriter::number(std::int64_t);
template void TableWriter::number(std::uint64_t);

void TableWriter::flush() {
  out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  buffer_.clear();
  out_.flush();
}

void TableWriter::finish() {
  end();
  flush();
}

}  // namespace lumbarn::cli
