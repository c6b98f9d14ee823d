#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "RestartGrid.h"

namespace lumbarn {

/// The wells of a report step with their connections, as records beside the tables of `RESTARTGRID`.
///
/// Named is what is known for certain: cells, counts, names, groups and types have their meaning from the
/// layout; statuses, control modes, direction, rates and the numbers of a connection were found to agree with
/// the decks and summaries of runs (examples/data). A word that may mean something, but not for certain,
/// keeps its number: iWord8 is word 8 of the block in IWEL or ICON, sWord5 word 5 in SCON. Units are those of
/// the run's unit system.

/// Well types, by IWEL word 7.
enum class WellType : std::uint8_t { Unknown, Producer, OilInjector, WaterInjector, GasInjector };
LUMBARN_API WellType wellTypeOf(std::int32_t iType);
/// "producer", "oil injector", ...
LUMBARN_API std::string_view nameOf(WellType type);

/// Numbers of a connection, from SCON; read with the extended well records only.
struct ConnectionNumbers {
  float factor = 0;     ///< word 1, transmissibility factor
  float depth = 0;      ///< word 2, of its centre
  float diameter = 0;   ///< word 3, of the well bore
  float kh = 0;         ///< word 4, permeability times thickness
  float lengthEnd = 0;  ///< words 21, 22: along a well of segments, where it ends and begins; 0 without
  float lengthStart = 0;
  float sWord5 = 0;
  float sWord6 = 0;
  float sWord7 = 0;
  float sWord13 = 0;
  float sWord14 = 0;
  float sWord15 = 0;
};

/// One connection, from ICON.
struct ConnectionRecord {
  std::int32_t i = 0;  ///< words 2, 3, 4: cell of the grid, from 1
  std::int32_t j = 0;
  std::int32_t k = 0;
  std::int32_t iStatus = 0;     ///< word 6: 1 open, 0 shut
  std::int32_t iNumber = 0;     ///< word 1: place along the well, from 1; this and the next with the extended
                                ///< well records only, else 0
  std::int32_t iDirection = 0;  ///< word 14: 1 X, 2 Y, 3 Z
  std::int32_t iWord5 = 0;
  std::int32_t iWord7 = 0;  ///< with the extended well records only, as the next
  std::int32_t iWord10 = 0;
  std::optional<ConnectionNumbers> numbers;
};

/// Rates of a well at the step, from XWEL; read with the extended well records only. Rates of an injector are
/// below 0. A number that the simulator left beyond 1E36 is 0, of a `WellReader` no number.
struct WellRates {
  double oil = 0;        ///< word 1
  double water = 0;      ///< word 2
  double gas = 0;        ///< word 3
  double liquid = 0;     ///< word 4
  double reservoir = 0;  ///< word 5, volume at reservoir conditions
  double bhp = 0;        ///< word 7, pressure at the bottom of the hole
  double waterCut = 0;   ///< word 8
};

/// One well, from IWEL, ZWEL and ZGRP.
struct WellRecord {
  std::string name;           ///< empty without ZWEL
  std::int32_t iType = 0;     ///< word 7: 1 producer, 2, 3, 4 injector of oil, water, gas
  std::int32_t iPhase = 0;    ///< what it is controlled by, or injects: 1 oil, 2 water, 3 gas, 4 liquid
  std::int32_t iStatus = 0;   ///< word 11: 1 open, -1000 shut
  std::int32_t iControl = 0;  ///< word 9: control mode; 1, 2, 3, 4 by the rate of that phase
  std::int32_t iHead = 0;     ///< words 1, 2: cell column of the head, from 1
  std::int32_t jHead = 0;
  std::int32_t iPVTTable = 0;     ///< word 13
  std::int32_t iGroup = 0;        ///< word 6: number of its group, from 1
  std::string group;              ///< name of the group; empty without ZGRP
  std::int32_t nConnections = 0;  ///< word 5: what the well says, also when the step has no ICON
  std::int32_t iWord8 = 0;
  std::int32_t iWord12 = 0;
  std::int32_t iWord23 = 0;
  std::int32_t iWord25 = 0;
  std::optional<WellRates> rates;
  std::vector<ConnectionRecord> connections;  ///< in the order of the file

  WellType type() const { return wellTypeOf(iType); }
};

/// The wells of a grid, in the order of the file; none when its IWEL was not read. Throws Fault 9 for
/// connections that are missing from their table.
LUMBARN_API std::vector<WellRecord> wellRecords(const RESTARTGRID& grid);

/// Words for the numbers of a record: "open" and "shut", "oil", "oil rate", "X". An unknown number
/// is returned as digits: "7".
LUMBARN_API std::string wellStatusText(std::int32_t iStatus);
LUMBARN_API std::string connectionStatusText(std::int32_t iStatus);
LUMBARN_API std::string phaseText(std::int32_t iPhase);
LUMBARN_API std::string controlText(std::int32_t iControl);
LUMBARN_API std::string directionText(std::int32_t iDirection);

}  // namespace lumbarn
