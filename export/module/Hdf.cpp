#include "Hdf.h"

#include <algorithm>
#include <array>

namespace lumbarn::hdf {
namespace {

/// HDF5's own description of the first cause of its last failure.
std::string cause() {
  std::string text;
  const auto keepFirst = [](unsigned place, const H5E_error2_t* error, void* kept) -> herr_t {
    if (place == 0 && error->desc) *static_cast<std::string*>(kept) = error->desc;
    return 0;
  };
  H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, keepFirst, &text);
  return text;
}

/// Rows of a growing table that are kept together in the file.
constexpr hsize_t rowsInChunk = 16384;

using Sizes = std::array<hsize_t, 2>;

Handle space(int dimensions, const Sizes& sizes, const Sizes& limits) {
  return {H5Screate_simple(dimensions, sizes.data(), limits.data()), H5Sclose, "size of a dataset"};
}

/// The layout of a new dataset in the file. HDF5 is not to fill what has not been written yet.
Handle layout(int dimensions, bool grows, hsize_t components) {
  Handle properties(H5Pcreate(H5P_DATASET_CREATE), H5Pclose, "layout of a dataset");
  check(H5Pset_fill_time(properties.id(), H5D_FILL_TIME_NEVER), "layout of a dataset");
  const Sizes chunk{rowsInChunk, components};
  if (grows) check(H5Pset_chunk(properties.id(), dimensions, chunk.data()), "layout of a dataset");
  return properties;
}

Handle createTable(const Handle& parent, const std::string& name, hid_t type, int dimensions,
                   std::int64_t rows, std::int64_t components, bool grows) {
  const Sizes sizes{static_cast<hsize_t>(rows), static_cast<hsize_t>(components)};
  const Sizes limits{grows ? H5S_UNLIMITED : sizes[0], sizes[1]};
  const Handle extent = space(dimensions, sizes, limits);
  const Handle properties = layout(dimensions, grows, sizes[1]);
  return {H5Dcreate2(parent.id(), name.c_str(), type, extent.id(), H5P_DEFAULT, properties.id(), H5P_DEFAULT),
          H5Dclose, name};
}

void setAttribute(const Handle& object, const char* name, hid_t type, const Handle& extent,
                  const void* value) {
  const Handle attribute(H5Acreate2(object.id(), name, type, extent.id(), H5P_DEFAULT, H5P_DEFAULT), H5Aclose,
                         name);
  check(H5Awrite(attribute.id(), type, value), name);
}

}  // namespace

void check(herr_t result, std::string_view what) {
  if (result >= 0) return;
  throw Failure{std::string(what), cause()};
}

Handle::Handle(hid_t id, Close closer, std::string_view what) : id_(id), close_(closer) {
  check(id < 0 ? -1 : 0, what);
}

Handle& Handle::operator=(Handle&& other) noexcept {
  reset();
  id_ = std::exchange(other.id_, H5I_INVALID_HID);
  close_ = other.close_;
  return *this;
}

void Handle::reset() {
  if (id_ >= 0) close_(id_);
  id_ = H5I_INVALID_HID;
}

void Handle::close(std::string_view what) { check(close_(std::exchange(id_, H5I_INVALID_HID)), what); }

Quiet::Quiet() {
  H5Eget_auto2(H5E_DEFAULT, &function_, &data_);
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
}
Quiet::~Quiet() { H5Eset_auto2(H5E_DEFAULT, function_, data_); }

hid_t typeOf(lumbarn_hdf_type type) {
  switch (type) {
    case LUMBARN_HDF_FLOAT32:
      return H5T_NATIVE_FLOAT;
    case LUMBARN_HDF_FLOAT64:
      return H5T_NATIVE_DOUBLE;
    case LUMBARN_HDF_INT32:
      return H5T_NATIVE_INT32;
    case LUMBARN_HDF_INT64:
      return H5T_NATIVE_INT64;
    default:
      return H5T_NATIVE_UINT8;
  }
}

Handle createGroup(const Handle& parent, const std::string& name) {
  return {H5Gcreate2(parent.id(), name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), H5Gclose, name};
}

void setText(const Handle& object, const char* name, std::string_view text) {
  const Handle type(H5Tcopy(H5T_C_S1), H5Tclose, name);
  check(H5Tset_size(type.id(), text.size()), name);
  check(H5Tset_strpad(type.id(), H5T_STR_NULLPAD), name);
  setAttribute(object, name, type.id(), {H5Screate(H5S_SCALAR), H5Sclose, name}, text.data());
}

void setNumbers(const Handle& object, const char* name, std::span<const std::int64_t> numbers) {
  const Sizes sizes{numbers.size(), 1};
  setAttribute(object, name, H5T_NATIVE_INT64, space(1, sizes, sizes), numbers.data());
}

void setNumber(const Handle& object, const char* name, std::int64_t number) {
  setAttribute(object, name, H5T_NATIVE_INT64, {H5Screate(H5S_SCALAR), H5Sclose, name}, &number);
}

Table::Table(const Handle& parent, const std::string& name, hid_t type, std::int64_t rows,
             std::int64_t components, bool twoDimensional)
    : name_(name), type_(type), components_(components), twoDimensional_(twoDimensional || components > 1) {
  dataset_ = createTable(parent, name, type, twoDimensional_ ? 2 : 1, rows, components, false);
}

Table Table::growing(const Handle& parent, const std::string& name, hid_t type, std::int64_t components) {
  Table table;
  table.name_ = name;
  table.type_ = type;
  table.components_ = components;
  table.twoDimensional_ = components > 1;
  table.grows_ = true;
  table.dataset_ = createTable(parent, name, type, table.twoDimensional_ ? 2 : 1, 0, components, true);
  return table;
}

void Table::append(const void* numbers, std::size_t count) {
  if (count == 0) return;
  const int dimensions = twoDimensional_ ? 2 : 1;
  const Sizes first{static_cast<hsize_t>(written_), 0};
  const Sizes sizes{count / static_cast<hsize_t>(components_), static_cast<hsize_t>(components_)};
  const Sizes all{first[0] + sizes[0], sizes[1]};
  if (grows_) check(H5Dset_extent(dataset_.id(), all.data()), name_);
  const Handle memory = space(dimensions, sizes, sizes);
  const Handle file(H5Dget_space(dataset_.id()), H5Sclose, name_);
  check(H5Sselect_hyperslab(file.id(), H5S_SELECT_SET, first.data(), nullptr, sizes.data(), nullptr), name_);
  check(H5Dwrite(dataset_.id(), type_, memory.id(), file.id(), H5P_DEFAULT, numbers), name_);
  written_ += static_cast<std::int64_t>(sizes[0]);
}

void Table::close() { dataset_.close(name_); }

}  // namespace lumbarn::hdf
