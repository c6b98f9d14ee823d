#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "record/Form.h"

namespace lumbarn::bench {

/// The columns of a run as large studies have them: a few hundred wells with their connections, groups,
/// regions, flows between regions, and blocks, in the order in which simulators write them, mnemonic by
/// mnemonic.
struct SummaryColumns {
  std::vector<std::string> keywords;
  std::vector<std::string> names;
  std::vector<std::int32_t> numbers;
  std::vector<std::string> units;
};
SummaryColumns makeColumns(std::size_t count);

/// A specification file and a data file of one row per report step.
struct SyntheticRun {
  std::filesystem::path specification;
  std::filesystem::path data;
  std::size_t vectors = 0;
  std::size_t rows = 0;
};
/// Where the files of a run are, without making them.
SyntheticRun syntheticRun(const std::filesystem::path& folder, const std::string& name, bool formatted,
                          std::size_t vectors, std::size_t rows);
/// Makes them, unless files of the right size are there. Throws std::runtime_error when the disk takes no
/// more.
void writeRun(const SyntheticRun& run, const Form& form);

/// The runs that the cases on records and on summaries share.
struct SummaryFiles {
  explicit SummaryFiles(const std::filesystem::path& folder);
  void write() const;

  SyntheticRun plain;      ///< 10,000 vectors by 3,000 rows, unformatted, big-endian
  SyntheticRun twice;      ///< the same with 6,000 rows
  SyntheticRun formatted;  ///< 1,000 by 1,000
};

}  // namespace lumbarn::bench
