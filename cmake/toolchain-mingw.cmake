# Cross-compiles for 64-bit Windows on Linux.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triple x86_64-w64-mingw32)
# The -win32 flavour of this compiler has no std::mutex, std::thread or std::condition_variable.
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Tests and build-time programs run under Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR
  "${CMAKE_CURRENT_LIST_DIR}/../tools/wine.sh;--prefix;${CMAKE_BINARY_DIR}/wine")
set(OMBREL_GPU_EMULATOR
  "${CMAKE_CURRENT_LIST_DIR}/../tools/wine.sh;--prefix;${CMAKE_BINARY_DIR}/wine_gpu")
set(OMBREL_SCENARIOS_EMULATOR
  "${CMAKE_CURRENT_LIST_DIR}/../tools/wine.sh;--prefix;${CMAKE_BINARY_DIR}/wine_scenarios")
