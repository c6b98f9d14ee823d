#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "../record/Form.h"
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

  /// Reads rows into one array for each vector, which has room for rows.size() values; vectors are numbers
  /// from 1, ascending. Throws BadRecord at damage that the index did not meet, behind `rowsDone` good rows;
  /// also (FileChanged) when a file is not the one that was indexed. Ends early when the load is cancelled.
  void read(std::span<const RowPlace> rows, std::span<const std::int32_t> vectors,
            std::span<float* const> columns);
  /// Rows that the last call read.
  std::size_t rowsDone() const { return rowsDone_; }
  /// Which share of all work, from 0 to 1, is done before and after the next call.
  void setShare(double before, double after) { shareBefore_ = before, shareAfter_ = after; }

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
  bool sparse_ = false;
  double shareBefore_ = 0;
  double shareAfter_ = 1;
};

/// Turns `rows` rows of one value for each column into pieces of the columns, from row `firstRow` (from 0)
/// on.
void turnTile(std::span<const float> tile, std::size_t rows, std::size_t firstRow,
              std::span<float* const> columns);

/// Whether reading some values of each row touches less than half of the file's pages, so that reading ahead
/// would read mostly what is not wanted.
bool readsSparsely(std::size_t wanted, std::size_t all);

/// Adds to damage within a row what was kept: the rows before it, and those of the next file if the read
/// continues there. In a single file the position of the row is known.
void describeLoss(Diagnosis& damage, std::size_t kept, bool oneFile, bool continues);

}  // namespace lumbarn
