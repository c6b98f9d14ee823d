#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "../support/Export.h"
#include "Column.h"

namespace lumbarn {

/// Memory for values: zeroed, aligned to 64 bytes. Owned by the batches that are made of it.
class LUMBARN_API Block {
 public:
  static constexpr std::size_t alignment = 64;

  Block() = default;
  explicit Block(std::size_t bytes);
  Block(Block&& other) noexcept;
  Block& operator=(Block&& other) noexcept;
  ~Block();

  std::byte* data() const { return data_; }
  std::size_t size() const { return size_; }

 private:
  std::byte* data_ = nullptr;
  std::size_t size_ = 0;
};

/// Where the values of one column are, in Arrow's layout.
struct ColumnBuffers {
  const std::byte* values = nullptr;       // of Utf8: the offsets, one more than rows
  const char* texts = nullptr;             // of Utf8
  const std::uint8_t* validity = nullptr;  // bits, the lowest first; null: no value is null
  std::size_t nulls = 0;
};

/// What a batch shares with its columns and its exports.
struct BatchData {
  std::shared_ptr<const Schema> schema;
  std::size_t rows = 0;
  std::vector<ColumnBuffers> columns;
  std::vector<std::shared_ptr<const void>> owners;  // of the memory of all columns
};

/// Bytes that a value of a type takes in its column; 0 for Bool and Utf8. For FixedList those of a row.
LUMBARN_API std::size_t widthOf(const Field& field);

/// All that Arrow's metadata tell of a column: those of the field, its unit and its description.
LUMBARN_API std::vector<std::pair<std::string, std::string>> allMetadata(const Field& field);

inline bool bitAt(const std::uint8_t* bits, std::size_t i) { return ((bits[i / 8] >> (i % 8)) & 1U) != 0; }

}  // namespace lumbarn
