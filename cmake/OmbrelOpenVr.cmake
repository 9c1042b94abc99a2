# The driver interface header, as targets:
#   ombrel_openvr_original  the header as it was published
#   ombrel_openvr           the header that the driver is compiled against
#
# The runtime is built with MSVC. Other compilers disagree with it about methods that return a structure
# by value, so for them the two such methods are declared with an explicit result pointer, which is what
# MSVC makes of them: this pointer first, address of the result second, that address returned.

set(OMBREL_OPENVR_DIR "" CACHE PATH "Folder of an OpenVR SDK; empty means the header that tools/fetch_openvr.sh fetches")

if(OMBREL_OPENVR_DIR)
  set(openvr_candidates "${OMBREL_OPENVR_DIR}/headers" "${OMBREL_OPENVR_DIR}")
else()
  set(openvr_candidates "${PROJECT_SOURCE_DIR}/third_party/openvr")
endif()
find_path(openvr_folder openvr_driver.h PATHS ${openvr_candidates} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH NO_CACHE)
if(NOT openvr_folder)
  message(FATAL_ERROR "No openvr_driver.h in ${openvr_candidates}. Run tools/fetch_openvr.sh, "
                      "or name an OpenVR SDK's folder with -DOMBREL_OPENVR_DIR=...")
endif()

# The versions that the driver is made for. The compiler would take others of many of them, and the runtime would then be
# given tables of functions that it does not expect.
function(ombrel_check_interfaces header)
  file(STRINGS "${header}" declarations REGEX "_Version *= *\"")
  set(wrong "")
  foreach(expected ${ARGN})
    string(REGEX REPLACE "_[0-9]+$" "" interface "${expected}")
    if(NOT declarations MATCHES "[* ]${interface}_Version *= *\"([^\"]*)\"")
      string(APPEND wrong "\n  ${expected} expected, none found")
    elseif(NOT CMAKE_MATCH_1 STREQUAL expected)
      string(APPEND wrong "\n  ${expected} expected, ${CMAKE_MATCH_1} found")
    endif()
  endforeach()
  if(wrong)
    message(FATAL_ERROR "${header} is of another version of the OpenVR SDK than the driver is made for:${wrong}")
  endif()
endfunction()

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${openvr_folder}/openvr_driver.h")
ombrel_check_interfaces("${openvr_folder}/openvr_driver.h"
  IServerTrackedDeviceProvider_004 ITrackedDeviceServerDriver_005 IVRCameraComponent_002 IVRDisplayComponent_002
  IVRDriverDirectModeComponent_005 IVRDriverInput_001 IVRDriverLog_001 IVRDriverManager_001 IVRProperties_001
  IVRResources_001 IVRServerDriverHost_005 IVRSettings_002 IVRVirtualDisplay_002 IVRWatchdogProvider_001)

# Replaces the one place in TEXT_VARIABLE that matches; none, or several, mean an unknown header.
function(ombrel_replace_once text_variable old new)
  string(FIND "${${text_variable}}" "${old}" first)
  string(FIND "${${text_variable}}" "${old}" last REVERSE)
  if(first EQUAL -1 OR NOT first EQUAL last)
    message(FATAL_ERROR "${openvr_folder}/openvr_driver.h: expected exactly one '${old}'")
  endif()
  string(REPLACE "${old}" "${new}" changed "${${text_variable}}")
  set(${text_variable} "${changed}" PARENT_SCOPE)
endfunction()

add_library(ombrel_openvr_original INTERFACE)
target_include_directories(ombrel_openvr_original SYSTEM INTERFACE "${openvr_folder}")

add_library(ombrel_openvr INTERFACE)
if(MSVC)
  target_link_libraries(ombrel_openvr INTERFACE ombrel_openvr_original)
else()
  set(patched_folder "${PROJECT_BINARY_DIR}/openvr")
  file(READ "${openvr_folder}/openvr_driver.h" header)
  ombrel_replace_once(header
    "virtual DriverPose_t GetPose() = 0;"
    "virtual DriverPose_t *GetPose( DriverPose_t *result ) = 0;")
  ombrel_replace_once(header
    "virtual DistortionCoordinates_t ComputeDistortion( EVREye eEye, float fU, float fV ) = 0;"
    "virtual DistortionCoordinates_t *ComputeDistortion( DistortionCoordinates_t *result, EVREye eEye, float fU, float fV ) = 0;")
  file(CONFIGURE OUTPUT "${patched_folder}/openvr_driver.h" CONTENT "${header}" @ONLY)
  target_include_directories(ombrel_openvr SYSTEM INTERFACE "${patched_folder}")
endif()
