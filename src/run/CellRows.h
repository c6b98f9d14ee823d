#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "../arrays/ArrayReader.h"
#include "ArrayPlan.h"
#include "RegionCells.h"

namespace lumbarn {

/// Reads the arrays of a plan as rows, step after step, a piece of all columns at a time.
class CellRows {
 public:
  /// Throws Error BadRequest for cells that are not in the grid and for arrays that do not go together,
  /// NotFound when no cell is in the regions.
  CellRows(std::shared_ptr<const RunState> run, std::shared_ptr<StreamContext> context,
           const CellSelection& selection);

  Schema schema() const;
  const ArrayPlan& plan() const { return plan_; }
  /// The step of the rows that are read next, or at which reading failed.
  const IndexStep& step() const { return *step_; }
  /// Adds rows until the builder is full; false at the end.
  bool fill(BatchBuilder& rows);

 private:
  using Values = std::variant<std::vector<std::int32_t>, std::vector<float>, std::vector<double>>;

  void checkRequest() const;
  void checkFixed() const;
  void listCells();
  bool nextStep();
  bool nextPiece();
  void showProgress() const;
  /// Whether rows may be cells that are not active.
  bool anyCell() const { return selection_.inactive || !selection_.cells.empty(); }
  /// Whether rows are the cells of `listed_`.
  bool isListed() const { return !selection_.cells.empty() || regions_.any(); }
  void listRegionCells();
  void countElements();
  void findActive();
  void readPiece(std::size_t rows);
  void findElements(std::size_t rows);
  void findListedElements(std::size_t rows);
  void reportInactive();
  template <class Number>
  void readColumn(std::size_t column, std::size_t rows, std::vector<Number>& values);
  void putRow(BatchBuilder& rows, std::size_t row) const;

  std::shared_ptr<const RunState> run_;
  std::shared_ptr<StreamContext> context_;
  CellSelection selection_;
  ArrayPlan plan_;
  RegionCells regions_;
  ArrayReader reader_;
  std::unique_ptr<ArrayReader> initReader_;
  std::vector<std::uint32_t> boxed_;   // the cells of the selection's boxes, from 0
  std::vector<std::uint32_t> listed_;  // those of them that are rows of the current step
  std::optional<GridCells> listedOf_;  // for which `listed_` was made
  bool hasPlaces_ = false;             // columns i, j, k
  std::size_t mostRows_ = 1;           // of a piece
  bool inactiveReported_ = false;

  // The current step
  std::size_t steps_ = 0;  // begun so far
  const IndexStep* step_ = nullptr;
  GridCells cells_;
  std::array<std::int32_t, 3> size_{1, 1, 1};  // of the grid, where a step does not have it that of others
  StepArrays arrays_;
  std::shared_ptr<const std::optional<ActiveCells>> active_;  // null: all are, or it does not matter
  bool inOrder_ = true;  // the element of each row is its number, in all arrays
  std::int64_t rowsOfStep_ = 0;
  std::int64_t nextRow_ = 0;  // behind the piece

  // The current piece
  std::size_t row_ = 0;  // the next one to be delivered
  std::size_t rows_ = 0;
  std::vector<std::uint32_t> cellOf_;    // of each row, from 0
  std::vector<std::uint32_t> filled_;    // rows with values, by ascending cell
  std::vector<std::uint32_t> byCell_;    // their elements in arrays of all cells
  std::vector<std::uint32_t> byActive_;  // and in arrays of the active cells
  std::vector<bool> valid_;              // rows with values; empty: all
  std::vector<Values> values_;           // by column
};

}  // namespace lumbarn
