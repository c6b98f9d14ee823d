#pragma once

#include <memory>
#include <string>

#include "Write.h"

namespace lumbarn {

class OutputFile;
class PendingFile;

/// A file as a sink. It appears under its name once it is complete: unless `commit` is reached, nothing is
/// left, and a file that was there before is unchanged. A link stays one, and the file it points to is
/// replaced. What is no regular file, as a pipe, is written in place.
///
/// Throws Error System when the file cannot be written, BadRequest for a folder.
class FileSink final : public Sink {
 public:
  explicit FileSink(const std::string& path);
  ~FileSink() override;

  void write(std::span<const std::byte> bytes) override;
  /// Hands on what is held back where somebody may wait for it.
  void flush() override;
  /// Writes what is held back, closes the file and gives it its name.
  void commit();

 private:
  void put(std::span<const std::byte> bytes);
  [[noreturn]] void fail(const std::string& why) const;

  std::string path_;
  std::unique_ptr<PendingFile> pending_;  // null: written in place
  std::unique_ptr<OutputFile> inPlace_;   // null: pending
  std::string held_;                      // to write larger pieces
};

}  // namespace lumbarn
