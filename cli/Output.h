#pragma once

#include <filesystem>
#include <fstream>
#include <ostream>
#include <span>
#include <string>

#include "TableWriter.h"

namespace lumbarn::cli {

/// What `--format` and `-o` say.
struct OutputOptions {
  Format format = Format::Table;
  std::string file;  ///< empty: standard output
};

/// Throws Failure when a file to be written is one of `inputs`.
void refuseInputs(const std::string& file, std::span<const std::string> inputs);

/// Where a subcommand's data go: standard output, or a file that appears under its name once it is complete.
/// Until then it has a temporary name in the same folder, and nothing of it stays behind unless `commit` is
/// reached.
class Output {
 public:
  /// Throws Failure when the file cannot be written, or is one of `inputs`.
  Output(const OutputOptions& options, std::ostream& standard, std::span<const std::string> inputs);
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  std::ostream& stream() { return target_.empty() ? standard_ : file_; }
  /// Throws Failure when not everything could be written.
  void commit();

 private:
  std::ostream& standard_;
  std::filesystem::path target_;     // empty: standard output
  std::filesystem::path temporary_;  // empty: written in place, or committed
  std::ofstream file_;
};

}  // namespace lumbarn::cli
