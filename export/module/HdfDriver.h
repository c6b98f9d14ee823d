#pragma once

#include <cstdint>
#include <hdf5.h>

#include "Hdf.h"

namespace lumbarn::hdf {

/// A new HDF5 file in a storage, through a file driver of our own. HDF5 keeps data in caches that it writes
/// when objects, the file or the process end; when one of these writes fails it cannot close the object, and
/// tries again in the exit handler, with memory that has been released. So the driver remembers the first
/// failed write and accepts all that follow: HDF5 closes as usual, and the state has the failure.
class File {
 public:
  explicit File(const lumbarn_hdf_storage& storage);
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  const Handle& handle() const { return handle_; }
  /// Writes what HDF5 has kept back and closes the file.
  void close();

  /// What the driver knows of the storage.
  struct State {
    lumbarn_hdf_storage storage{};
    bool failed = false;
    std::uint64_t failedAt = 0;
  };

  const State& state() const { return state_; }

 private:
  State state_;
  Handle driver_;
  Handle handle_;
};

}  // namespace lumbarn::hdf
