# What is installed, and the zips. The target dist makes dist/ombrel, the folder that a runtime loads the driver from, and
# dist/symbols, and packs a zip of each component beside them; dist_all does the same for preview and self-test.
# The folder dist/ of the sources belongs to the build in the preset's folder; other build folders make their own.

if(PROJECT_BINARY_DIR STREQUAL "${PROJECT_SOURCE_DIR}/build/mingw-release"
   OR PROJECT_BINARY_DIR STREQUAL "${PROJECT_SOURCE_DIR}/build/msvc-release")
  set(OMBREL_DIST_DIR "${PROJECT_SOURCE_DIR}/dist")
else()
  set(OMBREL_DIST_DIR "${PROJECT_BINARY_DIR}/dist")
endif()

set(CMAKE_INSTALL_MESSAGE NEVER)

# For Windows' editors and for cmd.exe, which misses labels in files without carriage returns.
set(with_carriage_returns "${PROJECT_BINARY_DIR}/installed")
foreach(file resources/windows/check.cmd resources/windows/install.cmd resources/windows/uninstall.cmd
    selftest/selftest.cmd selftest/try_companion.cmd THIRD_PARTY_NOTICES.txt)
  cmake_path(GET file FILENAME name)
  configure_file("${PROJECT_SOURCE_DIR}/${file}" "${with_carriage_returns}/${name}" @ONLY NEWLINE_STYLE CRLF)
endforeach()

set(resources "${PROJECT_SOURCE_DIR}/resources")
install(FILES "${resources}/driver.vrdrivermanifest" "${with_carriage_returns}/THIRD_PARTY_NOTICES.txt"
  "${with_carriage_returns}/check.cmd" "${with_carriage_returns}/install.cmd" "${with_carriage_returns}/uninstall.cmd"
  DESTINATION ombrel COMPONENT driver)
install(FILES "${resources}/driver.vrresources" DESTINATION ombrel/resources COMPONENT driver)
install(DIRECTORY "${resources}/icons" "${resources}/input" "${resources}/localization" "${resources}/settings"
  DESTINATION ombrel/resources COMPONENT driver)

# The native build lays out the driver's folder without the library.
if(TARGET driver_ombrel)
  get_target_property(symbols driver_ombrel OMBREL_SYMBOLS)
  install(TARGETS driver_ombrel RUNTIME DESTINATION ombrel/bin/win64 COMPONENT driver)
  install(FILES "${symbols}" "${with_carriage_returns}/THIRD_PARTY_NOTICES.txt" DESTINATION symbols COMPONENT symbols)
endif()

if(TARGET ombrel_doctor)
  install(TARGETS ombrel_doctor RUNTIME DESTINATION ombrel/bin/win64 COMPONENT driver)
endif()

if(TARGET preview)
  configure_file("${PROJECT_SOURCE_DIR}/companion/preview/program/start.cmd" "${with_carriage_returns}/start.cmd"
    @ONLY NEWLINE_STYLE CRLF)
  install(TARGETS preview RUNTIME DESTINATION ombrel-preview COMPONENT preview)
  install(FILES "${with_carriage_returns}/start.cmd" "${with_carriage_returns}/THIRD_PARTY_NOTICES.txt"
    DESTINATION ombrel-preview COMPONENT preview)
endif()

# A driver of its own, as a runtime would load it, with the programs that do so.
if(TARGET ombrel_selftest)
  set(selftest ombrel-selftest)
  install(FILES "${with_carriage_returns}/selftest.cmd" "${with_carriage_returns}/try_companion.cmd"
    "${with_carriage_returns}/THIRD_PARTY_NOTICES.txt" DESTINATION ${selftest} COMPONENT selftest)
  install(TARGETS ombrel_selftest runtime_sim scenarios recorded_runtime ombrel_check ombrel_inspect
    RUNTIME DESTINATION ${selftest}/bin COMPONENT selftest)
  # Found beside the program that loads it, without a prefix of the compiler.
  install(PROGRAMS "$<TARGET_FILE:empty_library>" DESTINATION ${selftest}/bin RENAME empty_library.dll COMPONENT selftest)
  install(TARGETS companion_sim RUNTIME DESTINATION ${selftest}/bin/companion COMPONENT selftest)
  install(TARGETS scenario_companion RUNTIME DESTINATION ${selftest}/bin/faults COMPONENT selftest)
  # Nobody's program, for a companion that asks for the session's end.
  install(PROGRAMS "$<TARGET_FILE:idle_companion>" DESTINATION ${selftest}/bin/monitor RENAME vrmonitor.exe
    COMPONENT selftest)
  install(FILES "${PROJECT_SOURCE_DIR}/selftest/session.json" "${PROJECT_SOURCE_DIR}/bench/recorder/haptics.json"
    "${PROJECT_SOURCE_DIR}/tools/demo/virtual.json" DESTINATION ${selftest}/bin COMPONENT selftest)
  install(FILES "${PROJECT_BINARY_DIR}/report/template.html" DESTINATION ${selftest}/bin COMPONENT selftest)
  install(TARGETS driver_ombrel RUNTIME DESTINATION ${selftest}/driver/ombrel/bin/win64 COMPONENT selftest)
  install(FILES "${resources}/driver.vrdrivermanifest" DESTINATION ${selftest}/driver/ombrel COMPONENT selftest)
  install(DIRECTORY "${resources}/settings" "${resources}/input" DESTINATION ${selftest}/driver/ombrel/resources
    COMPONENT selftest)
endif()

# By the lists of this version and of those before it, installing knows the files that only an older version had.
install(CODE "set(list_of_files \"resources/files-${PROJECT_VERSION}.txt\")" COMPONENT driver)
install(SCRIPT "${PROJECT_SOURCE_DIR}/cmake/list_installed_files.cmake" COMPONENT driver)

if(NOT TARGET driver_ombrel)
  return()
endif()

# ombrel_zip(COMPONENT SUFFIX): what is installed as COMPONENT becomes ombrel-<version>-<SUFFIX>.zip.
macro(ombrel_zip component suffix)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  string(TOUPPER ${component} upper)
  set(CPACK_ARCHIVE_${upper}_FILE_NAME "ombrel-${PROJECT_VERSION}-${suffix}")
endmacro()

ombrel_zip(driver win64)
ombrel_zip(symbols symbols-win64)
if(TARGET preview)
  ombrel_zip(preview preview-win64)
endif()
if(TARGET ombrel_selftest)
  ombrel_zip(selftest selftest-win64)
endif()
set(CPACK_GENERATOR ZIP)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
include(CPack)

# ombrel_dist_command(COMMAND COMPONENT...): lays those out, and packs their zips.
function(ombrel_dist_command command)
  list(JOIN ARGN "," components)
  set(${command} "${CMAKE_COMMAND}" "-DBUILD=${PROJECT_BINARY_DIR}" "-DCONFIG=$<CONFIG>" "-DDIST=${OMBREL_DIST_DIR}"
    "-DCOMPONENTS=${components}" -P "${PROJECT_SOURCE_DIR}/cmake/make_dist.cmake" PARENT_SCOPE)
endfunction()

ombrel_dist_command(make_dist driver symbols)
add_custom_target(dist ALL
  COMMAND ${make_dist} DEPENDS driver_ombrel VERBATIM COMMENT "Laying out ${OMBREL_DIST_DIR}")
if(TARGET ombrel_doctor)
  add_dependencies(dist ombrel_doctor)
endif()

set(others "")
set(programs "")
if(TARGET preview)
  list(APPEND others preview)
  list(APPEND programs preview)
endif()
if(TARGET ombrel_selftest)
  list(APPEND others selftest)
  list(APPEND programs
    ombrel_selftest runtime_sim companion_sim scenarios scenario_companion empty_library report_template
    recorded_runtime idle_companion ombrel_check ombrel_inspect)
endif()
if(others)
  ombrel_dist_command(make_dist ${others})
  add_custom_target(dist_all ALL COMMAND ${make_dist} VERBATIM COMMENT "Laying out the rest of ${OMBREL_DIST_DIR}")
  # After dist, and not beside it: both pack in one folder.
  add_dependencies(dist_all dist ${programs})
endif()
set_property(GLOBAL PROPERTY OMBREL_DIST_DLL "${OMBREL_DIST_DIR}/ombrel/bin/win64/driver_ombrel.dll")
set_property(GLOBAL PROPERTY OMBREL_DIST_ARCHIVE "${OMBREL_DIST_DIR}/ombrel-${PROJECT_VERSION}-win64.zip")
