#ifndef LUMBARN_HDF_FUNCTIONS_H
#define LUMBARN_HDF_FUNCTIONS_H

/* What the module lumbarn_vtk does for the library: it writes HDF5 files, and is the only part that needs
   HDF5, so it is opened when a file is to be written. Only C crosses its border. A file is used by one thread
   at a time. Whatever fails gives -1, and `error` tells the reason. */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Where the bytes of a file go. Both give 1, or 0 when they fail; bytes that were never written read as 0. */
struct lumbarn_hdf_storage {
  void* user;
  int (*write_at)(void* user, uint64_t position, const void* bytes, size_t count);
  int (*read_at)(void* user, uint64_t position, void* bytes, size_t count);
};

enum lumbarn_hdf_type {
  LUMBARN_HDF_FLOAT32,
  LUMBARN_HDF_FLOAT64,
  LUMBARN_HDF_INT32,
  LUMBARN_HDF_INT64,
  LUMBARN_HDF_UINT8
};

struct lumbarn_hdf_file;

#define LUMBARN_HDF_VERSION 1

/* Groups and tables are known by numbers from 0; the group 0 is the file itself. */
struct lumbarn_hdf_functions {
  uint32_t version; /* LUMBARN_HDF_VERSION of the module */
  /* A new file; null when there is no memory. If it could not be made, all that follows fails. */
  struct lumbarn_hdf_file* (*create)(const struct lumbarn_hdf_storage* storage);
  int64_t (*create_group)(struct lumbarn_hdf_file*, int64_t parent, const char* name);
  int (*close_group)(struct lumbarn_hdf_file*, int64_t group);
  int (*set_text)(struct lumbarn_hdf_file*, int64_t group, const char* name, const char* text);
  /* `count` 0: one number that is no list. */
  int (*set_numbers)(struct lumbarn_hdf_file*, int64_t group, const char* name, const int64_t* numbers,
                     size_t count);
  /* A dataset of rows of `components` numbers; `rows` below 0: it grows. With one component it has one
     dimension, unless `two_dimensional`. */
  int64_t (*create_table)(struct lumbarn_hdf_file*, int64_t parent, const char* name,
                          enum lumbarn_hdf_type type, int64_t rows, int64_t components, int two_dimensional);
  /* Writes the next rows, `count` numbers of the type of the table. */
  int (*append)(struct lumbarn_hdf_file*, int64_t table, const void* numbers, size_t count);
  int (*close_table)(struct lumbarn_hdf_file*, int64_t table);
  /* Writes what is kept back. */
  int (*finish)(struct lumbarn_hdf_file*);
  void (*destroy)(struct lumbarn_hdf_file*);
  /* What failed last, and HDF5's reason. */
  const char* (*failed)(struct lumbarn_hdf_file*);
  const char* (*error)(struct lumbarn_hdf_file*);
  /* The position of the first write or read of the storage that failed; -1 if none did. */
  int64_t (*failed_at)(struct lumbarn_hdf_file*);
};

/* The one function that the module exports. */
const struct lumbarn_hdf_functions* lumbarn_vtk_functions(void);

#ifdef __cplusplus
}
#endif

#endif /* LUMBARN_HDF_FUNCTIONS_H */
