#include <openvr_driver.h>

#include "calls.h"
#include "construct_at.h"

namespace {

vr::ITrackedDeviceServerDriver* AsDevice(void* device) { return static_cast<vr::ITrackedDeviceServerDriver*>(device); }

}  // namespace

extern "C" {

int32_t MsvcDeviceActivate(void* device, uint32_t id) { return AsDevice(device)->Activate(id); }
void MsvcDeviceDeactivate(void* device) { AsDevice(device)->Deactivate(); }
void MsvcDeviceEnterStandby(void* device) { AsDevice(device)->EnterStandby(); }
void* MsvcDeviceGetComponent(void* device, const char* name) { return AsDevice(device)->GetComponent(name); }

void MsvcDeviceDebugRequest(void* device, const char* request, char* response, uint32_t size) {
  AsDevice(device)->DebugRequest(request, response, size);
}

void MsvcDeviceGetPose(void* device, void* result) { new (At{result}) vr::DriverPose_t(AsDevice(device)->GetPose()); }
}
