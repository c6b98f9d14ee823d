#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "../support/Export.h"

struct ArrowSchema;
struct ArrowArray;

namespace lumbarn {

/// A moment in a simulation, to the microsecond and without a time zone: simulators have none.
using LocalMoment = std::chrono::local_time<std::chrono::microseconds>;

/// Types of columns, in the memory layout of Arrow's C data interface.
enum class Type : std::uint8_t {
  Bool,  ///< bits, the lowest first
  Int32,
  Int64,
  Float32,
  Float64,
  Utf8,        ///< offsets of 32 bits and characters
  Dictionary,  ///< numbers of 32 bits from 0 into the texts of the field, which are the same in all batches
  Timestamp,   ///< microseconds since 1970, 64 bits, no time zone
  FixedList,   ///< `listSize` values Float32 for each row
};

/// What is known of a column besides its values.
struct Field {
  std::string name;  ///< no two in a schema differ in nothing but letter case
  Type type{};
  bool nullable = true;
  std::string unit{};  ///< as the file has it, or that of the units asked for; empty: none or not known
  std::string description{};
  std::int32_t listSize = 0;                                     ///< of FixedList
  std::vector<std::pair<std::string, std::string>> metadata{};   ///< "mnemonic", "member", "cell", "lgr", ...
  std::shared_ptr<const std::vector<std::string>> dictionary{};  ///< texts of Dictionary
};

/// What the metadata of a field say of one thing; nothing if they do not.
LUMBARN_API std::optional<std::string_view> metadataOf(const Field& field, std::string_view key);

/// The columns of a table. Fixed before the first batch of a stream.
using Schema = std::vector<Field>;

/// Makes the names of a schema unique: a second "FOPR", or one that differs in letter case only, becomes
/// "FOPR#2". Gives the names that were changed, as they were.
LUMBARN_API std::vector<std::string> makeNamesUnique(Schema& schema);

struct BatchData;

/// The values of one column of a batch. A view that shares the batch's memory: it holds as long as it lives,
/// whatever becomes of the batch, its stream and its run.
class LUMBARN_API Column {
 public:
  Column(std::shared_ptr<const BatchData> batch, std::size_t column)
      : batch_(std::move(batch)), column_(column) {}

  const Field& field() const;
  std::size_t size() const;
  std::size_t nullCount() const;
  bool valid(std::size_t row) const;

  /// The values as they are in memory, 0 where they are null: std::int32_t for Int32 and the numbers of
  /// Dictionary, std::int64_t for Int64 and Timestamp, float for Float32 and FixedList (`listSize` for each
  /// row), double for Float64. Throws Error BadRequest for any other T.
  template <class T>
  std::span<const T> values() const;

  /// Values of any numeric type, null as NaN. Throws Error BadRequest for texts.
  std::vector<double> doubles() const;
  /// A value of Bool, and a text of Utf8 or Dictionary, empty where it is null. Throws Error BadRequest for
  /// others.
  bool boolean(std::size_t row) const;
  std::string_view text(std::size_t row) const;

 private:
  std::shared_ptr<const BatchData> batch_;
  std::size_t column_;
};

/// Some consecutive rows of a table. Copying shares the memory.
class LUMBARN_API Batch {
 public:
  explicit Batch(std::shared_ptr<const BatchData> data) : data_(std::move(data)) {}

  const Schema& schema() const;
  std::size_t rows() const;
  std::size_t columns() const { return schema().size(); }
  Column operator[](std::size_t column) const;     ///< from 0; throws Error BadRequest behind the last
  Column operator[](std::string_view name) const;  ///< throws Error NotFound with similar names

  /// The Float32 columns [first, first + count) as one block, column after column, `stride` values from one
  /// to the next. Empty where one of them has another type.
  std::span<const float> block(std::size_t first, std::size_t count, std::size_t& stride) const;

  /// Hands the batch to a consumer of Arrow's C data interface, as a struct array and its schema; either may
  /// be null. Nothing is copied: what is exported keeps the batch's memory until it is released.
  void exportTo(ArrowArray* array, ArrowSchema* schema) const;

  const std::shared_ptr<const BatchData>& data() const { return data_; }

 private:
  std::shared_ptr<const BatchData> data_;
};

}  // namespace lumbarn
