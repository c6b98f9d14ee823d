#pragma once

#include <cstddef>
#include <cstdint>
#include <hdf5.h>
#include <span>
#include <string>

#include "Hdf.h"

namespace lumbarn::hdf {

/// Where the bytes of an HDF5 file go. Nothing here may throw, as HDF5 calls it.
class Storage {
 public:
  virtual ~Storage() = default;
  /// False when not all bytes could be written.
  virtual bool writeAt(std::uint64_t position, std::span<const std::byte> bytes) noexcept = 0;
  virtual bool readAt(std::uint64_t position, std::span<std::byte> out) noexcept = 0;
  /// The reason for the first failure.
  virtual std::string error() const = 0;
};

/// A new HDF5 file in a storage, through a file driver of our own. HDF5 keeps data in caches that it writes
/// when objects, the file or the process end; when one of these writes fails it cannot close the object, and
/// tries again in the exit handler, with memory that has been released. So the driver remembers the first
/// failed write and accepts all that follow: HDF5 closes as usual, and `check` reports the failure.
class File {
 public:
  explicit File(Storage& storage);
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  const Handle& handle() const { return handle_; }
  /// Throws BadRecord when a write or read has failed so far, with its position and the storage's reason.
  void check() const;
  /// Writes what HDF5 has kept back, closes the file and checks.
  void close();

  /// What the driver knows of the storage.
  struct State {
    Storage* storage = nullptr;
    bool failed = false;
    std::uint64_t failedAt = 0;
  };

 private:
  State state_;
  Handle driver_;
  Handle handle_;
};

}  // namespace lumbarn::hdf
