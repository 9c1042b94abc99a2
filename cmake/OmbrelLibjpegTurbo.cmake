# libjpeg-turbo, which compresses frames in a fifth of the time that others take: target ombrel_turbojpeg, built once into
# the build folder from the sources that tools/fetch_libjpeg_turbo.sh fetches.
include(ExternalProject)

set(OMBREL_LIBJPEG_TURBO_DIR "${PROJECT_SOURCE_DIR}/third_party/libjpeg-turbo" CACHE PATH "Folder of libjpeg-turbo's sources")
if(NOT EXISTS "${OMBREL_LIBJPEG_TURBO_DIR}/turbojpeg.h")
  message(FATAL_ERROR "No turbojpeg.h in ${OMBREL_LIBJPEG_TURBO_DIR}. Run tools/fetch_libjpeg_turbo.sh, "
                      "or turn OMBREL_BUILD_PREVIEW off")
endif()

set(turbojpeg_folder "${PROJECT_BINARY_DIR}/libjpeg-turbo")
set(turbojpeg_library "${turbojpeg_folder}/build/libturbojpeg.a")
# Its own view of the system, without the emulator that this project's toolchain names: it need not run anything.
ExternalProject_Add(libjpeg_turbo
  SOURCE_DIR "${OMBREL_LIBJPEG_TURBO_DIR}"
  PREFIX "${turbojpeg_folder}"
  BINARY_DIR "${turbojpeg_folder}/build"
  DOWNLOAD_COMMAND ""
  INSTALL_COMMAND ""
  CMAKE_ARGS -Wno-dev -DCMAKE_POLICY_VERSION_MINIMUM=3.5 -DCMAKE_BUILD_TYPE=Release
    -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_SYSTEM_PROCESSOR=AMD64
    "-DCMAKE_C_COMPILER=${CMAKE_C_COMPILER}" "-DCMAKE_RC_COMPILER=${CMAKE_RC_COMPILER}"
    "-DCMAKE_C_FLAGS=-ffile-prefix-map=${OMBREL_LIBJPEG_TURBO_DIR}=libjpeg-turbo"
    "-DCMAKE_INSTALL_PREFIX=${turbojpeg_folder}/installed" -DENABLE_SHARED=0 -DREQUIRE_SIMD=1
  BUILD_COMMAND "${CMAKE_COMMAND}" --build <BINARY_DIR> --target turbojpeg-static
  BUILD_BYPRODUCTS "${turbojpeg_library}"
  LOG_CONFIGURE ON LOG_BUILD ON)

add_library(ombrel_turbojpeg STATIC IMPORTED GLOBAL)
set_target_properties(ombrel_turbojpeg PROPERTIES IMPORTED_LOCATION "${turbojpeg_library}")
target_include_directories(ombrel_turbojpeg SYSTEM INTERFACE "${OMBREL_LIBJPEG_TURBO_DIR}")
add_dependencies(ombrel_turbojpeg libjpeg_turbo)
