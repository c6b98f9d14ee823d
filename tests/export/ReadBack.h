#pragma once

#include <cstdint>
#include <hdf5.h>
#include <string>
#include <type_traits>
#include <vector>

namespace lumbarn::test {

/// All values of a dataset in an HDF5 file.
template <class Number>
std::vector<Number> readDataset(const std::string& path, const std::string& name) {
  const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
  const hid_t dataset = H5Dopen2(file, name.c_str(), H5P_DEFAULT);
  const hid_t space = H5Dget_space(dataset);
  std::vector<Number> values(static_cast<std::size_t>(H5Sget_simple_extent_npoints(space)));
  const hid_t type = std::is_same_v<Number, float>          ? H5T_NATIVE_FLOAT
                     : std::is_same_v<Number, double>       ? H5T_NATIVE_DOUBLE
                     : std::is_same_v<Number, std::int32_t> ? H5T_NATIVE_INT32
                     : std::is_same_v<Number, std::int64_t> ? H5T_NATIVE_INT64
                                                            : H5T_NATIVE_UINT8;
  H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data());
  H5Sclose(space);
  H5Dclose(dataset);
  H5Fclose(file);
  return values;
}

}  // namespace lumbarn::test
