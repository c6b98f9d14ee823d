#include "Write.h"

#include <algorithm>
#include <exception>
#include <string>
#include <thread>
#include <vector>

#include <fmt/format.h>

#include "ArrowWriter.h"
#include "BatchData.h"
#include "FileSink.h"
#include "NumberText.h"

namespace lumbarn {

Sink::~Sink() = default;

namespace {

/// Decides whether a cell is quoted and how it is written in JSON.
enum class Cell { Empty, Text, Number, NotFinite, Word };

void appendJsonText(std::string& out, std::string_view text) {
  out += '"';
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    if (static_cast<unsigned char>(c) < ' ') {
      out += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    } else {
      out += c;
    }
  }
  out += '"';
}

template <class Number>
Cell numberCell(std::string& text, Number value, bool forPeople) {
  text = NumberText(value, forPeople).view();
  if constexpr (std::floating_point<Number>) return std::isfinite(value) ? Cell::Number : Cell::NotFinite;
  return Cell::Number;
}

/// Whether the digits of a single tell people all there is: of doubles that come from an iteration, as rates,
/// the others are noise.
bool isShownAsSingle(const Field& field) {
  return std::ranges::any_of(
      field.metadata, [](const auto& one) { return one.first == "display" && one.second == "float32"; });
}

/// One column of what is written: one of a batch, or one value of a FixedList.
struct OutputColumn {
  std::size_t column = 0;
  std::size_t item = 0;
  std::string name;
  bool right = false;  // aligned to the right for people
  std::size_t width = 0;
};

std::string itemName(const Field& field, std::size_t item) {
  for (const auto& [key, names] : field.metadata) {
    if (key != "items") continue;
    std::string_view rest = names;
    for (std::size_t i = 0; i < item; ++i) rest.remove_prefix(std::min(rest.find(','), rest.size() - 1) + 1);
    return std::string(rest.substr(0, rest.find(',')));
  }
  return fmt::format("{}.{}", field.name, item + 1);
}

std::vector<OutputColumn> outputColumns(const Schema& schema, bool lists) {
  std::vector<OutputColumn> columns;
  for (std::size_t i = 0; i < schema.size(); ++i) {
    const Field& field = schema[i];
    const bool right =
        field.type != Type::Utf8 && field.type != Type::Dictionary && field.type != Type::Timestamp;
    if (field.type != Type::FixedList || lists) {
      columns.push_back({.column = i, .name = field.name, .right = right});
      continue;
    }
    for (std::size_t k = 0; k < static_cast<std::size_t>(field.listSize); ++k)
      columns.push_back({.column = i, .item = k, .name = itemName(field, k), .right = true});
  }
  return columns;
}

/// Makes text of the cells of one batch.
class Cells {
 public:
  Cells(const Batch& batch, bool forPeople) : batch_(*batch.data()), forPeople_(forPeople) {}

  /// The text of a cell, in `text` or as a view of the batch.
  Cell get(const OutputColumn& from, std::size_t row, std::string& text, std::string_view& view) const {
    const Field& field = (*batch_.schema)[from.column];
    const ColumnBuffers& buffers = batch_.columns[from.column];
    view = {};
    if (buffers.validity && !bitAt(buffers.validity, row)) return Cell::Empty;
    const Cell cell = value(field, buffers, from, row, text, view);
    if (view.data() == nullptr) view = text;
    return cell;
  }

 private:
  template <class T>
  static T at(const ColumnBuffers& buffers, std::size_t i) {
    return reinterpret_cast<const T*>(buffers.values)[i];
  }
  Cell value(const Field& field, const ColumnBuffers& buffers, const OutputColumn& from, std::size_t row,
             std::string& text, std::string_view& view) const {
    switch (field.type) {
      case Type::Int32:
        return numberCell(text, at<std::int32_t>(buffers, row), forPeople_);
      case Type::Int64:
        return numberCell(text, at<std::int64_t>(buffers, row), forPeople_);
      case Type::Float32:
        return numberCell(text, at<float>(buffers, row), forPeople_);
      case Type::Float64:
        if (forPeople_ && isShownAsSingle(field) && std::isfinite(at<double>(buffers, row)))
          return numberCell(text, static_cast<float>(at<double>(buffers, row)), true);
        return numberCell(text, at<double>(buffers, row), forPeople_);
      case Type::FixedList:
        return numberCell(
            text, at<float>(buffers, row * static_cast<std::size_t>(field.listSize) + from.item), forPeople_);
      case Type::Bool:
        view = bitAt(reinterpret_cast<const std::uint8_t*>(buffers.values), row) ? "true" : "false";
        return Cell::Word;
      case Type::Timestamp:
        text = isoText(LocalMoment(std::chrono::microseconds(at<std::int64_t>(buffers, row))));
        return Cell::Text;
      case Type::Dictionary:
        view = (*field.dictionary)[static_cast<std::size_t>(at<std::int32_t>(buffers, row))];
        return Cell::Text;
      case Type::Utf8: {
        const auto start = at<std::int32_t>(buffers, row), end = at<std::int32_t>(buffers, row + 1);
        view = {buffers.texts + start, static_cast<std::size_t>(end - start)};
        return Cell::Text;
      }
    }
    return Cell::Empty;
  }

  const BatchData& batch_;
  bool forPeople_;
};

/// A form of text: what is in front of the rows, between them and behind them.
class TextForm {
 public:
  TextForm(const Schema& schema, bool lists) : schema_(schema), columns_(outputColumns(schema, lists)) {}
  virtual ~TextForm() = default;

  virtual bool forPeople() const { return false; }
  /// Called once, with the first batch; null where there is none.
  virtual void begin(std::string& out, const Batch* first) = 0;
  /// Appends a row. May be called from several threads.
  virtual void row(std::string& out, const Cells& cells, std::size_t row, bool firstOfAll) const = 0;
  virtual void end(std::string& out, bool anyRow) const {
    (void)out;
    (void)anyRow;
  }

 protected:
  const Field& fieldOf(const OutputColumn& column) const { return schema_[column.column]; }

  const Schema& schema_;
  std::vector<OutputColumn> columns_;
};

class CsvForm final : public TextForm {
 public:
  CsvForm(const Schema& schema, bool unitRow) : TextForm(schema, false), unitRow_(unitRow) {}

  void begin(std::string& out, const Batch*) override {
    line(out, [](const OutputColumn& column, const Field&) { return std::string_view(column.name); });
    if (unitRow_)
      line(out, [](const OutputColumn&, const Field& field) { return std::string_view(field.unit); });
  }
  void row(std::string& out, const Cells& cells, std::size_t row, bool) const override {
    std::string text;
    std::string_view view;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (i > 0) out += ',';
      const Cell cell = cells.get(columns_[i], row, text, view);
      if (cell == Cell::Text) {
        appendQuoted(out, view);
      } else if (cell != Cell::NotFinite || view.find("nan") == view.npos) {
        out += view;
      }
    }
    out += "\r\n";
  }

 private:
  static void appendQuoted(std::string& out, std::string_view text) {
    if (text.find_first_of(",\"\r\n") == text.npos) {
      out += text;
      return;
    }
    out += '"';
    for (const char c : text) {
      if (c == '"') out += '"';
      out += c;
    }
    out += '"';
  }
  template <class Text>
  void line(std::string& out, Text text) const {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (i > 0) out += ',';
      appendQuoted(out, text(columns_[i], fieldOf(columns_[i])));
    }
    out += "\r\n";
  }

  bool unitRow_;
};

class JsonForm final : public TextForm {
 public:
  JsonForm(const Schema& schema, bool lines, bool unitRow)
      : TextForm(schema, true), lines_(lines), unitRow_(unitRow && !lines) {
    for (const OutputColumn& column : columns_) {
      std::string key;
      appendJsonText(key, column.name);
      keys_.push_back(key + ':');
    }
  }
  void begin(std::string& out, const Batch*) override {
    if (unitRow_) {
      out += "{\"units\":{";
      for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i > 0) out += ',';
        out += keys_[i];
        appendJsonText(out, fieldOf(columns_[i]).unit);
      }
      out += "},\"rows\":";
    }
    if (!lines_) out += '[';
  }
  void row(std::string& out, const Cells& cells, std::size_t row, bool firstOfAll) const override {
    if (!lines_) out += firstOfAll ? "\n" : ",\n";
    std::string text;
    out += '{';
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (i > 0) out += ',';
      out += keys_[i];
      const Field& field = fieldOf(columns_[i]);
      if (field.type == Type::FixedList) {
        list(out, cells, columns_[i], row, static_cast<std::size_t>(field.listSize));
      } else {
        cell(out, cells, columns_[i], row, text);
      }
    }
    out += lines_ ? "}\n" : "}";
  }
  void end(std::string& out, bool anyRow) const override {
    if (!lines_) out += anyRow ? "\n]" : "]";
    if (unitRow_) out += '}';
    if (!lines_) out += '\n';
  }

 private:
  static void cell(std::string& out, const Cells& cells, const OutputColumn& from, std::size_t row,
                   std::string& text) {
    std::string_view view;
    const Cell cell = cells.get(from, row, text, view);
    if (cell == Cell::Text) {
      appendJsonText(out, view);
    } else {
      out += cell == Cell::Empty || cell == Cell::NotFinite ? "null" : view;
    }
  }
  static void list(std::string& out, const Cells& cells, OutputColumn from, std::size_t row,
                   std::size_t size) {
    std::string text;
    out += '[';
    for (from.item = 0; from.item < size; ++from.item) {
      if (from.item > 0) out += ',';
      cell(out, cells, from, row, text);
    }
    out += ']';
  }

  bool lines_;
  bool unitRow_;
  std::vector<std::string> keys_;
};

/// Columns that a text takes on a terminal: one for each UTF-8 character.
std::size_t displayWidth(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

class TableForm final : public TextForm {
 public:
  explicit TableForm(const Schema& schema) : TextForm(schema, false) {}

  bool forPeople() const override { return true; }
  /// Widths come from the first rows; a wider cell later shifts its own line only.
  void begin(std::string& out, const Batch* first) override {
    constexpr std::size_t looked = 1000;
    constexpr std::size_t usualNumber = 13;
    bool units = false;
    for (OutputColumn& column : columns_) {
      const Field& field = fieldOf(column);
      column.width = std::max(displayWidth(column.name), displayWidth(field.unit));
      if (field.type == Type::Float32 && first && first->rows() > looked)
        column.width = std::max(column.width, usualNumber);
      units = units || !field.unit.empty();
    }
    if (first) {
      const Cells cells(*first, true);
      std::string text;
      std::string_view view;
      for (std::size_t row = 0; row < std::min(looked, first->rows()); ++row) {
        for (OutputColumn& column : columns_) {
          cells.get(column, row, text, view);
          column.width = std::max(column.width, displayWidth(view));
        }
      }
    }
    line(out, [](const OutputColumn& column, const Field&) { return std::string_view(column.name); });
    if (units)
      line(out, [](const OutputColumn&, const Field& field) { return std::string_view(field.unit); });
  }
  void row(std::string& out, const Cells& cells, std::size_t row, bool) const override {
    std::string text;
    std::string_view view;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      cells.get(columns_[i], row, text, view);
      put(out, i, view);
    }
    endLine(out);
  }

 private:
  void put(std::string& out, std::size_t i, std::string_view text) const {
    if (i > 0) out += "  ";
    const std::size_t width = displayWidth(text);
    const std::size_t padding = columns_[i].width - std::min(columns_[i].width, width);
    if (columns_[i].right) out.append(padding, ' ');
    for (const char c : text) out += static_cast<unsigned char>(c) < ' ' || c == '\x7F' ? '?' : c;
    if (!columns_[i].right) out.append(padding, ' ');
  }
  static void endLine(std::string& out) {
    while (!out.empty() && out.back() == ' ') out.pop_back();
    out += '\n';
  }
  template <class Text>
  void line(std::string& out, Text text) const {
    for (std::size_t i = 0; i < columns_.size(); ++i) put(out, i, text(columns_[i], fieldOf(columns_[i])));
    endLine(out);
  }
};

std::unique_ptr<TextForm> makeForm(const Schema& schema, const WriteOptions& options) {
  switch (options.format) {
    case Format::Csv:
      return std::make_unique<CsvForm>(schema, options.unitRow);
    case Format::Table:
      return std::make_unique<TableForm>(schema);
    case Format::Json:
    case Format::Ndjson:
    case Format::ArrowFile:
    case Format::ArrowStream:
      break;
  }
  return std::make_unique<JsonForm>(schema, options.format == Format::Ndjson, options.unitRow);
}

/// The rows of a batch as pieces of text, made by several threads.
std::vector<std::string> textOf(const TextForm& form, const Batch& batch, bool anyRow, unsigned threads) {
  constexpr std::size_t cellsWorthAThread = 20000;
  const std::size_t cells = batch.rows() * std::max<std::size_t>(batch.columns(), 1);
  const std::size_t pieces = std::clamp<std::size_t>(cells / cellsWorthAThread, 1, threads);
  std::vector<std::string> texts(pieces);
  std::vector<std::exception_ptr> failures(pieces);
  const auto make = [&](std::size_t piece) noexcept {
    try {
      const Cells reader(batch, form.forPeople());
      const std::size_t end = batch.rows() * (piece + 1) / pieces;
      for (std::size_t row = batch.rows() * piece / pieces; row < end; ++row)
        form.row(texts[piece], reader, row, row == 0 && !anyRow);
    } catch (...) {
      failures[piece] = std::current_exception();
    }
  };
  {
    std::vector<std::jthread> others;
    for (std::size_t piece = 1; piece < pieces; ++piece) others.emplace_back(make, piece);
    make(0);
  }
  for (const auto& failure : failures) {
    if (failure) std::rethrow_exception(failure);
  }
  return texts;
}

void put(Sink& sink, std::string_view text) { sink.write(std::as_bytes(std::span(text))); }

}  // namespace

std::string isoText(LocalMoment moment) {
  using namespace std::chrono;
  const auto day = floor<days>(moment);
  const year_month_day date(day);
  const hh_mm_ss time(floor<microseconds>(moment - day));
  std::string text = fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", static_cast<int>(date.year()),
                                 static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                                 time.hours().count(), time.minutes().count(), time.seconds().count());
  if (time.subseconds().count() == 0) return text;
  text += fmt::format(".{:06}", time.subseconds().count());
  text.erase(text.find_last_not_of('0') + 1);
  return text;
}

void write(Stream&& stream, Sink& sink, const WriteOptions& options) {
  if (options.format == Format::ArrowFile || options.format == Format::ArrowStream) {
    writeArrow(std::move(stream), sink, options.format == Format::ArrowFile);
    return;
  }
  const unsigned cores = std::clamp(std::thread::hardware_concurrency(), 1U, 8U);
  const unsigned threads = options.threads == 0 ? cores : options.threads;
  const auto form = makeForm(stream.schema(), options);
  auto batch = stream.next();
  std::string edge;
  form->begin(edge, batch ? &*batch : nullptr);
  put(sink, edge);
  bool anyRow = false;
  while (batch) {
    for (const std::string& text : textOf(*form, *batch, anyRow, threads)) put(sink, text);
    anyRow = true;
    sink.flush();
    batch.reset();  // its memory before that of the next
    batch = stream.next();
  }
  edge.clear();
  form->end(edge, anyRow);
  put(sink, edge);
  sink.flush();
}

void write(Stream&& stream, const std::string& path, const WriteOptions& options) {
  FileSink file(path);
  write(std::move(stream), file, options);
  file.commit();
}

}  // namespace lumbarn
