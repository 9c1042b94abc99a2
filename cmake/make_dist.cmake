# Installs a build into its folder dist/ and packs the zips there, leaving nothing of an earlier build:
#   cmake -DBUILD=<build folder> -DCONFIG=<configuration> -DDIST=<folder> -P ...
# With SOURCE_DATE_EPOCH in the environment, and the same umask, the zips of equal files are equal.
file(REMOVE_RECURSE "${DIST}/ombrel" "${DIST}/ombrel-preview" "${DIST}/symbols")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --config "${CONFIG}" --prefix "${DIST}"
  COMMAND_ERROR_IS_FATAL ANY)
# Zips hold local times.
set(ENV{TZ} UTC)
execute_process(COMMAND "${CMAKE_CPACK_COMMAND}" -C "${CONFIG}" -B "${DIST}"
  WORKING_DIRECTORY "${BUILD}" OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE "${DIST}/_CPack_Packages")
