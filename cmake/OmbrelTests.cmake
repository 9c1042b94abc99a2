# GoogleTest, and the functions that test folders declare their tests with.

set(OMBREL_GOOGLETEST_DIR "/usr/src/googletest" CACHE PATH "Folder of GoogleTest's sources")

if(OMBREL_BUILD_TESTS)
  enable_testing()
  set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)
  set(INSTALL_GTEST OFF)
  set(gtest_force_shared_crt OFF)
  add_subdirectory("${OMBREL_GOOGLETEST_DIR}" "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
  # Debian's own, for which the packages that tests need are installed.
  find_program(OMBREL_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)
endif()

# What an earlier run found goes whenever the build is configured, which tools/test.sh does before each run.
set(OMBREL_TEST_RESULTS "${PROJECT_BINARY_DIR}/test-results")
file(REMOVE_RECURSE "${OMBREL_TEST_RESULTS}")
file(MAKE_DIRECTORY "${OMBREL_TEST_RESULTS}")

# ombrel_count_cases(NAME): tools/test_results.py counts the cases of the test NAME one by one, from the JUnit file
# NAME.xml that it writes to OMBREL_TEST_RESULTS. GoogleTest is told to; others name that file in their arguments. The
# file is there, and empty, before the test runs: one that stays empty tells of a crash, even one with exit code 0.
function(ombrel_count_cases name)
  file(TOUCH "${OMBREL_TEST_RESULTS}/${name}.xml")
  set_property(TEST ${name} APPEND PROPERTY
    ENVIRONMENT "GTEST_OUTPUT=xml:${OMBREL_PATH_PREFIX}${OMBREL_TEST_RESULTS}/${name}.xml")
endfunction()

# ombrel_add_pytest(NAME LABEL FILE [name=value...]): the cases of a Python file, with those variables in the environment
# and the browser of tests/pages at hand.
function(ombrel_add_pytest name label file)
  add_test(NAME ${name} COMMAND "${OMBREL_PYTHON}" -B -m pytest -q -p no:cacheprovider
    "--junitxml=${OMBREL_TEST_RESULTS}/${name}.xml" "${CMAKE_CURRENT_SOURCE_DIR}/${file}")
  set(environment "PYTHONPATH=${PROJECT_SOURCE_DIR}/tests/pages:${PROJECT_SOURCE_DIR}/tests/checker" ${ARGN})
  set_tests_properties(${name} PROPERTIES LABELS ${label} TIMEOUT 300 ENVIRONMENT "${environment}")
  ombrel_count_cases(${name})
endfunction()

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
  ombrel_count_cases(${name})
  if(NOT arg_LABEL STREQUAL "native")
    set_tests_properties(${name} PROPERTIES RESOURCE_LOCK ${arg_LABEL})
  endif()
  if(arg_LABEL STREQUAL "gpu" AND OMBREL_GPU_EMULATOR)
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR "${OMBREL_GPU_EMULATOR}")
  endif()
endfunction()
