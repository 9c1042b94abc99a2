# Installs components of a build into its folder dist/ and packs their zips there, leaving nothing of an earlier build:
#   cmake -DBUILD=<build folder> -DCONFIG=<configuration> -DDIST=<folder> -DCOMPONENTS=<component>[,<component>...] -P ...
# With SOURCE_DATE_EPOCH in the environment, and the same umask, the zips of equal files are equal.
set(folder_of_driver ombrel)
set(folder_of_symbols symbols)
set(folder_of_preview ombrel-preview)
set(folder_of_selftest ombrel-selftest)

string(REPLACE "," ";" components "${COMPONENTS}")
foreach(component ${components})
  file(REMOVE_RECURSE "${DIST}/${folder_of_${component}}")
  execute_process(
    COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --config "${CONFIG}" --prefix "${DIST}" --component ${component}
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
# Zips hold local times.
set(ENV{TZ} UTC)
execute_process(COMMAND "${CMAKE_CPACK_COMMAND}" -C "${CONFIG}" -B "${DIST}" -D "CPACK_COMPONENTS_ALL=${components}"
  WORKING_DIRECTORY "${BUILD}" OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE "${DIST}/_CPack_Packages")
