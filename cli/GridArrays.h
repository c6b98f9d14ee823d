#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Console.h"
#include "VtkExport.h"
#include "files/Families.h"
#include "grid/Hadrick.h"
#include "record/RecordCursor.h"

namespace lumbarn::cli {

/// Arrays of a run's restart and INIT files that have a value for each active cell, or for each cell, of one
/// grid, ready to be exported.
class GridArrays {
 public:
  /// Walks the files. `step`: take this one step of the restart alone, as if its arrays did not change.
  /// Throws Failure when the run has no such step.
  GridArrays(const RunFamily& run, const Hadrick& grid, std::optional<std::int32_t> step, Console& console);

  /// An array by name: of the restart, or of INIT if the restart has none. Throws Failure if neither has.
  CellArray array(const std::string& name) const;
  /// Days of each restart step, or the step's number where the file does not tell.
  std::vector<double> times() const;

 private:
  /// A record of numbers, and how to come to it.
  struct Place {
    std::string path;
    RecordHeader header;
  };
  struct Step {
    std::int32_t number = 0;
    double days = 0;
    std::map<std::string, Place> arrays;
  };
  /// Keeps the file open that was read last: steps may be in a file each.
  class Source;

  /// The arrays of a file, step by step; all in one step when the file has no steps.
  void walk(const std::string& path, std::vector<Step>& steps, Console& console) const;
  template <class Number>
  CellReader<Number> reader(std::vector<const Place*> places) const;
  CellArray arrayOf(const std::string& name, std::vector<const Place*> places) const;
  std::vector<std::string> names() const;

  const Hadrick& grid_;
  bool oneStep_;
  std::vector<Step> steps_;  // of the restart
  Step init_;
  std::shared_ptr<Source> source_;
  Console& console_;
};

}  // namespace lumbarn::cli
