include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(lumbarn_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/lumbarn)

install(
  TARGETS lumbarn
  EXPORT lumbarnTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/export/VtkExport.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/lumbarn/export)
if(TARGET lumbarn_vtk)
  install(
    TARGETS lumbarn_vtk
    EXPORT lumbarnVtkTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(
    EXPORT lumbarnVtkTargets
    NAMESPACE lumbarn::
    DESTINATION ${lumbarn_package_dir})
endif()
if(BUILD_SHARED_LIBS)
  set_target_properties(lumbarn PROPERTIES INSTALL_RPATH "\$ORIGIN")  # the module is next to the library
endif()
include(${CMAKE_CURRENT_LIST_DIR}/PublicHeaders.cmake)
foreach(header IN LISTS lumbarn_public_headers)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${PROJECT_SOURCE_DIR}/src/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/lumbarn/${folder})
endforeach()
install(
  DIRECTORY ${PROJECT_BINARY_DIR}/forwarding/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/lumbarn
  FILES_MATCHING
  PATTERN "*.h")
# The place of the package is known by that of its description.
file(RELATIVE_PATH lumbarn_prefix_from_pc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/lumbarn.pc.in ${PROJECT_BINARY_DIR}/lumbarn.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/lumbarn.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

install(
  EXPORT lumbarnTargets
  NAMESPACE lumbarn::
  DESTINATION ${lumbarn_package_dir})
configure_package_config_file(cmake/lumbarnConfig.cmake.in ${PROJECT_BINARY_DIR}/lumbarnConfig.cmake
                              INSTALL_DESTINATION ${lumbarn_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/lumbarnConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/lumbarnConfig.cmake ${PROJECT_BINARY_DIR}/lumbarnConfigVersion.cmake
        DESTINATION ${lumbarn_package_dir})

if(TARGET lumbarn_cli)
  # The command has the library in it, and finds the module of the export next to it or in the library folder.
  file(RELATIVE_PATH library_from_command ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(lumbarn_cli PROPERTIES INSTALL_RPATH "\$ORIGIN;\$ORIGIN/${library_from_command}")
  install(TARGETS lumbarn_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(
    FILES ${PROJECT_BINARY_DIR}/cli/lumbarn.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    OPTIONAL)
  # bash looks for a file with the command's name.
  install(
    FILES ${PROJECT_SOURCE_DIR}/cli/completions/lumbarn.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME lumbarn
    OPTIONAL)
  install(
    FILES ${PROJECT_SOURCE_DIR}/cli/completions/_lumbarn
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
    OPTIONAL)
endif()
