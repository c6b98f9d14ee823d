#include <cmath>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Baseline.h"
#include "Cases.h"
#include "reader/qvEclipseReader.h"
#include "record/RecordWriter.h"
#include "restart/qvEclipseSOLUTION.h"

namespace lumbarn::bench {

namespace {

constexpr std::size_t arrays = 6;
constexpr const char* arrayNames[arrays] = {"PRESSURE", "SWAT", "SGAS", "RS", "RV", "TEMP"};

/// A unified restart file of arrays of as many active cells in every step.
struct RestartFile {
  std::filesystem::path path;
  Form form;
  std::int32_t cells = 0;
  std::int32_t steps = 0;

  std::size_t valueBytes() const { return sizeof(float) * arrays * static_cast<std::size_t>(cells * steps); }
};

std::vector<float> arrayValues(std::size_t count, std::size_t array, std::int32_t step) {
  std::vector<float> values(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double wave = std::sin(static_cast<double>(i) * 0.001 + static_cast<double>(array));
    values[i] = static_cast<float>(array == 0 ? 250 + 30 * wave + step : 0.3 + 0.2 * wave);
  }
  return values;
}

void writeRestart(const RestartFile& file) {
  if (std::filesystem::exists(file.path)) return;
  const auto unfinished = file.path.string() + ".part";
  std::ofstream out(unfinished, std::ios::binary);
  RecordWriter records(
      [&](std::span<const std::byte> bytes) {
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
      },
      file.form);
  for (std::int32_t step = 1; step <= file.steps; ++step) {
    std::vector<std::int32_t> header(411);
    header[2] = 1, header[8] = file.cells / 10, header[9] = 10, header[10] = 1, header[11] = file.cells;
    header[64] = 1, header[65] = step, header[66] = 2020, header[68] = step, header[94] = 100;
    records.integers("SEQNUM", std::vector{step});
    records.integers("INTEHEAD", header);
    records.doubles("DOUBHEAD", std::vector<double>(229, 30.0 * step));
    records.message("STARTSOL");
    for (std::size_t array = 0; array < arrays; ++array) {
      records.singles(arrayNames[array], arrayValues(static_cast<std::size_t>(file.cells), array, step));
    }
    records.message("ENDSOL");
  }
  out.close();
  require(!out.fail(), "the disk takes no more");
  std::filesystem::rename(unfinished, file.path);
}

/// Loads as a host does and looks at what came: all steps or one, all arrays or one.
void load(const RestartFile& file, std::int32_t step, const std::string& only, bool qValues) {
  Session session;
  qvEclipseReader reader(session);
  reader.FileName = file.path.string();
  reader.whichtype = 11;
  reader.Silent = true;
  reader.iStart = reader.iEnd = step;
  reader.zOnly = only;
  reader.LoadData = qValues;
  bool qOK = false;
  reader.ECLReadData(qOK);
  require(qOK, session.diagnoses().empty() ? "no load" : session.diagnoses().back().text());
  const auto steps = reader.RestartSteps();
  require(steps.size() == (step < 0 ? static_cast<std::size_t>(file.steps) : 1), "not all steps came");
  const auto* last = reader.RestartGrid(static_cast<std::int32_t>(steps.size()), 1);
  require(last->arrays.nVectors() == (only.empty() ? static_cast<std::int32_t>(arrays) : 1),
          "not all arrays");
  if (!qValues) return;
  const auto values = last->arrays.column(last->arrays.nVectors());
  require(values.size() == static_cast<std::size_t>(file.cells) && values[0] != 0, "no values");
  benchmark::DoNotOptimize(values.data());
}

}  // namespace

Family restartFamily(const std::filesystem::path& folder) {
  const RestartFile plain{folder / "RESTART.UNRST", {Framing::FourByteMarks, true}, 1000000, 6};
  const RestartFile text{folder / "RESTART.FUNRST", {Framing::Formatted, false}, 100000, 3};
  const auto swapped = [plain] { readSwapped(plain.path); };
  const auto parsed = [text] {
    static const std::string numbers = readText(text.path);
    benchmark::DoNotOptimize(parseAllNumbers(numbers));
  };
  const double memory = 1.1 * static_cast<double>(plain.valueBytes());
  return {"restart",
          [=] {
            writeRestart(plain);
            writeRestart(text);
          },
          {
              {"restart/full", "B", 1.3, 0, memory, [plain] { load(plain, -1, "", true); }, swapped},
              {"restart/one", "B", 1.5 / static_cast<double>(arrays * 6), 0, 0,
               [plain] { load(plain, 3, "PRESSURE", true); }, swapped},
              {"restart/list", "B", 0.01, 0, 10e6, [plain] { load(plain, -1, "", false); }, swapped},
              {"restart/formatted", "parsing", 1.5, 0, 0, [text] { load(text, -1, "", true); }, parsed},
          }};
}

}  // namespace lumbarn::bench
