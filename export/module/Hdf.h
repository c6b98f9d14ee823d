#pragma once

#include <cstdint>
#include <hdf5.h>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "HdfFunctions.h"

namespace lumbarn::hdf {

/// Writing an HDF5 file piece by piece. Whatever HDF5 refuses ends in Failure.
struct Failure {
  std::string what;   ///< the name of the object
  std::string cause;  ///< HDF5's own description
};

/// Throws Failure when an HDF5 call returned a failure.
void check(herr_t result, std::string_view what);

/// An open HDF5 object. Move-only; closes itself, which loses a failure to write what HDF5 still kept, so
/// objects that hold data are closed by `close`.
class Handle {
 public:
  using Close = herr_t (*)(hid_t);

  Handle() = default;
  /// Takes the result of an HDF5 call; throws when it is a failure.
  Handle(hid_t id, Close closer, std::string_view what);
  Handle(Handle&& other) noexcept : id_(std::exchange(other.id_, H5I_INVALID_HID)), close_(other.close_) {}
  Handle& operator=(Handle&& other) noexcept;
  ~Handle() { reset(); }

  hid_t id() const { return id_; }
  void reset();
  /// Closes, and throws when HDF5 fails to.
  void close(std::string_view what);

 private:
  hid_t id_ = H5I_INVALID_HID;
  Close close_ = nullptr;
};

/// Keeps HDF5 from printing its errors on standard error while this lives.
class Quiet {
 public:
  Quiet();
  ~Quiet();
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;

 private:
  H5E_auto2_t function_ = nullptr;
  void* data_ = nullptr;
};

/// The type of numbers, in memory and in the file.
hid_t typeOf(lumbarn_hdf_type type);

Handle createGroup(const Handle& parent, const std::string& name);

void setText(const Handle& object, const char* name, std::string_view text);
void setNumbers(const Handle& object, const char* name, std::span<const std::int64_t> numbers);
void setNumber(const Handle& object, const char* name, std::int64_t number);

/// A dataset of rows, written from its first row on.
class Table {
 public:
  Table() = default;
  /// `rows`: how many there will be, when it is known. `components`: numbers in each row; with 1 the dataset
  /// has one dimension, unless `twoDimensional`.
  Table(const Handle& parent, const std::string& name, hid_t type, std::int64_t rows,
        std::int64_t components = 1, bool twoDimensional = false);
  /// A table that grows.
  static Table growing(const Handle& parent, const std::string& name, hid_t type, std::int64_t components);

  /// Writes the next rows.
  void append(const void* numbers, std::size_t count);
  /// Closes the dataset, after its last row; throws when HDF5 fails to write what it still kept.
  void close();

 private:
  std::string name_;
  hid_t type_ = H5I_INVALID_HID;
  Handle dataset_;
  std::int64_t components_ = 1;
  bool twoDimensional_ = false;
  bool grows_ = false;
  std::int64_t written_ = 0;
};

}  // namespace lumbarn::hdf
