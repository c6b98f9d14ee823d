#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "../record/ByteSource.h"
#include "CellRecords.h"
#include "GridSet.h"

namespace lumbarn {

/// The record loop over a GRID file: two small records for each cell.
///
/// The activity of cells is found out in the same pass that takes their corners. A table of it is kept only
/// for a grid that has an inactive cell, and none when all cells are to count as active.
class GridRecords {
 public:
  GridRecords(GridSet& set, std::shared_ptr<const ByteSource> source)
      : set_(set), source_(std::move(source)) {}
  /// Reads all grids, up to one without active cells. False when the load is cancelled; whatever is wrong is
  /// BadRecord, with the grids before it in the set.
  bool read();
  /// Pairs of records that were taken without the cursor, which has not counted them.
  std::int64_t uncounted() const { return uncounted_; }

 private:
  bool take();
  void takeSizes();
  void takeCells();
  bool takeRun(CellRecords& more);
  void takeCell(const CellRecord& cell);
  std::vector<std::int32_t>& hostCells();
  void readPair(CellRecord& cell, RecordHeader& coords);
  void makeActivity(std::int64_t first);
  void skipTo(std::int32_t number);
  void leaveOrder();
  void takeOmitted();
  void sortRows();
  bool finish();

  GridSet& set_;
  std::shared_ptr<const ByteSource> source_;
  std::int64_t uncounted_ = 0;
  bool stopped_ = false;  // at a grid without active cells
  // Of the current grid:
  bool compress_ = false;     // rows of active cells only: as asked for, or too few records for all cells
  std::uint64_t room_ = 0;    // rows that the file can hold at most
  std::int32_t seen_ = 0;     // cells that had records
  std::int32_t reached_ = 0;  // number of the last cell that came in order; some before it may be omitted
  bool hasInactive_ = false;  // there are records of inactive cells
  std::size_t notFinite_ = 0;
  std::array<std::int32_t, 3> expected_{};  // place of the cell that follows in order
  bool inOrder_ = true;                     // numbers have increased so far
  XYData rows_;                             // by cell, or by active cell in the order of the file
  std::vector<std::int32_t> rowCells_;      // when compressed: the cell of each row
  std::vector<std::int32_t> activity_;      // made when they are needed
  std::vector<std::int32_t> hosts_;
  std::vector<std::int32_t> coarse_;
  CellRun run_;
};

}  // namespace lumbarn
