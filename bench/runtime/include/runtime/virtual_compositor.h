#pragma once

#include <d3d11.h>
#include <wrl/client.h>

#include "runtime/compositor.h"
#include "runtime/keyed_texture.h"

namespace bench {

// Hands frames over through IVRVirtualDisplay_002: both eyes side by side in one finished, gamma-encoded
// texture of the window's size, shared under a keyed mutex.
class VirtualCompositor final : public Compositor {
 public:
  // `device` is a sharing device of the runtime's own. Throws std::runtime_error if the headset has no
  // virtual display.
  VirtualCompositor(FakeRuntime& runtime, const ActiveDevice& headset, FramePainter& painter,
                    const Microsoft::WRL::ComPtr<ID3D11Device>& device);
  ~VirtualCompositor() override { Join(); }

 protected:
  void HandOver(FrameReport& report) override;
  void AfterPresent(const FrameReport& report) override;

 private:
  void PaintEye(vr::EVREye eye, const runtime::PoseMatrix& head);

  vr::IVRVirtualDisplay& display_;
  KeyedTexture backbuffer_;
  double lastVsyncSeconds_ = 0.0;
};

// The component; throws std::runtime_error if the headset has none.
[[nodiscard]] vr::IVRVirtualDisplay& VirtualDisplayOf(const ActiveDevice& headset);

}  // namespace bench
