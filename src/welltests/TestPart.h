#pragma once

#include <cstdint>

namespace lumbarn {

/// The tables that a well test can give.
enum class TestPart : std::uint8_t {
  Rft,        ///< pressures and saturations at the connections
  Plt,        ///< rates along the well
  PltBranch,  ///< the same for the connections of one branch
  Branch,     ///< the segments of one branch
  Devices,    ///< the inflow control devices that empty into one branch of the tubing
  Segments,   ///< all segments, as the file has them
  All,        ///< every array, as the file has it
};

}  // namespace lumbarn
