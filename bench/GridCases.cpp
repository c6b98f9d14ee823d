#include <array>
#include <cmath>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <vector>

#include <benchmark/benchmark.h>

#include "Baseline.h"
#include "Cases.h"
#include "grid/Hadrick.h"
#include "reader/qvEclipseReader.h"
#include "record/RecordWriter.h"
#include "support/System.h"

namespace lumbarn::bench {

namespace {

constexpr std::size_t rowItems = 24;

/// A grid of bent layers between leaning pillars; one cell in seven is inactive.
struct GridSizes {
  std::int32_t nx, ny, nz;
  std::int32_t cells() const { return nx * ny * nz; }
  std::int32_t active() const { return cells() - (cells() + 6) / 7; }
};
constexpr GridSizes large{100, 100, 100};
constexpr GridSizes older{100, 100, 10};

float depthAt(const GridSizes& size, std::int32_t line, std::int32_t p, std::int32_t plane) {
  const double x = static_cast<double>(p) / size.nx;
  const double y = static_cast<double>(line) / size.ny;
  return static_cast<float>(2000 + 50 * std::sin(x + y) + 4.0 * ((plane + 1) / 2) + 0.1 * (p % 2));
}

class FileWriter {
 public:
  explicit FileWriter(const std::filesystem::path& path)
      : out_(path, std::ios::binary), records_(sink(), Form{Framing::FourByteMarks, true}) {}
  RecordWriter& records() { return records_; }
  void finish() {
    out_.flush();
    if (!out_) throw std::runtime_error("the disk takes no more");
  }

 private:
  ByteSink sink() {
    return [this](std::span<const std::byte> bytes) {
      out_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    };
  }
  std::ofstream out_;
  RecordWriter records_;
};

std::vector<float> makeCoord(const GridSizes& size) {
  std::vector<float> coord;
  for (std::int32_t j = 0; j <= size.ny; ++j) {
    for (std::int32_t i = 0; i <= size.nx; ++i) {
      const auto x = 50.0F * static_cast<float>(i);
      const auto y = 50.0F * static_cast<float>(j);
      coord.insert(coord.end(), {x, y, 1900, x + 7, y + 3, 2600});
    }
  }
  return coord;
}

void writeEGrid(const std::filesystem::path& path, const GridSizes& size) {
  if (std::filesystem::exists(path)) return;
  FileWriter file(path);
  auto& out = file.records();
  std::vector<std::int32_t> head(100, 0);
  out.integers("FILEHEAD", head);
  out.texts("GRIDUNIT", std::array<std::string, 2>{"METRES", ""});
  head = {1, size.nx, size.ny, size.nz};
  head.resize(100, 0);
  out.integers("GRIDHEAD", head);
  out.singles("COORD", makeCoord(size));
  std::vector<float> zcorn;
  for (std::int32_t plane = 0; plane < 2 * size.nz; ++plane) {
    for (std::int32_t line = 0; line < 2 * size.ny; ++line) {
      for (std::int32_t p = 0; p < 2 * size.nx; ++p) zcorn.push_back(depthAt(size, line, p, plane));
    }
  }
  out.singles("ZCORN", zcorn);
  std::vector<std::int32_t> actnum(static_cast<std::size_t>(size.cells()), 1);
  for (std::size_t cell = 0; cell < actnum.size(); cell += 7) actnum[cell] = 0;
  out.integers("ACTNUM", actnum);
  out.integers("ENDGRID", {});
  file.finish();
}

void writeGrid(const std::filesystem::path& path, const GridSizes& size) {
  if (std::filesystem::exists(path)) return;
  FileWriter file(path);
  auto& out = file.records();
  out.integers("DIMENS", std::array{size.nx, size.ny, size.nz});
  out.texts("GRIDUNIT", std::array<std::string, 2>{"METRES", ""});
  std::int32_t cell = 0;
  for (std::int32_t k = 0; k < size.nz; ++k) {
    for (std::int32_t j = 0; j < size.ny; ++j) {
      for (std::int32_t i = 0; i < size.nx; ++i, ++cell) {
        out.integers("COORDS", std::array{i + 1, j + 1, k + 1, cell + 1, cell % 7 == 0 ? 0 : 1, 0, 0});
        std::array<float, rowItems> row{};
        for (std::int32_t n = 0; n < 8; ++n) {
          const auto at = 3 * static_cast<std::size_t>(n);
          row[at] = 50.0F * static_cast<float>(i + (n & 1));
          row[at + 1] = 50.0F * static_cast<float>(j + (n >> 1 & 1));
          row[at + 2] = depthAt(size, 2 * j + (n >> 1 & 1), 2 * i + (n & 1), 2 * k + (n >> 2));
        }
        out.singles("CORNERS", row);
      }
    }
  }
  file.finish();
}

/// Opens a file as a host does, with active cells numbered.
std::unique_ptr<qvEclipseReader> load(Session& session, const std::filesystem::path& path, std::int32_t kind,
                                      const GridSizes& size, bool compress) {
  auto reader = std::make_unique<qvEclipseReader>(session);
  reader->FileName = path.string();
  reader->whichtype = kind;
  reader->CompressOnLoad = compress;
  bool qOK = false;
  reader->ECLReadData(qOK);
  std::shared_ptr<Hadrick> grid;
  if (qOK) reader->GetGRIDData(1, grid, qOK);
  require(qOK && grid->nActive() == size.active(), "active cells are not those written");
  return reader;
}

void open(const std::filesystem::path& path, std::int32_t kind, const GridSizes& size, bool compress) {
  Session session;
  load(session, path, kind, size, compress);
}

/// A grid that is open while its corners are asked for; opened by the first who needs it.
struct OpenGrid {
  OpenGrid(std::filesystem::path file, bool activeOnly) : path(std::move(file)), compress(activeOnly) {}

  std::filesystem::path path;
  bool compress;
  Session session;
  std::unique_ptr<qvEclipseReader> reader;

  void corners() {
    if (!reader) reader = load(session, path, 23, large, compress);
    XYData rows;
    std::int32_t nActive = 0;
    bool qOK = false;
    reader->getCorners(1, rows, nActive, qOK);
    require(qOK && nActive == large.active(), "not all corners came");
    benchmark::DoNotOptimize(rows.values().data());
  }
};

/// A row of 96 bytes for each active cell, written one after the other to memory that is new.
void writeRows() {
  const auto count = static_cast<std::size_t>(large.active());
  const Session session;
  XYData rows(rowItems, count, session);
  float* out = rows.values().data();
  std::array<float, rowItems> row{};
  for (std::size_t n = 0; n < count; ++n) {
    row[0] = static_cast<float>(n);
    std::memcpy(out + rowItems * n, row.data(), sizeof row);
  }
  benchmark::DoNotOptimize(out);
}

}  // namespace

Family gridFamily(const std::filesystem::path& folder) {
  const auto egrid = folder / "GRID1M.EGRID";
  const auto grid = folder / "GRID100K.GRID";
  const auto swapped = [egrid] { readSwapped(egrid); };
  const auto swappedGrid = [grid] { readSwapped(grid); };
  const auto packed = std::make_shared<OpenGrid>(egrid, true);
  const auto plain = std::make_shared<OpenGrid>(egrid, false);
  return {"grid",
          [egrid, grid] {
            writeEGrid(egrid, large);
            writeGrid(grid, older);
          },
          {
              {"grid/open", "B", 1.3, 0, 0, [egrid] { open(egrid, 23, large, false); }, swapped},
              {"grid/open_compressed", "B", 1.3, 0, 0, [egrid] { open(egrid, 23, large, true); }, swapped},
              {"grid/corners", "W", 1.5, 0, 0, [plain] { plain->corners(); }, writeRows},
              {"grid/corners_compressed", "W", 1.5, 0, 0, [packed] { packed->corners(); }, writeRows},
              {"grid/older", "B", 1.5, 0, 0, [grid] { open(grid, 14, older, false); }, swappedGrid},
              {"grid/older_compressed", "B", 1.5, 0, 0, [grid] { open(grid, 14, older, true); }, swappedGrid},
          }};
}

}  // namespace lumbarn::bench
