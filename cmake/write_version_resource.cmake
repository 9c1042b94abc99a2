# Writes the version resource of the library, with the commit that is built:
#   cmake -DSOURCE=<root> -DVERSION=<version> -DDESCRIPTION=<text> -DRESOURCE=<file to write> -P ...
# Explorer shows "0.1.0+<commit>" as product version, with ".dirty" behind it when a tracked file differs from the commit.
# Sources without a repository give the version alone.
set(PRODUCT_VERSION "${VERSION}")
if(EXISTS "${SOURCE}/.git")
  execute_process(COMMAND git -C "${SOURCE}" describe --always --exclude=* --abbrev=12 --dirty=.dirty
    OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE result)
  if(result EQUAL 0)
    string(APPEND PRODUCT_VERSION "+${commit}")
  endif()
endif()
string(REPLACE "." ", " VERSION_NUMBERS "${VERSION}, 0")
configure_file("${SOURCE}/resources/driver_ombrel.rc.in" "${RESOURCE}" @ONLY)
