// What the two compilers of these tests say to each other: plain functions and plain data, which both lay out alike.
// Each function calls one method of one interface of the driver as the runtime does. Objects are passed as pointers to
// the interface that the function is named after; structures are built right where `result` points.
#pragma once

#include <stdint.h>

extern "C" {

// ITrackedDeviceServerDriver_005
int32_t MsvcDeviceActivate(void* device, uint32_t id);
void MsvcDeviceDeactivate(void* device);
void MsvcDeviceEnterStandby(void* device);
void* MsvcDeviceGetComponent(void* device, const char* name);
void MsvcDeviceDebugRequest(void* device, const char* request, char* response, uint32_t size);
void MsvcDeviceGetPose(void* device, void* result);  // DriverPose_t

// IVRDisplayComponent_002
void MsvcDisplayGetWindowBounds(void* display, int32_t* x, int32_t* y, uint32_t* width, uint32_t* height);
bool MsvcDisplayIsOnDesktop(void* display);
bool MsvcDisplayIsReal(void* display);
void MsvcDisplayGetRenderTargetSize(void* display, uint32_t* width, uint32_t* height);
void MsvcDisplayGetEyeViewport(void* display, int32_t eye, uint32_t* x, uint32_t* y, uint32_t* width, uint32_t* height);
void MsvcDisplayGetProjection(void* display, int32_t eye, float* left, float* right, float* top, float* bottom);
void MsvcDisplayComputeDistortion(void* display, int32_t eye, float u, float v,
                                  void* result);  // DistortionCoordinates_t

// IVRDriverDirectModeComponent_005
void MsvcDirectCreateSet(void* direct, uint32_t processId, uint32_t width, uint32_t height, uint32_t format,
                         uint32_t samples, uint64_t (*handles)[3]);
void MsvcDirectDestroySet(void* direct, uint64_t handle);
void MsvcDirectDestroyAllSets(void* direct, uint32_t processId);
void MsvcDirectGetNextIndex(void* direct, uint32_t (*indices)[2]);
void MsvcDirectSubmitLayer(void* direct, uint64_t left, uint64_t right, const float (*pose)[12]);
void MsvcDirectPresent(void* direct, uint64_t syncTexture);
void MsvcDirectPostPresent(void* direct);
void MsvcDirectGetFrameTiming(void* direct, void* timing);  // DriverDirectMode_FrameTiming

// IVRVirtualDisplay_002
void MsvcVirtualPresent(void* virtualDisplay, uint64_t texture);
void MsvcVirtualWaitForPresent(void* virtualDisplay);
bool MsvcVirtualGetTimeSinceLastVsync(void* virtualDisplay, float* seconds, uint64_t* frames);

// IServerTrackedDeviceProvider_004
int32_t MsvcProviderInit(void* provider, void* driverContext);
void MsvcProviderCleanup(void* provider);
const char* const* MsvcProviderGetInterfaceVersions(void* provider);
void MsvcProviderRunFrame(void* provider);
bool MsvcProviderShouldBlockStandby(void* provider);
void MsvcProviderEnterStandby(void* provider);
void MsvcProviderLeaveStandby(void* provider);

// Bases of the headset in the order that the architecture gives, reached from its first one by MSVC's rules.
void* MsvcHeadsetDisplayBase(void* device);
void MsvcHeadsetCallTrackingListener(void* device);
void MsvcHeadsetCallFramerateListener(void* device, uint32_t framesPerSecond);

// Sizes and offsets as MSVC's rules give them.
struct LayoutFact {
  const char* what;
  uint64_t bytes;
};
const LayoutFact* MsvcLayoutFacts(uint32_t* count);

// A runtime that is laid out by MSVC's rules. Each call that reaches it goes to MsvcHostCalled, with what it was given
// written out; the test program supplies that function. The context is an IVRDriverContext.
void* MsvcHostContext();
void MsvcHostCalled(const char* method, const char* text, uint64_t first, uint64_t second);
}
