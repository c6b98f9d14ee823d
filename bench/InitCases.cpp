#include <array>
#include <fstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Baseline.h"
#include "Cases.h"
#include "arrays/ArrayReader.h"
#include "reader/qvEclipseReader.h"
#include "record/RecordWriter.h"
#include "run/Run.h"

namespace lumbarn::bench {

namespace {

constexpr std::size_t cells = 1'000'000;
constexpr std::size_t activeCells = 700'000;
constexpr std::size_t arrays = 25;  // PORV, of all cells, among them

bool isActive(std::size_t cell) { return cell % 10 < 7; }

std::string nameOf(std::size_t array) { return array == 0 ? "PORV" : fmt::format("ARRAY{:02}", array); }

/// Pore volumes of all cells and 24 arrays of the active ones, as simulators write them.
void writeInit(const std::filesystem::path& path) {
  if (std::filesystem::exists(path)) return;
  std::ofstream out(path, std::ios::binary);
  RecordWriter writer(
      [&](std::span<const std::byte> bytes) {
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
      },
      Form{Framing::FourByteMarks, true});
  std::vector<std::int32_t> head(411);
  head[2] = 1, head[8] = 100, head[9] = 100, head[10] = 100, head[11] = activeCells, head[14] = 7,
  head[94] = 100;
  writer.integers("INTEHEAD", head);
  std::vector<float> values(cells);
  for (std::size_t i = 0; i < cells; ++i) values[i] = isActive(i) ? static_cast<float>(i + 1) : 0.0F;
  writer.singles(nameOf(0), values);
  for (std::size_t array = 1; array < arrays; ++array) {
    for (std::size_t i = 0; i < activeCells; ++i) values[i] = static_cast<float>(i + array);
    writer.singles(nameOf(array), std::span(values).first(activeCells));
  }
  out.close();
  require(out.good(), "the INIT file cannot be written");
}

/// Loads as a host does and looks at what came.
void load(const std::filesystem::path& path, const std::string& only, bool data, std::size_t columns) {
  Session session;
  qvEclipseReader reader(session);
  reader.FileName = path.string();
  reader.whichtype = 15;
  reader.Silent = true;
  reader.zOnly = only;
  reader.LoadData = data;
  bool qOK = false;
  reader.ECLReadData(qOK);
  XYData xyData;
  ByteTable bHeaders;
  SourceData vSourceData;
  ByteTable bOnlyUsed;
  if (qOK) reader.GetINITData(xyData, bHeaders, vSourceData, bOnlyUsed, qOK);
  require(qOK, session.diagnoses().empty() ? "no load" : session.diagnoses().back().text());
  require(bHeaders.entries() == columns && xyData.columns() == columns, "not all arrays came");
  if (!data) return;
  require(xyData.rows() == activeCells, fmt::format("{} cells", xyData.rows()));
  const auto array = only.empty() ? arrays - 1 : std::size_t{12};
  require(xyData(activeCells, columns) == static_cast<float>(activeCells - 1 + array), "other values came");
  require(!only.empty() || xyData(activeCells, 1) == static_cast<float>(cells - 3),
          "other pore volumes came");
  benchmark::DoNotOptimize(xyData.values().data());
}

/// Asks for the pore volumes of the active cells, whose record has those of all cells.
void askPoreVolumes(const std::filesystem::path& path) {
  auto stream = Run::open(path.string()).cells({.arrays = {"PORV"}, .init = true, .valuesOnly = true});
  std::size_t rows = 0;
  float last = 0;
  while (const auto batch = stream.next()) {
    rows += batch->rows();
    last = (*batch)[0].values<float>().back();
  }
  require(rows == activeCells && last == static_cast<float>(cells - 3), "other pore volumes came");
}

/// The same by a read for each run of active cells.
void readPoreVolumesByRuns(const std::filesystem::path& path) {
  Session session;
  ArrayReader reader(walkInit(session, path.string()), session);
  const IndexStep& step = reader.index().steps.front();
  const IndexEntry& entry = *step.find("PORV");
  const auto active = findActiveCells(session, path.string(), "", "", step.cellsOf(""));
  require(active && active->active() == activeCells, "other cells are active");
  std::vector<float> values(activeCells);
  const auto& numbers = active->iA2N();
  for (std::size_t row = 0; row < numbers.size();) {
    std::size_t to = row + 1;
    while (to < numbers.size() && numbers[to] == numbers[to - 1] + 1) ++to;
    reader.fetch(step, entry, "", numbers[row] - 1, std::span(values).subspan(row, to - row));
    row = to;
  }
  require(values.back() == static_cast<float>(cells - 3), "other pore volumes came");
}

}  // namespace

Family initFamily(const std::filesystem::path& folder) {
  const auto path = folder / "STATIC.INIT";
  const auto swapped = [path] { readSwapped(path); };
  const double table = activeCells * arrays * sizeof(float);
  const double share = 1.0 / arrays;
  return {"init",
          [path] { writeInit(path); },
          {
              {"init/full", "B", 1.5, 0, 1.1 * table, [path] { load(path, "", true, arrays); }, swapped},
              {"init/list", "B", 0.01, 0, 2e6, [path] { load(path, "", false, arrays); }, swapped},
              {"init/one", "B", 1.5 * share, 0, 0, [path] { load(path, "ARRAY12", true, 1); }, swapped},
              {"init/porv", "runs", 0.06, 0, 0, [path] { askPoreVolumes(path); },
               [path] { readPoreVolumesByRuns(path); }},
          }};
}

}  // namespace lumbarn::bench
