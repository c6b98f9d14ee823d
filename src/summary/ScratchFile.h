#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "../support/System.h"

namespace lumbarn {

/// A temporary file of raw singles, in the folder for temporary files and never beside the data. Removed with
/// the object unless it is handed over. Whatever fails throws Fault 62 with a text that says why.
class ScratchFile {
 public:
  explicit ScratchFile(const std::string& prefix);
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  ~ScratchFile();

  /// Appends values.
  void write(std::span<const float> values);
  void write(std::span<const std::int32_t> words);
  /// Ends writing.
  void finish();
  /// Fills the array from the file, beginning at a value, from 0.
  void read(std::span<float> values, std::uint64_t firstValue = 0) const;
  /// Leaves the file to the caller.
  std::string release();

 private:
  void put(std::span<const std::byte> bytes);

  std::string path_;
  OutputFile out_;
};

}  // namespace lumbarn
