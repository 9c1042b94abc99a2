#include <openvr_driver.h>

#include "calls.h"
#include "construct_at.h"

namespace {

vr::IVRDisplayComponent* AsDisplay(void* display) { return static_cast<vr::IVRDisplayComponent*>(display); }
vr::EVREye AsEye(int32_t eye) { return static_cast<vr::EVREye>(eye); }

}  // namespace

extern "C" {

void MsvcDisplayGetWindowBounds(void* display, int32_t* x, int32_t* y, uint32_t* width, uint32_t* height) {
  AsDisplay(display)->GetWindowBounds(x, y, width, height);
}

bool MsvcDisplayIsOnDesktop(void* display) { return AsDisplay(display)->IsDisplayOnDesktop(); }
bool MsvcDisplayIsReal(void* display) { return AsDisplay(display)->IsDisplayRealDisplay(); }

void MsvcDisplayGetRenderTargetSize(void* display, uint32_t* width, uint32_t* height) {
  AsDisplay(display)->GetRecommendedRenderTargetSize(width, height);
}

void MsvcDisplayGetEyeViewport(void* display, int32_t eye, uint32_t* x, uint32_t* y, uint32_t* width,
                               uint32_t* height) {
  AsDisplay(display)->GetEyeOutputViewport(AsEye(eye), x, y, width, height);
}

void MsvcDisplayGetProjection(void* display, int32_t eye, float* left, float* right, float* top, float* bottom) {
  AsDisplay(display)->GetProjectionRaw(AsEye(eye), left, right, top, bottom);
}

void MsvcDisplayComputeDistortion(void* display, int32_t eye, float u, float v, void* result) {
  new (At{result}) vr::DistortionCoordinates_t(AsDisplay(display)->ComputeDistortion(AsEye(eye), u, v));
}
}
