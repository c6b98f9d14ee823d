#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "BatchData.h"

namespace lumbarn {

/// How large a batch may become: it is full at either limit, but has one row at least.
struct BatchLimits {
  std::size_t bytes = std::size_t{32} << 20;
  std::size_t rows = 65536;
};

/// Collects rows into a batch. The values of a row are set by column, in any order; columns that are not set
/// are null. A row counts when it is ended.
class LUMBARN_API BatchBuilder {
 public:
  explicit BatchBuilder(std::shared_ptr<const Schema> schema, BatchLimits limits = {});

  const Schema& schema() const { return *schema_; }
  std::size_t rows() const { return rows_; }
  bool full() const;

  /// Sets a number, converted to the type of the column. Throws Error BadRequest for a column of texts.
  template <class Number>
  requires std::floating_point<Number> || std::integral<Number>
  void set(std::size_t column, Number value);
  /// Sets a text of Utf8, which has to be UTF-8 (`toUtf8`).
  void set(std::size_t column, std::string_view text);
  void set(std::size_t column, LocalMoment moment);
  /// Sets the values of a FixedList; there must be as many as it has.
  void set(std::size_t column, std::span<const float> values);

  void endRow();
  /// Forgets what was set since the last row ended, when the rest of the row cannot be read.
  void dropRow();

  /// The rows so far as a batch; the builder is empty afterwards.
  Batch finish();

 private:
  struct ColumnState {
    std::size_t offset = 0;  // of its values in the block
    std::size_t setIn = 0;   // number of the row, from 1, in which it was set last
    std::size_t nulls = 0;
    std::vector<std::uint8_t> validity;  // empty as long as no value is null
    std::string texts;
  };
  static constexpr std::size_t firstRows = 256;

  std::size_t bytesFor(std::size_t column, std::size_t rows) const;
  void reserve(std::size_t rows);
  std::byte* place(std::size_t column);
  void markNull(std::size_t column);
  void dropText(std::size_t column);
  [[noreturn]] void refuse(std::size_t column, std::string_view value) const;

  std::shared_ptr<const Schema> schema_;
  BatchLimits limits_;
  std::size_t mostRows_ = 1;
  std::size_t capacity_ = 0;
  std::size_t rows_ = 0;
  std::size_t textBytes_ = 0;
  Block block_;
  std::vector<ColumnState> columns_;
};

}  // namespace lumbarn
