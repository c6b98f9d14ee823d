#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "../record/Form.h"
#include "../shapes/XYData.h"
#include "../support/Session.h"
#include "RowIndex.h"

namespace lumbarn {

/// Reads columns of indexed rows: row after row from the files, a tile of rows at a time, each tile then
/// turned into pieces of columns.
class ColumnReader {
 public:
  ColumnReader(std::span<const std::string> files, std::span<const std::optional<FileStamp>> stamps,
               const Form& form, std::int32_t nValues, Session& session)
      : files_(files), stamps_(stamps), form_(form), nValues_(nValues), session_(session) {}

  /// Fills the first rows.size() rows of the table, one column for each vector; vectors are numbers from 1,
  /// ascending. Throws BadRecord at damage that the index did not meet, with `rowsDone` rows in the table;
  /// the next call continues there, for rows of which those done are the same; also (FileChanged) when a file
  /// is not the one that was indexed. Ends early when the load is cancelled.
  void read(std::span<const RowPlace> rows, std::span<const std::int32_t> vectors, XYData& table);
  std::size_t rowsDone() const { return rowsDone_; }

 private:
  void readRow(const RowPlace& row, std::span<float> values);
  void openFile(std::int32_t iFile);

  std::span<const std::string> files_;
  std::span<const std::optional<FileStamp>> stamps_;  // when the rows were indexed
  Form form_;
  std::int32_t nValues_;
  Session& session_;
  std::unique_ptr<RecordCursor> cursor_;
  std::int32_t iFile_ = -1;
  RecordHeader header_;
  std::vector<std::uint32_t> elements_;  // wanted ones, when they are few
  std::vector<float> wholeRow_;          // when they are many but not all
  std::span<const std::int32_t> vectors_;
  std::size_t rowsDone_ = 0;
};

/// Turns `rows` rows of `columns` values into pieces of columns of the table, from row `firstRow` (from 0)
/// on.
void turnTile(std::span<const float> tile, std::size_t rows, std::size_t columns, std::size_t firstRow,
              XYData& table);

}  // namespace lumbarn
