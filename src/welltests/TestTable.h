#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <span>
#include <string_view>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

/// The name of a column, kept in place: a file has many small tests, and each a dozen names. Longer ones than
/// records and this library have are cut.
class ColumnName {
 public:
  ColumnName() = default;
  explicit ColumnName(std::string_view name) { name.copy(letters_.data(), letters_.size() - 1); }
  std::string_view view() const { return letters_.data(); }
  operator std::string_view() const { return view(); }
  bool operator==(const ColumnName&) const = default;

 private:
  std::array<char, 16> letters_{};
};

/// A table of singles with named columns, one block, column after column. Columns count from 1.
struct LUMBARN_API TestTable {
  using Memory = std::pmr::memory_resource;
  explicit TestTable(std::size_t usual = 0, Memory* memory = std::pmr::get_default_resource())
      : usualColumns(usual), columns(memory), values(memory) {}

  static constexpr std::uint64_t derived = ~std::uint64_t{0};
  struct Column {
    ColumnName name;
    std::uint64_t headerAt = derived;  ///< byte offset of its record in the file; derived: computed
  };

  std::size_t usualColumns;  ///< room that is taken with the first column
  std::size_t rows = 0;
  std::int32_t count = 0;  ///< columns in use; those behind are there but not part of any result
  std::pmr::vector<Column> columns;
  std::pmr::vector<float> values;

  bool empty() const { return columns.empty(); }
  /// A new column behind those in use, its values not yet set.
  std::span<float> add(std::string_view name, std::uint64_t headerAt = derived);
  /// Takes the last column back.
  void removeLast();
  /// The first n rows of a column. Throws Fault 9 for a column or rows that are not there, so for the -1 of a
  /// name that was not found too.
  std::span<const float> column(std::int32_t iColumn, std::size_t n) const;
  /// Number of the first column in use with exactly this name, or -1.
  std::int32_t find(std::string_view name) const;
  /// Byte offset of the record of that column; `derived` when there is none.
  std::uint64_t headerOf(std::string_view name) const;
};

}  // namespace lumbarn
