#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "../shapes/XYData.h"
#include "../support/Export.h"
#include "../support/Session.h"
#include "CornerRows.h"

namespace lumbarn {

/// In which frame x and y of corners are asked for. Depths are always as in the file, growing downwards.
enum class GridFrame {
  File,  ///< as they stand in the file
  Map,   ///< in map axes and units; the same as File when the file gives none or is relative to the map
};

/// What a grid is called and where it belongs.
struct GridFacts {
  std::string zSimulator = "ECLIPSE";
  bool qLoadData = false;
  std::string zFile;    ///< the file it was read from
  std::string zFolder;  ///< the folder for cached geometry, empty for none
  bool byteSwap = false;
  std::string zName = "ROOT";
  std::string zParent;             ///< name of the parent grid; empty for the global grid
  std::int32_t iParent = 0;        ///< its number among the grids of the file, from 1; 0 for the global grid
  std::int32_t iLocalNumber = 0;   ///< the number that the file gives a local grid; 0 when it gives none
  std::int32_t iGridType = 2;      ///< 2 corner points, 3 radial
  std::int32_t iDualPorosity = 0;  ///< word 6 of FILEHEAD; at or above 1 the lower half of the layers is the
                                   ///< second porosity system
  std::int32_t nTheta = 0;         ///< angle count of a radial grid
  std::array<std::int32_t, 12> iIndex{};  ///< position inside the host (words 2 to 7) and sizes (9 to 11)
  std::array<std::int32_t, 3> iBoxOrigin{};
  std::string zGridUnit;        ///< "METRES", "FEET", "CM"; empty when the file says nothing
  std::string zMapUnit;         ///< likewise
  bool qRelativeToMap = false;  ///< coordinates are those of the map already
  std::optional<std::array<double, 6>> dMapAxes;  ///< x, y of a point on the Y axis, of the origin, and of a
                                                  ///< point on the X axis, in map units
};

/// One connection between cells that are not neighbours by their numbers. Grids count from 1 in the order of
/// the file, cells from 1 with I fastest.
struct GridConnection {
  enum class Kind : std::uint8_t {
    Inside,       ///< NNC1, NNC2: both in this grid
    LocalGlobal,  ///< NNCL, NNCG: this local grid and the global one
    Amalgamated,  ///< NNA1, NNA2: two local grids
  };
  Kind kind = Kind::Inside;
  std::int32_t iGrid1 = 0;
  std::int32_t iCell1 = 0;
  std::int32_t iGrid2 = 0;
  std::int32_t iCell2 = 0;

  bool operator==(const GridConnection&) const = default;
};

/// Cells that stand as one. It has the number of its first cell and the outer corners of the block; the other
/// cells of the block count as inactive.
struct CoarseBlock {
  std::int32_t iCell = 0;              ///< its first cell, from 1
  std::array<std::int32_t, 6> iBox{};  ///< I1, I2, J1, J2, K1, K2, from 1
  bool operator==(const CoarseBlock&) const = default;
};

/// `Hadrick`: the grid store, one object for each grid of a file. Keeps sizes, names, activity and
/// connections, and the geometry in the form of the file: pillars and depths (for the older file the corners
/// of each cell), from which the eight corners of a cell are made on request. So it takes the memory of the
/// file and not three times as much.
///
/// Cells and active cells count from 1; a cell's number is i + Nx * (j - 1 + Ny * (k - 1)). A row of corners
/// is 24 singles, x, y, z of corner 1 to 8, I fastest: (0,0,0), (1,0,0), (0,1,0), (1,1,0), then the same at
/// the bottom. Units are those of the file.
///
/// Reading may go on in several threads at once; changing it may not.
class LUMBARN_API Hadrick : public GridFacts {
 public:
  static constexpr std::size_t rowItems = 24;

  explicit Hadrick(Session& session = Session::process()) : session_(&session) {}

  // --- Sizes and numbering
  std::int32_t Nx() const { return Nx_; }
  std::int32_t Ny() const { return Ny_; }
  std::int32_t Nz() const { return Nz_; }
  std::int32_t nCells() const { return Nx_ * Ny_ * Nz_; }
  std::int32_t nActive() const { return nActive_; }
  bool allActive() const { return numbers_.empty(); }
  bool isLocal() const { return !zParent.empty(); }
  /// From 1; 0 for an inactive cell. The cell must be one of the grid.
  std::int32_t activeOf(std::int32_t iCell) const {
    if (numbers_.empty()) return iCell;
    const auto number = numbers_[static_cast<std::size_t>(iCell) - 1];
    return number > 0 ? number : 0;
  }
  /// The cell of an active number, which must be one from 1 to nActive.
  std::int32_t cellOf(std::int32_t iActive) const {
    return cells_.empty() ? iActive : cells_[static_cast<std::size_t>(iActive) - 1];
  }
  /// 0 when i, j, k, each from 1, lie outside.
  std::int32_t cellAt(std::int32_t i, std::int32_t j, std::int32_t k) const;
  /// i, j, k of a cell.
  std::array<std::int32_t, 3> placeOf(std::int32_t iCell) const;

  // --- Corners
  /// Whether there is a geometry at all.
  bool hasGeometry() const { return !pillars_.empty() || !cellRows_.empty(); }
  /// Only active cells are kept: inactive ones have no corners.
  bool compressed() const { return compressed_; }
  /// False for a cell in a layer of no reservoir, for an inactive one of a compressed grid, and outside.
  bool hasCorners(std::int32_t iCell) const;
  /// The corners of one cell. False, with zeros, when it has none.
  bool corners(std::int32_t iCell, std::span<float, rowItems> row, GridFrame frame = GridFrame::File) const;
  /// Rows of consecutive active cells from a number on: rows.size() / 24 of them, which must be there (Fault
  /// 9). A cell without corners has zeros.
  void activeCorners(std::int32_t iFirstActive, std::span<float> rows,
                     GridFrame frame = GridFrame::File) const;
  /// The same for consecutive cells, active or not.
  void cellCorners(std::int32_t iFirstCell, std::span<float> rows, GridFrame frame = GridFrame::File) const;

  // --- Relations
  /// For each cell of a local grid the cell of the parent that holds it, 0 when not known; empty when the
  /// file does not say.
  std::span<const std::int32_t> hostCells() const { return hostCells_; }
  std::span<const GridConnection> connections() const { return connections_; }
  /// Sorted by cell.
  std::span<const CoarseBlock> coarseBlocks() const { return coarse_; }
  /// First and last layer, from 1, of each reservoir (set of pillars).
  std::span<const std::array<std::int32_t, 2>> reservoirs() const { return ranges_; }
  /// The reservoir, from 1, whose pillars a layer has; 0 for none. The layer must be one of a grid with
  /// pillars.
  std::int32_t reservoirOf(std::int32_t k) const {
    return reservoirOfLayer_[static_cast<std::size_t>(k) - 1] + 1;
  }

  // --- The arrays as they are kept
  std::span<const float> coord() const { return pillars_; }
  std::span<const float> zcorn() const { return depths_.values(); }
  std::span<const float> cellRows() const {
    const auto cells = static_cast<std::size_t>(compressed_ ? nActive_ : nCells());
    return cellRows_.empty() ? cellRows_.values() : cellRows_.values().first(rowItems * cells);
  }
  /// Active number of each cell, 0 or below when inactive; empty when all are active.
  std::span<const std::int32_t> activeNumbers() const { return numbers_; }

  // --- Building, by readers. Arrays that do not go with the sizes are Fault 9.
  /// Forgets arrays that were there. Fault 6 when a size is below 1 or the cells cannot be numbered with 32
  /// bits.
  void setSize(std::int32_t Nx, std::int32_t Ny, std::int32_t Nz);
  /// Cells above 0 are active; numbers them. Empty: all are. Rows or depths of a compressed grid follow, so
  /// that only cells that were active can stay so; others are made inactive. Gives how many of these there
  /// were.
  std::int32_t setActive(std::vector<std::int32_t> iACTNUM);
  /// COORD, and first and last layer of each reservoir; without ranges one reservoir has all layers.
  void setPillars(std::vector<float> coord, std::vector<std::array<std::int32_t, 2>> ranges = {});
  /// ZCORN: 8 for each cell in file order, or, compressed, 8 for each active cell in walk order.
  void setDepths(XYData zcorn, bool compressed);
  /// Corner rows of all cells, or, compressed, of active ones; there may be room for more behind them.
  void setCellRows(XYData rows, bool compressed);
  void setHostCells(std::vector<std::int32_t> iHost);
  void addConnection(const GridConnection& connection) { connections_.push_back(connection); }
  /// Makes each block one cell: active when one of its cells is. The grid must not be compressed; a block is
  /// Fault 9 when its box does not lie in the grid or does not begin with its cell.
  void setCoarse(std::vector<CoarseBlock> blocks);

 private:
  CornerSource source() const;
  void joinBlocks(std::vector<std::int32_t>& activity) const;
  void fill(std::int32_t iFirst, std::span<float> rows, GridFrame frame, bool activeOnly) const;
  void fillPlain(std::int32_t iFirst, std::span<float> rows, GridFrame frame, bool activeOnly) const;
  void fillFromRows(std::int32_t iFirst, std::span<float> rows, const MapTransform* transform,
                    bool activeOnly) const;
  void coarseRow(const CoarseBlock& block, std::span<float, rowItems> row, GridFrame frame) const;
  std::optional<MapTransform> transform(GridFrame frame) const;

  Session* session_;
  std::int32_t Nx_ = 0;
  std::int32_t Ny_ = 0;
  std::int32_t Nz_ = 0;
  std::int32_t nActive_ = 0;
  bool compressed_ = false;
  std::vector<std::int32_t> numbers_;
  std::vector<std::int32_t> cells_;
  std::vector<float> pillars_;
  std::vector<std::array<std::int32_t, 2>> ranges_;
  std::vector<std::int32_t> reservoirOfLayer_;
  XYData depths_;
  XYData cellRows_;
  std::vector<std::int32_t> hostCells_;
  std::vector<GridConnection> connections_;
  std::vector<CoarseBlock> coarse_;
};

}  // namespace lumbarn
