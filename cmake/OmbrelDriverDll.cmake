# ombrel_driver_dll(TARGET): everything that turns the shared library TARGET into the driver that a runtime loads.
#   - exports exactly what cmake/driver_ombrel.def names, undecorated
#   - carries a version resource and, linked statically, the compiler's runtime
#   - has ASLR, high-entropy addresses and NX on
#   - lays out dist/ombrel/ as the runtime expects a driver's folder, the debugging symbols beside it, and packs the
#     folder into dist/ombrel-<version>-win64.zip
# The folder dist/ombrel/ belongs to the build in the preset's folder; other build folders make their own.

if(PROJECT_BINARY_DIR STREQUAL "${PROJECT_SOURCE_DIR}/build/mingw-release"
   OR PROJECT_BINARY_DIR STREQUAL "${PROJECT_SOURCE_DIR}/build/msvc-release")
  set(OMBREL_DIST_DIR "${PROJECT_SOURCE_DIR}/dist")
else()
  set(OMBREL_DIST_DIR "${PROJECT_BINARY_DIR}/dist")
endif()

function(ombrel_driver_dll target)
  set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME driver_ombrel)
  configure_file("${PROJECT_SOURCE_DIR}/resources/driver_ombrel.rc.in"
    "${CMAKE_CURRENT_BINARY_DIR}/driver_ombrel.rc" @ONLY)
  target_sources(${target} PRIVATE
    "${CMAKE_CURRENT_BINARY_DIR}/driver_ombrel.rc" "${PROJECT_SOURCE_DIR}/cmake/driver_ombrel.def")
  if(MSVC)
    target_link_options(${target} PRIVATE /DYNAMICBASE /HIGHENTROPYVA /NXCOMPAT /DEBUG /OPT:REF /OPT:ICF)
  else()
    target_link_options(${target} PRIVATE
      -Wl,--dynamicbase,--high-entropy-va,--nxcompat)
  endif()
  ombrel_dist(${target})
endfunction()

function(ombrel_dist target)
  set(root "${OMBREL_DIST_DIR}/ombrel")
  set(dll "${root}/bin/win64/driver_ombrel.dll")
  set(symbols "${OMBREL_DIST_DIR}/symbols")
  set(archive "${OMBREL_DIST_DIR}/ombrel-${PROJECT_VERSION}-win64.zip")
  if(MSVC)
    set(split
      COMMAND "${CMAKE_COMMAND}" -E copy_if_different "$<TARGET_PDB_FILE:${target}>" "${symbols}"
      COMMAND "${CMAKE_COMMAND}" -E copy_if_different "$<TARGET_FILE:${target}>" "${dll}")
  else()
    set(split
      COMMAND "${CMAKE_OBJCOPY}" --only-keep-debug "$<TARGET_FILE:${target}>" "${symbols}/driver_ombrel.dll.debug"
      COMMAND "${CMAKE_OBJCOPY}" --strip-all "$<TARGET_FILE:${target}>" "${dll}"
      COMMAND "${CMAKE_OBJCOPY}" "--add-gnu-debuglink=${symbols}/driver_ombrel.dll.debug" "${dll}")
  endif()
  add_custom_target(dist ALL
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${root}/bin/win64" "${symbols}"
    COMMAND "${CMAKE_COMMAND}" "-DRESOURCES=${PROJECT_SOURCE_DIR}/resources" "-DROOT=${root}"
      -P "${PROJECT_SOURCE_DIR}/cmake/lay_out_resources.cmake"
    ${split}
    COMMAND "${CMAKE_COMMAND}" "-DROOT=${root}" "-DARCHIVE=${archive}" -P "${PROJECT_SOURCE_DIR}/cmake/pack_driver.cmake"
    DEPENDS ${target} VERBATIM
    COMMENT "Laying out ${root}")
  set_property(GLOBAL PROPERTY OMBREL_DIST_DLL "${dll}")
  set_property(GLOBAL PROPERTY OMBREL_DIST_ARCHIVE "${archive}")
endfunction()
