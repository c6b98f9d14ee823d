#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "Checks.h"
#include "RecordMutator.h"
#include "grid/PointLocator.h"
#include "grid/qvGRIDReader.h"
#include "support/Guarded.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t room);

namespace {

using namespace lumbarn;

constexpr std::size_t rowItems = Hadrick::rowItems;
constexpr std::int32_t mostCells = 5000;  // enough of a large grid

struct Read {
  Session session;
  qvGRIDReader reader{session};
  bool qOK = false;

  Read(const std::vector<std::byte>& bytes, const DetectedForm& detected, int options) {
    session.faultReporter = [](std::string_view text) { fuzz::check(false, text); };
    session.memoryLimit = std::size_t{256} << 20;
    reader.FileType = detected.keyword == "DIMENS" ? 1 : 2;
    reader.FileName = "fuzz input";
    reader.Formatted = detected.form.formatted();
    reader.UNIX = detected.form.framing != Framing::OneByteMarks;
    reader.byteSwap = detected.form.byteSwap;
    reader.CompressOnLoad = (options & 1) != 0;
    reader.NoInactive = (options & 2) != 0;
    reader.Coarsened = (options & 4) == 0;
    guarded(session, qOK, "qvGRIDReader", "readGrids",
            [&] { return reader.readGrids(std::make_shared<MemorySource>(bytes)); });
    fuzz::check(qOK || !session.diagnoses().empty(), "a failure is told");
    fuzz::check(static_cast<std::size_t>(reader.nGrids) == reader.xGrids.size(), "grids are counted");
  }
};

std::vector<float> activeRows(const Hadrick& grid) {
  std::vector<float> rows(rowItems * static_cast<std::size_t>(grid.nActive()));
  if (!rows.empty()) grid.activeCorners(1, rows);
  return rows;
}

bool sameBits(std::span<const float> a, std::span<const float> b) {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size_bytes()) == 0);
}

/// Of the active cells of a grid that is not too large.
std::vector<double> activeVolumes(const Hadrick& grid) {
  if (grid.nCells() > mostCells) return {};
  std::vector<double> all(static_cast<std::size_t>(grid.nCells()));
  cellVolumes(grid, 1, all);
  std::vector<double> active;
  for (std::int32_t n = 1; n <= grid.nActive(); ++n)
    active.push_back(all[static_cast<std::size_t>(grid.cellOf(n)) - 1]);
  return active;
}

/// What is found holds the point. Where all cells lie in one place, each look-up has to try them all.
void checkLocator(const Hadrick& grid) {
  if (grid.nCells() > mostCells) return;
  const PointLocator locator(grid);
  int lookUps = 0;
  forEachCell(grid, CellChoice::Active, [&](std::int32_t, CellCorners corners) {
    if (++lookUps > 300) return;
    const Point centre = cellCentre(corners);
    float row[rowItems];
    const auto found = locator.find(centre);
    fuzz::check(
        found == 0 || (grid.activeOf(found) > 0 && grid.corners(found, row) && cellContains(row, centre)),
        "the cell that was found holds the point");
    fuzz::check(found > 0 || !cellContains(corners, centre), "a cell that holds the point is found");
  });
}

void checkRelations(const qvGRIDReader& reader, const Hadrick& grid) {
  const auto gridAt = [&](std::int32_t n) -> const Hadrick& {
    fuzz::check(n >= 1 && n <= reader.nGrids, "related grids are there");
    return *reader.xGrids[static_cast<std::size_t>(n) - 1];
  };
  std::int32_t steps = 0;
  for (auto n = grid.iParent; n > 0; n = gridAt(n).iParent) {
    fuzz::check(++steps <= reader.nGrids, "parents lead to the global grid");
  }
  for (const std::int32_t host : grid.hostCells()) {
    fuzz::check(host >= 0 && (host == 0 || host <= gridAt(grid.iParent).nCells()), "host cells are there");
  }
  for (const auto& c : grid.connections()) {
    fuzz::check(c.iCell1 >= 1 && c.iCell1 <= gridAt(c.iGrid1).nCells(), "connected cells are there");
    fuzz::check(c.iCell2 >= 1 && c.iCell2 <= gridAt(c.iGrid2).nCells(), "connected cells are there");
  }
}

void checkCells(const Hadrick& grid) {
  const auto rows = activeRows(grid);
  std::int32_t number = 0;
  for (std::int32_t cell = 1; cell <= grid.nCells(); ++cell) {
    const bool active = grid.activeOf(cell) > 0;
    if (active) fuzz::check(grid.activeOf(cell) == ++number && grid.cellOf(number) == cell, "numbers go up");
    float row[rowItems];
    const bool has = grid.corners(cell, row);
    fuzz::check(has == grid.hasCorners(cell), "corners are there as told");
    if (active) {
      const auto from = rowItems * static_cast<std::size_t>(number - 1);
      fuzz::check(sameBits(row, std::span(rows).subspan(from, rowItems)),
                  "bulk and single rows are the same");
    }
    if (cell == mostCells) return;
  }
  fuzz::check(number == grid.nActive(), "active cells are counted");
  std::vector<float> all(rowItems * static_cast<std::size_t>(grid.nCells()));
  grid.cellCorners(1, all, GridFrame::Map);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size, std::size_t room,
                                               unsigned seed) {
  if (size < 2 || seed % 2 == 0) return LLVMFuzzerMutate(bytes, size, room);
  const auto changed = fuzz::mutateRecords(fuzz::bytesOf({bytes + 1, size - 1}), seed / 2);
  if (changed.empty() || changed.size() + 1 > room) return size;
  std::memcpy(bytes + 1, changed.data(), changed.size());
  return changed.size() + 1;
}

/// First byte: options. The rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const auto bytes = fuzz::bytesOf({data + 1, size - 1});
  const auto detected = detectForm(MemorySource(bytes));
  if (!detected) return 0;
  const int options = data[0] & 6;
  const Read plain(bytes, *detected, options);
  for (const auto& grid : plain.reader.xGrids) {
    checkRelations(plain.reader, *grid);
    checkCells(*grid);
    checkLocator(*grid);
  }
  const Read packed(bytes, *detected, options | 1);
  for (const auto& grid : packed.reader.xGrids) checkCells(*grid);
  // A host that takes inactive cells for active ones has no use for the comparison, and a read that a grid
  // without active cells ended may go on when only these are kept.
  if ((options & 2) != 0 || !plain.qOK || !packed.qOK) return 0;
  for (std::size_t n = 0; n < plain.reader.xGrids.size(); ++n) {
    const auto& a = *plain.reader.xGrids[n];
    const auto& b = *packed.reader.xGrids.at(n);
    if (!a.coarseBlocks().empty()) continue;
    fuzz::check(a.nActive() == b.nActive() && sameBits(activeRows(a), activeRows(b)),
                "active cells are the same, compressed or not");
    const auto volumes = activeVolumes(a);
    const auto same = activeVolumes(b);
    fuzz::check(volumes.size() == same.size() &&
                    (volumes.empty() || std::memcmp(volumes.data(), same.data(), 8 * volumes.size()) == 0),
                "volumes are the same, compressed or not");
  }
  return 0;
}
