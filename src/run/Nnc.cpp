#include <algorithm>
#include <array>
#include <cmath>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "../arrays/ArraySelection.h"
#include "../arrays/ArrayUnits.h"
#include "../grid/Hadrick.h"
#include "../init/Connections.h"
#include "../support/Text.h"
#include "Diagnosed.h"
#include "InitContent.h"
#include "Run.h"

namespace lumbarn {

namespace {

constexpr const char* kindNames[] = {"within the grid", "local to global", "local to local"};

/// One array of connections with its values.
struct NncArray {
  std::string grid, name, unit;
  std::int32_t kind = 1;
  std::vector<float> values;  // empty when they cannot be read
  std::int64_t count = 0;
};

std::vector<NncArray> arraysOf(InitFile& init, std::int32_t number, Session& session) {
  std::vector<NncArray> arrays;
  init.iGrid = number;
  for (std::int32_t kind = 1; kind <= 3; ++kind) {
    const auto data = diagnosed(session, [&] { return init.connectionValues(kind); });
    const tNNC& record = init.grid(number).xNNC[static_cast<std::size_t>(kind) - 1];
    for (std::size_t i = 0; i < record.zArrays.size(); ++i) {
      const std::string& name = record.zArrays[i];
      NncArray& array =
          arrays.emplace_back(NncArray{.grid = init.GridName(number),
                                       .name = name,
                                       .unit = std::string(arrayUnit(name, init.grid(number).iUnits)),
                                       .kind = kind,
                                       .values = {},
                                       .count = record.nItems});
      if (!data) continue;
      const auto column = data->column(i + 1);
      array.values.assign(column.begin(), column.end());
    }
  }
  return arrays;
}

void addListed(BatchBuilder& rows, const NncArray& array) {
  rows.set(0, toUtf8(array.grid));
  rows.set(1, std::string_view(kindNames[array.kind - 1]));
  rows.set(2, toUtf8(array.name));
  rows.set(3, std::string_view("REAL"));
  rows.set(4, array.count);
  if (!array.unit.empty()) rows.set(5, toUtf8(array.unit));
  std::vector<float> numbers;
  std::ranges::copy_if(array.values, std::back_inserter(numbers),
                       [](float value) { return !std::isnan(value); });
  if (!numbers.empty()) {
    const auto [least, most] = std::ranges::minmax_element(numbers);
    rows.set(6, *least);
    rows.set(7, *most);
  }
  rows.endRow();
}

std::vector<NncArray> choose(std::vector<NncArray> arrays, const NncSelection& selection,
                             const std::string& path, Session& session) {
  if (arrays.empty()) throwNotFound(path, "has no connection arrays", "", {});
  std::vector<std::string> names;
  for (const NncArray& array : arrays) names.push_back(array.name);
  ArraySelection wanted(selection.arrays, {});
  std::erase_if(arrays, [&](const NncArray& array) { return !wanted.choosesDerived(array.name); });
  const auto unmatched = wanted.unmatched();
  if (arrays.empty())
    throwNotFound(path,
                  fmt::format("no connection array matches \"{}\"; it has {}", unmatched.front(),
                              fmt::join(names, ", ")),
                  upper(unmatched.front()), names);
  for (const std::string& pattern : unmatched)
    session.diagnose({.message = Message::PatternUnmatched,
                      .path = path,
                      .problem = fmt::format("no array matches \"{}\"", pattern)});
  return arrays;
}

/// i, j, k of both cells of each connection within a grid; none when the run's grid file does not tell them.
using CellPair = std::array<std::int32_t, 6>;
std::vector<CellPair> joinedCells(const RunState& run, const GRIDINFO& info, std::size_t count,
                                  StreamContext& context) {
  if (!run.family().find(FileKind::EGrid) && !run.family().find(FileKind::Grid)) return {};
  const auto grids = diagnosed(context.session(), [&] { return run.grids(context); });
  if (!grids) return {};
  const auto grid =
      std::ranges::find_if(*grids, [&](const auto& one) { return equalNoCase(one->zName, info.GridName); });
  if (grid == grids->end()) return {};
  std::vector<CellPair> cells;
  const auto place = [&](std::int32_t cell) {
    return std::array{(cell - 1) % info.Nx + 1, (cell - 1) / info.Nx % info.Ny + 1,
                      (cell - 1) / info.Nx / info.Ny + 1};
  };
  for (const GridConnection& connection : (*grid)->connections()) {
    if (connection.kind != GridConnection::Kind::Inside) continue;
    const auto [i1, j1, k1] = place(connection.iCell1);
    const auto [i2, j2, k2] = place(connection.iCell2);
    cells.push_back({i1, j1, k1, i2, j2, k2});
  }
  if (cells.size() != count) cells.clear();  // they are not those of these arrays
  return cells;
}

struct NncTable {
  std::vector<NncArray> arrays;
  std::vector<CellPair> cells;
  std::size_t rows = 0;
  std::size_t next = 0;

  bool fill(BatchBuilder& builder) {
    for (; next < rows && !builder.full(); ++next) {
      std::size_t column = 0;
      builder.set(column++, std::int64_t(next) + 1);
      if (!cells.empty()) {
        for (const std::int32_t index : cells[next]) builder.set(column++, index);
      }
      for (const NncArray& array : arrays) {
        if (next < array.values.size()) builder.set(column, array.values[next]);
        ++column;
      }
      builder.endRow();
    }
    return next < rows;
  }
};

}  // namespace

Stream Run::nncArrays(const std::string& grid, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    const auto init = openInit(*state_, *context);
    auto arrays = std::make_shared<std::vector<NncArray>>();
    const std::int32_t only = grid.empty() ? 0 : gridNumber(*init, grid);
    for (std::int32_t number = 1; number <= init->nGrids(); ++number) {
      if (only != 0 && number != only) continue;
      for (NncArray& array : arraysOf(*init, number, context->session())) arrays->push_back(std::move(array));
    }
    return streamOfRows({{.name = "grid", .type = Type::Utf8, .nullable = false},
                         {.name = "kind", .type = Type::Utf8, .nullable = false},
                         {.name = "array", .type = Type::Utf8, .nullable = false},
                         {.name = "type", .type = Type::Utf8, .nullable = false},
                         {.name = "count", .type = Type::Int64, .nullable = false},
                         {.name = "unit", .type = Type::Utf8},
                         {.name = "min", .type = Type::Float32},
                         {.name = "max", .type = Type::Float32}},
                        std::move(context), [arrays, next = std::size_t{0}](BatchBuilder& rows) mutable {
                          for (; next < arrays->size() && !rows.full(); ++next)
                            addListed(rows, (*arrays)[next]);
                          return next < arrays->size();
                        });
  } catch (...) {
    throw errorInFlight();
  }
}

Stream Run::nnc(const NncSelection& selection, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    const auto init = openInit(*state_, *context);
    const std::int32_t number = gridNumber(*init, selection.grid);
    auto table = std::make_shared<NncTable>();
    table->arrays =
        choose(arraysOf(*init, number, context->session()), selection, init->FileName, context->session());
    for (const NncArray& array : table->arrays) table->rows = std::max(table->rows, array.values.size());
    // Rows of different kinds have nothing in common but their number.
    const bool within =
        std::ranges::all_of(table->arrays, [](const NncArray& array) { return array.kind == 1; });
    if (within) table->cells = joinedCells(*state_, init->grid(number), table->rows, *context);
    Schema schema{{.name = "connection", .type = Type::Int64, .nullable = false}};
    if (!table->cells.empty()) {
      for (const char* name : {"i1", "j1", "k1", "i2", "j2", "k2"})
        schema.push_back({.name = name, .type = Type::Int32, .nullable = false});
    }
    for (const NncArray& array : table->arrays)
      schema.push_back({.name = toUtf8(array.name), .type = Type::Float32, .unit = array.unit});
    makeNamesUnique(schema);
    return streamOfRows(std::move(schema), std::move(context),
                        [table](BatchBuilder& rows) { return table->fill(rows); });
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
