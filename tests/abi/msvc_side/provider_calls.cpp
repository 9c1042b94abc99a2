#include <openvr_driver.h>

#include "calls.h"

namespace {

vr::IServerTrackedDeviceProvider* AsProvider(void* provider) {
  return static_cast<vr::IServerTrackedDeviceProvider*>(provider);
}

}  // namespace

extern "C" {

int32_t MsvcProviderInit(void* provider, void* driverContext) {
  return AsProvider(provider)->Init(static_cast<vr::IVRDriverContext*>(driverContext));
}

void MsvcProviderCleanup(void* provider) { AsProvider(provider)->Cleanup(); }
const char* const* MsvcProviderGetInterfaceVersions(void* provider) {
  return AsProvider(provider)->GetInterfaceVersions();
}
void MsvcProviderRunFrame(void* provider) { AsProvider(provider)->RunFrame(); }
bool MsvcProviderShouldBlockStandby(void* provider) { return AsProvider(provider)->ShouldBlockStandbyMode(); }
void MsvcProviderEnterStandby(void* provider) { AsProvider(provider)->EnterStandby(); }
void MsvcProviderLeaveStandby(void* provider) { AsProvider(provider)->LeaveStandby(); }
}
