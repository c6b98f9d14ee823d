#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "Export.h"

namespace lumbarn {

/// The operating system, as far as this library needs it. System.cpp is the only file that includes its
/// headers.

/// What identifies a state of a file. Nanoseconds count from the system's epoch.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  std::int64_t modified = 0;  ///< time of the last change of the contents

  bool operator==(const FileStamp&) const = default;
};

/// The stamp of the file that a path names now; empty when there is none.
LUMBARN_API std::optional<FileStamp> stampOf(const std::string& path);

/// How a file differs from an earlier state of it.
enum class FileChange {
  None,       ///< or it has grown, as the files of a running simulation do
  Replaced,   ///< another file has its name
  Shrunk,     ///< a rerun started it again, or somebody truncated it
  Rewritten,  ///< same size, modified at another time
};
LUMBARN_API FileChange changeBetween(const FileStamp& before, const FileStamp& now);

/// A file open for reading by position. Move-only; closes itself.
class LUMBARN_API InputFile {
 public:
  InputFile() = default;
  /// Opens a regular file. On failure `isOpen` is false and `error` says why ("No such file or directory",
  /// "is a folder").
  InputFile(const std::string& path, std::string& error);
  InputFile(InputFile&& other) noexcept;
  ~InputFile();

  bool isOpen() const { return handle_ >= 0; }
  void close();
  /// The state of the open file at this moment; empty when the system does not report it.
  std::optional<FileStamp> stamp() const;
  /// Its state when it was opened.
  const FileStamp& openingStamp() const { return openingStamp_; }
  /// Reads up to out.size() bytes at a position and returns the number read, which is smaller only at the end
  /// of the file or at a read error; `error` then states the reason, and is left alone at the end of the
  /// file.
  std::size_t readAt(std::uint64_t position, std::span<std::byte> out, std::string& error) const;
  /// Tells the system that a few bytes here and there will be read, so that it does not read ahead.
  void expectSparseReads() const;

 private:
  std::intptr_t handle_ = -1;
  FileStamp openingStamp_;
};

/// A file open for writing from its start. Move-only; closes itself.
class LUMBARN_API OutputFile {
 public:
  OutputFile() = default;
  /// Makes or empties the file.
  OutputFile(const std::string& path, std::string& error);
  /// Creates a file that can be read back too. Fails when anything has that name already, a link that points
  /// nowhere included.
  static OutputFile createNew(const std::string& path, std::string& error);
  OutputFile& operator=(OutputFile&& other) noexcept;
  ~OutputFile();

  bool isOpen() const { return handle_ >= 0; }
  /// Appends all bytes; false when the disk takes no more.
  bool write(std::span<const std::byte> bytes);
  /// Writes all bytes at a position; false likewise.
  bool writeAt(std::uint64_t position, std::span<const std::byte> bytes);
  /// Reads bytes of a file that was created new; those behind its end are 0. False at a read error.
  bool readAt(std::uint64_t position, std::span<std::byte> out);
  /// False when the system reports a late write error.
  bool close();
  /// The system's reason for the first failure of the operations above; empty when none has failed.
  const std::string& error() const { return error_; }

 private:
  explicit OutputFile(std::intptr_t handle) : handle_(handle) {}
  bool failed();

  std::intptr_t handle_ = -1;
  std::string error_;
};

/// Makes an empty file with a fresh name that begins with `prefix` in the folder for temporary files, and
/// gives its path; empty when none can be made.
LUMBARN_API std::string makeTemporaryFile(const std::string& prefix);

/// Memory for large results: page-aligned, in large pages where the system has them, not initialised. Throws
/// std::bad_alloc. Give the same size back.
LUMBARN_API void* allocateLarge(std::size_t bytes);
LUMBARN_API void freeLarge(void* memory, std::size_t bytes) noexcept;

/// Opens a shared library, which stays open, by the system's search, and finds a function in it. Null with
/// the reason in `error`.
LUMBARN_API void* openLibrary(const std::string& name, const char* function, std::string& error);

/// The file that holds this library's code: itself when it is shared, else the program; empty when not known.
LUMBARN_API std::string thisModulePath();

/// True when messages on standard error are read by a person at a terminal.
LUMBARN_API bool stderrIsTerminal();

}  // namespace lumbarn
