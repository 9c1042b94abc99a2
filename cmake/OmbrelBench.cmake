# The functions that bench folders declare their targets with, and the header-only libraries they may use.

set(OMBREL_BENCH_INCLUDE_DIR "/usr/include" CACHE PATH "Folder that holds nlohmann/, CLI/ and stb/")

# bench_header_library(NAME FOLDER): target NAME, with #include "FOLDER/...".
# Only that folder is linked into the build: all of /usr/include on a MinGW include path breaks it.
function(bench_header_library name folder)
  set(include_dir "${PROJECT_BINARY_DIR}/header_only/${name}")
  file(MAKE_DIRECTORY "${include_dir}")
  if(NOT EXISTS "${OMBREL_BENCH_INCLUDE_DIR}/${folder}")
    message(FATAL_ERROR "No folder ${OMBREL_BENCH_INCLUDE_DIR}/${folder}: install the package that holds it, "
                        "name another folder with OMBREL_BENCH_INCLUDE_DIR, or turn OMBREL_BUILD_BENCH off")
  endif()
  if(CMAKE_HOST_WIN32)
    # Not everybody may make links there, and the folder holds nothing of a system.
    set(include_dir "${OMBREL_BENCH_INCLUDE_DIR}")
  else()
    file(CREATE_LINK "${OMBREL_BENCH_INCLUDE_DIR}/${folder}" "${include_dir}/${folder}" SYMBOLIC)
  endif()
  add_library(${name} INTERFACE)
  target_include_directories(${name} SYSTEM INTERFACE "${include_dir}")
endfunction()

# bench_add_library(NAME SOURCES file... [DEPENDS target...] [PRIVATE_DEPENDS target...])
function(bench_add_library name)
  ombrel_add_library(${name} ${ARGN})
  ombrel_quick_to_build(${name})
endfunction()

# bench_add_program(NAME SOURCES file... [DEPENDS target...] [OUTPUT_NAME name])
# Every program lies in a folder of its own, because process names are looked up without regard to case.
function(bench_add_program name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "OUTPUT_NAME" "SOURCES;DEPENDS")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ombrel_warnings Threads::Threads ${arg_DEPENDS})
  ombrel_quick_to_build(${name})
  if(arg_OUTPUT_NAME)
    set_target_properties(${name} PROPERTIES OUTPUT_NAME "${arg_OUTPUT_NAME}")
  endif()
endfunction()
