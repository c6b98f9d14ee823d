#include "HdfFile.h"

#include <new>

#include "support/Diagnosis.h"
#include "support/System.h"

namespace lumbarn {
namespace {

const lumbarn_hdf_functions& openModule() {
  using Functions = const lumbarn_hdf_functions* (*)();
  std::string why;
  const auto functions =
      reinterpret_cast<Functions>(openLibrary(LUMBARN_VTK_LIBRARY, "lumbarn_vtk_functions", why));
  const lumbarn_hdf_functions* found = functions ? functions() : nullptr;
  if (found && found->version != LUMBARN_HDF_VERSION) why = "it is of another version";
  if (found && found->version == LUMBARN_HDF_VERSION) return *found;
  throw BadRecord({.message = Message::ExportModule,
                   .problem = "the export needs " LUMBARN_VTK_LIBRARY
                              ", which needs HDF5 (Debian: libhdf5-103-1): " +
                              why});
}

int writeAt(void* user, std::uint64_t position, const void* bytes, std::size_t count) {
  return static_cast<HdfStorage*>(user)->writeAt(position, {static_cast<const std::byte*>(bytes), count}) ? 1
                                                                                                          : 0;
}
int readAt(void* user, std::uint64_t position, void* bytes, std::size_t count) {
  return static_cast<HdfStorage*>(user)->readAt(position, {static_cast<std::byte*>(bytes), count}) ? 1 : 0;
}

}  // namespace

HdfFile::HdfFile(HdfStorage& target) : hdf_(openModule()), target_(target) {
  const lumbarn_hdf_storage storage{&target, writeAt, readAt};
  file_ = hdf_.create(&storage);
  if (!file_) throw std::bad_alloc();
}

HdfFile::~HdfFile() { hdf_.destroy(file_); }

std::int64_t HdfFile::checked(std::int64_t result) {
  if (result >= 0) return result;
  check();  // what HDF5 says of a failed write is a consequence
  throw BadRecord({.message = Message::ExportHdf,
                   .keyword = hdf_.failed(file_),
                   .found = hdf_.error(file_),
                   .action = "wrote nothing"});
}

void HdfFile::check() {
  const auto position = hdf_.failed_at(file_);
  if (position < 0) return;
  throw BadRecord({.message = Message::FileWrite,
                   .problem = "cannot be written: " + target_.error(),
                   .offset = static_cast<std::uint64_t>(position),
                   .action = "wrote nothing"});
}

HdfFile::Group HdfFile::createGroup(Group parent, const std::string& name) {
  return checked(hdf_.create_group(file_, parent, name.c_str()));
}
void HdfFile::closeGroup(Group group) { checked(hdf_.close_group(file_, group)); }
void HdfFile::setText(Group group, const char* name, const char* text) {
  checked(hdf_.set_text(file_, group, name, text));
}
void HdfFile::setNumber(Group group, const char* name, std::int64_t number) {
  checked(hdf_.set_numbers(file_, group, name, &number, 0));
}
void HdfFile::setNumbers(Group group, const char* name, std::span<const std::int64_t> numbers) {
  checked(hdf_.set_numbers(file_, group, name, numbers.data(), numbers.size()));
}

void HdfFile::close() {
  checked(hdf_.finish(file_));
  check();
}

std::int64_t HdfFile::createTable(Group parent, const std::string& name, lumbarn_hdf_type type,
                                  std::int64_t rows, std::int64_t components, bool twoDimensional) {
  return checked(
      hdf_.create_table(file_, parent, name.c_str(), type, rows, components, twoDimensional ? 1 : 0));
}
void HdfFile::append(std::int64_t table, const void* numbers, std::size_t count) {
  checked(hdf_.append(file_, table, numbers, count));
}
void HdfFile::closeTable(std::int64_t table) { checked(hdf_.close_table(file_, table)); }

}  // namespace lumbarn
