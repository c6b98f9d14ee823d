#include "Hadrick.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "../support/Fault.h"
#include "../vocabulary/UnitChange.h"
#include "CellNumbers.h"

namespace lumbarn {

namespace {

constexpr std::size_t depthsOfCell = 8;

std::size_t place(std::int32_t iCell) { return static_cast<std::size_t>(iCell) - 1; }

void require(bool condition) {
  if (!condition) throw Fault(FaultNumber::Subscript);
}

/// Metres in a unit of length, 0 for one that is not known.
double metres(std::string_view unit) {
  const auto change = unitChange(unit, "M");
  return change ? change->factor : 0;
}

}  // namespace

void Hadrick::setSize(std::int32_t nx, std::int32_t ny, std::int32_t nz) {
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  if (nx < 1 || ny < 1 || nz < 1 || static_cast<std::int64_t>(nx) * ny > most ||
      static_cast<std::int64_t>(nx) * ny * nz > most) {
    throw Fault(FaultNumber::Overflow);
  }
  Hadrick fresh(*session_);
  static_cast<GridFacts&>(fresh) = std::move(static_cast<GridFacts&>(*this));
  *this = std::move(fresh);
  Nx_ = nx;
  Ny_ = ny;
  Nz_ = nz;
  nActive_ = nCells();
}

std::int32_t Hadrick::cellAt(std::int32_t i, std::int32_t j, std::int32_t k) const {
  if (i < 1 || i > Nx_ || j < 1 || j > Ny_ || k < 1 || k > Nz_) return 0;
  return i + Nx_ * (j - 1 + Ny_ * (k - 1));
}

std::array<std::int32_t, 3> Hadrick::placeOf(std::int32_t iCell) const {
  const std::int32_t index = iCell - 1;
  return {index % Nx_ + 1, index / Nx_ % Ny_ + 1, index / Nx_ / Ny_ + 1};
}

std::int32_t Hadrick::setActive(std::vector<std::int32_t> iACTNUM) {
  require(iACTNUM.empty() || iACTNUM.size() == static_cast<std::size_t>(nCells()));
  if (!coarse_.empty()) joinBlocks(iACTNUM);
  std::int32_t refused = 0;
  std::vector<std::int32_t> kept;  // the columns of compressed arrays that stay
  if (compressed_) {
    if (iACTNUM.empty()) iACTNUM.assign(static_cast<std::size_t>(nCells()), 1);
    for (std::int32_t iCell = 1; iCell <= nCells(); ++iCell) {
      auto& wanted = iACTNUM[place(iCell)];
      const auto column = activeOf(iCell);
      if (wanted > 0 && column == 0) {
        wanted = 0;
        ++refused;
      }
      if (wanted > 0) kept.push_back(column);
    }
  }
  const auto pack = [&](XYData& rows) {
    if (rows.empty()) return;
    XYData packed(rows.rows(), kept.size(), *session_);
    for (std::size_t n = 0; n < kept.size(); ++n) {
      std::ranges::copy(rows.column(static_cast<std::size_t>(kept[n])), packed.column(n + 1).begin());
    }
    rows = std::move(packed);
  };
  if (compressed_) {
    pack(depths_);
    pack(cellRows_);
  }
  numbers_ = std::move(iACTNUM);
  cells_.clear();
  nActive_ = nCells();
  if (numbers_.empty()) return refused;
  if (auto numbers = numberActiveCells(Nx_, Ny_, Nz_, numbers_)) {
    cells_ = std::move(numbers->cells);
    nActive_ = numbers->count;
  }
  if (nActive_ == nCells() && !compressed_) {
    numbers_ = {};
    cells_ = {};
  }
  return refused;
}

void Hadrick::setPillars(std::vector<float> coord, std::vector<std::array<std::int32_t, 2>> ranges) {
  if (ranges.empty()) ranges.push_back({1, Nz_});
  const auto pillars = (static_cast<std::size_t>(Nx_) + 1) * (static_cast<std::size_t>(Ny_) + 1);
  require(coord.size() == 6 * pillars * ranges.size());
  reservoirOfLayer_.assign(static_cast<std::size_t>(Nz_), -1);
  // Layers of the second porosity system lie where those of the first do, and ranges may tell these only.
  const std::int32_t half = Nz_ / 2;
  const bool repeat =
      iDualPorosity >= 1 && std::ranges::all_of(ranges, [half](const auto& r) { return r[1] <= half; });
  for (std::int32_t k = 1; k <= Nz_; ++k) {
    const std::int32_t told = repeat && k > half ? k - half : k;
    const auto found =
        std::ranges::find_if(ranges, [told](const auto& r) { return r[0] <= told && told <= r[1]; });
    if (found != ranges.end())
      reservoirOfLayer_[place(k)] = static_cast<std::int32_t>(found - ranges.begin());
  }
  pillars_ = std::move(coord);
  ranges_ = std::move(ranges);
}

void Hadrick::setDepths(XYData zcorn, bool compressed) {
  const auto cells = static_cast<std::size_t>(compressed ? nActive_ : nCells());
  require(zcorn.values().size() == depthsOfCell * cells);
  depths_ = std::move(zcorn);
  cellRows_ = {};
  compressed_ = compressed;
}

void Hadrick::setCellRows(XYData rows, bool compressed) {
  const auto cells = static_cast<std::size_t>(compressed ? nActive_ : nCells());
  require(rows.values().size() >= rowItems * cells);
  cellRows_ = std::move(rows);
  depths_ = {};
  pillars_ = {};
  compressed_ = compressed;
}

void Hadrick::setHostCells(std::vector<std::int32_t> iHost) {
  require(iHost.size() == static_cast<std::size_t>(nCells()));
  hostCells_ = std::move(iHost);
}

void Hadrick::setCoarse(std::vector<CoarseBlock> blocks) {
  require(!compressed_);
  for (const CoarseBlock& block : blocks) {
    const auto& box = block.iBox;
    require(block.iCell > 0 && block.iCell == cellAt(box[0], box[2], box[4]) && box[0] <= box[1] &&
            box[2] <= box[3] && box[4] <= box[5] && cellAt(box[1], box[3], box[5]) > 0);
  }
  coarse_ = std::move(blocks);
  std::ranges::sort(coarse_, {}, &CoarseBlock::iCell);
  setActive(numbers_);
}

/// Leaves one cell of each block, active when one of them was.
void Hadrick::joinBlocks(std::vector<std::int32_t>& activity) const {
  if (activity.empty()) activity.assign(static_cast<std::size_t>(nCells()), 1);
  for (const CoarseBlock& block : coarse_) {
    bool active = false;
    const auto& box = block.iBox;
    for (std::int32_t k = box[4]; k <= box[5]; ++k) {
      for (std::int32_t j = box[2]; j <= box[3]; ++j) {
        for (std::int32_t i = box[0]; i <= box[1]; ++i) {
          active = std::exchange(activity[place(cellAt(i, j, k))], 0) > 0 || active;
        }
      }
    }
    activity[place(block.iCell)] = active ? 1 : 0;
  }
}

bool Hadrick::hasCorners(std::int32_t iCell) const {
  if (iCell < 1 || iCell > nCells() || !hasGeometry()) return false;
  if (compressed_ && activeOf(iCell) == 0) return false;
  return !cellRows_.empty() || reservoirOfLayer_[place(placeOf(iCell)[2])] >= 0;
}

std::optional<MapTransform> Hadrick::transform(GridFrame frame) const {
  if (frame == GridFrame::File || qRelativeToMap || !dMapAxes) return {};
  const double grid = metres(zGridUnit);
  const double map = metres(zMapUnit);
  return mapTransform(*dMapAxes, grid > 0 && map > 0 ? grid / map : 1);
}

CornerSource Hadrick::source() const {
  return {Nx_, Ny_, Nz_, pillars_, depths_.values(), reservoirOfLayer_, compressed_, numbers_};
}

bool Hadrick::corners(std::int32_t iCell, std::span<float, rowItems> row, GridFrame frame) const {
  if (!hasCorners(iCell)) {
    std::ranges::fill(row, 0.0F);
    return false;
  }
  fill(iCell, row, frame, false);
  return true;
}

void Hadrick::activeCorners(std::int32_t iFirstActive, std::span<float> rows, GridFrame frame) const {
  fill(iFirstActive, rows, frame, true);
}

void Hadrick::cellCorners(std::int32_t iFirstCell, std::span<float> rows, GridFrame frame) const {
  fill(iFirstCell, rows, frame, false);
}

/// The outer corners of a block: each from the cell that has it.
void Hadrick::coarseRow(const CoarseBlock& block, std::span<float, rowItems> row, GridFrame frame) const {
  for (std::size_t n = 0; n < depthsOfCell; ++n) {
    const auto& box = block.iBox;
    const auto iCell = cellAt(box[n & 1], box[2 + (n >> 1 & 1)], box[4 + (n >> 2)]);
    std::array<float, rowItems> cell{};
    fillPlain(iCell, cell, frame, false);
    std::copy_n(cell.begin() + static_cast<std::ptrdiff_t>(3 * n), 3,
                row.begin() + static_cast<std::ptrdiff_t>(3 * n));
  }
}

void Hadrick::fill(std::int32_t iFirst, std::span<float> rows, GridFrame frame, bool activeOnly) const {
  const std::size_t count = rows.size() / rowItems;
  const auto limit = static_cast<std::size_t>(activeOnly ? nActive_ : nCells());
  require(iFirst >= 1 && count <= limit && place(iFirst) <= limit - count);
  if (count == 0) return;
  fillPlain(iFirst, rows, frame, activeOnly);
  const auto last = iFirst + static_cast<std::int32_t>(count) - 1;
  const auto lastCell = activeOnly ? cellOf(last) : last;
  auto block =
      std::ranges::lower_bound(coarse_, activeOnly ? cellOf(iFirst) : iFirst, {}, &CoarseBlock::iCell);
  for (; block != coarse_.end() && block->iCell <= lastCell; ++block) {
    const auto number = activeOnly ? activeOf(block->iCell) : block->iCell;
    if (number == 0) continue;
    coarseRow(*block, rows.subspan(rowItems * static_cast<std::size_t>(number - iFirst)).first<rowItems>(),
              frame);
  }
}

/// Rows by the cells' own geometry.
void Hadrick::fillPlain(std::int32_t iFirst, std::span<float> rows, GridFrame frame, bool activeOnly) const {
  const std::size_t count = rows.size() / rowItems;
  const auto transform = this->transform(frame);
  if (!cellRows_.empty()) return fillFromRows(iFirst, rows, transform ? &*transform : nullptr, activeOnly);
  if (pillars_.empty() || depths_.empty()) {
    std::ranges::fill(rows, 0.0F);
    return;
  }
  const auto last = iFirst + static_cast<std::int32_t>(count) - 1;
  RowRange range{place(iFirst), count, activeOnly, place(iFirst), place(last)};
  if (activeOnly) {
    range.firstCell = place(cellOf(iFirst));
    range.lastCell = place(cellOf(last));
  }
  writeCornerRows(source(), range, transform ? &*transform : nullptr, rows.data());
}

/// Rows that the file holds.
void Hadrick::fillFromRows(std::int32_t iFirst, std::span<float> rows, const MapTransform* transform,
                           bool activeOnly) const {
  const auto all = cellRows_.values();
  for (std::size_t n = 0; n < rows.size() / rowItems; ++n) {
    const auto number = iFirst + static_cast<std::int32_t>(n);
    std::int32_t column = number;
    if (activeOnly && !compressed_) column = cellOf(number);
    if (!activeOnly && compressed_) column = activeOf(number);
    const auto row = rows.subspan(rowItems * n, rowItems);
    if (column == 0) {
      std::ranges::fill(row, 0.0F);
      continue;
    }
    std::ranges::copy(all.subspan(rowItems * place(column), rowItems), row.begin());
    for (std::size_t corner = 0; transform && corner < depthsOfCell; ++corner) {
      const auto moved = (*transform)(row[3 * corner], row[3 * corner + 1]);
      row[3 * corner] = static_cast<float>(moved[0]);
      row[3 * corner + 1] = static_cast<float>(moved[1]);
    }
  }
}

}  // namespace lumbarn
