# Packs the driver's folder: cmake -DROOT=<dist/ombrel> -DARCHIVE=<zip> -P ...
# Names are sorted and times are fixed, so that archives differ as little as their files do.
cmake_path(GET ROOT PARENT_PATH parent)
file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE "${parent}" "${ROOT}/*")
list(SORT files)
list(JOIN files "\n" lines)
file(WRITE "${ARCHIVE}.files" "${lines}\n")
file(REMOVE "${ARCHIVE}")
execute_process(
  COMMAND "${CMAKE_COMMAND}" -E env TZ=UTC
    "${CMAKE_COMMAND}" -E tar cf "${ARCHIVE}" --format=zip "--mtime=2000-01-01 00:00:00 UTC" "--files-from=${ARCHIVE}.files"
  WORKING_DIRECTORY "${parent}" COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE "${ARCHIVE}.files")
