#include <array>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <benchmark/benchmark.h>

#include "Baseline.h"
#include "Cases.h"
#include "SyntheticRun.h"
#include "record/RecordCursor.h"

namespace lumbarn::bench {

namespace {

std::unique_ptr<RecordCursor> open(const SyntheticRun& run) {
  std::string why;
  auto cursor = openRecords(run.data.string(), why);
  require(cursor != nullptr, why);
  return cursor;
}

/// Calls `row` with the cursor on each PARAMS record.
template <class Row>
void forEachRow(const SyntheticRun& run, Row row) {
  const auto cursor = open(run);
  std::size_t rows = 0;
  while (cursor->next()) {
    if (cursor->header().is("PARAMS", ElementType::Single)) row(*cursor, rows++);
  }
  require(rows == run.rows, "not all rows were met");
}

void walk(const SyntheticRun& run) {
  forEachRow(run, [](RecordCursor&, std::size_t) {});
}

void readRows(const SyntheticRun& run) {
  const auto values = std::make_unique_for_overwrite<float[]>(run.vectors * run.rows);
  forEachRow(run, [&](RecordCursor& cursor, std::size_t row) {
    cursor.read(std::span(values.get() + row * run.vectors, run.vectors));
  });
  benchmark::DoNotOptimize(values.get());
}

void gatherColumns(const SyntheticRun& run, std::size_t columns) {
  std::vector<std::uint32_t> wanted(columns);
  for (std::size_t i = 0; i < columns; ++i) {
    wanted[i] = static_cast<std::uint32_t>((2 * i + 1) * run.vectors / (2 * columns));
  }
  std::vector<float> values(columns * run.rows);
  forEachRow(run, [&](RecordCursor& cursor, std::size_t row) {
    cursor.gather(wanted, std::span(values).subspan(row * columns, columns));
  });
  benchmark::DoNotOptimize(values.data());
}

}  // namespace

Family recordFamily(const std::filesystem::path& folder) {
  const SummaryFiles files(folder);
  const auto plain = files.plain;
  const auto formatted = files.formatted;
  const auto swapped = [plain] { readSwapped(plain.data); };
  const auto parsed = [formatted] {
    static const std::string text = readText(formatted.data);
    require(parseAllNumbers(text) == formatted.rows * (formatted.vectors + 2), "not all numbers were met");
  };
  constexpr double memory = 2e6;
  return {"records",
          [files] { files.write(); },
          {
              {"records/walk", "B", 0, 0, memory, [plain] { walk(plain); }, swapped},
              {"records/rows", "B", 1.1, 0, 0, [plain] { readRows(plain); }, swapped},
              {"records/gather1", "B", 0.10, 0, memory, [plain] { gatherColumns(plain, 1); }, swapped},
              {"records/gather100", "B", 0.25, 0, memory, [plain] { gatherColumns(plain, 100); }, swapped},
              {"records/formatted", "parsing", 1.3, 0, 0, [formatted] { readRows(formatted); }, parsed},
          }};
}

}  // namespace lumbarn::bench
