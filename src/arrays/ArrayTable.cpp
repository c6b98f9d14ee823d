#include "ArrayTable.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "../record/cFILETYPE.h"
#include "../support/Fault.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

std::int32_t clamped(std::int64_t count) {
  return static_cast<std::int32_t>(std::min<std::int64_t>(count, std::numeric_limits<std::int32_t>::max()));
}

/// Integers into a column of singles: both are words of four bytes, so they are decoded where they stay.
void readIntegersAsSingles(RecordCursor& cursor, std::span<float> column) {
  cursor.read(std::span(reinterpret_cast<std::int32_t*>(column.data()), column.size()));
  for (float& value : column) value = static_cast<float>(std::bit_cast<std::int32_t>(value));
}

}  // namespace

bool ArrayTable::add(RecordCursor& cursor, std::string_view zUnit, const ArrayRequest& request,
                     Session& session) {
  const RecordHeader& header = cursor.header();
  const bool integers = header.type == ElementType::Integer;
  if (!integers && header.type != ElementType::Single) throw Fault(FaultNumber::TypeMismatch);
  const auto length = static_cast<std::size_t>(header.count);
  if (!arrays_.empty() && length != length_) return false;
  // However many columns are expected, no more come than the file has bytes for: two at least for a value.
  const std::size_t mostColumns = cursor.fileSize() / (2 * std::max<std::size_t>(length, 1)) + 1;
  makeRoom(request, length, mostColumns, session);
  if (loaded_ && length > 0) {
    const auto column = sData_.column(arrays_.size() + 1);
    if (integers) {
      readIntegersAsSingles(cursor, column);
    } else {
      cursor.read(column);
    }
  }
  arrays_.push_back(
      {header.keyword, std::string(zUnit), integers ? ArrayKind::Integer : ArrayKind::Single, header});
  return true;
}

bool ArrayTable::addDerived(std::string_view zName, std::string_view zUnit, std::int32_t nActive,
                            const ArrayRequest& request, Session& session) {
  const auto length = static_cast<std::size_t>(std::max(nActive, 0));
  if (!arrays_.empty() && length != length_) return false;
  makeRoom(request, length, 1, session);
  RecordHeader none;
  none.keyword = zName;
  none.count = nActive;
  arrays_.push_back({std::string(zName), std::string(zUnit), ArrayKind::Derived, std::move(none)});
  return true;
}

/// Room for one more array. The block has one column more than the capacity, for a derived array: pages that
/// nothing is written to take no memory, and moving the block would take twice.
void ArrayTable::makeRoom(const ArrayRequest& request, std::size_t length, std::size_t mostColumns,
                          Session& session) {
  if (arrays_.empty()) {
    const auto columns =
        std::min(static_cast<std::size_t>(std::max(request.nVectorEstimate, 1)), mostColumns);
    length_ = length;
    loaded_ = request.LoadData;
    arrays_.reserve(columns);
    sData_ = loaded_ ? XYData(length, columns + 1, session) : XYData();
    capacity_ = std::max(request.nVectorEstimate, 1);
    return;
  }
  // Deliberate: a table that is full grows by one array at a time.
  capacity_ = std::max(capacity_, nVectors() + 1);
  if (!loaded_ || arrays_.size() < sData_.columns()) return;
  XYData larger(length_, arrays_.size() + std::max<std::size_t>(arrays_.size() / 4, 1), session);
  std::ranges::copy(sData_.values(), larger.values().begin());
  sData_ = std::move(larger);
}

void ArrayTable::TidyVectors() {
  if (!arrays_.empty()) capacity_ = nVectors();
}

std::int32_t ArrayTable::find(std::string_view zName) const {
  const auto found = std::ranges::find_if(
      arrays_, [&](const KeptArray& array) { return equalNoCase(array.name, trim(zName)); });
  return found == arrays_.end() ? 0 : static_cast<std::int32_t>(found - arrays_.begin()) + 1;
}

std::span<float> ArrayTable::column(std::int32_t iVector) {
  if (!loaded_ || iVector < 1 || iVector > nVectors()) throw Fault(FaultNumber::Subscript);
  return sData_.column(static_cast<std::size_t>(iVector));
}

std::span<const float> ArrayTable::column(std::int32_t iVector) const {
  if (!loaded_ || iVector < 1 || iVector > nVectors()) throw Fault(FaultNumber::Subscript);
  return sData_.column(static_cast<std::size_t>(iVector));
}

std::span<const float> ArrayTable::values() const {
  return sData_.values().first(loaded_ ? length_ * arrays_.size() : 0);
}

ColumnTable<std::int32_t> fetchTable(std::span<const KeptArray> arrays) {
  ColumnTable<std::int32_t> table(5, arrays.size());
  for (std::size_t i = 1; i <= arrays.size(); ++i) {
    const KeptArray& array = arrays[i - 1];
    const std::int32_t items = clamped(array.header.count);
    const auto place =
        array.kind == ArrayKind::Derived ? PositionWords{items, items} : toWords(array.header.dataAt + 1);
    table(1, i) = items;
    table(2, i) = static_cast<std::int32_t>(array.kind);
    table(3, i) = place.low;
    table(4, i) = place.high;
    table(5, i) = 1;
  }
  return table;
}

}  // namespace lumbarn
