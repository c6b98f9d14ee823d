#pragma once

#include <cstddef>
#include <vector>

#include "../shapes/SourceData.h"
#include "../support/Fault.h"

namespace lumbarn {

/// Markers: what a host draws for the wells of a report step, one row for each well and, behind it, one for
/// each of its connections. A row has 55 items; one that is not set is empty (`std::monostate`). Rows and
/// items count from 1. Whole numbers are 32-bit integers, values of the file's singles are doubles, names are
/// texts.
///
/// | item | of a well, "WELL" | of a connection, "PERF" |
/// |---|---|---|
/// | 1 | 1 | iCONN 5 |
/// | 2 | 0 | 0 |
/// | 3, 4, 5 | head I, head J, 1 | I, J, K |
/// | 10 | iWELL 4 | iCONN 4, of a table of three dimensions only |
/// | 11, 12 | name, "WELL" | name of the well, "PERF" |
/// | 14 | | iCONN 6 |
/// | 15 to 25 | | sCONN 1 and 3 to 12, with the extended well records only |
/// | 26, 27 | | iCONN 7, 8 |
/// | 28, 29, 30, 31 | iWELL 6, iWELL 8, the host's well type, iWELL 7 | |
/// | 32 to 40 | sWELL 1 to 9 | |
/// | 41 to 46, 47 to 52, 53, 54 | sWELL2 1 to 6, 9 to 14, 7, 8 | |
///
/// Items whose table the step does not have are empty.
class MarkerTable {
 public:
  static constexpr std::size_t nItems = 55;

  MarkerTable() = default;
  /// `used` rows, all items empty, in a table that has room for `room` of them. Only the used rows take
  /// memory.
  MarkerTable(std::size_t used, std::size_t room)
      : used_(used), room_(room < used ? used : room), items_(used * nItems) {}

  /// Rows that the table has room for: (connection slots of a well + 1) times wells. Behind those in use all
  /// items are empty.
  std::size_t rows() const { return room_; }
  std::size_t used() const { return used_; }

  /// An item of a row in use. Throws Fault 9 outside.
  Variant& operator()(std::size_t iRow, std::size_t iItem) {
    if (iRow > used_) throw Fault(FaultNumber::Subscript);
    return items_[place(iRow, iItem)];
  }
  /// An item of any row. Throws Fault 9 outside.
  Variant operator()(std::size_t iRow, std::size_t iItem) const {
    const std::size_t at = place(iRow, iItem);
    return iRow > used_ ? Variant() : items_[at];
  }

 private:
  std::size_t place(std::size_t iRow, std::size_t iItem) const {
    const bool inside = iRow >= 1 && iRow <= room_ && iItem >= 1 && iItem <= nItems;
    if (!inside) throw Fault(FaultNumber::Subscript);
    return (iRow - 1) * nItems + iItem - 1;
  }

  std::size_t used_ = 0;
  std::size_t room_ = 0;
  std::vector<Variant> items_;
};

}  // namespace lumbarn
