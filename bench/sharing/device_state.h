#pragma once

#include "group_state.h"
#include "weak_registry.h"

#include <d3d11.h>

#include <cstdint>
#include <memory>

namespace bench {

class SharedTexture;

// What this library knows of one device. The device owns it as private data. Any thread.
class DeviceState {
 public:
  // Neither is kept alive.
  DeviceState(ID3D11Device* device, ID3D11DeviceContext* context, GroupState& group);
  ~DeviceState();
  DeviceState(const DeviceState&) = delete;
  DeviceState& operator=(const DeviceState&) = delete;

  [[nodiscard]] GroupState& Group() const { return group_; }
  // The device's shared textures, by handle.
  [[nodiscard]] WeakRegistry<std::uint32_t, SharedTexture>& Textures() { return textures_; }

 private:
  const void* device_;
  const void* context_;
  GroupState& group_;
  std::shared_ptr<void> alive_;
  WeakRegistry<std::uint32_t, SharedTexture> textures_;
};

// All sharing devices of this process, each under its own address and its immediate context's.
[[nodiscard]] WeakRegistry<const void*, DeviceState>& Devices();

}  // namespace bench
