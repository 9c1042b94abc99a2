#pragma once

#include <memory>
#include <utility>

#include "hmd/hmd_driver.h"
#include "render/direct_mode_component.h"
#include "render/headset_renderer.h"

namespace ombrel {

// The headset whose frames come as eye layers: the runtime renders into textures that it asks us for.
class HMDDriverDirect final : public HMDDriver, public DirectModeComponent {
 public:
  explicit HMDDriverDirect(std::unique_ptr<IHeadsetRenderer> renderer)
      : HMDDriverDirect(*renderer, std::move(renderer)) {}

  void* GetComponent(const char* pchComponentNameAndVersion) override;

 private:
  // By reference, so that the renderer is still there to be looked at when both arguments are made.
  HMDDriverDirect(ISwapTextureDevice& textures, std::unique_ptr<IHeadsetRenderer>&& renderer)
      : HMDDriver(std::move(renderer)), DirectModeComponent(Core(), textures) {}
};

}  // namespace ombrel
