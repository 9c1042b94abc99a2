# As much of MSVC as Debian has: Clang in its place, libc++, and Wine's C headers for Microsoft's. It compiles; there is
# nothing to link with. CMAKE_C_COMPILER and CMAKE_CXX_COMPILER name a Clang that is called "clang-cl".
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

find_program(nothing true REQUIRED NO_CACHE)
foreach(tool AR LINKER MT RC_COMPILER)
  set(CMAKE_${tool} "${nothing}")
endforeach()
set(OMBREL_FXC "${nothing}")

foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_TARGET x86_64-pc-windows-msvc)
  set(CMAKE_${language}_COMPILER_WORKS ON)
endforeach()

# Iterators of arrays and views are classes in Microsoft's library, as in libc++ only when it is told so.
set(flags
  -fms-compatibility-version=19.44 -Wshadow -Wconversion
  -D_UCRT -D_LIBCPP_NO_VCRUNTIME
  -D_LIBCPP_ABI_USE_WRAP_ITER_IN_STD_ARRAY -D_LIBCPP_ABI_USE_WRAP_ITER_IN_STD_STRING_VIEW)
foreach(folder /usr/lib/llvm-19/include/c++/v1 /usr/include/wine/wine/msvcrt /usr/include/wine/wine/windows)
  list(APPEND flags "/clang:-isystem${folder}")
endforeach()
list(JOIN flags " " flags)
set(CMAKE_CXX_FLAGS_INIT "${flags} /FI\"${CMAKE_CURRENT_LIST_DIR}/ucrt_shim.h\"")
