#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "../index/RestartIndex.h"
#include "../record/RecordCursor.h"
#include "../support/Session.h"
#include "ActiveCells.h"

namespace lumbarn {

/// A column of the fetch-on-demand table: items, kind, low and high word of the position of the data, counted
/// from 1, and 1.
using FetchColumn = std::span<const std::int32_t, 5>;

/// Reads arrays of a restart set or an INIT file when they are wanted, none before: each call reads what it
/// gives and no more. Integers are given as the numbers they are; an array of integers read as singles loses
/// what is beyond 24 bits, as double precision becomes single.
///
/// Names are found in any letter case. A saturation that a step of a restart does not store and that follows
/// from the others (see `derivedArray`) is read like an array of the file. Of two arrays with the same name
/// the name means the first; both are read by their entries.
///
/// Elements, cells and steps' arrays count from 0 here, as positions in the array that is given; numbers i,
/// j, k and of grids' cells count from 1. All operations leave their outputs untouched or partly written when
/// qOK is False; a diagnosis or the fault report then says why.
class ArrayReader {
 public:
  explicit ArrayReader(Session& session = Session::process()) : session_(&session) {}
  /// For arrays by name: the index says where they stand.
  ArrayReader(RestartIndex index, Session& session) : session_(&session), index_(std::move(index)) {}
  ~ArrayReader();
  ArrayReader(const ArrayReader&) = delete;
  ArrayReader& operator=(const ArrayReader&) = delete;

  const RestartIndex& index() const { return index_; }

  /// By a column of a step's fetch-on-demand table, the file that the step was read from, and the settings
  /// that came with it (FORTRAN, Formatted, 4-byte marks, bytes swapped, I/O method 8): elements
  /// [first, first + values.size()). Kinds 2 (integers), 3 and 11 (singles) are in the file; any other, as
  /// that of a derived array, has no place there and is a fault. Fails when the file is not as it was when
  /// this reader's session loaded it, or when this reader opened it.
  void readFetched(const std::string& file, const std::array<bool, 5>& qFileTypeSettings, FetchColumn column,
                   std::int64_t first, std::span<float> values, bool& qOK);

  /// By name: elements [first, first + values.size()) of an array as it stands in the file. The empty grid
  /// name or "ROOT" is the global grid. For an INIT file `step` has no meaning. Fails with a diagnosis when
  /// the step has no such array of numbers.
  void read(std::int32_t step, std::string_view name, std::string_view grid, std::int64_t first,
            std::span<double> values, bool& qOK);
  void read(std::int32_t step, std::string_view name, std::string_view grid, std::int64_t first,
            std::span<float> values, bool& qOK);
  /// By entry of a step of this reader's index, or one of `derivedArray`, which needs the grid.
  void read(const IndexStep& step, const IndexEntry& entry, std::string_view grid, std::int64_t first,
            std::span<double> values, bool& qOK);
  /// One value for each cell of the grid from cell [first], in natural order; inactive cells get the
  /// session's null value. Which cells are active must be known, see `setActiveCells`, of an array with one
  /// value for each of them: fails with a diagnosis otherwise, and for an array that is no cell array. An
  /// array with a value for each cell is given as it stands when it is not known.
  void readCells(std::int32_t step, std::string_view name, std::string_view grid, std::int64_t first,
                 std::span<double> values, bool& qOK);
  void readCells(const IndexStep& step, const IndexEntry& entry, std::string_view grid, std::int64_t first,
                 std::span<double> values, bool& qOK);
  /// The value of cell i, j, k, counted from 1; the session's null value for an inactive one. Throws nothing;
  /// a cell outside of the grid is a fault.
  void readCell(std::int32_t step, std::string_view name, std::string_view grid, std::int32_t i,
                std::int32_t j, std::int32_t k, double& value, bool& qOK);

  /// Tells which cells of a grid are active.
  void setActiveCells(std::string_view grid, ActiveCells cells);

 private:
  /// An array of the index.
  struct Found {
    const IndexStep* step;
    IndexEntry entry;
    std::string_view grid;
    GridCells cells;
  };
  Found find(std::int32_t step, std::string_view name, std::string_view grid) const;
  Found foundEntry(const IndexStep& step, const IndexEntry& entry, std::string_view grid) const;
  Diagnosis refusal(const Found& array, Message message) const;
  RecordCursor& moveTo(const Found& array);
  template <class Number>
  void readElements(const Found& array, std::int64_t first, std::span<Number> values);
  template <class Number>
  void readDerived(const Found& array, std::int64_t first, std::span<Number> values);
  void readCellsOf(const Found& array, std::int64_t first, std::span<double> values);
  const ActiveCells* knownActiveCells(const Found& array) const;
  void clearInactive(const ActiveCells& cells, std::int64_t first, std::span<double> values) const;
  const ActiveCells& activeCellsOf(const Found& array) const;

  Session* session_;
  RestartIndex index_;
  std::map<std::string, ActiveCells, std::less<>> activeCells_;
  std::unique_ptr<RecordCursor> cursor_;  // on the file that was read last
};

}  // namespace lumbarn
