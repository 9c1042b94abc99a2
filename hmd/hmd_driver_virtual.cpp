#include "hmd/hmd_driver_virtual.h"

#include "context/component_name.h"

namespace ombrel {

void* HMDDriverVirtual::GetComponent(const char* pchComponentNameAndVersion) {
  if (IsComponentNamed(pchComponentNameAndVersion, vr::IVRVirtualDisplay_Version)) {
    return static_cast<vr::IVRVirtualDisplay*>(this);
  }
  return HMDDriver::GetComponent(pchComponentNameAndVersion);
}

}  // namespace ombrel
