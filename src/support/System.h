#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace lumbarn {

/// The operating system, as far as this library needs it. System.cpp is the only file that includes its
/// headers.

/// A file open for reading by position. Move-only; closes itself.
class InputFile {
 public:
  InputFile() = default;
  /// Opens a regular file. On failure `isOpen` is false and `error` says why ("No such file or directory",
  /// "is a folder").
  InputFile(const std::string& path, std::string& error);
  InputFile(InputFile&& other) noexcept;
  InputFile& operator=(InputFile&& other) noexcept;
  ~InputFile();

  bool isOpen() const { return handle_ >= 0; }
  void close();
  /// Size in bytes at this moment; a running simulator may let it grow, a restarting one may cut it.
  std::uint64_t size() const;
  /// Reads up to out.size() bytes at a position; gives the count read, less only at the end of the file or
  /// at a read error.
  std::size_t readAt(std::uint64_t position, std::span<std::byte> out) const;

 private:
  std::intptr_t handle_ = -1;
};

/// A file open for writing from its start. Move-only; closes itself.
class OutputFile {
 public:
  OutputFile() = default;
  /// Makes or empties the file.
  OutputFile(const std::string& path, std::string& error);
  OutputFile(OutputFile&& other) noexcept;
  OutputFile& operator=(OutputFile&& other) noexcept;
  ~OutputFile();

  bool isOpen() const { return handle_ >= 0; }
  /// Appends all bytes; false when the disk takes no more.
  bool write(std::span<const std::byte> bytes);
  /// False when the system reports a late write error.
  bool close();

 private:
  std::intptr_t handle_ = -1;
};

/// Makes an empty file with a fresh name that begins with `prefix` in the folder for temporary files, and
/// gives its path; empty when none can be made.
std::string makeTemporaryFile(const std::string& prefix);

/// Memory for large results: page-aligned, in large pages where the system has them, not initialised. Throws
/// std::bad_alloc. Give the same size back.
void* allocateLarge(std::size_t bytes);
void freeLarge(void* memory, std::size_t bytes) noexcept;

/// The file that holds this library's code: itself when it is shared, else the program; empty when not known.
std::string thisModulePath();

/// True when messages on standard error are read by a person at a terminal.
bool stderrIsTerminal();

}  // namespace lumbarn
