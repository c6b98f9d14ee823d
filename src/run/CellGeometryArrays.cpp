#include <algorithm>
#include <cmath>
#include <utility>

#include "../grid/CellGeometryOfGrid.h"
#include "../grid/RadialGrid.h"
#include "../support/Text.h"
#include "../vocabulary/UnitChange.h"
#include "../vocabulary/Units.h"
#include "CellBox.h"
#include "Run.h"
#include "RunState.h"

namespace lumbarn {

namespace {

/// The cells that a question is about, one line along I after the other.
struct ChosenCells {
  std::shared_ptr<StreamContext> context;
  std::shared_ptr<const Grids> grids;
  std::shared_ptr<const Hadrick> grid;
  CellBox box;

  ChosenCells(const RunState& run, const std::string& name, const std::optional<CellBox>& wanted,
              const ReadOptions& options)
      : context(std::make_shared<StreamContext>(options)), grids(run.grids(*context)) {
    grid = (*grids)[numberOfGrid(*grids, name, run.root())];
    const std::array size{grid->Nx(), grid->Ny(), grid->Nz()};
    box = wanted.value_or(CellBox{{1, 1, 1}, size});
    requireInside(box, size, grid->zFile, grid->zName);
  }

  /// Calls `take` with the number of the first cell of each line, from 1, and the cells before it.
  template <class Take>
  void forEachLine(Take take) const {
    std::size_t before = 0;
    for (std::int32_t k = box.from[2]; k <= box.to[2]; ++k) {
      if (context->session().yield()) throw LoadCanceled();
      for (std::int32_t j = box.from[1]; j <= box.to[1]; ++j, before += lineLength())
        take(grid->cellAt(box.from[0], j, k), before);
    }
  }
  std::size_t lineLength() const { return static_cast<std::size_t>(box.to[0] - box.from[0] + 1); }
};

/// An array without its values, which have memory of their own.
template <class Number>
std::pair<Dense, std::shared_ptr<std::vector<Number>>> emptyArray(const ChosenCells& chosen, Type type,
                                                                  std::int32_t components) {
  Dense dense;
  dense.type = type;
  dense.components = components;
  for (std::size_t axis = 0; axis < 3; ++axis)
    dense.shape[2 - axis] = chosen.box.to[axis] - chosen.box.from[axis] + 1;
  const auto count = static_cast<std::size_t>(dense.values());
  chosen.context->session().checkMemory(count * sizeof(Number));
  auto values = std::make_shared<std::vector<Number>>(count);
  dense.data = std::shared_ptr<const void>(values, values->data());
  if (chosen.grid->allActive()) return {std::move(dense), std::move(values)};
  auto bits = std::make_shared<std::vector<std::uint8_t>>((static_cast<std::size_t>(dense.cells()) + 7) / 8);
  bool all = true;
  chosen.forEachLine([&](std::int32_t first, std::size_t before) {
    for (std::size_t i = before; i < before + chosen.lineLength(); ++i, ++first) {
      const bool active = chosen.grid->activeOf(first) > 0;
      all = all && active;
      (*bits)[i / 8] |= static_cast<std::uint8_t>(active ? 1U << (i % 8) : 0U);
    }
  });
  if (!all) dense.active = std::shared_ptr<const std::uint8_t>(bits, bits->data());
  return {std::move(dense), std::move(values)};
}

/// The unit of volume that goes with the unit of length of a grid; empty when that is not known.
std::string_view volumeUnit(const Hadrick& grid) {
  for (const std::int32_t system : {metricUnits, fieldUnits, laboratoryUnits}) {
    const auto change = unitChange(grid.zGridUnit, unitOf(Quantity::Length, system));
    if (change && !change->changesValues()) return unitOf(Quantity::Volume, system);
  }
  return {};
}

/// The volumes of all cells, most of them above 0 whatever the directions of the axes.
std::vector<double> uprightVolumes(const Hadrick& grid) {
  std::vector<double> volumes(static_cast<std::size_t>(grid.nCells()));
  isRadial(grid) ? radialVolumes(grid, 1, volumes) : cellVolumes(grid, 1, volumes);
  double sum = 0;
  for (const double volume : volumes) sum += std::isfinite(volume) ? volume : 0;
  for (double& volume : volumes) volume = sum < 0 ? 0 - volume : volume;  // never -0
  return volumes;
}

}  // namespace

Dense Run::cornerArray(const std::string& grid, bool map, const std::optional<CellBox>& box,
                       const ReadOptions& options) const {
  try {
    const ChosenCells chosen(*state_, grid, box, options);
    auto [dense, values] = emptyArray<float>(chosen, Type::Float32, Hadrick::rowItems);
    dense.unit = toUtf8(chosen.grid->zGridUnit);
    float* out = values->data();
    chosen.forEachLine([&](std::int32_t first, std::size_t before) {
      chosen.grid->cellCorners(first,
                               {out + Hadrick::rowItems * before, Hadrick::rowItems * chosen.lineLength()},
                               map ? GridFrame::Map : GridFrame::File);
    });
    return dense;
  } catch (...) {
    throw errorInFlight();
  }
}

Dense Run::centres(const std::string& grid, const std::optional<CellBox>& box,
                   const ReadOptions& options) const {
  try {
    const ChosenCells chosen(*state_, grid, box, options);
    auto [dense, values] = emptyArray<double>(chosen, Type::Float64, 3);
    dense.unit = toUtf8(chosen.grid->zGridUnit);
    const bool radial = isRadial(*chosen.grid);
    const RadialCenter axis = radial ? radialCenter(*chosen.grids, *chosen.grid) : RadialCenter{};
    double* out = values->data();
    std::vector<float> rows(Hadrick::rowItems * chosen.lineLength());
    chosen.forEachLine([&](std::int32_t first, std::size_t) {
      chosen.grid->cellCorners(first, rows);
      for (std::size_t cell = 0; cell < chosen.lineLength(); ++cell) {
        const CellCorners corners(rows.data() + Hadrick::rowItems * cell, Hadrick::rowItems);
        Point centre = cellCentre(corners);
        if (radial && !isNoCell(corners)) centre = cylinderPoint(axis, centre.x, centre.y, centre.z, 0);
        for (const double item : {centre.x, centre.y, centre.z}) *out++ = item;
      }
    });
    return dense;
  } catch (...) {
    throw errorInFlight();
  }
}

Dense Run::volumes(const std::string& grid, const std::optional<CellBox>& box,
                   const ReadOptions& options) const {
  try {
    const ChosenCells chosen(*state_, grid, box, options);
    auto [dense, values] = emptyArray<double>(chosen, Type::Float64, 1);
    dense.unit = volumeUnit(*chosen.grid);
    const auto all = uprightVolumes(*chosen.grid);
    double* out = values->data();
    chosen.forEachLine([&](std::int32_t first, std::size_t before) {
      std::copy_n(all.begin() + (first - 1), chosen.lineLength(), out + before);
    });
    return dense;
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
