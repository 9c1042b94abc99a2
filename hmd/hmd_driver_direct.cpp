#include "hmd/hmd_driver_direct.h"

#include "context/component_name.h"

namespace ombrel {

void* HMDDriverDirect::GetComponent(const char* pchComponentNameAndVersion) {
  if (IsComponentNamed(pchComponentNameAndVersion, vr::IVRDriverDirectModeComponent_Version)) {
    return static_cast<vr::IVRDriverDirectModeComponent*>(this);
  }
  return HMDDriver::GetComponent(pchComponentNameAndVersion);
}

}  // namespace ombrel
