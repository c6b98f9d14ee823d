#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "../support/Fault.h"
#include "RestartGrid.h"
#include "StepWells.h"

namespace lumbarn {

/// What a row of markers is about; the number is the one that packed rows have.
enum class MarkerKind : std::int32_t { Well = 1, Perf = 2 };
constexpr const char* nameOf(MarkerKind kind) { return kind == MarkerKind::Well ? "WELL" : "PERF"; }

/// The connections of a well, as far as the step has its connection table. Connection k is a row of a table
/// of two dimensions, or row k of the well's plane in one of three.
class ConnectionRows {
 public:
  /// `iWell` from 1. Throws Fault 9 when the well has more connections than the table holds.
  ConnectionRows(const RESTARTGRID& grid, std::size_t iWell)
      : qPlanes_(grid.iCONN.qThreeDimensional()), iWell_(iWell) {
    const std::int32_t count = grid.iWELL(iWell, 5);
    if (!grid.qICON || grid.iCONN.empty() || count < 1) return;
    const std::int32_t first = qPlanes_ ? 1 : grid.iWELL(iWell, 10);
    if (first < 1) throw Fault(FaultNumber::Subscript);
    before_ = static_cast<std::size_t>(first) - 1;
    count_ = static_cast<std::size_t>(count);
    const bool inside = before_ + count_ <= grid.iCONN.rows() && (!qPlanes_ || iWell_ <= grid.iCONN.planes());
    if (!inside) throw Fault(FaultNumber::Subscript);
  }

  std::size_t count() const { return count_; }
  /// A column of connection k, from 1, in either table. Throws Fault 9 outside.
  template <class T>
  T value(const ColumnTable<T>& table, std::size_t k, std::size_t iColumn) const {
    return qPlanes_ ? table(iWell_, k, iColumn) : table(before_ + k, iColumn);
  }

 private:
  bool qPlanes_;
  std::size_t iWell_;
  std::size_t before_ = 0;  // rows of other wells in front
  std::size_t count_ = 0;
};

/// Name of a well, from 1; empty when the step has no names.
inline std::string wellName(const RESTARTGRID& grid, std::size_t iWell) {
  return grid.qZWEL && iWell <= grid.zWELL.rows() ? grid.zWELL(iWell, 1) : std::string();
}

/// Calls the sink for every row of markers of a grid and for every item that is set: `row(kind)`, then
/// `integer`, `single` and `text` with item and value. The kind itself is item 12 and has no call.
template <class Sink>
class MarkerRows {
 public:
  MarkerRows(const RESTARTGRID& grid, bool qMarkers, Sink& sink)
      : grid_(grid), qMarkers_(qMarkers), sink_(sink) {}

  void visit() {
    for (std::size_t iWell = 1; iWell <= grid_.iWELL.rows(); ++iWell) {
      well(iWell);
      const ConnectionRows connections(grid_, iWell);
      for (std::size_t k = 1; k <= connections.count(); ++k) connection(connections, iWell, k);
    }
  }

 private:
  void well(std::size_t iWell) {
    sink_.row(MarkerKind::Well);
    sink_.integer(1, 1);
    sink_.integer(2, 0);
    sink_.integer(5, 1);
    name(iWell);
    constexpr std::size_t integers[][2] = {{3, 1}, {4, 2}, {10, 4}, {28, 6}, {29, 8}, {31, 7}};
    for (const auto& [iItem, iColumn] : integers) sink_.integer(iItem, grid_.iWELL(iWell, iColumn));
    sink_.integer(30, EclipseToQVWellType(grid_.iWELL(iWell, 3)));
    if (!grid_.sWELL.empty()) {
      for (std::size_t i = 1; i <= 9; ++i) sink_.single(31 + i, grid_.sWELL(iWell, i));
    }
    if (grid_.sWELL2.empty()) return;
    for (std::size_t i = 1; i <= 6; ++i) sink_.single(40 + i, grid_.sWELL2(iWell, i));
    for (std::size_t i = 9; i <= 14; ++i) sink_.single(38 + i, grid_.sWELL2(iWell, i));
    sink_.single(53, grid_.sWELL2(iWell, 7));
    sink_.single(54, grid_.sWELL2(iWell, 8));
  }

  void connection(const ConnectionRows& connections, std::size_t iWell, std::size_t k) {
    const auto integer = [&](std::size_t iItem, std::size_t iColumn) {
      sink_.integer(iItem, connections.value(grid_.iCONN, k, iColumn));
    };
    sink_.row(MarkerKind::Perf);
    integer(1, 5);
    sink_.integer(2, 0);
    integer(3, 1);
    integer(4, 2);
    integer(5, 3);
    // Deliberate: hosts know the status of a connection from tables of three dimensions only.
    if (grid_.iCONN.qThreeDimensional()) integer(10, 4);
    name(iWell);
    integer(14, 6);
    integer(26, 7);
    integer(27, 8);
    if (!qMarkers_ || grid_.sCONN.empty()) return;
    sink_.single(15, connections.value(grid_.sCONN, k, 1));
    for (std::size_t i = 3; i <= 12; ++i) sink_.single(13 + i, connections.value(grid_.sCONN, k, i));
  }

  void name(std::size_t iWell) {
    if (grid_.qZWEL) sink_.text(11, wellName(grid_, iWell));
  }

  const RESTARTGRID& grid_;
  bool qMarkers_;
  Sink& sink_;
};

/// Rows of each kind that `MarkerRows` gives, found without visiting them. Throws Fault 9 when connections
/// are missing from their table, Fault 6 beyond what 32 bits count.
struct MarkerCounts {
  std::size_t wells = 0;
  std::size_t perfs = 0;
  std::size_t rows() const { return wells + perfs; }

  explicit MarkerCounts(const RESTARTGRID& grid);
};

}  // namespace lumbarn
