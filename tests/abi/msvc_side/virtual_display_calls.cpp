#include <openvr_driver.h>

#include "calls.h"

namespace {

vr::IVRVirtualDisplay* AsVirtual(void* virtualDisplay) { return static_cast<vr::IVRVirtualDisplay*>(virtualDisplay); }

}  // namespace

extern "C" {

void MsvcVirtualPresent(void* virtualDisplay, uint64_t texture) {
  vr::PresentInfo_t info = {};
  info.backbufferTextureHandle = texture;
  AsVirtual(virtualDisplay)->Present(&info, sizeof(info));
}

void MsvcVirtualWaitForPresent(void* virtualDisplay) { AsVirtual(virtualDisplay)->WaitForPresent(); }

bool MsvcVirtualGetTimeSinceLastVsync(void* virtualDisplay, float* seconds, uint64_t* frames) {
  return AsVirtual(virtualDisplay)->GetTimeSinceLastVsync(seconds, frames);
}
}
