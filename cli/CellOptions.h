#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Answer.h"

namespace lumbarn::cli {

/// Which values of arrays to show, as texts of the command line.
struct CellOptions {
  std::vector<std::string> arrays;
  std::string grid;
  std::vector<std::string> cells;
  std::vector<std::string> regions;
  bool ijk = false;
  bool all = false;
  std::optional<std::int32_t> step;
  std::optional<std::int32_t> nth;
  TimeOptions time;

  /// Throws Failure and Error for texts that are none.
  CellSelection selection() const;
};

/// `--region`, which may be repeated.
void addRegionOption(Subcommand& command, std::vector<std::string>& regions);
std::vector<RegionFilter> regionsFrom(const std::vector<std::string>& texts);

/// `--array`, `--grid`, `--cell`, `--region`, `--ijk` and `--all`.
void addCellOptions(Subcommand& command, CellOptions& options);
/// `--step`, `--nth` and what `Subcommand::time` adds.
void addStepOptions(Subcommand& command, CellOptions& options);

/// Which steps to show: by default the one of the step file that the run was named by.
TimeSelection stepsOf(const Run& run, const CellOptions& options);

/// Asks a run for values of cells and writes them: rows, or keywords of a data deck.
ExitStatus writeCells(const Run& run, const CellSelection& selection, const OutputOptions& options,
                      Console& console);

}  // namespace lumbarn::cli
