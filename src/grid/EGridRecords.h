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
  /// Reads all grids. False when the load is cancelled; whatever is wrong is BadRecord, with the grids before
  /// it in the set.
  bool read();

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
  Pending pending_;
};

}  // namespace lumbarn
