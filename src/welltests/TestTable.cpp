#include "TestTable.h"

#include "../support/Fault.h"

namespace lumbarn {

std::span<float> TestTable::add(std::string_view name, std::uint64_t headerAt) {
  // Large tables grow as they need, lest a lone array that a damaged file announces takes many times its
  // size.
  constexpr std::size_t smallTable = 1024;
  const auto place = static_cast<std::size_t>(count);
  if (columns.empty()) {
    columns.reserve(usualColumns);
    if (rows <= smallTable) values.reserve(usualColumns * rows);
  }
  if (place == columns.size()) {
    values.resize((place + 1) * rows);
    columns.emplace_back();
  }
  columns[place].name = ColumnName(name);
  columns[place].headerAt = headerAt;
  ++count;
  return std::span(values).subspan(place * rows, rows);
}

void TestTable::removeLast() {
  columns.pop_back();
  values.resize(columns.size() * rows);
  --count;
}

std::span<const float> TestTable::column(std::int32_t iColumn, std::size_t n) const {
  if (iColumn < 1 || static_cast<std::size_t>(iColumn) > columns.size() || n > rows) {
    throw Fault(FaultNumber::Subscript);
  }
  return std::span(values).subspan((static_cast<std::size_t>(iColumn) - 1) * rows, n);
}

std::int32_t TestTable::find(std::string_view name) const {
  const ColumnName wanted(name);
  for (std::int32_t i = 0; i < count; ++i) {
    if (columns[static_cast<std::size_t>(i)].name == wanted) return i + 1;
  }
  return -1;
}

std::uint64_t TestTable::headerOf(std::string_view name) const {
  const std::int32_t i = find(name);
  return i > 0 ? columns[static_cast<std::size_t>(i - 1)].headerAt : derived;
}

}  // namespace lumbarn
