# GoogleTest, and the function that test folders declare their tests with.

set(OMBREL_GOOGLETEST_DIR "/usr/src/googletest" CACHE PATH "Folder of GoogleTest's sources")

if(OMBREL_BUILD_TESTS)
  enable_testing()
  set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)
  set(INSTALL_GTEST OFF)
  set(gtest_force_shared_crt OFF)
  add_subdirectory("${OMBREL_GOOGLETEST_DIR}" "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
endif()

# ombrel_add_test(NAME LABEL native|windows|gpu SOURCES file... [DEPENDS target...]
#                 [ARGS argument...] [ENVIRONMENT name=value...] [TIMEOUT seconds])
# One ctest entry per GoogleTest program: starting Wine is slow. GoogleMock's main is linked.
# Tests of a label run one at a time, since pipe and process names are shared by all of them; under Wine, Windows and GPU
# tests have a prefix each, and so names of their own.
function(ombrel_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "LABEL;TIMEOUT" "SOURCES;DEPENDS;ARGS;ENVIRONMENT")
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ombrel_warnings GTest::gmock_main Threads::Threads ${arg_DEPENDS})
  ombrel_quick_to_build(${name})
  add_test(NAME ${name} COMMAND ${name} ${arg_ARGS})
  set_tests_properties(${name} PROPERTIES
    LABELS "${arg_LABEL}" TIMEOUT ${arg_TIMEOUT} ENVIRONMENT "${arg_ENVIRONMENT}")
  if(NOT arg_LABEL STREQUAL "native")
    set_tests_properties(${name} PROPERTIES RESOURCE_LOCK ${arg_LABEL})
  endif()
  if(arg_LABEL STREQUAL "gpu" AND OMBREL_GPU_EMULATOR)
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR "${OMBREL_GPU_EMULATOR}")
  endif()
endfunction()
