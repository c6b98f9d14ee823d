# lumbarn::hdf5, HDF5's C library. FindHDF5 compiles programs in C to ask it about itself; this project needs no C
# compiler, so it looks for the header and the library alone. Debian keeps those of the serial version in folders of
# their own. Used by the build, and by hosts that take the installed package in.
if(NOT TARGET lumbarn::hdf5)
  find_path(LUMBARN_HDF5_INCLUDE_DIR hdf5.h PATH_SUFFIXES hdf5/serial)
  find_library(LUMBARN_HDF5_LIBRARY NAMES hdf5_serial hdf5 PATH_SUFFIXES hdf5/serial)
  mark_as_advanced(LUMBARN_HDF5_INCLUDE_DIR LUMBARN_HDF5_LIBRARY)
  if(LUMBARN_HDF5_INCLUDE_DIR AND LUMBARN_HDF5_LIBRARY)
    add_library(lumbarn::hdf5 UNKNOWN IMPORTED GLOBAL)
    set_target_properties(
      lumbarn::hdf5
      PROPERTIES IMPORTED_LOCATION ${LUMBARN_HDF5_LIBRARY}
                 INTERFACE_INCLUDE_DIRECTORIES ${LUMBARN_HDF5_INCLUDE_DIR})
  endif()
endif()
