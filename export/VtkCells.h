#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "PointMerger.h"
#include "grid/Hadrick.h"
#include "grid/RadialGrid.h"

namespace lumbarn {

/// The active cells of one grid as hexahedra that share their points. A cell of a radial grid with a wide
/// sector becomes several hexahedra side by side, `parts` of them for every cell of the grid.
class VtkCells {
 public:
  static constexpr std::size_t pointsOfCell = 8;

  /// The next active cells, in their order: their corners, as the grid has them.
  struct Piece {
    std::vector<std::int32_t> cells;  ///< numbers in the grid, from 1
    std::vector<float> corners;
  };

  /// `center`: of a radial grid; without it, coordinates are those of the file.
  VtkCells(const Hadrick& grid, std::optional<RadialCenter> center, bool zUp);

  const Hadrick& grid() const { return grid_; }
  /// First all pieces are examined, to decide the order of points and the parts of each cell.
  void examine(const Piece& piece);
  /// Hexahedra for each active cell, known when all pieces have been examined.
  std::size_t parts() const;

  /// Then they are connected, from the first one on. `firstPoint`: the number of the grid's first point.
  void start(std::int64_t firstPoint);
  /// The point numbers of the cells' hexahedra, cell by cell.
  std::vector<std::int64_t> connect(const Piece& piece);
  /// Coordinates of the points that are new since the last call.
  std::vector<float> takePoints() { return merger_.take(); }
  /// Ends the grid and gives the number of its points. When none of its cells has corners, one point is added
  /// for them to refer to, and remains to be taken.
  std::int64_t finish();

 private:
  using Corners = std::array<float, Hadrick::rowItems>;

  Corners partOf(CellCorners corners, std::size_t part) const;
  std::size_t nodeOf(std::size_t i, std::size_t j, std::size_t part, std::size_t corner) const;

  const Hadrick& grid_;
  std::optional<RadialCenter> center_;
  bool zUp_;
  double volume_ = 0;
  double widest_ = 0;  // sector of a cell
  std::optional<double> firstAngle_;
  std::int64_t firstPoint_ = 0;
  std::size_t parts_ = 1;
  std::array<std::size_t, pointsOfCell> order_{};
  PointMerger merger_{0};
};

}  // namespace lumbarn
