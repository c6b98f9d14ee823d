#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "../support/Diagnosis.h"
#include "../support/Export.h"
#include "../support/System.h"

namespace lumbarn {

/// Where bytes enter: a file or a block of memory, read by position.
class LUMBARN_API ByteSource {
 public:
  virtual ~ByteSource();
  virtual std::uint64_t size() const = 0;
  /// The file, for messages; empty when there is none.
  virtual std::string path() const { return {}; }
  /// Its state when it was opened; empty for bytes that are in no file.
  virtual std::optional<FileStamp> stamp() const { return std::nullopt; }
  /// The damage that the bytes read so far and those still to come may be of two runs: the file was replaced,
  /// truncated or rewritten after it was opened. Growth is a running simulation and not reported.
  virtual std::optional<Diagnosis> changed() const { return std::nullopt; }
  /// Announces that only a few bytes here and there will be read.
  virtual void expectSparseReads() const {}

  /// Copies bytes from a position and returns their number: out.size(), or less where the source ends. Throws
  /// BadRecord (FileRead) at the first byte that cannot be read, so that a failure never looks like an end.
  std::size_t readAt(std::uint64_t position, std::span<std::byte> out) const;

 protected:
  /// Copies bytes, all of which are before the end, and returns their number. Where it is smaller than asked
  /// for, `why` may state the reason.
  virtual std::size_t transfer(std::uint64_t position, std::span<std::byte> out, std::string& why) const = 0;
};

/// A file. Its size is what it was at opening: bytes that a running simulator adds later are seen by the next
/// load.
class LUMBARN_API FileSource final : public ByteSource {
 public:
  /// The one place where a file is opened for reading. Null with `error` set when it cannot be. The source is
  /// what `Session::process().wrapSource` makes of it, where a test or an audit has set that.
  static std::unique_ptr<const ByteSource> open(const std::string& path, std::string& error);
  std::uint64_t size() const override { return stamp_.size; }
  std::string path() const override { return path_; }
  std::optional<FileStamp> stamp() const override { return stamp_; }
  std::optional<Diagnosis> changed() const override;
  void expectSparseReads() const override { file_.expectSparseReads(); }

 private:
  FileSource(InputFile file, std::string path, const FileStamp& stamp)
      : file_(std::move(file)), path_(std::move(path)), stamp_(stamp) {}
  std::size_t transfer(std::uint64_t position, std::span<std::byte> out, std::string& why) const override;

  InputFile file_;
  std::string path_;
  FileStamp stamp_;
};

/// The damage that a file is not as it was at an earlier time, for code that opens it again.
LUMBARN_API std::optional<Diagnosis> changedSince(const FileStamp& before, const std::string& path);

/// Bytes in memory; owns them.
class LUMBARN_API MemorySource final : public ByteSource {
 public:
  explicit MemorySource(std::vector<std::byte> bytes) : bytes_(std::move(bytes)) {}
  std::uint64_t size() const override { return bytes_.size(); }

 private:
  std::size_t transfer(std::uint64_t position, std::span<std::byte> out, std::string& why) const override;

  std::vector<std::byte> bytes_;
};

}  // namespace lumbarn
