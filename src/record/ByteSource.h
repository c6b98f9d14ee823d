#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "../support/System.h"

namespace lumbarn {

/// Where bytes enter: a file or a block of memory, read by position.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  virtual std::uint64_t size() const = 0;
  /// Copies up to out.size() bytes from a position; gives the count copied, less only at the end.
  virtual std::size_t readAt(std::uint64_t position, std::span<std::byte> out) const = 0;
};

/// A file. Its size is what it was at opening: bytes that a running simulator adds later are seen by the next
/// load.
class FileSource final : public ByteSource {
 public:
  /// Null with `error` set when the file cannot be opened.
  static std::unique_ptr<FileSource> open(const std::string& path, std::string& error);
  std::uint64_t size() const override { return size_; }
  std::size_t readAt(std::uint64_t position, std::span<std::byte> out) const override;

 private:
  explicit FileSource(InputFile file) : file_(std::move(file)), size_(file_.size()) {}
  InputFile file_;
  std::uint64_t size_;
};

/// Bytes in memory; owns them.
class MemorySource final : public ByteSource {
 public:
  explicit MemorySource(std::vector<std::byte> bytes) : bytes_(std::move(bytes)) {}
  std::uint64_t size() const override { return bytes_.size(); }
  std::size_t readAt(std::uint64_t position, std::span<std::byte> out) const override;

 private:
  std::vector<std::byte> bytes_;
};

}  // namespace lumbarn
