#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "../support/Export.h"
#include "TestTable.h"

namespace lumbarn {

/// Columns of a test's tables that the arithmetic asks for by name.
enum class PltColumn : std::size_t {
  CONDEPTH,
  CONLENST,
  CONLENEN,
  CONPRES,
  CONORAT,
  CONWRAT,
  CONGRAT,
  CONOTUB,
  CONWTUB,
  CONGTUB,
  CONVTUB,
  CONFAC,
  CONKH,
  CONNXT,
  CONSEGNO,
  CONBRNO,
  CONORATS,
  CONWRATS,
  CONGRATS,
  CONWCUT,
  CONWCUTUB,
  CONGOR,
  CONGORTUB,
  Count
};
enum class SegColumn : std::size_t {
  SEGDIAM,
  SEGDEPTH,
  SEGLENST,
  SEGLENEN,
  SEGXCORD,
  SEGYCORD,
  SEGPRES,
  SEGORAT,
  SEGWRAT,
  SEGGRAT,
  SEGOVEL,
  SEGWVEL,
  SEGGVEL,
  SEGOHF,
  SEGWHF,
  SEGGHF,
  SEGBRNO,
  SEGNXT,
  SEGCORAT,
  SEGCWRAT,
  SEGCGRAT,
  SEGCORTS,
  SEGCWRTS,
  SEGCGRTS,
  Count
};
enum class BrnColumn : std::size_t { BRNST, BRNEN, Count };

/// Numbers of these columns in a table, from 1; -1 for one that is not there.
template <class Column>
class LUMBARN_API ColumnNumbers {
 public:
  ColumnNumbers() { numbers_.fill(-1); }
  std::int32_t operator[](Column column) const { return numbers_[static_cast<std::size_t>(column)]; }
  bool has(Column column) const { return (*this)[column] > 0; }
  /// Finds the columns of a table, of several with one name the first. No effect for a table without columns.
  void set(const TestTable& table);

 private:
  std::array<std::int32_t, static_cast<std::size_t>(Column::Count)> numbers_;
};

}  // namespace lumbarn
