#pragma once

#include <openvr_driver.h>

#include <cstdint>

#include "hmd/display_geometry.h"
#include "platform/runtime_abi.h"

namespace ombrel {

// The headset's display component: a square field of view of 90 degrees, both eyes alike, no distortion. Has no data of
// its own, so that the headset's bases lie one pointer apart.
class HMDDisplay : public vr::IVRDisplayComponent {
 public:
  void GetWindowBounds(std::int32_t* pnX, std::int32_t* pnY, std::uint32_t* pnWidth, std::uint32_t* pnHeight) override;
  bool IsDisplayOnDesktop() override { return false; }
  bool IsDisplayRealDisplay() override { return false; }
  void GetRecommendedRenderTargetSize(std::uint32_t* pnWidth, std::uint32_t* pnHeight) override;
  void GetEyeOutputViewport(vr::EVREye eEye, std::uint32_t* pnX, std::uint32_t* pnY, std::uint32_t* pnWidth,
                            std::uint32_t* pnHeight) override;
  void GetProjectionRaw(vr::EVREye eEye, float* pfLeft, float* pfRight, float* pfTop, float* pfBottom) override;
  OMBREL_RETURNS_STRUCT(vr::DistortionCoordinates_t, ComputeDistortion, Undistorted(fU, fV), vr::EVREye /*eEye*/,
                        float fU, float fV)

 protected:
  ~HMDDisplay() = default;

 private:
  [[nodiscard]] virtual const DisplayGeometry& Geometry() const = 0;
  [[nodiscard]] static vr::DistortionCoordinates_t Undistorted(float u, float v);
};

}  // namespace ombrel
