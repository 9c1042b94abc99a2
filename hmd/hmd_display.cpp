// The headset's display component: a square field of view of 90 degrees, both eyes alike, no distortion.
#include "hmd/hmd_driver.h"

namespace ombrel {

void HMDDriver::GetWindowBounds(std::int32_t* pnX, std::int32_t* pnY, std::uint32_t* pnWidth, std::uint32_t* pnHeight) {
  *pnX = windowX_;
  *pnY = windowY_;
  *pnWidth = static_cast<std::uint32_t>(geometry_.windowWidth);
  *pnHeight = static_cast<std::uint32_t>(geometry_.windowHeight);
}

void HMDDriver::GetRecommendedRenderTargetSize(std::uint32_t* pnWidth, std::uint32_t* pnHeight) {
  *pnWidth = static_cast<std::uint32_t>(geometry_.renderTargetWidth);
  *pnHeight = static_cast<std::uint32_t>(geometry_.renderTargetHeight);
}

void HMDDriver::GetEyeOutputViewport(vr::EVREye eEye, std::uint32_t* pnX, std::uint32_t* pnY, std::uint32_t* pnWidth,
                                     std::uint32_t* pnHeight) {
  const auto half = static_cast<std::uint32_t>(geometry_.windowWidth / 2);
  *pnX = eEye == vr::Eye_Left ? 0 : half;
  *pnY = 0;
  *pnWidth = half;
  *pnHeight = static_cast<std::uint32_t>(geometry_.windowHeight);
}

void HMDDriver::GetProjectionRaw(vr::EVREye /*eEye*/, float* pfLeft, float* pfRight, float* pfTop, float* pfBottom) {
  *pfLeft = -1.0F;
  *pfRight = 1.0F;
  *pfTop = -1.0F;
  *pfBottom = 1.0F;
}

vr::DistortionCoordinates_t HMDDriver::Undistorted(float u, float v) {
  return {.rfRed = {u, v}, .rfGreen = {u, v}, .rfBlue = {u, v}};
}

}  // namespace ombrel
