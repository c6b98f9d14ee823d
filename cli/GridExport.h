#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Console.h"
#include "Failure.h"

namespace lumbarn::cli {

/// What `grid --vtk` writes.
struct GridExport {
  std::string path;
  std::string grid;  ///< empty: all grids
  std::string vtk;
  std::vector<std::string> arrays;
  std::optional<std::int32_t> step;
  bool zUp = false;
  bool replace = false;
};

/// Writes the active cells of the grids of a run to a file for viewers. Throws Failure.
ExitStatus exportGrids(const GridExport& options, Console& console);

}  // namespace lumbarn::cli
