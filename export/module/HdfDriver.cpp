#include "HdfDriver.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <span>
#if H5_VERSION_GE(1, 13, 0)
#include <H5FDdevelop.h>
#endif

namespace lumbarn::hdf {
namespace {

constexpr haddr_t largestAddress = (haddr_t{1} << 62) - 1;

/// An open file as HDF5 has it: its own part comes first.
struct OpenFile {
  H5FD_t base{};
  File::State* state = nullptr;
  haddr_t allocated = 0;  // the end of what HDF5 has given to its objects
  haddr_t end = 0;        // and of what it has written
};

OpenFile& of(H5FD_t* file) { return *reinterpret_cast<OpenFile*>(file); }
const OpenFile& of(const H5FD_t* file) { return *reinterpret_cast<const OpenFile*>(file); }

void attempt(OpenFile& file, haddr_t position, bool done) {
  if (done || file.state->failed) return;
  file.state->failed = true;
  file.state->failedAt = position;
}

void put(OpenFile& file, haddr_t position, std::span<const std::byte> bytes) {
  if (!file.state->failed) {
    const lumbarn_hdf_storage& storage = file.state->storage;
    attempt(file, position, storage.write_at(storage.user, position, bytes.data(), bytes.size()) != 0);
  }
  file.end = std::max(file.end, position + bytes.size());
}

H5FD_t* open(const char*, unsigned, hid_t access, haddr_t) {
  auto* file = new (std::nothrow) OpenFile;
  if (!file) return nullptr;
  file->state = *static_cast<File::State* const*>(H5Pget_driver_info(access));
  return &file->base;
}

herr_t close(H5FD_t* file) {
  delete &of(file);
  return 0;
}

herr_t query(const H5FD_t*, unsigned long* features) {
  *features = H5FD_FEAT_AGGREGATE_METADATA | H5FD_FEAT_ACCUMULATE_METADATA | H5FD_FEAT_DATA_SIEVE |
              H5FD_FEAT_AGGREGATE_SMALLDATA;
  return 0;
}

haddr_t allocated(const H5FD_t* file, H5FD_mem_t) { return of(file).allocated; }

herr_t allocate(H5FD_t* file, H5FD_mem_t, haddr_t end) {
  of(file).allocated = end;
  return 0;
}

haddr_t end(const H5FD_t* file, H5FD_mem_t) { return of(file).end; }

herr_t read(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t position, std::size_t size, void* buffer) {
  const std::span out(static_cast<std::byte*>(buffer), size);
  const File::State& state = *of(file).state;
  if (state.failed) {
    std::ranges::fill(out, std::byte{0});
  } else {
    attempt(of(file), position, state.storage.read_at(state.storage.user, position, buffer, size) != 0);
  }
  return 0;
}

herr_t write(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t position, std::size_t size, const void* buffer) {
  put(of(file), position, {static_cast<const std::byte*>(buffer), size});
  return 0;
}

/// Readers refuse a file that is shorter than what its objects were given.
herr_t truncate(H5FD_t* file, hid_t, hbool_t) {
  constexpr std::byte zero{0};
  OpenFile& one = of(file);
  if (one.end < one.allocated) put(one, one.allocated - 1, {&zero, 1});
  return 0;
}

Handle registerDriver() {
  static constexpr H5FD_mem_t map[] = H5FD_FLMAP_DICHOTOMY;
  H5FD_class_t driver{};
#if H5_VERSION_GE(1, 13, 0)
  driver.version = H5FD_CLASS_VERSION;
  driver.value = static_cast<H5FD_class_value_t>(H5_VFD_RESERVED + 1);
#endif
  driver.name = "lumbarn";
  driver.maxaddr = largestAddress;
  driver.fc_degree = H5F_CLOSE_STRONG;
  driver.fapl_size = sizeof(File::State*);
  driver.open = open;
  driver.close = close;
  driver.query = query;
  driver.get_eoa = allocated;
  driver.set_eoa = allocate;
  driver.get_eof = end;
  driver.read = read;
  driver.write = write;
  driver.truncate = truncate;
  std::ranges::copy(map, driver.fl_map);
  return {H5FDregister(&driver), H5FDunregister, "file driver"};
}

Handle create(const Handle& driver, File::State* state) {
  const Handle access(H5Pcreate(H5P_FILE_ACCESS), H5Pclose, "access to the file");
  check(H5Pset_driver(access.id(), driver.id(), &state), "access to the file");
  return {H5Fcreate("storage", H5F_ACC_TRUNC, H5P_DEFAULT, access.id()), H5Fclose, "file"};
}

}  // namespace

File::File(const lumbarn_hdf_storage& storage)
    : state_{storage}, driver_(registerDriver()), handle_(create(driver_, &state_)) {}

void File::close() { handle_.close("end of the file"); }

}  // namespace lumbarn::hdf
