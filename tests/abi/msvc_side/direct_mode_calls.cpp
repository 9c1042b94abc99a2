#include <openvr_driver.h>

#include "calls.h"

namespace {

using Component = vr::IVRDriverDirectModeComponent;

Component* AsDirect(void* direct) { return static_cast<Component*>(direct); }

}  // namespace

extern "C" {

void MsvcDirectCreateSet(void* direct, uint32_t processId, uint32_t width, uint32_t height, uint32_t format,
                         uint32_t samples, uint64_t (*handles)[3]) {
  const Component::SwapTextureSetDesc_t description = {width, height, format, samples};
  AsDirect(direct)->CreateSwapTextureSet(processId, &description, handles);
}

void MsvcDirectDestroySet(void* direct, uint64_t handle) { AsDirect(direct)->DestroySwapTextureSet(handle); }

void MsvcDirectDestroyAllSets(void* direct, uint32_t processId) {
  AsDirect(direct)->DestroyAllSwapTextureSets(processId);
}

void MsvcDirectGetNextIndex(void* direct, uint32_t (*indices)[2]) {
  vr::SharedTextureHandle_t handles[2] = {};
  AsDirect(direct)->GetNextSwapTextureSetIndex(handles, indices);
}

void MsvcDirectSubmitLayer(void* direct, uint64_t left, uint64_t right, const float (*pose)[12]) {
  Component::SubmitLayerPerEye_t eyes[2] = {};
  eyes[0].hTexture = left;
  eyes[1].hTexture = right;
  vr::HmdMatrix34_t matrix = {};
  for (int i = 0; i < 12; ++i) matrix.m[i / 4][i % 4] = (*pose)[i];
  for (auto& eye : eyes) eye.bounds = {0, 0, 1, 1};
  AsDirect(direct)->SubmitLayer(eyes, &matrix);
}

void MsvcDirectPresent(void* direct, uint64_t syncTexture) { AsDirect(direct)->Present(syncTexture); }
void MsvcDirectPostPresent(void* direct) { AsDirect(direct)->PostPresent(); }

void MsvcDirectGetFrameTiming(void* direct, void* timing) {
  AsDirect(direct)->GetFrameTiming(static_cast<vr::DriverDirectMode_FrameTiming*>(timing));
}
}
