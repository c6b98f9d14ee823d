#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../files/UserTestWords.h"
#include "../support/Export.h"

namespace lumbarn {

/// The table of one user test as its lines come: a line of names, a line of units, rows of numbers.
class LUMBARN_API UserTestTable {
 public:
  explicit UserTestTable(UserTestKind kind) : kind_(kind) {}

  /// The first line gives the names and makes the table anew, the second the units, any further one nothing.
  void addHeaders(std::vector<std::string> words);

  struct Row {
    std::size_t numbers = 0;              ///< words in the row that columns take
    std::optional<std::string> noNumber;  ///< the first of them that is not wholly a number
  };
  /// Adds a row with the number that each word begins with, 0 for a word that begins with none. Words beyond
  /// the columns do not count. Of a line of too few words the row is there, with 0 in the columns without.
  Row addRow(std::string_view line);

  std::size_t rows() const { return columns() == 0 ? 0 : rows_; }
  std::size_t columns() const { return names_.size(); }
  std::size_t headerLines() const { return headerLines_; }

  /// From 0, in the order in which they are handed out: from the depth column to the last, then those before
  /// it.
  std::size_t place(std::size_t column) const { return (column + depthColumn_) % columns(); }
  const std::string& name(std::size_t column) const { return names_[place(column)]; }
  std::string_view units(std::size_t column) const;
  void copyColumn(std::size_t column, std::span<float> out) const;

 private:
  void findDepthColumn();

  UserTestKind kind_;
  std::vector<std::string> names_;
  std::vector<std::string> units_;
  std::vector<float> cells_;  // row after row
  std::size_t rows_ = 0;
  std::size_t depthColumn_ = 0;  // from 0
  std::size_t headerLines_ = 0;
};

}  // namespace lumbarn
