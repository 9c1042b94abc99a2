#pragma once

#include <memory>
#include <utility>

#include "hmd/hmd_driver.h"
#include "render/virtual_display_component.h"

namespace ombrel {

// The headset whose frames come finished, as one shared texture each.
class HMDDriverVirtual final : public HMDDriver, public VirtualDisplayComponent {
 public:
  explicit HMDDriverVirtual(std::unique_ptr<IFrameRenderer> renderer)
      : HMDDriver(std::move(renderer)), VirtualDisplayComponent(Core(), Host()) {}

  void* GetComponent(const char* pchComponentNameAndVersion) override;
};

}  // namespace ombrel
