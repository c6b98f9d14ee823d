#include "VtkExport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <random>

#include <fmt/format.h>

#include "Hdf.h"
#include "PointMerger.h"
#include "grid/CellGeometry.h"
#include "grid/Hadrick.h"
#include "support/Guarded.h"
#include "support/System.h"

namespace lumbarn {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t cellsInPiece = 32768;
constexpr std::size_t pointsOfCell = 8;
constexpr std::uint8_t hexahedron = 12;  // in the numbering of the file format

/// Thrown to leave all loops when the load is cancelled.
struct Cancelled {};

/// The name that a file has until it is complete. Removes what is left of it.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target) : target_(std::u8string(target.begin(), target.end())) {
    std::error_code unknown;
    const fs::path real =
        fs::weakly_canonical(target_, unknown);  // a link stays, what it points to is written
    if (!unknown) target_ = real;
    const fs::file_status status = fs::status(target_, unknown);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
      throw BadRecord({.problem = "cannot be written", .found = "is a folder or a device"});
    }
    std::random_device random;
    path_ =
        target_.parent_path() / ("." + target_.filename().string() + fmt::format(".{:08x}.tmp", random()));
    // The system's words for what HDF5 would tell with its own flags and numbers.
    std::string error;
    if (!OutputFile(path_.string(), error).isOpen())
      throw BadRecord({.problem = "cannot be written", .found = error});
  }
  ~TemporaryFile() {
    std::error_code unknown;
    fs::remove(path_, unknown);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  std::string path() const { return path_.string(); }
  void commit() {
    std::error_code failure;
    fs::rename(path_, target_, failure);
    if (failure) throw BadRecord({.problem = "cannot be written", .found = failure.message()});
  }

 private:
  fs::path target_;
  fs::path path_;
};

/// Corners in the order of a hexahedron's points: round the face at low K, then round that at high K. In a
/// left-handed grid the faces change places, so that the second lies where the first one's normal points.
std::array<std::size_t, pointsOfCell> pointOrder(bool rightHanded) {
  if (rightHanded) return {0, 1, 3, 2, 4, 5, 7, 6};
  return {4, 5, 7, 6, 0, 1, 3, 2};
}

std::string datasetName(const CellArray& array) {
  std::string name = array.name;
  std::ranges::replace(name, '/', '_');
  return name;
}

/// Active cells from `first` on; their numbers and corners.
struct Piece {
  std::size_t first = 0;
  std::vector<std::int32_t> cells;  // numbers in the grid, from 1
  std::vector<float> corners;
};

class Exporter {
 public:
  Exporter(const Hadrick& grid, const VtkOptions& options, const std::string& path, Session& session)
      : grid_(grid), options_(options), session_(session), file_(hdf::createFile(path)) {
    root_ = hdf::createGroup(file_, "VTKHDF");
    cellData_ = hdf::createGroup(root_, "CellData");
  }

  void write(std::span<const CellArray> arrays) {
    const bool steps = !options_.times.empty();
    hdf::setNumbers(root_, "Version", std::array<std::int64_t, 2>{steps ? 2 : 1, 0});
    hdf::setText(root_, "Type", "UnstructuredGrid");
    // Each array counts as much as the geometry here, which is near enough for a progress display.
    work_ = 2 + arrays.size() * std::max<std::size_t>(1, options_.times.size());
    writeGeometry();
    for (const CellArray& array : arrays) {
      std::visit([&](const auto& read) { writeArray(array, read); }, array.read);
    }
    if (steps) writeSteps(arrays);
    cellData_.close("CellData");
    root_.close("VTKHDF");
    file_.close("the file's end");
  }

 private:
  std::size_t active() const { return static_cast<std::size_t>(grid_.nActive()); }

  /// Calls `visit` with the first and the count of each piece of the active cells.
  template <class Visit>
  void forEachPiece(Visit visit) {
    for (std::size_t first = 0; first < active(); first += cellsInPiece) {
      if (session_.yield()) throw Cancelled();
      visit(first, std::min(cellsInPiece, active() - first));
      if (!session_.Container) continue;
      const double share = static_cast<double>(first) / static_cast<double>(active());
      session_.Container->fraction((static_cast<double>(workDone_) + share) / static_cast<double>(work_));
    }
    ++workDone_;
  }

  template <class Visit>
  void forEachPieceWithCorners(Visit visit) {
    Piece piece;
    forEachPiece([&](std::size_t first, std::size_t count) {
      piece.first = first;
      piece.cells.resize(count);
      piece.corners.resize(24 * count);
      const auto iFirstActive = static_cast<std::int32_t>(first) + 1;
      for (std::size_t i = 0; i < count; ++i)
        piece.cells[i] = grid_.cellOf(iFirstActive + static_cast<std::int32_t>(i));
      grid_.activeCorners(iFirstActive, piece.corners);
      visit(piece);
    });
  }

  /// Sides of single cells tell little in a grid with inverted ones; the volume of all does.
  bool isRightHanded() {
    double sum = 0;
    std::vector<double> volumes;
    forEachPieceWithCorners([&](const Piece& piece) {
      volumes.resize(piece.cells.size());
      cellVolumes(piece.corners, volumes);
      for (const double volume : volumes) sum += std::isfinite(volume) ? volume : 0;
    });
    return (sum >= 0) != options_.zUp;
  }

  void writeGeometry();
  std::vector<std::int64_t> connect(Piece& piece, PointMerger& merger,
                                    const std::array<std::size_t, pointsOfCell>& order) const;

  template <class Number>
  void writeArray(const CellArray& array, const CellReader<Number>& read) {
    const std::size_t steps = array.changes ? std::max<std::size_t>(1, options_.times.size()) : 1;
    hdf::Table table(cellData_, datasetName(array), hdf::typeOf<Number>(),
                     static_cast<std::int64_t>(active() * steps),
                     static_cast<std::int64_t>(array.components));
    std::vector<Number> values;
    for (std::size_t step = 0; step < steps; ++step) {
      forEachPiece([&](std::size_t first, std::size_t count) {
        values.resize(count * array.components);
        read(step, first, values);
        table.append(std::span<const Number>(values));
      });
    }
  }

  void writeSteps(std::span<const CellArray> arrays);

  const Hadrick& grid_;
  const VtkOptions& options_;
  Session& session_;
  hdf::Handle file_;
  hdf::Handle root_;
  hdf::Handle cellData_;
  std::size_t work_ = 1;
  std::size_t workDone_ = 0;
};

std::vector<std::int64_t> Exporter::connect(Piece& piece, PointMerger& merger,
                                            const std::array<std::size_t, pointsOfCell>& order) const {
  const auto nx = static_cast<std::size_t>(grid_.Nx());
  const auto ny = static_cast<std::size_t>(grid_.Ny());
  std::vector<std::int64_t> connectivity;
  connectivity.reserve(pointsOfCell * piece.cells.size());
  for (std::size_t cell = 0; cell < piece.cells.size(); ++cell) {
    const auto inLayer = static_cast<std::size_t>(piece.cells[cell] - 1) % (nx * ny);
    const std::size_t node = inLayer / nx * (nx + 1) + inLayer % nx;
    if (isNoCell(CellCorners(piece.corners.data() + 24 * cell, 24))) {
      connectivity.insert(connectivity.end(), pointsOfCell, 0);  // of no size, at the grid's first point
      continue;
    }
    for (const std::size_t corner : order) {
      float* point = piece.corners.data() + 24 * cell + 3 * corner;
      if (options_.zUp) point[2] = -point[2];
      const std::size_t alongJ = (corner >> 1 & 1) * (nx + 1);
      connectivity.push_back(merger.number(node + alongJ + (corner & 1), point));
    }
  }
  return connectivity;
}

void Exporter::writeGeometry() {
  const auto order = pointOrder(isRightHanded());
  const auto cells = static_cast<std::int64_t>(active());
  const auto integer = hdf::typeOf<std::int32_t>();
  const auto wide = hdf::typeOf<std::int64_t>();
  auto points = hdf::Table::growing(root_, "Points", hdf::typeOf<float>(), 3);
  hdf::Table connectivity(root_, "Connectivity", wide, cells * std::int64_t{pointsOfCell});
  hdf::Table offsets(root_, "Offsets", wide, cells + 1);
  hdf::Table types(root_, "Types", hdf::typeOf<std::uint8_t>(), cells);
  hdf::Table number(cellData_, "CELL", integer, cells);
  std::array<hdf::Table, 3> tables;
  constexpr std::array names{"I", "J", "K"};
  for (std::size_t axis = 0; axis < 3; ++axis) tables[axis] = {cellData_, names[axis], integer, cells};

  offsets.append(std::span<const std::int64_t>(std::array<std::int64_t, 1>{0}));
  PointMerger merger(static_cast<std::size_t>(grid_.Nx() + 1) * static_cast<std::size_t>(grid_.Ny() + 1));
  forEachPieceWithCorners([&](Piece& piece) {
    connectivity.append(std::span<const std::int64_t>(connect(piece, merger, order)));
    points.append(std::span<const float>(merger.take()));
    std::vector<std::int64_t> ends;
    std::array<std::vector<std::int32_t>, 3> places;
    for (std::size_t i = 0; i < piece.cells.size(); ++i) {
      ends.push_back(static_cast<std::int64_t>(pointsOfCell * (piece.first + i + 1)));
      const auto ijk = grid_.placeOf(piece.cells[i]);
      for (std::size_t axis = 0; axis < 3; ++axis) places[axis].push_back(ijk[axis]);
    }
    offsets.append(std::span<const std::int64_t>(ends));
    types.append(std::span<const std::uint8_t>(std::vector(ends.size(), hexahedron)));
    number.append(std::span<const std::int32_t>(piece.cells));
    for (std::size_t axis = 0; axis < 3; ++axis)
      tables[axis].append(std::span<const std::int32_t>(places[axis]));
  });
  if (merger.count() == 0 && cells > 0) {  // none of the cells has corners
    merger.number(0, std::array<float, 3>{}.data());
    points.append(std::span<const float>(merger.take()));
  }
  hdf::write<std::int64_t>(root_, "NumberOfPoints", {merger.count()});
  hdf::write<std::int64_t>(root_, "NumberOfCells", {cells});
  hdf::write<std::int64_t>(root_, "NumberOfConnectivityIds", {connectivity.rows()});
}

/// Where the parts of each step begin: the geometry is the one part of all steps.
void Exporter::writeSteps(std::span<const CellArray> arrays) {
  const std::size_t count = options_.times.size();
  const std::vector<std::int64_t> start(count, 0);
  const auto steps = hdf::createGroup(root_, "Steps");
  hdf::setNumber(steps, "NSteps", static_cast<std::int64_t>(count));
  hdf::write(steps, "Values", options_.times);
  hdf::write(steps, "PartOffsets", start);
  hdf::write(steps, "NumberOfParts", std::vector<std::int64_t>(count, 1));
  hdf::write(steps, "PointOffsets", start);
  hdf::write(steps, "CellOffsets", start, true);
  hdf::write(steps, "ConnectivityIdOffsets", start, true);
  const auto offsets = hdf::createGroup(steps, "CellDataOffsets");
  for (const char* name : {"CELL", "I", "J", "K"}) hdf::write(offsets, name, start);
  for (const CellArray& array : arrays) {
    std::vector<std::int64_t> rows = start;
    for (std::size_t step = 0; step < count && array.changes; ++step) {
      rows[step] = static_cast<std::int64_t>(step * active());
    }
    hdf::write(offsets, datasetName(array), rows);
  }
}

}  // namespace

void exportVtk(const Hadrick& grid, std::span<const CellArray> arrays, const VtkOptions& options,
               const std::string& path, Session& session, bool& qOK) {
  guarded(session, qOK, "VtkExport", "exportVtk", [&] {
    const hdf::Quiet quiet;
    try {
      TemporaryFile file(path);
      Exporter(grid, options, file.path(), session).write(arrays);
      file.commit();
      return true;
    } catch (const Cancelled&) {
      return false;
    } catch (BadRecord& failure) {
      if (failure.diagnosis().path.empty()) failure.diagnosis().path = path;
      throw;
    }
  });
}

}  // namespace lumbarn
