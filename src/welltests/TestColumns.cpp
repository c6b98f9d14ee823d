#include "TestColumns.h"

#include <algorithm>
#include <type_traits>

namespace lumbarn {

namespace {

/// The first eight letters as one number, so that names are told apart without comparing texts.
constexpr std::uint64_t keyOf(std::string_view name) {
  std::uint64_t key = 0;
  for (std::size_t i = 0; i < 8; ++i) {
    key = key << 8 | (i < name.size() ? static_cast<unsigned char>(name[i]) : 0U);
  }
  return key;
}

template <class Column>
struct NamedColumn {
  std::uint64_t key;
  std::string_view name;
  Column column;
};

/// Names in the order of their column numbers, to one table by name: each array of each test is looked up.
template <class Column, std::size_t n>
constexpr auto byName(const std::array<std::string_view, n>& names) {
  static_assert(n == static_cast<std::size_t>(Column::Count));
  std::array<NamedColumn<Column>, n> table{};
  for (std::size_t i = 0; i < n; ++i) table[i] = {keyOf(names[i]), names[i], static_cast<Column>(i)};
  std::ranges::sort(table, {}, &NamedColumn<Column>::key);
  return table;
}

constexpr auto pltNames = byName<PltColumn>(std::to_array<std::string_view>(
    {"CONDEPTH", "CONLENST", "CONLENEN", "CONPRES", "CONORAT",   "CONWRAT", "CONGRAT",  "CONOTUB",
     "CONWTUB",  "CONGTUB",  "CONVTUB",  "CONFAC",  "CONKH",     "CONNXT",  "CONSEGNO", "CONBRNO",
     "CONORATS", "CONWRATS", "CONGRATS", "CONWCUT", "CONWCUTUB", "CONGOR",  "CONGORTUB"}));
constexpr auto segNames = byName<SegColumn>(std::to_array<std::string_view>(
    {"SEGDIAM", "SEGDEPTH", "SEGLENST", "SEGLENEN", "SEGXCORD", "SEGYCORD", "SEGPRES",  "SEGORAT",
     "SEGWRAT", "SEGGRAT",  "SEGOVEL",  "SEGWVEL",  "SEGGVEL",  "SEGOHF",   "SEGWHF",   "SEGGHF",
     "SEGBRNO", "SEGNXT",   "SEGCORAT", "SEGCWRAT", "SEGCGRAT", "SEGCORTS", "SEGCWRTS", "SEGCGRTS"}));
constexpr auto brnNames = byName<BrnColumn>(std::to_array<std::string_view>({"BRNST", "BRNEN"}));

template <class Column>
const auto& namesOf() {
  if constexpr (std::is_same_v<Column, PltColumn>) {
    return pltNames;
  } else if constexpr (std::is_same_v<Column, SegColumn>) {
    return segNames;
  } else {
    return brnNames;
  }
}

}  // namespace

template <class Column>
void ColumnNumbers<Column>::set(const TestTable& table) {
  if (table.count == 0) return;
  numbers_.fill(-1);
  for (std::int32_t i = 0; i < table.count; ++i) {
    const std::string_view name = table.columns[static_cast<std::size_t>(i)].name;
    const auto& names = namesOf<Column>();
    const auto found = std::ranges::lower_bound(names, keyOf(name), {}, &NamedColumn<Column>::key);
    if (found == names.end() || found->name != name) continue;
    auto& number = numbers_[static_cast<std::size_t>(found->column)];
    if (number < 0) number = i + 1;
  }
}

template class ColumnNumbers<PltColumn>;
template class ColumnNumbers<SegColumn>;
template class ColumnNumbers<BrnColumn>;

}  // namespace lumbarn
