#pragma once

#include <cstdint>

#include <d3d11.h>

#include <openvr_driver.h>

#include "runtime/pose_matrix.h"

namespace bench {

// One eye's picture that is to be painted. The viewport is the eye's part of the target.
struct EyeView {
  vr::EVREye eye = vr::Eye_Left;
  ID3D11RenderTargetView* target = nullptr;
  std::uint32_t targetWidth = 0;
  std::uint32_t targetHeight = 0;
  D3D11_VIEWPORT viewport{};
  runtime::PoseMatrix worldFromEye{};
  vr::HmdMatrix44_t projection{};
  bool gammaEncoded = false;  // true if nobody encodes the picture after the painter
};

// What the compositor shows: an application with its scene. Called on the compositor's thread only.
class FramePainter {
 public:
  virtual ~FramePainter() = default;
  virtual void PaintEye(const EyeView& view) = 0;
};

}  // namespace bench
