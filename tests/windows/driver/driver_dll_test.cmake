# driver_dll_test(NAME SOURCES file... [DEPENDS target...] [LABEL gpu]): a test program that loads the driver as it is
# shipped.
function(driver_dll_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "LABEL" "SOURCES;DEPENDS")
  if(NOT arg_LABEL)
    set(arg_LABEL windows)
  endif()
  get_property(driver_dll GLOBAL PROPERTY OMBREL_DIST_DLL)
  ombrel_add_test(${name} LABEL ${arg_LABEL} TIMEOUT 240
    SOURCES ${arg_SOURCES}
    DEPENDS driver_test_support ${arg_DEPENDS}
    ENVIRONMENT
      "OMBREL_TEST_DRIVER=${OMBREL_PATH_PREFIX}${driver_dll}"
      "OMBREL_TEST_IDLE_PROGRAM=${OMBREL_PATH_PREFIX}$<TARGET_FILE:idle_companion>")
  add_dependencies(${name} dist idle_companion)
endfunction()
