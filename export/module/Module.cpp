#include <memory>
#include <new>
#include <string>
#include <vector>

#include "Hdf.h"
#include "HdfDriver.h"
#include "HdfFunctions.h"

using namespace lumbarn::hdf;

struct lumbarn_hdf_file {
  Quiet quiet;
  std::unique_ptr<File> file;
  std::vector<Handle> groups;  // behind the file's own, which is not among them
  std::vector<Table> tables;
  std::string failed;
  std::string error;

  const Handle& group(std::int64_t number) const {
    if (!file) throw Failure{"file", "is not open"};
    return number == 0 ? file->handle() : groups.at(static_cast<std::size_t>(number) - 1);
  }
};

namespace {

/// Runs `work`; no exception crosses the border.
template <class Work>
auto guarded(lumbarn_hdf_file* file, Work work) -> decltype(work()) {
  try {
    return work();
  } catch (const Failure& failure) {
    file->failed = failure.what;
    file->error = failure.cause;
  } catch (const std::exception& failure) {
    file->error = failure.what();
  }
  return -1;
}

lumbarn_hdf_file* create(const lumbarn_hdf_storage* storage) {
  auto* file = new (std::nothrow) lumbarn_hdf_file;
  if (!file) return nullptr;
  guarded(file, [&] {
    file->file = std::make_unique<File>(*storage);
    return 0;
  });
  return file;
}

std::int64_t createGroup(lumbarn_hdf_file* file, std::int64_t parent, const char* name) {
  return guarded(file, [&] {
    file->groups.push_back(createGroup(file->group(parent), name));
    return static_cast<std::int64_t>(file->groups.size());
  });
}

int closeGroup(lumbarn_hdf_file* file, std::int64_t group) {
  return guarded(file, [&] {
    file->groups.at(static_cast<std::size_t>(group) - 1).close("group");
    return 0;
  });
}

int putText(lumbarn_hdf_file* file, std::int64_t group, const char* name, const char* text) {
  return guarded(file, [&] {
    setText(file->group(group), name, text);
    return 0;
  });
}

int putNumbers(lumbarn_hdf_file* file, std::int64_t group, const char* name, const std::int64_t* numbers,
               std::size_t count) {
  return guarded(file, [&] {
    if (count == 0) {
      setNumber(file->group(group), name, *numbers);
    } else {
      setNumbers(file->group(group), name, {numbers, count});
    }
    return 0;
  });
}

std::int64_t createTable(lumbarn_hdf_file* file, std::int64_t parent, const char* name, lumbarn_hdf_type type,
                         std::int64_t rows, std::int64_t components, int twoDimensional) {
  return guarded(file, [&] {
    const Handle& group = file->group(parent);
    file->tables.push_back(rows < 0
                               ? Table::growing(group, name, typeOf(type), components)
                               : Table(group, name, typeOf(type), rows, components, twoDimensional != 0));
    return static_cast<std::int64_t>(file->tables.size() - 1);
  });
}

int append(lumbarn_hdf_file* file, std::int64_t table, const void* numbers, std::size_t count) {
  return guarded(file, [&] {
    file->tables.at(static_cast<std::size_t>(table)).append(numbers, count);
    return 0;
  });
}

int closeTable(lumbarn_hdf_file* file, std::int64_t table) {
  return guarded(file, [&] {
    file->tables.at(static_cast<std::size_t>(table)).close();
    return 0;
  });
}

int finish(lumbarn_hdf_file* file) {
  return guarded(file, [&] {
    if (!file->file) throw Failure{"file", "is not open"};
    file->file->close();
    return 0;
  });
}

void destroy(lumbarn_hdf_file* file) { delete file; }
const char* failed(lumbarn_hdf_file* file) { return file->failed.c_str(); }
const char* error(lumbarn_hdf_file* file) { return file->error.c_str(); }

std::int64_t failedAt(lumbarn_hdf_file* file) {
  if (!file->file || !file->file->state().failed) return -1;
  return static_cast<std::int64_t>(file->file->state().failedAt);
}

constexpr lumbarn_hdf_functions functions{
    LUMBARN_HDF_VERSION, create, createGroup, closeGroup, putText, putNumbers, createTable, append,
    closeTable,          finish, destroy,     failed,     error,   failedAt};

}  // namespace

#ifdef _WIN32
#define LUMBARN_EXPORTED __declspec(dllexport)
#else
#define LUMBARN_EXPORTED __attribute__((visibility("default")))
#endif

extern "C" LUMBARN_EXPORTED const lumbarn_hdf_functions* lumbarn_vtk_functions(void) { return &functions; }
