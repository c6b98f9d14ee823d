# What every target of ours is compiled with; the installed package carries none of it. Our own sources name
# headers from src/, a host names them <lumbarn/...>.
add_library(lumbarn_options INTERFACE)
target_include_directories(lumbarn_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
if(NOT MSVC)
  target_compile_options(lumbarn_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                                   -Wno-sign-conversion -Wnon-virtual-dtor
                                                   # Fields that a designated initialiser leaves out keep their
                                                   # defaults, which is the point of it.
                                                   -Wno-missing-field-initializers)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # At -O3, g++ 12 sees both in plain assignments to std::string, where there is nothing.
  target_compile_options(lumbarn_options INTERFACE -Wno-maybe-uninitialized -Wno-restrict)
endif()
if(LUMBARN_WERROR AND NOT MSVC)
  target_compile_options(lumbarn_options INTERFACE -Werror)
endif()
if(LUMBARN_SANITIZE)
  add_compile_options(-fsanitize=${LUMBARN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${LUMBARN_SANITIZE})
endif()
if(LUMBARN_BUILD_FUZZ)
  # Coverage of the library steers the fuzzer; a target itself adds -fsanitize=fuzzer to its link options.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Precompiled headers are cached only when told so.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros
                                  ${CCACHE_PROGRAM})
endif()

# Reads headers of others that all sources of a target use once for all.
function(lumbarn_precompile target)
  target_precompile_headers(${target} PRIVATE ${ARGN})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fpch-preprocess)
  elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(${target} PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
  endif()
endfunction()
