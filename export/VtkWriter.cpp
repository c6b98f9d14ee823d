#include "VtkWriter.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "HdfFile.h"
#include "VtkCells.h"
#include "grid/Hadrick.h"
#include "grid/Refinement.h"
#include "support/Session.h"

namespace lumbarn {
namespace {

/// Hexahedra that are handled at once.
constexpr std::size_t cellsInPiece = 32768;
// In the numbering of the file format:
constexpr std::uint8_t hexahedron = 12;
// Refined is what these cells are, hidden is what keeps viewers from drawing them.
constexpr std::uint8_t refinedAndHidden = 8 + 32;

std::string datasetName(const CellArray& array) {
  std::string name = array.name;
  std::ranges::replace(name, '/', '_');
  return name;
}

/// Each cell's items once for each of its parts.
template <class Number>
std::vector<Number> repeated(std::vector<Number> items, std::size_t components, std::size_t parts) {
  if (parts == 1) return items;
  std::vector<Number> all;
  all.reserve(items.size() * parts);
  for (std::size_t at = 0; at < items.size(); at += components) {
    for (std::size_t part = 0; part < parts; ++part)
      all.insert(all.end(), items.begin() + static_cast<std::ptrdiff_t>(at),
                 items.begin() + static_cast<std::ptrdiff_t>(at + components));
  }
  return all;
}

/// A grid of the file.
struct Part {
  VtkCells cells;
  std::int32_t number = 1;  // among all grids of the run
  std::vector<std::uint8_t> refined;

  const Hadrick& grid() const { return cells.grid(); }
  std::size_t active() const { return static_cast<std::size_t>(grid().nActive()); }
};

/// Active cells that are handled at once, by their places among those of the grid and of the file.
struct Range {
  Part& part;
  std::size_t first = 0;
  std::size_t firstInFile = 0;
  std::size_t count = 0;

  std::int32_t cell(std::size_t i) const {
    return part.grid().cellOf(static_cast<std::int32_t>(first + i) + 1);
  }
};

/// What a cell is, as an array that comes with each file.
struct Identity {
  const char* name;
  std::int32_t (*of)(const Part& part, std::int32_t iCell);
};
constexpr Identity identities[] = {
    {"CELL", [](const Part&, std::int32_t iCell) { return iCell; }},
    {"I", [](const Part& part, std::int32_t iCell) { return part.grid().placeOf(iCell)[0]; }},
    {"J", [](const Part& part, std::int32_t iCell) { return part.grid().placeOf(iCell)[1]; }},
    {"K", [](const Part& part, std::int32_t iCell) { return part.grid().placeOf(iCell)[2]; }},
    {"GRID", [](const Part& part, std::int32_t) { return part.number; }},
    {"SYSTEM", [](const Part& part, std::int32_t iCell) { return systemOf(part.grid(), iCell); }},
};
constexpr const char* ghosts = "vtkGhostType";

class Writer {
 public:
  Writer(std::span<const std::shared_ptr<Hadrick>> grids, const VtkOptions& options, HdfStorage& storage,
         Session& session)
      : options_(options), session_(session), file_(storage) {
    for (std::size_t n = 0; n < grids.size(); ++n) {
      const auto number = static_cast<std::int32_t>(n) + 1;
      if (options.iGrid != 0 && options.iGrid != number) continue;
      std::optional<RadialCenter> center;
      if (isRadial(*grids[n])) center = radialCenter(grids, *grids[n]);
      Part part{{*grids[n], center, options.zUp}, number, {}};
      if (options.iGrid == 0) part.refined = refinedCells(grids, number);
      parts_.push_back(std::move(part));
    }
    root_ = file_.createGroup(HdfFile::top, "VTKHDF");
    cellData_ = file_.createGroup(root_, "CellData");
  }

  void write(std::span<const CellArray> arrays) {
    const bool steps = !options_.times.empty();
    file_.setNumbers(root_, "Version", std::array<std::int64_t, 2>{steps ? 2 : 1, 0});
    file_.setText(root_, "Type", "UnstructuredGrid");
    // Each array counts as much as the geometry here, which is near enough for a progress display.
    work_ = 2 + arrays.size() * std::max<std::size_t>(1, options_.times.size());
    examine();
    writeGeometry();
    writeIdentities();
    for (const CellArray& array : arrays) {
      std::visit([&](const auto& read) { writeArray(array, read); }, array.read);
    }
    if (steps) writeSteps(arrays);
    file_.closeGroup(cellData_);
    file_.closeGroup(root_);
    file_.close();
  }

 private:
  /// Calls `visit` with each range of active cells.
  template <class Visit>
  void forEachRange(Visit visit) {
    std::size_t inFile = 0;
    for (Part& part : parts_) {
      const std::size_t most = std::max<std::size_t>(1, cellsInPiece / part.cells.parts());
      for (std::size_t first = 0; first < part.active(); first += most) {
        if (session_.yield()) throw ExportCanceled();
        const Range range{part, first, inFile, std::min(most, part.active() - first)};
        visit(range);
        file_.check();
        inFile += range.count;
        showProgress(inFile);
      }
    }
    ++workDone_;
  }
  void showProgress(std::size_t done) {
    if (!session_.Container) return;
    const double share = static_cast<double>(done) / static_cast<double>(activeCells());
    session_.Container->fraction((static_cast<double>(workDone_) + share) / static_cast<double>(work_));
  }
  std::size_t activeCells() const {
    std::size_t sum = 0;
    for (const Part& part : parts_) sum += part.active();
    return sum;
  }

  static VtkCells::Piece pieceOf(const Range& range) {
    VtkCells::Piece piece;
    for (std::size_t i = 0; i < range.count; ++i) piece.cells.push_back(range.cell(i));
    piece.corners.resize(Hadrick::rowItems * range.count);
    range.part.grid().activeCorners(static_cast<std::int32_t>(range.first) + 1, piece.corners);
    return piece;
  }

  void examine() {
    forEachRange([](const Range& range) { range.part.cells.examine(pieceOf(range)); });
    hexahedra_ = 0;
    for (const Part& part : parts_)
      hexahedra_ += static_cast<std::int64_t>(part.active() * part.cells.parts());
  }

  bool hasRefined() const {
    return std::ranges::any_of(parts_, [](const Part& part) { return !part.refined.empty(); });
  }
  bool hasIdentity(const Identity& identity) const {
    return std::string_view(identity.name) != "SYSTEM" ||
           std::ranges::any_of(parts_, [](const Part& part) { return part.grid().iDualPorosity >= 1; });
  }

  /// An array of one integer for each cell.
  template <class Number, class Of>
  void writeIntegers(const char* name, Of of) {
    HdfFile::Table<Number> table(file_, cellData_, name, hexahedra_);
    forEachRange([&](const Range& range) {
      std::vector<Number> values;
      for (std::size_t i = 0; i < range.count; ++i) values.push_back(of(range.part, range.cell(i)));
      table.append(std::span<const Number>(repeated(std::move(values), 1, range.part.cells.parts())));
    });
    table.close();
    constant_.emplace_back(name);
  }
  void writeIdentities() {
    for (const Identity& identity : identities) {
      if (hasIdentity(identity)) writeIntegers<std::int32_t>(identity.name, identity.of);
    }
    if (!hasRefined()) return;
    writeIntegers<std::uint8_t>(ghosts, [](const Part& part, std::int32_t iCell) -> std::uint8_t {
      const bool refined = !part.refined.empty() && part.refined[static_cast<std::size_t>(iCell) - 1] != 0;
      return refined ? refinedAndHidden : 0;
    });
  }

  template <class Number>
  void writeArray(const CellArray& array, const CellReader<Number>& read) {
    const std::size_t steps = array.changes ? std::max<std::size_t>(1, options_.times.size()) : 1;
    HdfFile::Table<Number> table(file_, cellData_, datasetName(array),
                                 hexahedra_ * static_cast<std::int64_t>(steps),
                                 static_cast<std::int64_t>(array.components));
    for (std::size_t step = 0; step < steps; ++step) {
      forEachRange([&](const Range& range) {
        std::vector<Number> values(range.count * array.components);
        read(step, range.firstInFile, values);
        table.append(
            std::span<const Number>(repeated(std::move(values), array.components, range.part.cells.parts())));
      });
    }
    table.close();
  }

  void writeGeometry();
  void writeSteps(std::span<const CellArray> arrays);

  const VtkOptions& options_;
  Session& session_;
  HdfFile file_;
  HdfFile::Group root_ = HdfFile::top;
  HdfFile::Group cellData_ = HdfFile::top;
  std::vector<Part> parts_;
  std::vector<std::string> constant_;  // names of the arrays that come with each file
  std::int64_t hexahedra_ = 0;
  std::size_t work_ = 1;
  std::size_t workDone_ = 0;
};

void Writer::writeGeometry() {
  constexpr std::int64_t corners = VtkCells::pointsOfCell;
  HdfFile::Table<float> points(file_, root_, "Points", -1, 3);
  HdfFile::Table<std::int64_t> connectivity(file_, root_, "Connectivity", hexahedra_ * corners);
  HdfFile::Table<std::int64_t> offsets(file_, root_, "Offsets", hexahedra_ + 1);
  HdfFile::Table<std::uint8_t> types(file_, root_, "Types", hexahedra_);
  offsets.append(std::span<const std::int64_t>(std::array<std::int64_t, 1>{0}));
  std::int64_t pointCount = 0;
  Part* current = nullptr;
  const auto endPart = [&] {
    if (!current) return;
    pointCount += current->cells.finish();
    points.append(std::span<const float>(current->cells.takePoints()));
  };
  forEachRange([&](const Range& range) {
    VtkCells& cells = range.part.cells;
    if (current != &range.part) {
      endPart();
      current = &range.part;
      cells.start(pointCount);
    }
    connectivity.append(std::span<const std::int64_t>(cells.connect(pieceOf(range))));
    points.append(std::span<const float>(cells.takePoints()));
    std::vector<std::int64_t> ends(range.count * cells.parts());
    for (std::size_t i = 0; i < ends.size(); ++i)
      ends[i] = connectivity.rows() - corners * static_cast<std::int64_t>(ends.size() - 1 - i);
    offsets.append(std::span<const std::int64_t>(ends));
    types.append(std::span<const std::uint8_t>(std::vector(ends.size(), hexahedron)));
  });
  endPart();
  points.close();
  connectivity.close();
  offsets.close();
  types.close();
  file_.write<std::int64_t>(root_, "NumberOfPoints", {pointCount});
  file_.write<std::int64_t>(root_, "NumberOfCells", {hexahedra_});
  file_.write<std::int64_t>(root_, "NumberOfConnectivityIds", {connectivity.rows()});
}

/// Where the parts of each step begin: the geometry is the one part of all steps.
void Writer::writeSteps(std::span<const CellArray> arrays) {
  const std::size_t count = options_.times.size();
  const std::vector<std::int64_t> start(count, 0);
  const auto steps = file_.createGroup(root_, "Steps");
  file_.setNumber(steps, "NSteps", static_cast<std::int64_t>(count));
  file_.write(steps, "Values", options_.times);
  file_.write(steps, "PartOffsets", start);
  file_.write(steps, "NumberOfParts", std::vector<std::int64_t>(count, 1));
  file_.write(steps, "PointOffsets", start);
  file_.write(steps, "CellOffsets", start, true);
  file_.write(steps, "ConnectivityIdOffsets", start, true);
  const auto offsets = file_.createGroup(steps, "CellDataOffsets");
  for (const std::string& name : constant_) file_.write(offsets, name, start);
  for (const CellArray& array : arrays) {
    std::vector<std::int64_t> rows = start;
    for (std::size_t step = 0; step < count && array.changes; ++step)
      rows[step] = static_cast<std::int64_t>(step) * hexahedra_;
    file_.write(offsets, datasetName(array), rows);
  }
  file_.closeGroup(offsets);
  file_.closeGroup(steps);
}

}  // namespace

void writeVtk(std::span<const std::shared_ptr<Hadrick>> grids, std::span<const CellArray> arrays,
              const VtkOptions& options, HdfStorage& storage, Session& session) {
  Writer(grids, options, storage, session).write(arrays);
}

}  // namespace lumbarn
