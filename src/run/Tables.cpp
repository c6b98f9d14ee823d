#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "../support/Text.h"
#include "InitContent.h"
#include "Run.h"

namespace lumbarn {

namespace {

std::int32_t unitsOf(const InitFile& init) { return init.nGrids() > 0 ? init.grid(1).iUnits : 0; }

std::string titlesOf(const PhysicalTable& table) {
  std::vector<std::string> titles;
  for (const auto& column : table.columns)
    titles.push_back(column.units.empty() ? column.name : fmt::format("{} ({})", column.name, column.units));
  return fmt::format("{}", fmt::join(titles, ", "));
}

void reportNone(const InitFile& init, StreamContext& context) {
  if (init.tables.qTABDIMS()) return;
  context.session().diagnose({.message = Message::InitTablesNone,
                              .path = init.FileName,
                              .problem = "the INIT file has no simulation tables"});
}

[[noreturn]] void throwNoTable(const InitFile& init, const std::string& name, std::int32_t number) {
  if (const auto count = init.tables.getNumberTables(name); count > 0)
    throwNotFound(init.FileName, fmt::format("has no table {} of {}; it has {}", number, upper(name), count),
                  "", {});
  const auto names = init.tables.names();
  throwNotFound(init.FileName, fmt::format("has no table \"{}\"; it has {}", name, fmt::join(names, ", ")),
                name, names);
}

/// A table as rows.
Batch batchOf(const PhysicalTable& table, double null, const BatchLimits& limits) {
  auto schema = std::make_shared<Schema>();
  for (const auto& column : table.columns)
    schema->push_back({.name = column.name, .type = Type::Float32, .unit = column.units});
  makeNamesUnique(*schema);
  BatchBuilder rows(std::move(schema), {.bytes = limits.bytes, .rows = table.rows() + 1});
  for (std::size_t row = 0; row < table.rows(); ++row) {
    // The values are doubles made from reciprocals, so their last digits are noise: what stands for sure are
    // those of a single, in which decks are read.
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      const double value = table.columns[i].values[row];
      if (value != null) rows.set(i, static_cast<float>(value));
    }
    rows.endRow();
  }
  return rows.finish();
}

}  // namespace

Stream Run::tables(const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    const auto init = openInit(*state_, *context, true);
    reportNone(*init, *context);
    auto tables = std::make_shared<std::vector<PhysicalTable>>();
    for (const tTableInfo& table : init->tables.tables()) {
      for (std::int32_t i = 1; i <= table.count(); ++i)
        tables->push_back(
            init->tables.physicalTable(table.zTable, i, unitsOf(*init)).value_or(PhysicalTable()));
    }
    return streamOfRows({{.name = "table", .type = Type::Utf8, .nullable = false},
                         {.name = "number", .type = Type::Int32, .nullable = false},
                         {.name = "rows", .type = Type::Int64, .nullable = false},
                         {.name = "columns", .type = Type::Utf8, .nullable = false}},
                        std::move(context), [tables, next = std::size_t{0}](BatchBuilder& rows) mutable {
                          for (; next < tables->size() && !rows.full(); ++next) {
                            const PhysicalTable& table = (*tables)[next];
                            rows.set(0, table.name);
                            rows.set(1, table.number);
                            rows.set(2, table.rows());
                            rows.set(3, titlesOf(table));
                            rows.endRow();
                          }
                          return next < tables->size();
                        });
  } catch (...) {
    throw errorInFlight();
  }
}

Stream Run::table(const std::string& name, std::int32_t number, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    const auto init = openInit(*state_, *context, true);
    reportNone(*init, *context);
    const auto table = init->tables.physicalTable(name, number, unitsOf(*init));
    if (!table) throwNoTable(*init, name, number);
    Batch rows = batchOf(*table, context->session().NullValue, options.limits);
    return streamOf(std::move(rows), std::move(context));
  } catch (...) {
    throw errorInFlight();
  }
}

Stream Run::flags(const std::string& grid, const ReadOptions& options) const {
  try {
    auto context = std::make_shared<StreamContext>(options);
    const auto init = openInit(*state_, *context);
    const ModelFlags& flags = init->grid(gridNumber(*init, grid)).flags;
    return streamOfRows({{.name = "flag", .type = Type::Utf8, .nullable = false},
                         {.name = "value", .type = Type::Bool, .nullable = false}},
                        std::move(context), [flags, next = std::size_t{0}](BatchBuilder& rows) mutable {
                          const auto names = namedFlags();
                          for (; next < names.size() && !rows.full(); ++next) {
                            rows.set(0, names[next].name);
                            rows.set(1, flags.*names[next].flag);
                            rows.endRow();
                          }
                          return next < names.size();
                        });
  } catch (...) {
    throw errorInFlight();
  }
}

}  // namespace lumbarn
