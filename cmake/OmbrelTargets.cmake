# Warnings, and the function that a folder of the driver declares its library with.

add_library(ombrel_warnings INTERFACE)
if(MSVC)
  target_compile_options(ombrel_warnings INTERFACE /W4 /WX /external:W0)
else()
  # No -Wnon-virtual-dtor: the driver interface's abstract classes have no virtual destructor.
  target_compile_options(ombrel_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Werror
    -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-qual
    -Woverloaded-virtual -Wsuggest-override -Wextra-semi -Wundef -Wformat=2)
  # What only a Windows body uses is not used in a native one.
  target_compile_options(ombrel_warnings INTERFACE $<$<CXX_COMPILER_ID:Clang>:-Wno-unused-private-field>)
endif()

# Symbols name the sources by /ombrel, wherever they were built: equal sources give equal files.
set(OMBREL_DEBUG_PATHS "")
if(MINGW)
  set(OMBREL_DEBUG_PATHS
    "-fdebug-prefix-map=${PROJECT_SOURCE_DIR}=/ombrel" "-fdebug-prefix-map=${PROJECT_BINARY_DIR}=/ombrel/build")
endif()

# ombrel_add_library(NAME SOURCES file... [DEPENDS target...] [PRIVATE_DEPENDS target...])
# A static library whose public headers lie in its folder's include/.
function(ombrel_add_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;DEPENDS;PRIVATE_DEPENDS")
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}/include")
  target_compile_options(${name} PRIVATE ${OMBREL_DEBUG_PATHS})
  target_link_libraries(${name}
    PUBLIC ${arg_DEPENDS} Threads::Threads
    PRIVATE ombrel_warnings ${arg_PRIVATE_DEPENDS})
endfunction()

option(OMBREL_UNITY "Compile several files of a test or a bench program at once" ON)

# ombrel_quick_to_build(TARGET): for what takes longer to compile than to run. Under sanitizers a test's own code
# takes twice as long to compile with optimization as without; the libraries that it tests keep theirs. Reading headers
# is most of the rest, so files are compiled by the half dozen; without OMBREL_UNITY each shows that it includes what
# it needs.
function(ombrel_quick_to_build target)
  if(OMBREL_SANITIZE)
    target_compile_options(${target} PRIVATE -O0)
  elseif(NOT MSVC)
    target_compile_options(${target} PRIVATE -O1)
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${OMBREL_UNITY} UNITY_BUILD_BATCH_SIZE 6)
endfunction()
