#pragma once

#include <cstdint>
#include <string>

#include "../arrays/ArraySelection.h"
#include "../index/ReportStep.h"

namespace lumbarn {

/// What is to be read of a report step.
struct StepOptions {
  bool LoadData = true;         ///< keep values in memory; False: places only
  std::string Origin;           ///< label for all grids
  bool Unified = false;         ///< the file holds several steps
  bool ReadOnlyHeader = false;  ///< keep no arrays
  std::int32_t iStart = -1;     ///< limits of the file set; negative: open
  std::int32_t iEnd = -1;
  bool qMarkers = false;  ///< the extended well records are wanted

  // Not used by existing hosts.
  double noRate = 0;                       ///< stands for a number of XWEL beyond 1E36, which is none
  ArraySelection* selection = nullptr;     ///< patterns of array names; not owned, null: all
  const StepParts* partsBefore = nullptr;  ///< of the step before; not owned, null: none
};

}  // namespace lumbarn
