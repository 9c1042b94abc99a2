#pragma once

#include <array>

#include <d3d11.h>
#include <wrl/client.h>

#include "runtime/compositor.h"
#include "runtime/keyed_texture.h"

namespace bench {

// Hands frames over through IVRDriverDirectModeComponent_005: a swap set of three textures for each eye,
// one layer a frame, and a sync texture that the runtime holds while it renders.
class DirectCompositor final : public Compositor {
 public:
  // `device` is a sharing device of the runtime's own. Throws std::runtime_error if the headset has no
  // direct-mode component or its textures cannot be opened.
  DirectCompositor(FakeRuntime& runtime, const ActiveDevice& headset, FramePainter& painter,
                   const Microsoft::WRL::ComPtr<ID3D11Device>& device);
  ~DirectCompositor() override { Join(); }

  // Destroys both swap sets; the loop must have stopped, and the driver must still be there.
  void DestroySwapSets();

 protected:
  void HandOver(FrameReport& report) override;
  void AfterPresent(const FrameReport& report) override;

 private:
  struct SwapSet {
    std::array<vr::SharedTextureHandle_t, 3> handles{};
    std::array<Microsoft::WRL::ComPtr<ID3D11Texture2D>, 3> textures;
    std::array<Microsoft::WRL::ComPtr<ID3D11RenderTargetView>, 3> targets;
  };
  [[nodiscard]] SwapSet CreateSwapSet(ID3D11Device& device);
  void PaintEye(vr::EVREye eye, std::uint32_t index, const runtime::PoseMatrix& head);

  vr::IVRDriverDirectModeComponent& component_;
  KeyedTexture sync_;
  std::array<SwapSet, 2> eyes_;
  std::array<std::uint32_t, 2> indices_{};
};

// The component; throws std::runtime_error if the headset has none.
[[nodiscard]] vr::IVRDriverDirectModeComponent& DirectModeOf(const ActiveDevice& headset);

}  // namespace bench
