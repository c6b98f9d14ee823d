#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "System.h"

namespace lumbarn {

/// A file that appears under its name once it is complete. Until `commit` it has a random name in the same
/// folder, so nobody sees a part of it, and the file that it replaces is unchanged when writing fails.
/// Nothing stays behind unless `commit` was reached.
///
/// Failures throw BadRecord with the target's path and the system's reason.
class PendingFile {
 public:
  /// Creates the temporary file. A target that is a link stays one, and the file it points to is replaced. A
  /// target that exists and is not a regular file is refused.
  explicit PendingFile(const std::string& target);
  ~PendingFile();
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;

  OutputFile& out() { return out_; }
  /// Closes the file and gives it its name, and the permissions of the file that it replaces.
  void commit();
  /// Throws for a write to `out` that failed, at this byte.
  [[noreturn]] void fail(std::optional<std::uint64_t> offset = {}) const { fail(out_.error(), offset); }

 private:
  [[noreturn]] void fail(const std::string& reason, std::optional<std::uint64_t> offset = {}) const;

  std::string name_;  // as the caller gave it
  std::filesystem::path target_;
  std::filesystem::path temporary_;  // empty when it does not exist
  OutputFile out_;
};

}  // namespace lumbarn
