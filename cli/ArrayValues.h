#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "Console.h"
#include "TableWriter.h"
#include "arrays/ArrayReader.h"
#include "files/Families.h"

namespace lumbarn::cli {

struct ArrayOptions {
  std::vector<std::string> names;  ///< lists with commas between; * and ? stand for any characters
  std::string grid;                ///< empty or ROOT: the global grid
  bool all = false;                ///< all cells in natural order, inactive ones with the null value
  bool ijk = false;                ///< cell numbers in front
};

/// Arrays of one step of a restart set, or of an INIT file, as columns: a row for each active cell, or for
/// each cell. Other records of numbers are shown too, when all that are chosen have the same length; a row is
/// then an element.
class ArrayValues {
 public:
  /// Throws Failure, with what there is, when something is chosen that is not there or does not go together.
  ArrayValues(ArrayReader& reader, const IndexStep& step, const RunFamily& run, const ArrayOptions& options,
              Console& console);
  /// Writes a piece of all columns at a time. Throws Failure when the file cannot be read on.
  void write(Format format, std::ostream& out);

 private:
  void choose(const std::string& pattern);
  void reportTwice(const IndexEntry& entry);
  void checkCells();
  void checkElements();
  void findActive(const RunFamily& run);
  std::string stepName() const;
  std::vector<Column> columns(Format format) const;
  void readPiece(std::int64_t first, std::size_t column, std::span<double> values);

  ArrayReader& reader_;
  const IndexStep& step_;
  const ArrayOptions& options_;
  Console& console_;
  GridCells cells_;
  std::optional<IndexEntry> derived_;  // of the step, beside its entries
  std::vector<const IndexEntry*> chosen_;
  std::optional<ActiveCells> active_;
  bool ofCells_ = true;
  std::int64_t rows_ = 0;
};

}  // namespace lumbarn::cli
