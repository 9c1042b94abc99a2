# ombrel_driver_dll(TARGET): everything that turns the shared library TARGET into the driver that a runtime loads.
#   - exports exactly what cmake/driver_ombrel.def names, undecorated
#   - carries a version resource, which names the commit, and, linked statically, the compiler's runtime
#   - has ASLR, high-entropy addresses and NX on
#   - is stripped; its symbols are beside it, in a file of their own
function(ombrel_driver_dll target)
  set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME driver_ombrel)
  target_compile_options(${target} PRIVATE ${OMBREL_DEBUG_PATHS})
  target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/cmake/driver_ombrel.def")
  ombrel_version_resource(${target})
  if(MSVC)
    target_link_options(${target} PRIVATE /DYNAMICBASE /HIGHENTROPYVA /NXCOMPAT /DEBUG /OPT:REF /OPT:ICF)
    set(symbols "$<TARGET_PDB_FILE:${target}>")
  else()
    # The map tells which libraries went in.
    target_link_options(${target} PRIVATE
      -Wl,--dynamicbase,--high-entropy-va,--nxcompat "-Wl,-Map=$<TARGET_FILE:${target}>.map")
    set(symbols "$<TARGET_FILE:${target}>.debug")
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND "${CMAKE_COMMAND}" "-DOBJCOPY=${CMAKE_OBJCOPY}" "-DLIBRARY=$<TARGET_FILE:${target}>" "-DSYMBOLS=${symbols}"
        -P "${PROJECT_SOURCE_DIR}/cmake/split_symbols.cmake"
      VERBATIM)
  endif()
  set_property(TARGET ${target} PROPERTY OMBREL_SYMBOLS "${symbols}")
endfunction()

# The resource is looked at in every build, since a commit changes it and no source, but written only when it changes.
function(ombrel_version_resource target)
  set(resource "${CMAKE_CURRENT_BINARY_DIR}/driver_ombrel.rc")
  add_custom_target(${target}_version
    COMMAND "${CMAKE_COMMAND}" "-DSOURCE=${PROJECT_SOURCE_DIR}" "-DVERSION=${PROJECT_VERSION}"
      "-DDESCRIPTION=${PROJECT_DESCRIPTION}" "-DRESOURCE=${resource}"
      -P "${PROJECT_SOURCE_DIR}/cmake/write_version_resource.cmake"
    BYPRODUCTS "${resource}" VERBATIM COMMENT "Looking at the commit")
  target_sources(${target} PRIVATE "${resource}")
  add_dependencies(${target} ${target}_version)
endfunction()
