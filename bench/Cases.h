#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "SyntheticRun.h"

namespace lumbarn::bench {

/// The files that all cases read.
struct BenchFiles {
  explicit BenchFiles(const std::filesystem::path& folder);
  void write() const;

  SyntheticRun plain;      ///< 10,000 vectors by 3,000 rows, unformatted, big-endian
  SyntheticRun twice;      ///< the same with 6,000 rows
  SyntheticRun formatted;  ///< 1,000 by 1,000
};

/// One figure: the time of `body` as a ratio to that of `baseline`, and the memory that one run of it takes.
struct Case {
  std::string name;
  std::string against;         ///< what the baseline is, for the table
  double goal = 0;             ///< the ratio should be at most this; 0 without a goal
  double least = 0;            ///< and at least this
  double memoryGoal = 0;       ///< peak memory in bytes above an idle process; 0 without a goal
  std::function<void()> body;  ///< throws std::runtime_error when what it read is not what was written
  std::function<void()> baseline;
};

/// Cases on the record layer alone, and on the whole reader.
std::vector<Case> recordCases(const BenchFiles& files);
std::vector<Case> summaryCases(const BenchFiles& files);

/// Throws unless a case did what it was to do.
void require(bool condition, const std::string& what);

}  // namespace lumbarn::bench
