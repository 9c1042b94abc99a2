#include "plain_devices.h"

#include <openvr_driver.h>

#include <new>

namespace ombrel::test {
namespace {

class PlainDevice final : public vr::ITrackedDeviceServerDriver {
 public:
  explicit PlainDevice(double x) { pose_.vecPosition[0] = x; }

  vr::EVRInitError Activate(uint32_t) override { return vr::VRInitError_None; }
  void Deactivate() override {}
  void EnterStandby() override {}
  void* GetComponent(const char*) override { return nullptr; }
  void DebugRequest(const char*, char*, uint32_t) override {}
  vr::DriverPose_t GetPose() override { return pose_; }

 private:
  vr::DriverPose_t pose_{};
};

class PlainDisplay final : public vr::IVRDisplayComponent {
 public:
  void GetWindowBounds(int32_t*, int32_t*, uint32_t*, uint32_t*) override {}
  bool IsDisplayOnDesktop() override { return false; }
  bool IsDisplayRealDisplay() override { return false; }
  void GetRecommendedRenderTargetSize(uint32_t*, uint32_t*) override {}
  void GetEyeOutputViewport(vr::EVREye, uint32_t*, uint32_t*, uint32_t*, uint32_t*) override {}
  void GetProjectionRaw(vr::EVREye, float*, float*, float*, float*) override {}
  vr::DistortionCoordinates_t ComputeDistortion(vr::EVREye, float u, float v) override {
    return {{u, v}, {u, v}, {u, v}};
  }
};

static_assert(sizeof(PlainDevice) <= kPlainDeviceRoom && sizeof(PlainDisplay) <= kPlainDeviceRoom);

}  // namespace

void* MakePlainDevice(void* room, double x) {
  return static_cast<vr::ITrackedDeviceServerDriver*>(new (room) PlainDevice(x));
}

void* MakePlainDisplay(void* room) { return static_cast<vr::IVRDisplayComponent*>(new (room) PlainDisplay); }

}  // namespace ombrel::test
