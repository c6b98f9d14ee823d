#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../record/RecordCursor.h"
#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "ColumnTable.h"

namespace lumbarn {

/// What an array of a restart or INIT file holds, by the number that hosts know.
enum class ArrayKind : std::int32_t {
  Integer = 2,
  Single = 3,
  Compressed = 11,  ///< singles of all cells in the file, of which those of active cells are kept
  Derived = 19,     ///< derived from others; not in the file
};

/// One array that is kept.
struct KeptArray {
  std::string name;  ///< trimmed, upper case
  std::string unit;
  ArrayKind kind = ArrayKind::Single;
  /// Type, count, and positions of header and data in the file. Of a derived array only the count.
  RecordHeader header;
};

/// The fetch-on-demand table, 5 rows, one column for each array: items, kind, low and high word of the
/// position of the data (from 1, behind the header record), 1. A derived array has the item count in both
/// position words too.
LUMBARN_API ColumnTable<std::int32_t> fetchTable(std::span<const KeptArray> arrays);

/// How the arrays of one grid are to be kept.
struct ArrayRequest {
  bool LoadData = true;               ///< False: keep only the positions of the values
  std::int32_t nVectorEstimate = 10;  ///< first capacity of the table
};

/// The kept arrays of one grid of a restart step or an INIT file: names, unit texts, places, and the values
/// as one column-major block of singles, one column for each array. The first array sets the length of all.
/// Values are decoded directly into their column.
class LUMBARN_API ArrayTable {
 public:
  /// Adds the cursor's current record, of integers or singles; integers become singles. False, and nothing is
  /// added or read, when its length is not that of the first array. Throws Fault 13 for a record of another
  /// type, Fault 7 when there is no memory, BadRecord for damage; nothing is added then.
  bool add(RecordCursor& cursor, std::string_view zUnit, const ArrayRequest& request, Session& session);
  /// Adds a derived array of nActive items, to be written through `column`; it holds nothing before. False
  /// when that is not the length of the arrays that are there.
  bool addDerived(std::string_view zName, std::string_view zUnit, std::int32_t nActive,
                  const ArrayRequest& request, Session& session);
  /// Cuts the capacity to the count, if there are arrays.
  void TidyVectors();
  /// As new.
  void clear() { *this = ArrayTable(); }

  std::int32_t nVectors() const { return static_cast<std::int32_t>(arrays_.size()); }
  std::int32_t nVectorsMax() const { return capacity_; }
  const std::vector<KeptArray>& arrays() const { return arrays_; }
  /// Number of an array by its name, in any letter case, from 1; 0 when there is none.
  std::int32_t find(std::string_view zName) const;
  /// Items of each array, 0 without arrays.
  std::size_t length() const { return length_; }
  /// Whether values are held.
  bool hasValues() const { return loaded_; }

  /// The values of one array, from 1. Throws Fault 9 outside, and when no values are held.
  std::span<float> column(std::int32_t iVector);
  std::span<const float> column(std::int32_t iVector) const;
  /// All columns in use, one after the other; empty when no values are held.
  std::span<const float> values() const;

  /// See `fetchTable`.
  ColumnTable<std::int32_t> iFOD() const { return fetchTable(arrays_); }

 private:
  void makeRoom(const ArrayRequest& request, std::size_t length, std::size_t mostColumns, Session& session);

  std::vector<KeptArray> arrays_;
  std::int32_t capacity_ = 0;
  std::size_t length_ = 0;
  bool loaded_ = false;
  XYData sData_;
};

}  // namespace lumbarn
