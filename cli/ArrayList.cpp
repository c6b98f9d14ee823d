#include "ArrayList.h"

#include <algorithm>

namespace lumbarn::cli {

ListedArray listedArray(const Batch& batch, std::size_t row) {
  const auto text = [&](const char* name) { return std::string(batch[name].text(row)); };
  ListedArray listed{text("grid"),
                     text("array"),
                     text("type"),
                     text("unit"),
                     batch["count"].values<std::int64_t>()[row],
                     {},
                     {}};
  const bool ranges = batch.schema().back().name == "max";
  if (ranges && batch["min"].valid(row)) {
    listed.least = batch["min"].values<float>()[row];
    listed.most = batch["max"].values<float>()[row];
  }
  return listed;
}

void writeArrayList(const std::vector<ListedArray>& arrays, bool ranges, Sink& sink) {
  const bool grids = std::ranges::any_of(arrays, [&](const ListedArray& array) {
    return array.grid != arrays.front().grid || (!ranges && array.grid != "ROOT");
  });
  Schema schema{{.name = "array", .type = Type::Utf8},
                {.name = "type", .type = Type::Utf8},
                {.name = "count", .type = Type::Int64},
                {.name = "unit", .type = Type::Utf8}};
  if (grids) schema.insert(schema.begin(), {.name = "grid", .type = Type::Utf8});
  for (const char* bound : {"min", "max"}) {
    if (ranges) schema.push_back({.name = bound, .type = Type::Float32});
  }
  std::size_t next = 0;
  auto stream = streamOfRows(std::move(schema), std::make_shared<StreamContext>(), [&](BatchBuilder& rows) {
    for (; next < arrays.size() && !rows.full(); ++next) {
      const ListedArray& array = arrays[next];
      std::size_t column = 0;
      if (grids) rows.set(column++, std::string_view(array.grid));
      rows.set(column++, std::string_view(array.array));
      rows.set(column++, std::string_view(array.type));
      rows.set(column++, array.count);
      rows.set(column++, std::string_view(array.unit));
      if (array.least) rows.set(column, *array.least);
      if (array.most) rows.set(column + 1, *array.most);
      rows.endRow();
    }
    return next < arrays.size();
  });
  write(std::move(stream), sink, {.format = Format::Table});
}

void writeText(Sink& sink, const std::string& text) { sink.write(std::as_bytes(std::span(text))); }

}  // namespace lumbarn::cli
