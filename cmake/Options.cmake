# Compile options shared by every target of ours; the installed package carries none of them.
add_library(lumbarn_options INTERFACE)
if(NOT MSVC)
  target_compile_options(lumbarn_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                                   -Wno-sign-conversion -Wnon-virtual-dtor
                                                   # Fields that a designated initialiser leaves out keep their
                                                   # defaults, which is the point of it.
                                                   -Wno-missing-field-initializers)
endif()
if(LUMBARN_WERROR AND NOT MSVC)
  target_compile_options(lumbarn_options INTERFACE -Werror)
endif()
if(LUMBARN_SANITIZE)
  add_compile_options(-fsanitize=${LUMBARN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${LUMBARN_SANITIZE})
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()
