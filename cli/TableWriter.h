#pragma once

#include <cmath>
#include <concepts>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/Write.h"

namespace lumbarn::cli {

struct Column {
  std::string name;
  bool number = false;    ///< aligned to the right
  std::size_t width = 0;  ///< of its values in a readable table, as far as it is known before
  std::string units;      ///< second header line of a readable table
};

/// Writes rows as they come: nothing is kept but a small buffer. Cells are given one after the other; a row
/// is complete when each column has its cell.
///
/// Csv: RFC 4180, so lines end in CR LF; a value that is not a number is an empty field. Json: an array with
/// one object for each row; JSON has no word for infinities and values that are not numbers, so they are
/// null. Table: aligned, for people. Numbers are in the shortest form that reads back to the same value, in a
/// table without exponents where none is needed.
class TableWriter {
 public:
  TableWriter(std::vector<Column> columns, std::ostream& out) : columns_(std::move(columns)), out_(out) {}
  static std::unique_ptr<TableWriter> make(Format format, std::vector<Column> columns, std::ostream& out);
  virtual ~TableWriter() = default;

  void text(std::string_view value);
  template <class Number>
  requires std::floating_point<Number> || std::integral<Number>
  void number(Number value);
  void empty();

  /// Hands all complete rows to the stream, so that messages on the same terminal come behind them.
  void flush();
  /// To be called behind the last row.
  void finish();

 protected:
  enum class Cell { Text, Number, NotFinite, Empty };
  virtual void begin() = 0;
  /// Appends one cell to `buffer_`.
  virtual void put(std::size_t column, Cell cell, std::string_view value) = 0;
  virtual void endRow() = 0;
  virtual void end() {}

  std::vector<Column> columns_;
  std::string buffer_;
  bool anyRow_ = false;

 private:
  void add(Cell cell, std::string_view value);

  std::ostream& out_;
  std::size_t next_ = 0;
  bool forPeople_ = false;
};

/// Columns that a text takes on a terminal: one for each UTF-8 character.
std::size_t displayWidth(std::string_view text);

}  // namespace lumbarn::cli
