#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "GridSet.h"

namespace lumbarn {

/// The record loop over an EGRID file: whole arrays for each grid.
class EGridRecords {
 public:
  explicit EGridRecords(GridSet& set) : set_(set) {}
  /// Reads all grids. False when the load is cancelled. A damaged local grid is reported and dropped, and
  /// reading continues with the next one; any other damage is BadRecord, with the grids before it in the set.
  bool read();
  bool damaged() const { return damaged_; }  ///< a grid was dropped

 private:
  /// What has been read of a grid before its end.
  struct Pending {
    std::int32_t nReservoirs = 1;
    std::vector<float> coord;
    std::vector<std::int32_t> coordSystem;
    std::optional<RecordHeader> zcorn;
    std::vector<std::int32_t> activity;  // empty: all cells are active
    bool hasActivity = false;
    std::vector<std::int32_t> coarse;
    std::vector<std::int32_t> hosts;
  };
  bool readOn();
  bool continueBehind(Diagnosis& diagnosis);
  bool take();
  void takeFileHead();
  void takeGridHead();
  void takeCoord();
  void takeZcorn();
  std::vector<std::int32_t> cellArray();
  std::vector<std::int32_t> bothPorosities(std::vector<std::int32_t> values);
  void needSizes() const;
  bool ProcessEGridCorners();
  bool finish();
  std::vector<std::array<std::int32_t, 2>> ranges() const;

  GridSet& set_;
  std::int32_t dualPorosity_ = 0;
  bool damaged_ = false;
  bool afterGap_ = false;  // the next record that begins a section is still to come
  Pending pending_;
};

}  // namespace lumbarn
