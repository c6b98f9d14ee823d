#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "BatchBuilder.h"
#include "Column.h"

namespace lumbarn {

/// Consecutive rows of a batch.
struct BatchRows {
  Batch batch;
  std::size_t first = 0;
  std::size_t count = 0;
};

/// The rows of several ranges, whose batches have this schema, as one batch.
Batch copied(const std::shared_ptr<const Schema>& schema, std::span<const BatchRows> ranges);

/// Sets a value of the builder's current row to one of a column that holds the same type; for Dictionary, of
/// the same texts. A null stays unset.
void setFrom(BatchBuilder& rows, std::size_t to, const Column& from, std::size_t row);

/// A number of any numeric type as a double.
double numberAt(const Column& column, std::size_t row);

/// Whether a type holds single numbers.
bool isNumeric(Type type);

/// Makes a batch of the columns of others, which are shared, and of new ones.
class BatchMaker {
 public:
  BatchMaker(std::shared_ptr<const Schema> schema, std::size_t rows);

  /// Appends a column of a batch with as many rows.
  void share(const Batch& batch, std::size_t column);
  /// Appends values of the type's width, with the validity of a column of a batch or, without one, no nulls.
  void add(Block values, const Batch* batch = nullptr, std::size_t column = 0);
  /// Appends a column without any value.
  void addNulls();
  Batch finish();

 private:
  std::shared_ptr<BatchData> data_;
};

}  // namespace lumbarn
