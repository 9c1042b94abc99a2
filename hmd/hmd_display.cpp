#include "hmd/hmd_display.h"

namespace ombrel {

void HMDDisplay::GetWindowBounds(std::int32_t* pnX, std::int32_t* pnY, std::uint32_t* pnWidth,
                                 std::uint32_t* pnHeight) {
  *pnX = Geometry().windowX;
  *pnY = Geometry().windowY;
  *pnWidth = static_cast<std::uint32_t>(Geometry().windowWidth);
  *pnHeight = static_cast<std::uint32_t>(Geometry().windowHeight);
}

void HMDDisplay::GetRecommendedRenderTargetSize(std::uint32_t* pnWidth, std::uint32_t* pnHeight) {
  *pnWidth = static_cast<std::uint32_t>(Geometry().renderTargetWidth);
  *pnHeight = static_cast<std::uint32_t>(Geometry().renderTargetHeight);
}

void HMDDisplay::GetEyeOutputViewport(vr::EVREye eEye, std::uint32_t* pnX, std::uint32_t* pnY, std::uint32_t* pnWidth,
                                      std::uint32_t* pnHeight) {
  const auto half = static_cast<std::uint32_t>(Geometry().windowWidth / 2);
  *pnX = eEye == vr::Eye_Left ? 0 : half;
  *pnY = 0;
  *pnWidth = half;
  *pnHeight = static_cast<std::uint32_t>(Geometry().windowHeight);
}

void HMDDisplay::GetProjectionRaw(vr::EVREye /*eEye*/, float* pfLeft, float* pfRight, float* pfTop, float* pfBottom) {
  *pfLeft = -1.0F;
  *pfRight = 1.0F;
  *pfTop = -1.0F;
  *pfBottom = 1.0F;
}

vr::DistortionCoordinates_t HMDDisplay::Undistorted(float u, float v) {
  return {.rfRed = {u, v}, .rfGreen = {u, v}, .rfBlue = {u, v}};
}

}  // namespace ombrel
