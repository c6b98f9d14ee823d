#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumbarn {

/// A table of singles with named columns, one block, column after column. Columns count from 1.
struct TestTable {
  static constexpr std::uint64_t workedOut = ~std::uint64_t{0};
  struct Column {
    std::string name;
    std::uint64_t headerAt = workedOut;  ///< byte offset of its record in the file; workedOut: in none
  };

  std::size_t rows = 0;
  std::int32_t count = 0;  ///< columns in use; those behind are there but not part of any result
  std::vector<Column> columns;
  std::vector<float> values;

  bool empty() const { return columns.empty(); }
  /// A new column behind those in use, its values not yet set.
  std::span<float> add(std::string_view name, std::uint64_t headerAt = workedOut);
  /// Takes the last column back.
  void removeLast();
  /// The first n rows of a column. Throws Fault 9 for a column or rows that are not there, so for the -1 of a
  /// name that was not found too.
  std::span<const float> column(std::int32_t iColumn, std::size_t n) const;
  /// Number of the first column in use with exactly this name, or -1.
  std::int32_t find(std::string_view name) const;
};

}  // namespace lumbarn
