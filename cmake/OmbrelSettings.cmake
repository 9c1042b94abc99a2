# Language, sanitizers and the Windows settings that hold for every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_package(Threads REQUIRED)

if(OMBREL_SANITIZE)
  add_compile_options(-fsanitize=${OMBREL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${OMBREL_SANITIZE})
endif()

if(WIN32)
  enable_language(RC)
  # Windows 10 interfaces; narrow character functions; no min and max macros.
  add_compile_definitions(_WIN32_WINNT=0x0A00 WINVER=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX)
endif()

if(MSVC)
  set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
  # In Release, too: the symbols are laid out beside the driver.
  set(CMAKE_MSVC_DEBUG_INFORMATION_FORMAT ProgramDatabase)
  add_compile_options(/utf-8 /permissive- /Zc:__cplusplus)
endif()
if(NOT MSVC)
  # A square root is one instruction when nobody is to be told in errno that there was none; the results are the same.
  add_compile_options(-fno-math-errno)
endif()
if(MINGW)
  # printf and its kin as the C standard has them, not as the old msvcrt.dll does.
  add_compile_definitions(__USE_MINGW_ANSI_STDIO=1)
  # The compiler's runtime goes into each program and into the DLL.
  add_link_options(-static)
endif()

# What stands before an absolute path of the build machine when a Windows program is told of it.
if(WIN32 AND CMAKE_CROSSCOMPILING)
  set(OMBREL_PATH_PREFIX "Z:")
else()
  set(OMBREL_PATH_PREFIX "")
endif()
