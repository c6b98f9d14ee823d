#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "../frame/BatchData.h"
#include "../frame/Error.h"
#include "../grid/GridFile.h"
#include "../grid/Hadrick.h"
#include "../grid/RadialGrid.h"
#include "../grid/Refinement.h"
#include "../support/Text.h"
#include "Diagnosed.h"
#include "Run.h"
#include "RunState.h"

namespace lumbarn {

namespace {

std::string axesText(const Hadrick& grid) {
  if (!grid.dMapAxes) return "";
  std::string text;
  for (const auto axis : *grid.dMapAxes) text += fmt::format("{}{}", text.empty() ? "" : " ", axis);
  return text;
}

void addGrid(BatchBuilder& rows, const Grids& grids, std::size_t n) {
  const Hadrick& grid = *grids[n];
  std::size_t column = 0;
  const auto text = [&](std::string_view value) { rows.set(column++, std::string_view(toUtf8(value))); };
  text(grid.zName);
  text(grid.zParent);
  text(isRadial(grid) ? "radial" : "corner points");
  for (const std::int32_t number : {grid.Nx(), grid.Ny(), grid.Nz(), grid.nActive()})
    rows.set(column++, number);
  rows.set(column++, countRefined(grid, refinedCells(grids, static_cast<std::int32_t>(n) + 1)));
  rows.set(column++, static_cast<std::int64_t>(grid.connections().size()));
  text(grid.zGridUnit);
  const Box box = extentOf(grids, grid);
  for (const double end : {box.low.x, box.high.x, box.low.y, box.high.y, box.low.z, box.high.z}) {
    if (!box.empty()) rows.set(column, static_cast<float>(end));  // as corners are given
    ++column;
  }
  text(axesText(grid));
  rows.endRow();
}

Schema gridColumns(const std::string& unit) {
  Schema columns;
  const auto add = [&](const char* name, Type type, std::string description, const std::string& of = {}) {
    columns.push_back({.name = name, .type = type, .unit = of, .description = std::move(description)});
  };
  add("name", Type::Utf8, "name of the grid");
  add("parent", Type::Utf8, "the grid that a local one refines");
  add("type", Type::Utf8, "corner points or radial");
  for (const char* size : {"nx", "ny", "nz"}) add(size, Type::Int32, "cells along an axis");
  add("active", Type::Int32, "active cells");
  add("refined", Type::Int32, "active cells that a local grid replaces");
  add("connections", Type::Int64, "connections between cells that are no neighbors by their numbers");
  add("units", Type::Utf8, "unit of length");
  for (const char* end : {"x_min", "x_max", "y_min", "y_max", "z_min", "z_max"})
    add(end, Type::Float32, "extent of the active cells", unit);
  add("map_axes", Type::Utf8,
      "x, y of a point on the y axis, the origin, and a point on the x axis of the map");
  return columns;
}

Schema cornerColumns(const Hadrick& grid) {
  std::string items;
  for (int corner = 1; corner <= 8; ++corner) {
    for (const char* axis : {isRadial(grid) ? "r" : "x", isRadial(grid) ? "theta" : "y", "z"})
      items += fmt::format("{}{}{}", items.empty() ? "" : ",", axis, corner);
  }
  Schema columns;
  for (const char* place : {"i", "j", "k"})
    columns.push_back({.name = place, .type = Type::Int32, .nullable = false, .description = "cell number"});
  columns.push_back({.name = "corners",
                     .type = Type::FixedList,
                     .nullable = false,
                     .unit = toUtf8(grid.zGridUnit),
                     .description = "corners of the cell: i fastest, then j, then k",
                     .listSize = Hadrick::rowItems,
                     .metadata = {{"items", items}}});
  return columns;
}

/// The active cells of a grid, decoded straight into the memory of each batch.
class CornerBatches final : public BatchSource {
 public:
  CornerBatches(std::shared_ptr<const Schema> schema, std::shared_ptr<StreamContext> context,
                std::shared_ptr<const Hadrick> grid, const CornerSelection& selection)
      : schema_(std::move(schema)), context_(context.get()), grid_(std::move(grid)), selection_(selection) {
    const BatchLimits& limits = context_->options().limits;
    mostRows_ = std::clamp<std::size_t>(limits.bytes / rowBytes, 1, std::max<std::size_t>(limits.rows, 1));
  }

  std::optional<Batch> next() override {
    const auto active = static_cast<std::size_t>(grid_->nActive());
    const std::size_t count = std::min(mostRows_, active - done_);
    if (count == 0) return std::nullopt;
    if (context_->session().yield()) throw LoadCanceled();
    auto data = std::make_shared<BatchData>();
    data->schema = schema_;
    data->rows = count;
    const std::size_t stride =
        (count * sizeof(float) + Block::alignment - 1) / Block::alignment * Block::alignment;
    auto block = std::make_shared<Block>(3 * stride + count * Hadrick::rowItems * sizeof(float));
    for (std::size_t axis = 0; axis < 3; ++axis) {
      auto* places = reinterpret_cast<std::int32_t*>(block->data() + axis * stride);
      for (std::size_t i = 0; i < count; ++i) places[i] = grid_->placeOf(cell(i))[axis];
      data->columns.push_back({.values = block->data() + axis * stride});
    }
    const std::span corners(reinterpret_cast<float*>(block->data() + 3 * stride), count * Hadrick::rowItems);
    grid_->activeCorners(static_cast<std::int32_t>(done_) + 1, corners,
                         selection_.map ? GridFrame::Map : GridFrame::File);
    for (std::size_t z = 2; selection_.zUp && z < corners.size(); z += 3) corners[z] = -corners[z];
    data->columns.push_back({.values = reinterpret_cast<const std::byte*>(corners.data())});
    data->owners.push_back(std::move(block));
    done_ += count;
    if (Progress* progress = context_->options().progress)
      progress->fraction(static_cast<double>(done_) / static_cast<double>(active));
    return Batch(std::move(data));
  }

 private:
  static constexpr std::size_t rowBytes = (3 + Hadrick::rowItems) * sizeof(float);
  std::int32_t cell(std::size_t i) const { return grid_->cellOf(static_cast<std::int32_t>(done_ + i) + 1); }

  std::shared_ptr<const Schema> schema_;
  StreamContext* context_;  // the stream's, which outlives its source
  std::shared_ptr<const Hadrick> grid_;
  CornerSelection selection_;
  std::size_t mostRows_ = 1;
  std::size_t done_ = 0;
};

Grids readGrids(const RunState& run, Session& session) {
  const RunMember* file = run.gridFile();
  if (!file) {
    throw Error(Error::Kind::NotFound, {.message = Message::RunFileMissing,
                                        .path = run.root(),
                                        .problem = "has no grid file (EGRID or GRID)"});
  }
  const bool egrid = file->kind == FileKind::EGrid;
  const auto recognised = recogniseGridFile(file->path, egrid);
  if (!recognised) {
    throw BadRecord({.message = Message::FileType,
                     .path = file->path,
                     .problem = fmt::format("does not begin with {}", egrid ? "FILEHEAD" : "DIMENS")});
  }
  GridFileContent content;
  diagnosed(session, [&] { return readGridFile(*recognised, recognised->open(), {}, session, content); });
  if (session.cancelled()) throw LoadCanceled();
  if (content.grids.empty()) {
    throw BadRecord(
        {.message = Message::GridMissing, .path = file->path, .problem = "no grid can be read from it"});
  }
  return std::move(content.grids);
}

}  // namespace

std::size_t numberOfGrid(const Grids& grids, const std::string& name, const std::string& root) {
  if (isGlobalGrid(name)) return 0;
  std::vector<std::string> names;
  std::string list;
  for (const auto& grid : grids) {
    if (equalNoCase(grid->zName, trim(name))) return names.size();
    names.push_back(toUtf8(grid->zName));
    list += (list.empty() ? "" : ", ") + names.back();
  }
  throwNotFound(root, fmt::format("has no grid {}; it has {}", name, list), name, names);
}

const RunMember* RunState::gridFile() const {
  const RunMember* given = family_.givenMember();
  const RunMember* file = family_.find(FileKind::EGrid);
  const RunMember* older = family_.find(FileKind::Grid);
  const bool takeOlder = !file || (given && given->kind == FileKind::Grid);
  return takeOlder && older ? older : file;
}

std::optional<ActiveCells> RunState::activeInGridFile(StreamContext& context, const std::string& grid,
                                                      const GridCells& cells) const {
  const RunMember* file = gridFile();
  if (!file || file->kind != FileKind::Grid) return std::nullopt;
  for (const auto& one : *grids(context)) {
    const bool same = sameGrid(one->isLocal() ? one->zName : std::string(), grid);
    if (!same || one->nCells() != cells.cells || one->nActive() != cells.active) continue;
    std::vector<std::int32_t> numbers;
    for (std::int32_t active = 1; active <= one->nActive(); ++active) numbers.push_back(one->cellOf(active));
    return ActiveCells(std::move(numbers), cells.cells);
  }
  return std::nullopt;
}

std::shared_ptr<const Grids> RunState::grids(StreamContext& context) const {
  return grids_.get(context, [&](Session& session) { return readGrids(*this, session); });
}

Stream Run::grids(const std::string& name, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    const auto grids = state_->grids(*context);
    const std::size_t first = name.empty() ? 0 : numberOfGrid(*grids, name, root());
    const std::size_t end = name.empty() ? grids->size() : first + 1;
    const auto& unit = grids->front()->zGridUnit;
    return streamOfRows(gridColumns(toUtf8(unit)), std::move(context),
                        [grids, n = first, end](auto& rows) mutable {
                          while (n < end && !rows.full()) addGrid(rows, *grids, n++);
                          return n < end;
                        });
  } catch (...) {
    throw errorInFlight();
  }
}

Stream Run::corners(const CornerSelection& selection, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    const auto grids = state_->grids(*context);
    const auto& grid = (*grids)[numberOfGrid(*grids, selection.grid, root())];
    auto schema = std::make_shared<const Schema>(cornerColumns(*grid));
    auto source = std::make_unique<CornerBatches>(schema, context, grid, selection);
    return {std::move(schema), std::move(context), std::move(source)};
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
