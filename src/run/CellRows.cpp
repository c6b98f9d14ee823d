#include "CellRows.h"

#include <numeric>
#include <utility>

#include <fmt/format.h>

#include "../frame/Error.h"
#include "CellBox.h"

namespace lumbarn {

namespace {

std::string placeText(std::int64_t cell, const std::array<std::int32_t, 3>& size) {
  return fmt::format("{},{},{}", cell % size[0] + 1, cell / size[0] % size[1] + 1,
                     cell / size[0] / size[1] + 1);
}

/// The grid as the files write its name.
std::string gridName(const std::vector<const IndexStep*>& steps, const std::string& grid) {
  for (const IndexStep* step : steps) {
    for (const IndexGroup& group : step->groups) {
      if (sameGrid(group.grid, grid)) return shownGrid(group.grid);
    }
  }
  return shownGrid(grid);
}

}  // namespace

CellRows::CellRows(std::shared_ptr<const RunState> run, std::shared_ptr<StreamContext> context,
                   const CellSelection& selection)
    : run_(std::move(run)),
      context_(std::move(context)),
      selection_(selection),
      plan_(planArrays(*run_, *context_, selection_)),
      reader_(plan_.index, context_->session()),
      hasPlaces_(selection_.ijk || (!selection_.cells.empty() && !selection_.valuesOnly)) {
  if (plan_.inits) initReader_ = std::make_unique<ArrayReader>(plan_.inits, context_->session());
  checkRequest();
  listCells();
  std::size_t width = 0;
  for (const ArrayColumn& column : plan_.columns) width += column.type == Type::Float64 ? 8 : 4;
  const BatchLimits& limits = context_->options().limits;
  mostRows_ = std::clamp<std::size_t>(limits.bytes / width, 1, std::max<std::size_t>(limits.rows, 1));
  for (const ArrayColumn& column : plan_.columns) {
    if (column.type == Type::Int32) values_.emplace_back(std::vector<std::int32_t>());
    if (column.type == Type::Float32) values_.emplace_back(std::vector<float>());
    if (column.type == Type::Float64) values_.emplace_back(std::vector<double>());
  }
  nextStep();  // what cannot be answered is found before the first row
}

Schema CellRows::schema() const {
  Schema schema;
  const std::string grid = gridName(plan_.steps, plan_.grid);
  if (!selection_.valuesOnly) {
    if (!selection_.init) {
      schema.push_back({.name = "step", .type = Type::Int32, .nullable = false});
      schema.push_back({.name = "date", .type = Type::Timestamp});
      schema.push_back({.name = "days", .type = Type::Float64, .nullable = false});
    }
    schema.push_back({.name = "grid",
                      .type = Type::Dictionary,
                      .nullable = false,
                      .dictionary = std::make_shared<const std::vector<std::string>>(std::vector{grid})});
  }
  for (const char* axis : {"i", "j", "k"}) {
    if (hasPlaces_) schema.push_back({.name = axis, .type = Type::Int32, .nullable = false});
  }
  for (const ArrayColumn& column : plan_.columns) {
    Field field{.name = column.name, .type = column.type, .unit = column.unit};
    field.metadata.emplace_back("mnemonic", column.name);
    if (!plan_.grid.empty()) field.metadata.emplace_back("lgr", grid);
    schema.push_back(std::move(field));
  }
  makeNamesUnique(schema);
  return schema;
}

void CellRows::checkRequest() const {
  if (plan_.ofCells() || !(hasPlaces_ || selection_.inactive || !selection_.cells.empty())) return;
  const auto other = std::ranges::find(plan_.columns, false, &ArrayColumn::ofCells);
  throw Error(Error::Kind::BadRequest,
              {.message = Message::ArrayNotOfCells,
               .path = plan_.index->files.front(),
               .problem = fmt::format("{} has no values for cells: it can only be shown as it is stored",
                                      other->name)});
}

void CellRows::listCells() {
  for (const IndexStep* step : plan_.steps) {
    const GridCells cells = step->cellsOf(plan_.grid);
    if (!cells.known()) continue;
    size_ = cells.size;
    break;
  }
  const auto& size = size_;
  std::uint64_t count = 0;
  for (const CellBox& box : selection_.cells) {
    requireInside(box, size, plan_.index->files.front(), gridName(plan_.steps, plan_.grid));
    std::uint64_t volume = 1;
    for (std::size_t axis = 0; axis < 3; ++axis)
      volume *= static_cast<std::uint64_t>(box.to[axis] - box.from[axis] + 1);
    count += volume;
  }
  context_->session().checkMemory(count * sizeof(std::uint32_t));
  listed_.reserve(count);
  for (const auto& [from, to] : selection_.cells) {
    for (std::int64_t k = from[2]; k <= to[2]; ++k) {
      for (std::int64_t j = from[1]; j <= to[1]; ++j) {
        for (std::int64_t i = from[0]; i <= to[0]; ++i)
          listed_.push_back(static_cast<std::uint32_t>(((k - 1) * size[1] + j - 1) * size[0] + i - 1));
      }
    }
  }
}

bool CellRows::nextStep() {
  if (steps_ == plan_.steps.size()) return false;
  if (context_->session().cancelled()) throw LoadCanceled();
  step_ = plan_.steps[steps_++];
  cells_ = step_->cellsOf(plan_.grid);
  if (cells_.known()) size_ = cells_.size;
  arrays_ = plan_.arraysOf(*step_);
  nextRow_ = 0;
  row_ = rows_ = 0;
  if (!plan_.ofCells()) {
    countElements();
    return true;
  }
  checkFixed();
  findActive();
  rowsOfStep_ = !listed_.empty()      ? static_cast<std::int64_t>(listed_.size())
                : selection_.inactive ? cells_.cells
                                      : cells_.active;
  const bool numbered = active_ || !hasPlaces_ || cells_.active == cells_.cells;
  if (!anyCell() && !numbered) rowsOfStep_ = 0;
  inOrder_ = listed_.empty() && !active_;
  reportInactive();
  return true;
}

/// Rows are elements: of all arrays as many.
void CellRows::countElements() {
  rowsOfStep_ = 0;
  const IndexEntry* first = nullptr;
  for (const IndexEntry* entry : arrays_.entries) {
    if (!entry) continue;
    if (!first) first = entry;
    if (entry->count != first->count)
      throwRefused(plan_.index->files[step_->file],
                   fmt::format("{} has {} values and {} has {}: show them one by one", first->keyword.view(),
                               first->count, entry->keyword.view(), entry->count));
  }
  if (first) rowsOfStep_ = first->count;
}

/// Arrays of INIT beside those of the restart belong to the same cells.
void CellRows::checkFixed() const {
  for (std::size_t i = 0; i < plan_.columns.size(); ++i) {
    const IndexEntry* entry = arrays_.entries[i];
    if (!plan_.columns[i].fixed || !entry || !cells_.known()) continue;
    if (entry->count == cells_.active || entry->count == cells_.cells) continue;
    throwRefused(
        plan_.inits->files.front(),
        fmt::format("{} has {} values, the grid of step {} has {} cells of which {} are active",
                    entry->keyword.view(), entry->count, step_->number, cells_.cells, cells_.active));
  }
}

/// Looks for the active cells where they matter.
void CellRows::findActive() {
  active_.reset();
  if (!cells_.known() || cells_.active == cells_.cells) return;
  const auto has = [&](bool full) {
    return std::ranges::any_of(arrays_.entries, [&](const IndexEntry* entry) {
      return entry && (entry->count == cells_.cells) == full;
    });
  };
  if (!anyCell() && !hasPlaces_ && !has(true)) return;
  active_ = run_->activeCells(*context_, plan_.grid, cells_);
  if (context_->session().cancelled()) throw LoadCanceled();
  if (active_->has_value()) return;
  active_.reset();
  if (anyCell() && !has(false)) return;   // values of all cells can be given as they are stored
  if (!has(true) && !has(false)) return;  // a step without arrays, whose header alone tells the number
  throw Error(Error::Kind::Damaged,
              {.message = Message::ActiveCellsUnknown,
               .path = plan_.index->files[step_->file],
               .problem = fmt::format("which {} of the {} cells are active is not known: the run has no INIT "
                                      "file with PORV and no EGRID file with ACTNUM for them",
                                      cells_.active, cells_.cells)});
}

void CellRows::reportInactive() {
  if (inactiveReported_ || listed_.empty() || !active_) return;
  std::int64_t first = -1;
  std::size_t count = 0;
  for (const std::uint32_t cell : listed_) {
    if (cell >= cells_.cells || (*active_)->activeOf(std::int64_t{cell} + 1) > 0) continue;
    if (count++ == 0) first = cell;
  }
  inactiveReported_ = true;
  if (count == 0) return;
  const std::string place = placeText(first, cells_.size);
  context_->session().diagnose(
      {.message = Message::CellInactive,
       .path = plan_.index->files[step_->file],
       .problem = count == 1 ? fmt::format("cell {} is not active and has no values", place)
                             : fmt::format("cell {} and {} others are not active and have no values", place,
                                           count - 1)});
}

void CellRows::showProgress() const {
  Progress* progress = context_->session().Container;
  if (!progress) return;
  if (steps_ == 1 && nextRow_ == 0) progress->files(1);
  const double ofStep = static_cast<double>(nextRow_) / static_cast<double>(rowsOfStep_);
  progress->fraction((static_cast<double>(steps_ - 1) + ofStep) / static_cast<double>(plan_.steps.size()));
}

/// The next rows, of all columns. Where the file is damaged, as few that the damage is behind them.
bool CellRows::nextPiece() {
  while (nextRow_ == rowsOfStep_) {
    if (!nextStep()) return false;
  }
  showProgress();
  auto rows =
      static_cast<std::size_t>(std::min(static_cast<std::int64_t>(mostRows_), rowsOfStep_ - nextRow_));
  for (bool read = false; !read;) {
    try {
      readPiece(rows);
      read = true;
    } catch (const BadRecord&) {
      if (rows == 1) throw;
      mostRows_ = rows /= 2;
    }
  }
  nextRow_ += static_cast<std::int64_t>(rows);
  row_ = 0;
  rows_ = rows;
  return true;
}

void CellRows::readPiece(std::size_t rows) {
  findElements(rows);
  for (std::size_t i = 0; i < values_.size(); ++i) {
    if (arrays_.entries[i]) std::visit([&](auto& values) { readColumn(i, rows, values); }, values_[i]);
  }
}

/// Finds the cells of the rows of a piece, and where their values are in the arrays.
void CellRows::findElements(std::size_t rows) {
  cellOf_.resize(plan_.ofCells() ? rows : 0);
  const auto first = static_cast<std::uint32_t>(nextRow_);
  valid_.clear();
  filled_.clear();
  if (inOrder_) return std::iota(cellOf_.begin(), cellOf_.end(), first);
  byCell_.clear();
  byActive_.clear();
  if (!listed_.empty()) return findListedElements(rows);
  const auto& iA2N = (*active_)->iA2N();
  if (!selection_.inactive) {
    for (std::size_t row = 0; row < rows; ++row) {
      cellOf_[row] = static_cast<std::uint32_t>(iA2N[first + row]) - 1;
      byActive_.push_back(first + static_cast<std::uint32_t>(row));
    }
    byCell_ = cellOf_;
    return;
  }
  valid_.resize(rows);
  auto next = std::ranges::upper_bound(iA2N, nextRow_);
  for (std::size_t row = 0; row < rows; ++row) {
    cellOf_[row] = first + static_cast<std::uint32_t>(row);
    if (next == iA2N.end() || std::cmp_not_equal(*next, cellOf_[row] + 1)) continue;
    valid_[row] = true;
    filled_.push_back(static_cast<std::uint32_t>(row));
    byCell_.push_back(cellOf_[row]);
    byActive_.push_back(static_cast<std::uint32_t>(next++ - iA2N.begin()));
  }
}

void CellRows::findListedElements(std::size_t rows) {
  const auto first = listed_.begin() + nextRow_;
  std::copy(first, first + static_cast<std::ptrdiff_t>(rows), cellOf_.begin());
  valid_.resize(rows);
  const auto activeOf = [&](std::uint32_t cell) {
    return active_ ? (*active_)->activeOf(std::int64_t{cell} + 1) : static_cast<std::int32_t>(cell) + 1;
  };
  for (std::size_t row = 0; row < rows; ++row) {
    if (cellOf_[row] >= cells_.cells || activeOf(cellOf_[row]) == 0) continue;
    valid_[row] = true;
    filled_.push_back(static_cast<std::uint32_t>(row));
  }
  std::ranges::stable_sort(filled_, {}, [&](std::uint32_t row) { return cellOf_[row]; });
  for (const std::uint32_t row : filled_) {
    byCell_.push_back(cellOf_[row]);
    byActive_.push_back(static_cast<std::uint32_t>(activeOf(cellOf_[row])) - 1);
  }
}

template <class Number>
void CellRows::readColumn(std::size_t column, std::size_t rows, std::vector<Number>& values) {
  const IndexEntry& entry = *arrays_.entries[column];
  const bool fixed = plan_.columns[column].fixed;
  ArrayReader& reader = fixed ? *initReader_ : reader_;
  const IndexStep& step = fixed ? plan_.inits->steps.front() : *step_;
  values.resize(rows);
  if (inOrder_ || !plan_.ofCells())
    return reader.fetch(step, entry, plan_.grid, nextRow_, std::span<Number>(values));
  const std::span<const std::uint32_t> elements = entry.count == cells_.cells ? byCell_ : byActive_;
  if (valid_.empty()) return reader.fetch(step, entry, plan_.grid, elements, std::span<Number>(values));
  std::vector<Number> found(filled_.size());
  reader.fetch(step, entry, plan_.grid, elements, std::span<Number>(found));
  for (std::size_t i = 0; i < filled_.size(); ++i) values[filled_[i]] = found[i];
}

void CellRows::putRow(BatchBuilder& rows, std::size_t row) const {
  std::size_t column = 0;
  if (!selection_.valuesOnly) {
    if (!selection_.init) {
      rows.set(column++, step_->number);
      if (step_->date) rows.set(column, toLocal(*step_->date));
      rows.set(++column, step_->days);
      ++column;
    }
    rows.set(column++, std::int32_t{0});
  }
  if (hasPlaces_) {
    const std::int64_t cell = cellOf_[row];
    rows.set(column++, static_cast<std::int32_t>(cell % size_[0] + 1));
    rows.set(column++, static_cast<std::int32_t>(cell / size_[0] % size_[1] + 1));
    rows.set(column++, static_cast<std::int32_t>(cell / size_[0] / size_[1] + 1));
  }
  if (!valid_.empty() && !valid_[row]) return;
  for (std::size_t i = 0; i < values_.size(); ++i) {
    if (arrays_.entries[i])
      std::visit([&](const auto& values) { rows.set(column + i, values[row]); }, values_[i]);
  }
}

bool CellRows::fill(BatchBuilder& rows) {
  while (!rows.full()) {
    if (row_ == rows_ && !nextPiece()) return false;
    putRow(rows, row_++);
    rows.endRow();
  }
  return true;
}

}  // namespace lumbarn
